// What a command gets of the command line: its positional words, and the
// options as the parser found them, taken out by name.
#ifndef AICAM_ARGUMENTS_H
#define AICAM_ARGUMENTS_H

#include <string>
#include <vector>

#include "CommandLine.h"

class Arguments {
public:
    explicit Arguments(std::vector<std::string> words, OptionList options = {});

    // Removes "--name" and says whether it was there.
    bool Flag(const char* name);
    // Removes "--name" with its value (the last one given). False when absent.
    bool Option(const char* name, std::string& value);
    // Option with a whole number in [low, high]; a bad number is recorded.
    bool Number(const char* name, long low, long high, long& value);
    bool HelpAsked() { return Flag("--help"); }

    // Takes the next positional word; false (and an error) when none is left.
    bool Next(const char* what, std::string& word);
    bool NextNumber(const char* what, long low, long high, long& value);
    bool HasNext() const { return !m_words.empty(); }

    // Records a refused value as the error; always false.
    bool Invalid(const std::string& text);

    // After all Next calls: options the command does not take and extra words
    // become the error. Returns 0 or kUsage with the error printed as
    // "aicam: <command>: ...".
    int Finish(const std::string& command);

private:
    void Error(const std::string& text);
    bool ToNumber(const std::string& what, const std::string& text, long low, long high, long& value);

    std::vector<std::string> m_words;
    OptionList m_options;
    std::string m_error;
};

// A whole number in [low, high] from text; false for anything else.
bool ParseNumber(const std::string& text, long low, long high, long& value);

#endif
