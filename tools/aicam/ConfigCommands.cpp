// config: the recognition configuration text, the recognition and liveness
// counts, and template updating.
#include <string.h>

#include <string>
#include <vector>

#include "FileData.h"
#include "ResultText.h"
#include "Session.h"
#include "SettingItems.h"
#include "Verb.h"
#include "ai_camera.h"

namespace {
const unsigned int kConfigTextSize = 65536;

int GetText(Session& session, const std::string& command)
{
    std::vector<char> text(kConfigTextSize + 1, 0);
    if (int result = GetRecConfig(session.Dev(), text.data(), kConfigTextSize, 0))
        return Fail(command, result);
    PrintSetting("text", text.data());
    return 0;
}

int SetText(Session& session, Arguments& args, const std::string& command)
{
    std::string text, path;
    if (args.Option("--file", path)) {
        ByteVector data;
        if (int result = ReadWholeFile(command, path, data))
            return result;
        text.assign(data.begin(), data.end());
        text.erase(text.find_last_not_of("\r\n") + 1);
    } else {
        args.Next("TEXT (or --file FILE)", text);
    }
    if (int result = ReadySerial(session, args, command))
        return result;
    unsigned int length = static_cast<unsigned int>(strlen(text.c_str()));
    return SetDone(command, SetRecConfig(session.Dev(), text.c_str(), length, 0), "text set");
}

int GetCounts(Session& session, const std::string& command)
{
    return GetBytePair(session, command, "counts", "recognition, liveness", GetRecognizeCount);
}

int SetCounts(Session& session, Arguments& args, const std::string& command)
{
    return SetBytePair(session, args, command, "counts", {"RECOGNITION", 1, 10}, {"LIVENESS", 1, 10},
                       SetRecognizeCount);
}

int GetTemplate(Session& session, const std::string& command)
{
    unsigned char update = 0;
    if (int result = GetTemplateUpdate(session.Dev(), &update))
        return Fail(command, result);
    PrintSetting("template-update", update ? "on" : "off", update ? "true" : "false");
    return 0;
}

int SetTemplate(Session& session, Arguments& args, const std::string& command)
{
    long on = 0;
    NextSwitch(args, "on|off", on);
    if (int result = ReadySerial(session, args, command))
        return result;
    return SetDone(command, SetTemplateUpdate(session.Dev(), static_cast<unsigned char>(on)),
                   std::string("template-update set to ") + (on ? "on" : "off"));
}

const std::vector<SettingItem> kConfigItems = {
    {"text", "TEXT | --file FILE", "the recognition configuration text", GetText, SetText, nullptr, 0, 0},
    {"counts", "RECOGNITION LIVENESS", "recognition and liveness counts, 1..10 each", GetCounts, SetCounts,
     nullptr, 0, 0},
    {"template-update", "on|off", "template updating", GetTemplate, SetTemplate, nullptr, 0, 0},
};

}  // namespace

const std::vector<Verb> kConfigVerbs = SettingVerbs("config", "recognition settings", kConfigItems);
