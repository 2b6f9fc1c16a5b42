#include <stdio.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>

#include <string>

#include <gtest/gtest.h>

#include "ChildProcess.h"
#include "OS/OS_SharedMemory.h"

namespace {

const int kSize = 4096;

// A segment name of this test process alone; the segment and its key file
// are removed at the end.
class SharedMemoryTest : public ::testing::Test {
protected:
    void SetUp() override { m_name = "aicam_test_" + std::to_string(getpid()); }
    void TearDown() override
    {
        std::string keyFile = "/tmp/shm.key." + m_name;
        key_t key = ftok(keyFile.c_str(), 1);
        int id = key == -1 ? -1 : shmget(key, 0, 0);
        if (id != -1)
            shmctl(id, IPC_RMID, nullptr);
        remove(keyFile.c_str());
    }
    char* Name() { return &m_name[0]; }

    std::string m_name;
};

TEST_F(SharedMemoryTest, UninitialisedObjectHasNoData)
{
    OS_SharedMemory shm;
    EXPECT_EQ(shm.Attach(), -1);
    EXPECT_EQ(shm.Data(), nullptr);
    shm.Detach();
    EXPECT_EQ(shm.Data(), nullptr);
}

TEST_F(SharedMemoryTest, AttachIsIdempotentAndDetachForgetsTheAddress)
{
    OS_SharedMemory shm;
    ASSERT_EQ(shm.Init(Name(), kSize), 0);
    EXPECT_EQ(access(("/tmp/shm.key." + m_name).c_str(), F_OK), 0);
    EXPECT_EQ(shm.Data(), nullptr);
    ASSERT_EQ(shm.Attach(), 0);
    void* first = shm.Data();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(shm.Attach(), 0);
    EXPECT_EQ(shm.Data(), first);
    strcpy(static_cast<char*>(first), "kept");
    shm.Detach();
    EXPECT_EQ(shm.Data(), nullptr);
    ASSERT_EQ(shm.Attach(), 0);
    EXPECT_STREQ(static_cast<char*>(shm.Data()), "kept");
    shm.Detach();
}

TEST_F(SharedMemoryTest, TwoProcessesShareOneSegment)
{
    OS_SharedMemory parent;
    ASSERT_EQ(parent.Init(Name(), kSize), 0);
    ASSERT_EQ(parent.Attach(), 0);
    char* data = static_cast<char*>(parent.Data());
    strcpy(data, "from parent");
    data[kSize - 1] = 'P';

    char* name = Name();
    int result = RunInChild([name] {
        OS_SharedMemory child;
        if (child.Init(name, kSize) != 0 || child.Attach() != 0)
            return 10;
        char* seen = static_cast<char*>(child.Data());
        if (strcmp(seen, "from parent") != 0 || seen[kSize - 1] != 'P')
            return 11;
        strcpy(seen, "from child");
        child.Detach();
        return 0;
    });
    ASSERT_EQ(result, 0);
    EXPECT_STREQ(data, "from child");
    parent.Detach();
}

TEST_F(SharedMemoryTest, InitFailsWhenTheKeyFileCannotBeMade)
{
    OS_SharedMemory shm;
    char name[] = "no/such/directory";
    EXPECT_EQ(shm.Init(name, kSize), -1);
    EXPECT_EQ(shm.Attach(), -1);
    EXPECT_EQ(shm.Data(), nullptr);
}

TEST_F(SharedMemoryTest, InitFailsForASizeBeyondTheExistingSegment)
{
    OS_SharedMemory first;
    ASSERT_EQ(first.Init(Name(), kSize), 0);
    OS_SharedMemory larger;
    EXPECT_EQ(larger.Init(Name(), kSize * 4), -1);
    EXPECT_EQ(larger.Attach(), -1);
}

}  // namespace
