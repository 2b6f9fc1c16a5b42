// The whole command line read with getopt_long: "--opt=value" and "--opt
// value", options before or after the command, "--" ending the options.
// Which option belongs to which command is decided later: a command takes its
// own options from Arguments, and what is left over is refused there.
#ifndef AICAM_COMMANDLINE_H
#define AICAM_COMMANDLINE_H

#include <string>
#include <utility>
#include <vector>

using OptionList = std::vector<std::pair<std::string, std::string>>;  // ("--name", value or "")

struct ParsedCommandLine {
    OptionList options;              // in the order given
    std::vector<std::string> words;  // the command and its positional arguments
    std::string error;               // "" or what is wrong, for a usage failure
};

ParsedCommandLine ParseCommandLine(int argc, char** argv);

// Moves the options named in `names` (without their dashes) out of `options`.
OptionList TakeOptions(OptionList& options, const std::vector<std::string>& names);

#endif
