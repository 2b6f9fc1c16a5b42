// Named settings with a reader and a writer, and the 'get' and 'set' actions
// over a table of them (used by 'config' and 'settings').
#ifndef AICAM_SETTINGITEMS_H
#define AICAM_SETTINGITEMS_H

#include <string>
#include <vector>

#include "Arguments.h"
#include "Verb.h"

class Session;

struct SettingItem {
    const char* name;
    const char* values;    // what 'set NAME' takes, e.g. "0..3"; "" when it cannot be set
    const char* meaning;   // one line for the help
    // Prints "name: value"; null when the module cannot report it.
    int (*get)(Session& session, const std::string& command);
    // Parses the values, then opens the link and writes the setting.
    int (*set)(Session& session, Arguments& args, const std::string& command);
    // Writers that take one byte in [low, high] need only this, not `set`.
    int (*setByte)(void* dev, char value);
    long low, high;
};

// The actions 'GROUP get [NAME]' (every readable item, or NAME) and
// 'GROUP set NAME VALUES...' over `items`, which must outlive them.
std::vector<Verb> SettingVerbs(const std::string& group, const std::string& what,
                               const std::vector<SettingItem>& items);

// Prints "name: text" in the common layout; under --json, adds the member
// name with `json` (an encoded value; "" stands for `text` as a string).
void PrintSetting(const char* name, const std::string& text, const std::string& json = "");
// "on"/"1" to 1, "off"/"0" to 0; anything else is recorded as the error.
bool NextSwitch(Arguments& args, const char* what, long& value);
// Reports a set: "name set to value" or the failure.
int SetDone(const std::string& command, int result, const std::string& what);

// One byte argument of a setting, with its range.
struct ByteArgument {
    const char* name;
    long low, high;
};
// Settings of two bytes read and written together ('meaning' names them).
int GetBytePair(Session& session, const std::string& command, const char* name, const char* meaning,
                int (*get)(void* dev, unsigned char* first, unsigned char* second));
int SetBytePair(Session& session, Arguments& args, const std::string& command, const char* name,
                ByteArgument first, ByteArgument second, int (*set)(void* dev, unsigned char, unsigned char));

#endif
