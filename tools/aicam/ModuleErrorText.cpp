#include "ModuleErrorText.h"

#include <stdio.h>
#include <unistd.h>

#include "ai_camera.h"

namespace {
const char kErrorInfo[] = "errorInfo : ";
const char kRecordRest[] = "\n[OUTPUT]";

std::string ReadAll(FILE* file)
{
    std::string text;
    rewind(file);
    char block[4096];
    size_t got = 0;
    while ((got = fread(block, 1, sizeof block, file)) > 0)
        text.append(block, got);
    return text;
}

std::string ErrorInfo(const std::string& log)
{
    size_t start = log.rfind(kErrorInfo);
    if (start == std::string::npos)
        return "";
    start += sizeof kErrorInfo - 1;
    size_t end = log.find(kRecordRest, start);
    std::string text = log.substr(start, end == std::string::npos ? std::string::npos : end - start);
    // Shown on one line, whatever the module put in it.
    for (char& c : text) {
        if (static_cast<unsigned char>(c) < 0x20)
            c = ' ';
    }
    return text;
}
}  // namespace

int CallWithModuleErrorText(const std::function<int()>& call, std::string& errorText)
{
    errorText.clear();
    int level = LOG_LEVER_OFF, target = LOG_TARGET_CONSOLE_FILE;
    GetLogConfig(&level, &target);
    FILE* capture = tmpfile();
    fflush(stdout);
    int savedStdout = capture ? dup(STDOUT_FILENO) : -1;
    if (savedStdout < 0 || dup2(fileno(capture), STDOUT_FILENO) < 0) {
        // Without a capture the call still runs; only its explanation is lost.
        if (savedStdout >= 0)
            close(savedStdout);
        if (capture)
            fclose(capture);
        return call();
    }
    // A file log the user asked for keeps receiving the records.
    const bool userFile = level < LOG_LEVER_OFF && target != LOG_TARGET_CONSOLE;
    SetLogConfig(level < LOG_LEVER_DEBUG ? static_cast<LOG_LEVER>(level) : LOG_LEVER_DEBUG,
                 userFile ? LOG_TARGET_CONSOLE_FILE : LOG_TARGET_CONSOLE);
    int result = call();
    fflush(stdout);
    SetLogConfig(static_cast<LOG_LEVER>(level), static_cast<LOG_TARGET>(target));
    fflush(stdout);
    dup2(savedStdout, STDOUT_FILENO);
    close(savedStdout);
    errorText = ErrorInfo(ReadAll(capture));
    fclose(capture);
    return result;
}
