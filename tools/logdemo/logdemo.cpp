// Turns on the library's logger the way an application's SetLogConfig(2, 2)
// does: the version record goes to the console and to the day's log file.
#include <limits.h>
#include <stdio.h>
#include <unistd.h>

#include <string>

#include "AICamera/Log.h"

int main()
{
    Log* log = Log::GetInstance();
    if (log->Init(LOG_LEVER_INFO, LOG_TARGET_CONSOLE_FILE, "Log", ".log") != 0) {
        fprintf(stderr, "the logger refused its configuration\n");
        return 1;
    }
    char cwd[PATH_MAX];
    if (!getcwd(cwd, sizeof cwd)) {
        perror("getcwd");
        return 1;
    }
    std::string file = std::string(cwd) + "/Log/" + log->GetCurrDate() + ".log";
    if (access(file.c_str(), R_OK) != 0) {
        fprintf(stderr, "no log file at %s\n", file.c_str());
        return 1;
    }
    printf("log file: %s\n", file.c_str());
    return 0;
}
