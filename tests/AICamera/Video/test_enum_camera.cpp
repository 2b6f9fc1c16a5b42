// The video-node list over a directory the test makes.
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/stat.h>

#include <string>

#include "AICamera/Video/Camera.h"

namespace {
const char* const kDir = "vdev/";  // five characters, like "/dev/"

void Touch(std::initializer_list<const char*> names)
{
    for (const char* name : names)
        fclose(fopen((std::string(kDir) + name).c_str(), "w"));
}

// The list with `size` bytes given, checking that nothing is written past them.
std::string List(int size, int expected)
{
    std::string buf(static_cast<size_t>(size) + 8, 'x');
    EXPECT_EQ(expected, Camera::EnumCameraIn(kDir, &buf[0], size)) << "size " << size;
    EXPECT_EQ(std::string(8, 'x'), buf.substr(static_cast<size_t>(size))) << "size " << size;
    return buf.c_str();
}

TEST(EnumCamera, VideoEntriesJoinedByBarsWithinEveryBufferSizeAndBadArguments)
{
    ASSERT_EQ(0, mkdir(kDir, 0777));
    Touch({"ttyACM0", "null"});
    EXPECT_EQ("", List(64, 0));
    Touch({"video0", "myvideo1"});
    const std::string both = List(30, 2);
    ASSERT_TRUE(both == "vdev/video0|vdev/myvideo1" || both == "vdev/myvideo1|vdev/video0") << both;
    EXPECT_EQ(both.substr(0, 11), List(12, 2));  // twelve bytes: the first path alone
    Touch({"video12"});
    const std::string full = List(128, 3);
    for (int size = 1; size < 40; ++size)
        EXPECT_EQ(full.substr(0, static_cast<size_t>(size) - 1), List(size, 3));
    EXPECT_EQ(-1, Camera::EnumCameraIn(kDir, nullptr, 16));
    EXPECT_EQ(-1, Camera::EnumCamera(nullptr, 16));
    char buf[16];
    EXPECT_EQ(-2, Camera::EnumCameraIn("no-such-directory/", buf, sizeof buf));
    EXPECT_STREQ("", buf);
}
}  // namespace
