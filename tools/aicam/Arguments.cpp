#include "Arguments.h"

#include <errno.h>
#include <stdlib.h>

#include <utility>

#include "ResultText.h"

bool ParseNumber(const std::string& text, long low, long high, long& value)
{
    if (text.empty())
        return false;
    char* end = nullptr;
    errno = 0;
    long parsed = strtol(text.c_str(), &end, 0);
    if (errno != 0 || *end != '\0' || parsed < low || parsed > high)
        return false;
    value = parsed;
    return true;
}

Arguments::Arguments(std::vector<std::string> words) : m_words(std::move(words)) {}

void Arguments::Error(const std::string& text)
{
    if (m_error.empty())
        m_error = text;
}

bool Arguments::Invalid(const std::string& text)
{
    Error(text);
    return false;
}

bool Arguments::Flag(const char* name)
{
    for (auto word = m_words.begin(); word != m_words.end(); ++word) {
        if (*word == name) {
            m_words.erase(word);
            return true;
        }
    }
    return false;
}

bool Arguments::Option(const char* name, std::string& value)
{
    const std::string prefix = std::string(name) + "=";
    for (size_t i = 0; i < m_words.size(); ++i) {
        if (m_words[i].compare(0, prefix.size(), prefix) == 0) {
            value = m_words[i].substr(prefix.size());
            m_words.erase(m_words.begin() + i);
            return true;
        }
        if (m_words[i] != name)
            continue;
        if (i + 1 >= m_words.size()) {
            Error(std::string(name) + " needs a value");
            m_words.erase(m_words.begin() + i);
            return false;
        }
        value = m_words[i + 1];
        m_words.erase(m_words.begin() + i, m_words.begin() + i + 2);
        return true;
    }
    return false;
}

bool Arguments::Number(const char* name, long low, long high, long& value)
{
    std::string text;
    return Option(name, text) && ToNumber(name, text, low, high, value);
}

bool Arguments::ToNumber(const std::string& what, const std::string& text, long low, long high, long& value)
{
    if (ParseNumber(text, low, high, value))
        return true;
    return Invalid(what + " must be a whole number from " + std::to_string(low) + " to " + std::to_string(high) +
                   ", not '" + text + "'");
}

bool Arguments::Next(const char* what, std::string& word)
{
    for (auto next = m_words.begin(); next != m_words.end(); ++next) {
        if (next->size() > 1 && (*next)[0] == '-' && (*next)[1] == '-')
            continue;  // an option this command does not know; Finish reports it
        word = *next;
        m_words.erase(next);
        return true;
    }
    Error(std::string("missing ") + what);
    return false;
}

bool Arguments::NextNumber(const char* what, long low, long high, long& value)
{
    std::string text;
    return Next(what, text) && ToNumber(what, text, low, high, value);
}

int Arguments::Finish(const std::string& command)
{
    if (m_error.empty() && !m_words.empty())
        Error("unexpected '" + m_words.front() + "'");
    if (m_error.empty())
        return 0;
    return Fail(command, -4, m_error + "; see 'aicam " + command + " --help'");
}
