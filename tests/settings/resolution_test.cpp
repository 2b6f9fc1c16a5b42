// SetResolution: the module's output size, and the local stream's expected size
// when the module takes it.
#include <stdio.h>

#include "JpegEncoder.h"
#include "SettingsDevice.h"
#include "SyntheticScene.h"
#include "ai_camera_ext.h"

namespace {
const uint16_t kResolutionTag = 0x2008;
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

class Resolution : public SettingsDevice {
protected:
    void OpenPlayback()
    {
        ASSERT_TRUE(WriteClip("clip.mjpeg"));
        ASSERT_EQ(0, ConnectCameraPlayback(dev, "clip.mjpeg"));
        ExpectLocalSize(kClipWidth, kClipHeight);
    }

    void ExpectLocalSize(int width, int height)
    {
        int actualWidth = 0, actualHeight = 0;
        ASSERT_EQ(0, GetResolution(dev, &actualWidth, &actualHeight));
        EXPECT_EQ(width, actualWidth);
        EXPECT_EQ(height, actualHeight);
    }

    void TearDown() override
    {
        DisconnectCamera(dev);
        SettingsDevice::TearDown();
    }
};

TEST_F(Resolution, StatusZeroSetsTheLocalStreamsSize)
{
    ASSERT_NO_FATAL_FAILURE(OpenPlayback());
    Answer(kResolutionTag, {0x00});
    EXPECT_EQ(0, SetResolution(dev, 1));
    EXPECT_EQ((sim::Bytes{0x01}), LastRequest(kResolutionTag));
    ExpectLocalSize(360, 640);
    EXPECT_EQ(Body(" nMode : 1", "", 0), LastRecord("SetResolution"));
}

TEST_F(Resolution, EveryModeHasItsSize)
{
    ASSERT_NO_FATAL_FAILURE(OpenPlayback());
    Answer(kResolutionTag, {0x00});
    const int sizes[][2] = {{720, 1280}, {360, 640}, {720, 720}, {720, 640}, {720, 480}};
    for (char mode = 0; mode <= 4; ++mode) {
        SCOPED_TRACE(static_cast<int>(mode));
        EXPECT_EQ(0, SetResolution(dev, mode));
        EXPECT_EQ((sim::Bytes{static_cast<uint8_t>(mode)}), LastRequest(kResolutionTag));
        ExpectLocalSize(sizes[static_cast<int>(mode)][0], sizes[static_cast<int>(mode)][1]);
    }
}

TEST_F(Resolution, AnotherStatusLeavesTheLocalSize)
{
    ASSERT_NO_FATAL_FAILURE(OpenPlayback());
    Answer(kResolutionTag, {0x03});
    EXPECT_EQ(3, SetResolution(dev, 1));
    ExpectLocalSize(kClipWidth, kClipHeight);
    EXPECT_EQ(Body(" nMode : 1", "", 3), LastRecord("SetResolution"));
}

TEST_F(Resolution, WithoutACameraTheLocalSizeChangeIsStillAttempted)
{
    Answer(kResolutionTag, {0x00});
    EXPECT_EQ(0, SetResolution(dev, 1));
    // Two records: the local size change (no camera, -1, ignored), then the command's.
    std::vector<TraceEntry> records = TraceLog::Of("SetResolution");
    ASSERT_EQ(2u, records.size());
    EXPECT_EQ(Body(" width : 360 height : 640", "", -1), records[0].body);
    EXPECT_EQ(Body(" nMode : 1", "", 0), records[1].body);

    Answer(kResolutionTag, {0x03});
    EXPECT_EQ(3, SetResolution(dev, 2));
    EXPECT_EQ(3u, TraceLog::Of("SetResolution").size());
}
