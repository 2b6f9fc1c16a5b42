// The video-node list over a directory the test makes.
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/stat.h>

#include <string>

#include "AICamera/Camera.h"

namespace {
// Five characters, like "/dev/", so that the buffer cases read the same.
const char* const kDir = "vdev/";

void Touch(const std::string& name)
{
    FILE* file = fopen((std::string(kDir) + name).c_str(), "w");
    ASSERT_NE(nullptr, file);
    fclose(file);
}

class EnumCameraTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        system("rm -rf vdev");
        ASSERT_EQ(0, mkdir(kDir, 0777));
    }
    void TearDown() override { system("rm -rf vdev"); }
};

TEST_F(EnumCameraTest, NoVideoEntriesGiveAnEmptyList)
{
    Touch("ttyACM0");
    Touch("null");
    char buf[64];
    memset(buf, 'x', sizeof buf);
    EXPECT_EQ(0, Camera::EnumCameraIn(kDir, buf, sizeof buf));
    EXPECT_STREQ("", buf);
}

TEST_F(EnumCameraTest, MatchingEntriesAreJoinedWithoutATrailingBar)
{
    Touch("video0");
    Touch("ttyACM0");
    Touch("myvideo7");
    char buf[64];
    EXPECT_EQ(2, Camera::EnumCameraIn(kDir, buf, sizeof buf));
    std::string list(buf);
    EXPECT_TRUE(list == "vdev/video0|vdev/myvideo7" || list == "vdev/myvideo7|vdev/video0") << list;
}

TEST_F(EnumCameraTest, BufferCasesOfTwelveAndThirtyBytes)
{
    Touch("video0");
    Touch("video1");
    char wide[30];
    EXPECT_EQ(2, Camera::EnumCameraIn(kDir, wide, sizeof wide));
    std::string both(wide);
    ASSERT_TRUE(both == "vdev/video0|vdev/video1" || both == "vdev/video1|vdev/video0") << both;

    // Twelve bytes hold eleven characters: the first path alone.
    char narrow[12 + 4];
    memset(narrow, 'x', sizeof narrow);
    EXPECT_EQ(2, Camera::EnumCameraIn(kDir, narrow, 12));
    EXPECT_EQ(both.substr(0, 11), std::string(narrow));
    for (size_t i = 12; i < sizeof narrow; ++i)
        EXPECT_EQ('x', narrow[i]) << "written past the buffer at " << i;
}

TEST_F(EnumCameraTest, EveryBufferSizeIsRespected)
{
    Touch("video0");
    Touch("video1");
    Touch("video12");
    char reference[128];
    Camera::EnumCameraIn(kDir, reference, sizeof reference);
    const std::string full(reference);
    for (int size = 1; size < 40; ++size) {
        std::string buf(static_cast<size_t>(size) + 8, 'x');
        EXPECT_EQ(3, Camera::EnumCameraIn(kDir, &buf[0], size));
        EXPECT_EQ(full.substr(0, static_cast<size_t>(size) - 1).substr(0, full.size()), std::string(buf.c_str()))
            << "size " << size;
        EXPECT_EQ(std::string(8, 'x'), buf.substr(static_cast<size_t>(size))) << "size " << size;
    }
}

TEST_F(EnumCameraTest, BadArguments)
{
    char buf[16];
    EXPECT_EQ(-1, Camera::EnumCameraIn(kDir, nullptr, 16));
    EXPECT_EQ(-1, Camera::EnumCamera(nullptr, 16));
    EXPECT_EQ(-2, Camera::EnumCameraIn("no-such-directory/", buf, sizeof buf));
    EXPECT_STREQ("", buf);
}
}  // namespace
