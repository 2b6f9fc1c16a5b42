#include "Verb.h"

#include <stdio.h>

#include "ResultText.h"

std::string VerbList(const std::vector<Verb>& verbs)
{
    std::string list;
    const int column = 34;
    for (const Verb& verb : verbs) {
        char line[512];
        // A long usage gets a line of its own, with the summary under it.
        if (static_cast<int>(verb.usage.size()) > column)
            snprintf(line, sizeof line, "  %s\n  %-*s %s\n", verb.usage.c_str(), column, "", verb.summary.c_str());
        else
            snprintf(line, sizeof line, "  %-*s %s\n", column, verb.usage.c_str(), verb.summary.c_str());
        list += line;
    }
    return list;
}

namespace {
void PrintLeafHelp(const Verb& verb)
{
    printf("usage: aicam [GLOBAL OPTIONS] %s\n\n%s\n", verb.usage.c_str(), verb.summary.c_str());
    if (!verb.details.empty())
        printf("\n%s", verb.details.c_str());
    printf("\nGlobal options and the exit statuses: aicam --help\n");
}
}  // namespace

int RunVerbs(const std::vector<Verb>& verbs, const std::string& prefix, Session& session, Arguments& args)
{
    std::string name;
    if (!args.Next("command", name)) {
        if (args.HelpAsked()) {
            printf("usage: aicam [GLOBAL OPTIONS] %s ACTION ...\n\n%s", prefix.c_str(), VerbList(verbs).c_str());
            return 0;
        }
        return args.Finish(prefix);
    }
    const std::string command = prefix.empty() ? name : prefix + " " + name;
    for (const Verb& verb : verbs) {
        if (name != verb.name)
            continue;
        if (verb.actions)
            return RunVerbs(*verb.actions, command, session, args);
        if (args.HelpAsked()) {
            PrintLeafHelp(verb);
            return 0;
        }
        return verb.run(session, args, command);
    }
    return Fail(prefix, kUsage,
                "unknown command '" + name + "'; see 'aicam " + prefix + (prefix.empty() ? "" : " ") + "--help'");
}
