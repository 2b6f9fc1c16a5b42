#pragma once
// Little-endian fields inside request and answer values. The reader never
// reads past the value it was given: every request comes from the host.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace sim {

using Bytes = std::vector<uint8_t>;

class ByteReader {
public:
    explicit ByteReader(const Bytes& value) : m_data(value.data()), m_size(value.size()) {}

    bool U8(uint8_t& out);
    bool U32(uint32_t& out);
    bool Take(size_t length, Bytes& out);
    bool Text(size_t length, std::string& out);
    // A u32 length, then that many bytes.
    bool Text32(std::string& out);
    bool Blob32(Bytes& out);
    Bytes Rest();
    size_t Remaining() const { return m_size - m_pos; }
    bool AtEnd() const { return m_pos == m_size; }

private:
    const uint8_t* m_data;
    size_t m_size;
    size_t m_pos = 0;
};

void PutU8(Bytes& out, uint8_t v);
void PutU32(Bytes& out, uint32_t v);
void PutBytes(Bytes& out, const void* data, size_t length);
void PutText(Bytes& out, const std::string& text);
Bytes StatusOnly(uint8_t status);
Bytes StatusWithU32(uint8_t status, uint32_t value);
// Status, u32 length, then the blob: the layout of every answer that returns an image.
Bytes StatusWithBlob(uint8_t status, const Bytes& blob);

}  // namespace sim
