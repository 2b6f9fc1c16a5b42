#include "CommandLine.h"

#include <getopt.h>
#include <string.h>

#include "Arguments.h"

namespace {
// Every option of the tool and of its commands; -h and -q are short forms.
// --wait takes its number as "--wait=S" or as the next word when that is one.
struct OptionName {
    const char* name;
    int hasArg;
};
const OptionName kOptionNames[] = {
    // global
    {"port", required_argument}, {"video", required_argument}, {"module", required_argument},
    {"usb-id", required_argument}, {"playback", required_argument}, {"log", required_argument},
    {"log-dir", required_argument}, {"quiet", no_argument}, {"version", no_argument}, {"help", no_argument},
    // of the commands
    {"json", no_argument}, {"all", no_argument}, {"nodes", no_argument}, {"sn-mode", required_argument},
    {"wait", optional_argument}, {"return-image", required_argument}, {"slice", required_argument},
    {"out", required_argument}, {"file", required_argument}, {"live", no_argument}, {"multi", no_argument},
    {"full", no_argument}, {"count", required_argument}, {"seconds", required_argument},
    {"one-to-one", required_argument}, {"kinds", required_argument}, {"md5", required_argument},
    {"timeout", required_argument},
};
const int kFirstLongValue = 0x100;

// getopt_long takes an abbreviation shared by options of the same value as
// the first of them: every option gets a value of its own, so that "--s" is
// refused as ambiguous instead.
std::vector<struct option> LongOptions()
{
    std::vector<struct option> options;
    for (const OptionName& entry : kOptionNames)
        options.push_back({entry.name, entry.hasArg, nullptr, kFirstLongValue + static_cast<int>(options.size())});
    options.push_back({nullptr, 0, nullptr, 0});
    return options;
}

const OptionName* Named(const std::string& name)
{
    for (const OptionName& entry : kOptionNames) {
        if (name == entry.name)
            return &entry;
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
    const OptionName* exact = Named(name);
    if (exact && exact->hasArg == no_argument)
        return "--" + name + " takes no value";
    int matches = 0;
    for (const OptionName& entry : kOptionNames)
        matches += strncmp(entry.name, name.c_str(), name.size()) == 0 ? 1 : 0;
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
    const std::vector<struct option> options = LongOptions();
    for (;;) {
        const int got = getopt_long(argc, words.data(), shortOptions, options.data(), nullptr);
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
        const OptionName& option = got == 'h'   ? *Named("help")
                                   : got == 'q' ? *Named("quiet")
                                                : kOptionNames[got - kFirstLongValue];
        const char* name = option.name;
        std::string value = optarg ? optarg : "";
        long seconds = 0;
        if (option.hasArg == optional_argument && !optarg && optind < argc &&
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
