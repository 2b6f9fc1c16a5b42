#include "WireFormat.h"

#include "../../../OS/OS_ByteOrder.h"

namespace sim {

bool ByteReader::U8(uint8_t& out) {
    if (Remaining() < 1) return false;
    out = m_data[m_pos++];
    return true;
}

bool ByteReader::U32(uint32_t& out) {
    if (Remaining() < 4) return false;
    out = OS_ReadLittleEndian32(m_data + m_pos);
    m_pos += 4;
    return true;
}

bool ByteReader::Take(size_t length, Bytes& out) {
    if (Remaining() < length) return false;
    out.assign(m_data + m_pos, m_data + m_pos + length);
    m_pos += length;
    return true;
}

bool ByteReader::Text(size_t length, std::string& out) {
    if (Remaining() < length) return false;
    out.assign(reinterpret_cast<const char*>(m_data + m_pos), length);
    m_pos += length;
    return true;
}

bool ByteReader::Text32(std::string& out) {
    uint32_t length = 0;
    return U32(length) && Text(length, out);
}

bool ByteReader::Blob32(Bytes& out) {
    uint32_t length = 0;
    return U32(length) && Take(length, out);
}

Bytes ByteReader::Rest() {
    Bytes out(m_data + m_pos, m_data + m_size);
    m_pos = m_size;
    return out;
}

void PutU8(Bytes& out, uint8_t v) { out.push_back(v); }

void PutU32(Bytes& out, uint32_t v) {
    out.resize(out.size() + 4);
    OS_WriteOrdered(&out[out.size() - 4], v, 4, false);
}

void PutBytes(Bytes& out, const void* data, size_t length) {
    const auto* p = static_cast<const uint8_t*>(data);
    out.insert(out.end(), p, p + length);
}

void PutText(Bytes& out, const std::string& text) { PutBytes(out, text.data(), text.size()); }

Bytes StatusOnly(uint8_t status) { return Bytes{status}; }

Bytes StatusWithU32(uint8_t status, uint32_t value) {
    Bytes out{status};
    PutU32(out, value);
    return out;
}

Bytes StatusWithBlob(uint8_t status, const Bytes& blob) {
    Bytes out{status};
    PutU32(out, uint32_t(blob.size()));
    PutBytes(out, blob.data(), blob.size());
    return out;
}

}  // namespace sim
