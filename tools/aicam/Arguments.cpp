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

Arguments::Arguments(std::vector<std::string> words, OptionList options)
    : m_words(std::move(words)), m_options(std::move(options))
{
}

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
    std::string ignored;
    return Option(name, ignored);
}

bool Arguments::Option(const char* name, std::string& value)
{
    OptionList named = TakeOptions(m_options, {std::string(name).substr(2)});
    if (named.empty())
        return false;
    value = named.back().second;
    return true;
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
    if (!m_words.empty()) {
        word = m_words.front();
        m_words.erase(m_words.begin());
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
    if (!m_options.empty())
        Error(m_options.front().first + " is not an option of 'aicam " + command + "'");
    if (!m_words.empty())
        Error("unexpected '" + m_words.front() + "'");
    if (m_error.empty())
        return 0;
    return Fail(command, kUsage, m_error + "; see 'aicam " + command + " --help'");
}
