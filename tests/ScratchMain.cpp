// Runs every test case in a fresh directory of its own, so that cases run in
// parallel by CTest never share the files they make (log files, listings).
#include <ftw.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>

namespace {
int RemoveEntry(const char* path, const struct stat*, int, struct FTW*) { return remove(path); }

class ScratchDirectories : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override
    {
        char cwd[PATH_MAX];
        char pattern[] = "/tmp/aicam-case-XXXXXX";
        if (!getcwd(cwd, sizeof cwd) || !mkdtemp(pattern) || chdir(pattern) != 0) {
            fprintf(stderr, "cannot make a scratch directory\n");
            abort();
        }
        m_home = cwd;
        m_scratch = pattern;
    }

    void OnTestEnd(const ::testing::TestInfo& info) override
    {
        if (chdir(m_home.c_str()) != 0)
            fprintf(stderr, "cannot return to %s\n", m_home.c_str());
        // A failed case keeps its files for a look.
        if (info.result()->Passed())
            nftw(m_scratch.c_str(), RemoveEntry, 16, FTW_DEPTH | FTW_PHYS);
        else
            fprintf(stderr, "scratch directory kept: %s\n", m_scratch.c_str());
    }

    std::string m_home;
    std::string m_scratch;
};
}  // namespace

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new ScratchDirectories);
    return RUN_ALL_TESTS();
}
