// One table from result code to a sentence a person understands, and the
// single way the tool reports a failure: one line on stderr.
#ifndef AICAM_RESULTTEXT_H
#define AICAM_RESULTTEXT_H

#include <string>

// Failures of the tool itself, outside the library's range of codes.
enum ToolCode {
    kFileUnreadable = -20,
    kFileUnwritable = -21,
    kEncoderFailed = -22,
    kNoModule = -23,
    kSeveralModules = -24,
    kDoctorFound = -25,
};

// The library's text for its codes ("module status N" for the module's own),
// the tool's for its own failures.
std::string ResultText(int code);

// Prints "aicam: <what>: <text> (<code>)" on stderr and returns code. The text
// is the table's unless one is given.
int Fail(const std::string& what, int code);
int Fail(const std::string& what, int code, const std::string& text);

// The process exit status of a result: the negated code for negative codes,
// the status itself for positive ones (cut to 8 bits), 0 for success.
int ExitStatus(int code);

// The exit-status paragraph of --help, made from the same table.
std::string ExitStatusHelp();

#endif
