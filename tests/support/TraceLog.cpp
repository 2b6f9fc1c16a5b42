#include "TraceLog.h"

#include <time.h>

#include <fstream>
#include <sstream>

namespace {
std::string Today()
{
    time_t now = time(nullptr);
    struct tm local;
    localtime_r(&now, &local);
    char text[16];
    strftime(text, sizeof text, "%Y%m%d", &local);
    return text;
}
}  // namespace

std::string TraceLog::Text()
{
    std::ifstream file("Log/" + Today() + ".log");
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

// A record is "[date time]" + header + "\n" + body, then the logger's newline.
std::vector<TraceEntry> TraceLog::Read()
{
    std::vector<TraceEntry> entries;
    std::istringstream lines(Text());
    std::string line;
    while (std::getline(lines, line)) {
        bool isHeader = line.size() > 20 && line[0] == '[' && line.find("][FUNCTION : ") != std::string::npos;
        if (isHeader) {
            TraceEntry entry;
            entry.header = line.substr(line.find(']') + 1);
            size_t at = line.find("[FUNCTION : ") + 12;
            entry.function = line.substr(at, line.find(']', at) - at);
            entries.push_back(entry);
        } else if (!entries.empty()) {
            entries.back().body += line + "\n";
        }
    }
    // Each body ends with the empty line that follows every record.
    for (TraceEntry& entry : entries) {
        if (entry.body.size() >= 2 && entry.body.compare(entry.body.size() - 2, 2, "\n\n") == 0)
            entry.body.pop_back();
    }
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
