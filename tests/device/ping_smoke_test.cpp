#include "SimulatedDevice.h"

using PingThroughSimulator = SimulatedDevice;

TEST_F(PingThroughSimulator, EchoedTextSucceeds)
{
    sim.SetHandler(0x1000, [](const sim::Request& request) { return std::optional<sim::Bytes>(request.value); });
    EXPECT_EQ(0, Ping(dev, "abc", 3));
    EXPECT_EQ(BytesOf("abc"), LastRequest(0x1000));
    EXPECT_EQ("[INPUT ] " + DevText() + " pTestData : abc nTestDataLength : 3\n[OUTPUT]\n[RETURN] nRet : 0\n",
              LastRecord("Ping"));
}
