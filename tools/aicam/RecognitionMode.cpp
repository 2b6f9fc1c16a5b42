#include "RecognitionMode.h"

RecognitionMode ModeOfReport(const std::string& bytes)
{
    static const std::string kField = "\"mode\":\"";
    const std::string text = bytes.substr(0, bytes.find('\0'));
    const size_t at = text.find(kField);
    if (at == std::string::npos)
        return RecognitionMode::Unnamed;
    const std::string value = text.substr(at + kField.size(), 4);
    if (value == "1:N\"")
        return RecognitionMode::OneToMany;
    if (value == "1:1\"")
        return RecognitionMode::OneToOne;
    return RecognitionMode::Unnamed;
}

bool IsOfOtherMode(const std::string& bytes, RecognitionMode started)
{
    const RecognitionMode mode = ModeOfReport(bytes);
    return mode != RecognitionMode::Unnamed && mode != started;
}
