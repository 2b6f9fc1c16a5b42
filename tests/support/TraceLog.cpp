#include "TraceLog.h"

#include <time.h>

#include <fstream>
#include <sstream>

std::string TraceLog::Text()
{
    time_t now = time(nullptr);
    struct tm local;
    localtime_r(&now, &local);
    char name[32];
    strftime(name, sizeof name, "Log/%Y%m%d.log", &local);
    std::ifstream file(name);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

// A record is "[date time]" + header + "\n" + body, then the logger's empty line.
std::vector<TraceEntry> TraceLog::Read()
{
    std::vector<TraceEntry> entries;
    std::istringstream lines(Text());
    std::string line;
    while (std::getline(lines, line)) {
        size_t at = line.find("][FUNCTION : ");
        if (line.size() > 20 && line[0] == '[' && at != std::string::npos) {
            at += 13;
            entries.push_back({line.substr(line.find(']') + 1), line.substr(at, line.find(']', at) - at), ""});
        } else if (!entries.empty()) {
            entries.back().body += line + "\n";
        }
    }
    for (TraceEntry& entry : entries)
        if (entry.body.size() >= 2 && entry.body.compare(entry.body.size() - 2, 2, "\n\n") == 0)
            entry.body.pop_back();
    return entries;
}

std::vector<TraceEntry> TraceLog::Of(const std::string& function)
{
    std::vector<TraceEntry> found;
    for (const TraceEntry& entry : Read())
        if (entry.function == function)
            found.push_back(entry);
    return found;
}
