// One table from result code to a sentence a person understands, the single
// way the tool reports a failure (one line on stderr), and the exit statuses.
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
    kUsage = -26,        // the command line is wrong: exit status 2, no code shown
    kInterrupted = -27,  // SIGINT or SIGTERM arrived: exit status 128 + the signal
};

// The process exit statuses; they never collide with one another.
enum ExitCode {
    kExitSuccess = 0,
    kExitFailure = 1,  // a failure of the library or of the tool
    kExitUsage = 2,
    kExitRefused = 3,  // the module answered with a non-zero status
};

// The library's text for its codes, "the module refused" for the module's own
// statuses, the tool's text for its own failures.
std::string ResultText(int code);

// Prints "aicam: <what>: <text> (<code>)" on stderr and returns code; a module
// status shows as "(module status N)", a usage error without a code, and an
// empty `what` leaves its part out. The text is the table's unless one is given.
int Fail(const std::string& what, int code);
int Fail(const std::string& what, int code, const std::string& text);

// The exit status of a result: 0, 1, 2 or 3 as ExitCode says, and 128 + the
// signal for kInterrupted.
int ExitStatus(int code);

// The exit-status paragraph of the main --help, with the codes of the messages.
std::string ExitStatusHelp();

#endif
