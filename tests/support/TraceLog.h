// Reads back the trace records the library wrote to the day's log file.
#ifndef TESTS_TRACE_LOG_H
#define TESTS_TRACE_LOG_H

#include <string>
#include <vector>

struct TraceEntry {
    std::string header;  // "[DEBUG] [FILE : x][FUNCTION : y][LINE : n]"
    std::string function;
    std::string body;    // the lines after the header, each ending in "\n"
};

class TraceLog {
public:
    // The records in Log/<today>.log under the working directory.
    static std::vector<TraceEntry> Read();
    // Only the records written by `function`.
    static std::vector<TraceEntry> Of(const std::string& function);
    // Everything written to the file so far.
    static std::string Text();
};

#endif
