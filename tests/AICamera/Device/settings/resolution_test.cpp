// SetResolution: the module's output size, and the local stream's expected size
// when the module takes it.
#include <stdio.h>

#include "JpegEncoder.h"
#include "SettingsDevice.h"
#include "SyntheticScene.h"
#include "ai_camera_ext.h"

namespace {
const int kClipWidth = 96;
const int kClipHeight = 64;

// A few real MJPEG pictures in one file, for the playback camera.
bool WriteClip(const char* path)
{
    sim::JpegEncoder encoder;
    sim::Picture picture(kClipWidth, kClipHeight);
    FILE* file = fopen(path, "wb");
    if (!file)
        return false;
    bool ok = true;
    for (uint64_t frame = 0; ok && frame < 10; ++frame) {
        sim::Bytes jpeg;
        sim::DrawScene(picture, frame, nullptr);
        ok = encoder.Encode(picture, jpeg) && fwrite(jpeg.data(), 1, jpeg.size(), file) == jpeg.size();
    }
    return fclose(file) == 0 && ok;
}
}  // namespace

using Resolution = SettingsDevice;

// Without a camera the local size change is still attempted and its -1 ignored;
// with one, status 0 sets the local stream's size of the mode and another status leaves it.
TEST_F(Resolution, TheModulesStatusDecidesTheLocalSize)
{
    Answer(0x2008, {0x00});
    EXPECT_EQ(0, SetResolution(dev, 1));
    std::vector<TraceEntry> records = TraceLog::Of("SetResolution");
    ASSERT_EQ(2u, records.size());
    EXPECT_EQ(Body(" width : 360 height : 640", "", -1), records[0].body);
    EXPECT_EQ(Body(" nMode : 1", "", 0), records[1].body);

    auto localSize = [this] {
        int width = 0, height = 0;
        EXPECT_EQ(0, GetResolution(dev, &width, &height));
        return std::make_pair(width, height);
    };
    ASSERT_TRUE(WriteClip("clip.mjpeg"));
    ASSERT_EQ(0, ConnectCameraPlayback(dev, "clip.mjpeg"));
    EXPECT_EQ(std::make_pair(kClipWidth, kClipHeight), localSize());
    Answer(0x2008, {0x03});
    EXPECT_EQ(3, SetResolution(dev, 1));
    EXPECT_EQ(Body(" nMode : 1", "", 3), LastRecord("SetResolution"));
    EXPECT_EQ(std::make_pair(kClipWidth, kClipHeight), localSize());
    Answer(0x2008, {0x00});
    const std::pair<int, int> sizes[] = {{720, 1280}, {360, 640}, {720, 720}, {720, 640}, {720, 480}};
    for (char mode = 0; mode <= 4; ++mode) {
        SCOPED_TRACE(static_cast<int>(mode));
        EXPECT_EQ(0, SetResolution(dev, mode));
        EXPECT_EQ((sim::Bytes{static_cast<uint8_t>(mode)}), LastRequest(0x2008));
        EXPECT_EQ(Body(" nMode : " + std::to_string(mode), "", 0), LastRecord("SetResolution"));
        EXPECT_EQ(sizes[static_cast<int>(mode)], localSize());
    }
}
