// The --json output: one object per line, built member by member. Texts from
// the module may hold any bytes; what is not UTF-8 is written as \u00XX, so
// every line parses.
#ifndef AICAM_JSONWRITER_H
#define AICAM_JSONWRITER_H

#include <string>
#include <vector>

// `text` as a JSON string, quotes included.
std::string JsonString(const std::string& text);
// Encoded values as a JSON array.
std::string JsonArray(const std::vector<std::string>& encoded);

class JsonObject {
public:
    JsonObject& String(const std::string& key, const std::string& text);
    JsonObject& Number(const std::string& key, long long value);
    JsonObject& Bool(const std::string& key, bool value);
    // A value already encoded (an array, an object, a number).
    JsonObject& Raw(const std::string& key, const std::string& encoded);
    std::string Text() const { return "{" + m_members + "}"; }
    // Writes the object and a newline to stdout, flushed for readers of a pipe.
    void PrintLine() const;

private:
    std::string m_members;
};

#endif
