// Fixture for logger tests: each test runs in a fresh directory of its own
// with a clock it controls, and leaves the process-wide logger as it found it
// (off, console and file, wall clock) so that tests can share one process.
#ifndef TESTS_BASE_LOG_SCRATCH_H
#define TESTS_BASE_LOG_SCRATCH_H

#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "AICamera/Log.h"

class LogScratch : public ::testing::Test {
public:
    // Makes the logger's clock read this local date and time until the test ends.
    static void SetLocalClock(int year, int month, int day, int hour, int minute, int second);
    // Everything written to standard output while body runs.
    static std::string CaptureConsole(const std::function<void()>& body);
    static std::string ReadFile(const std::string& path);
    static bool Exists(const std::string& path);

protected:
    void SetUp() override;
    void TearDown() override;

private:
    std::string m_home;
    std::string m_scratch;
};

#endif
