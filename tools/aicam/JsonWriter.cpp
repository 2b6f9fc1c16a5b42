#include "JsonWriter.h"

#include <stdio.h>

namespace {
// The length of the well-formed UTF-8 sequence at text[i] (2 to 4 bytes), or 0.
size_t Utf8Sequence(const std::string& text, size_t i)
{
    const unsigned char lead = static_cast<unsigned char>(text[i]);
    size_t length = 0;
    unsigned int lowest = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        lowest = 0x80;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        lowest = 0x800;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        lowest = 0x10000;
    } else {
        return 0;
    }
    if (text.size() - i < length)
        return 0;
    unsigned int code = lead & (0xFF >> (length + 1));
    for (size_t k = 1; k < length; ++k) {
        const unsigned char next = static_cast<unsigned char>(text[i + k]);
        if ((next & 0xC0) != 0x80)
            return 0;
        code = (code << 6) | (next & 0x3F);
    }
    // Overlong forms, surrogates and code points past U+10FFFF are not UTF-8.
    if (code < lowest || (code >= 0xD800 && code <= 0xDFFF) || code > 0x10FFFF)
        return 0;
    return length;
}
}  // namespace

std::string JsonString(const std::string& text)
{
    std::string out = "\"";
    for (size_t i = 0; i < text.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '\t') {
            out += "\\t";
        } else if (c == '\r') {
            out += "\\r";
        } else if (c >= 0x20 && c < 0x7F) {
            out += static_cast<char>(c);
        } else if (size_t length = c >= 0x80 ? Utf8Sequence(text, i) : 0) {
            out.append(text, i, length);
            i += length - 1;
        } else {
            char escaped[8];
            snprintf(escaped, sizeof escaped, "\\u%04x", c);
            out += escaped;
        }
    }
    return out + "\"";
}

std::string JsonArray(const std::vector<std::string>& encoded)
{
    std::string out = "[";
    for (size_t i = 0; i < encoded.size(); ++i)
        out += (i ? "," : "") + encoded[i];
    return out + "]";
}

JsonObject& JsonObject::Raw(const std::string& key, const std::string& encoded)
{
    if (!m_members.empty())
        m_members += ',';
    m_members += JsonString(key) + ":" + encoded;
    return *this;
}

JsonObject& JsonObject::String(const std::string& key, const std::string& text)
{
    return Raw(key, JsonString(text));
}

JsonObject& JsonObject::Number(const std::string& key, long long value) { return Raw(key, std::to_string(value)); }

JsonObject& JsonObject::Bool(const std::string& key, bool value) { return Raw(key, value ? "true" : "false"); }

void JsonObject::PrintLine() const
{
    printf("%s\n", Text().c_str());
    fflush(stdout);
}
