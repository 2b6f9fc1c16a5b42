#include "CommandLine.h"

#include <getopt.h>
#include <string.h>

#include "Arguments.h"

namespace {
// Every option of the tool and of its commands; -h and -q are short forms.
// --wait takes its number as "--wait=S" or as the next word when that is one.
const struct option kOptions[] = {
    // global
    {"port", required_argument, nullptr, 0},
    {"video", required_argument, nullptr, 0},
    {"module", required_argument, nullptr, 0},
    {"usb-id", required_argument, nullptr, 0},
    {"playback", required_argument, nullptr, 0},
    {"log", required_argument, nullptr, 0},
    {"log-dir", required_argument, nullptr, 0},
    {"quiet", no_argument, nullptr, 'q'},
    {"version", no_argument, nullptr, 0},
    {"help", no_argument, nullptr, 'h'},
    // of the commands
    {"json", no_argument, nullptr, 0},
    {"all", no_argument, nullptr, 0},
    {"nodes", no_argument, nullptr, 0},
    {"sn-mode", required_argument, nullptr, 0},
    {"wait", optional_argument, nullptr, 0},
    {"return-image", required_argument, nullptr, 0},
    {"slice", required_argument, nullptr, 0},
    {"out", required_argument, nullptr, 0},
    {"file", required_argument, nullptr, 0},
    {"live", no_argument, nullptr, 0},
    {"multi", no_argument, nullptr, 0},
    {"full", no_argument, nullptr, 0},
    {"count", required_argument, nullptr, 0},
    {"seconds", required_argument, nullptr, 0},
    {"one-to-one", required_argument, nullptr, 0},
    {"kinds", required_argument, nullptr, 0},
    {"md5", required_argument, nullptr, 0},
    {"timeout", required_argument, nullptr, 0},
    {nullptr, 0, nullptr, 0},
};

const struct option* Named(const std::string& name)
{
    for (const struct option* entry = kOptions; entry->name; ++entry) {
        if (name == entry->name)
            return entry;
    }
    return nullptr;
}

// Why getopt_long refused the word: a flag given a value, an ambiguous
// abbreviation, or no such option.
std::string Refused(const std::string& word, int shortOption)
{
    if (word.compare(0, 2, "--") != 0)
        return "unknown option '-" + std::string(1, static_cast<char>(shortOption)) + "'";
    const std::string name = word.substr(2, word.find('=') == std::string::npos ? std::string::npos : word.find('=') - 2);
    const struct option* exact = Named(name);
    if (exact && exact->has_arg == no_argument)
        return "--" + name + " takes no value";
    int matches = 0;
    for (const struct option* entry = kOptions; entry->name; ++entry)
        matches += strncmp(entry->name, name.c_str(), name.size()) == 0 ? 1 : 0;
    if (matches > 1)
        return "'--" + name + "' is ambiguous";
    return "unknown option '" + word + "'";
}
}  // namespace

ParsedCommandLine ParseCommandLine(int argc, char** argv)
{
    ParsedCommandLine line;
    std::vector<char*> words(argv, argv + argc);
    words.push_back(nullptr);
    // '-' hands out the other words in order, whatever POSIXLY_CORRECT says;
    // ':' tells a missing value from an unknown option.
    const char* const shortOptions = "-:hq";
    opterr = 0;
    optind = 0;  // a full restart, for a second parse in the same process
    int index = -1;
    for (;;) {
        index = -1;
        const int got = getopt_long(argc, words.data(), shortOptions, kOptions, &index);
        if (got == -1)
            break;
        if (got == 1) {
            line.words.push_back(optarg);
            continue;
        }
        if (got == '?' || got == ':') {
            const std::string word = words[static_cast<size_t>(optind - 1)];
            if (got == ':')
                line.error = word.compare(0, 2, "--") == 0 ? word.substr(0, word.find('=')) + " needs a value"
                                                            : "-" + std::string(1, static_cast<char>(optopt)) +
                                                                  " needs a value";
            else
                line.error = Refused(word, optopt);
            return line;
        }
        const char* name = index >= 0 ? kOptions[index].name : got == 'h' ? "help" : "quiet";
        std::string value = optarg ? optarg : "";
        long seconds = 0;
        if (index >= 0 && kOptions[index].has_arg == optional_argument && !optarg && optind < argc &&
            ParseNumber(words[static_cast<size_t>(optind)], 0, 0x7FFFFFFF, seconds))
            value = words[static_cast<size_t>(optind++)];
        line.options.emplace_back(std::string("--") + name, value);
    }
    for (int i = optind; i < argc; ++i)
        line.words.push_back(words[static_cast<size_t>(i)]);
    return line;
}

OptionList TakeOptions(OptionList& options, const std::vector<std::string>& names)
{
    OptionList taken, kept;
    for (auto& option : options) {
        bool named = false;
        for (const std::string& name : names)
            named = named || option.first == "--" + name;
        (named ? taken : kept).push_back(option);
    }
    options.swap(kept);
    return taken;
}
