// Requests far larger than the serial driver's buffer reach the module whole.
#include "SimulatedDevice.h"

using LargeRequest = SimulatedDevice;

TEST_F(LargeRequest, AnImageOfHundredsOfKilobytesArrivesWhole)
{
    sim::Bytes image(300 * 1024);
    for (size_t i = 0; i < image.size(); ++i)
        image[i] = static_cast<uint8_t>(i * 7 + 3);
    Answer(0x01, {0x00});
    ASSERT_EQ(0, AddFaceByImage(dev, "big", 3, image.data(), static_cast<unsigned int>(image.size())));
    sim::Bytes sent = LastRequest(0x01);
    // u8 variant, u32 length, "big", u32 length, the image.
    ASSERT_EQ(1 + 4 + 3 + 4 + image.size(), sent.size());
    EXPECT_TRUE(std::equal(image.begin(), image.end(), sent.begin() + 12));
}
