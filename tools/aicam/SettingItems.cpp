#include "SettingItems.h"

#include <stdio.h>

#include "JsonWriter.h"
#include "ResultText.h"
#include "Session.h"

namespace {
// The object that 'get --json' fills, while it runs.
JsonObject* g_jsonSettings = nullptr;

const SettingItem* Find(const std::vector<SettingItem>& items, const std::string& name)
{
    for (const SettingItem& item : items) {
        if (name == item.name)
            return &item;
    }
    return nullptr;
}

int Unknown(const std::string& command, const std::string& name)
{
    return Fail(command, kUsage, "no setting called '" + name + "'; see 'aicam " + command + " --help'");
}

int GetItems(const std::vector<SettingItem>& items, Session& session, Arguments& args, const std::string& command)
{
    std::string name;
    const SettingItem* only = nullptr;
    const bool json = args.Flag("--json");
    if (args.HasNext() && args.Next("NAME", name)) {
        only = Find(items, name);
        if (!only || !only->get)
            return only ? Fail(command, kUsage, "'" + name + "' can be set but not read") : Unknown(command, name);
    }
    if (int result = ReadySerial(session, args, command))
        return result;
    JsonObject object;
    g_jsonSettings = json ? &object : nullptr;
    int result = 0;
    for (const SettingItem& item : items) {
        if (!item.get || (only && only != &item))
            continue;
        if ((result = item.get(session, command)) != 0)
            break;
    }
    g_jsonSettings = nullptr;
    if (json && result == 0)
        object.PrintLine();
    return result;
}

int SetItems(const std::vector<SettingItem>& items, Session& session, Arguments& args, const std::string& command)
{
    std::string name;
    if (!args.Next("NAME", name))
        return args.Finish(command);
    const SettingItem* item = Find(items, name);
    if (!item)
        return Unknown(command, name);
    if (item->values[0] == '\0')
        return Fail(command, kUsage, "'" + name + "' can be read but not set");
    const std::string full = command + " " + name;
    if (item->set)
        return item->set(session, args, full);
    long value = 0;
    args.NextNumber(item->values, item->low, item->high, value);
    if (int result = ReadySerial(session, args, full))
        return result;
    return SetDone(full, item->setByte(session.Dev(), static_cast<char>(value)),
                   std::string(item->name) + " set to " + std::to_string(value));
}

std::string ItemHelp(const std::vector<SettingItem>& items)
{
    std::string help = "Settings (NAME, the values 'set' takes, what it is):\n";
    for (const SettingItem& item : items) {
        char line[200];
        snprintf(line, sizeof line, "  %-20s %-28s %s%s\n", item.name, item.values[0] ? item.values : "(read only)",
                 item.meaning, item.get ? "" : " (write only)");
        help += line;
    }
    return help;
}
}  // namespace

void PrintSetting(const char* name, const std::string& text, const std::string& json)
{
    if (g_jsonSettings)
        g_jsonSettings->Raw(name, json.empty() ? JsonString(text) : json);
    else
        printf("%-22s %s\n", (std::string(name) + ":").c_str(), text.c_str());
}

bool NextSwitch(Arguments& args, const char* what, long& value)
{
    std::string word;
    if (!args.Next(what, word))
        return false;
    if (word == "on" || word == "1") {
        value = 1;
        return true;
    }
    if (word == "off" || word == "0") {
        value = 0;
        return true;
    }
    return args.Invalid(std::string(what) + " must be on or off, not '" + word + "'");
}

int SetDone(const std::string& command, int result, const std::string& what)
{
    if (result != 0)
        return Fail(command, result);
    printf("%s\n", what.c_str());
    return 0;
}


std::vector<Verb> SettingVerbs(const std::string& group, const std::string& what,
                               const std::vector<SettingItem>& items)
{
    const std::string help = ItemHelp(items);
    return {
        {"get", group + " get [NAME] [--json]", "print the " + what + " (all, or NAME)",
         help + "--json prints one object with a member for each setting.\n",
         [&items](Session& session, Arguments& args, const std::string& command) {
             return GetItems(items, session, args, command);
         },
         nullptr},
        {"set", group + " set NAME VALUES...", "change one of the " + what, help,
         [&items](Session& session, Arguments& args, const std::string& command) {
             return SetItems(items, session, args, command);
         },
         nullptr},
    };
}

int GetBytePair(Session& session, const std::string& command, const char* name, const char* meaning,
                int (*get)(void* dev, unsigned char* first, unsigned char* second))
{
    unsigned char first = 0, second = 0;
    if (int result = get(session.Dev(), &first, &second))
        return Fail(command, result);
    PrintSetting(name, std::to_string(first) + " " + std::to_string(second) + " (" + meaning + ")",
                 JsonArray({std::to_string(first), std::to_string(second)}));
    return 0;
}

int SetBytePair(Session& session, Arguments& args, const std::string& command, const char* name,
                ByteArgument first, ByteArgument second, int (*set)(void* dev, unsigned char, unsigned char))
{
    long one = 0, two = 0;
    args.NextNumber(first.name, first.low, first.high, one);
    args.NextNumber(second.name, second.low, second.high, two);
    if (int result = ReadySerial(session, args, command))
        return result;
    int result = set(session.Dev(), static_cast<unsigned char>(one), static_cast<unsigned char>(two));
    return SetDone(command, result, std::string(name) + " set to " + std::to_string(one) + " " + std::to_string(two));
}
