// The public headers used from C: values, null handles, a malloc'd image freed
// by C code, and a callback registered from C.
#include <string.h>

#include "DeviceTest.h"
#include "ai_camera_ext.h"
#include "ReportSink.h"

extern "C" {
void CEnumValues(int values[9]);
void CHandleResults(void* dev, int results[8]);
int CEnrolAndCopyImage(void* dev, unsigned char* copy, unsigned int capacity, unsigned int* length);
void CRegisterReco(void* dev, void (*callback)(char* data, int len));
int CCountModules(char* version, int versionSize);
}

using CInterface = ReportingDevice;

TEST_F(CInterface, ValuesAndRefusalsSeenFromC)
{
    int values[9], results[8];
    CEnumValues(values);
    EXPECT_EQ(std::vector<int>({0, 1, 6, 0, 1, 2, 10, 20, 30}), std::vector<int>(values, values + 9));
    CHandleResults(dev, results);
    EXPECT_EQ(std::vector<int>({-1, -1, -1, -1, -1, -1, -4, -4}), std::vector<int>(results, results + 8));
    char version[16];
    EXPECT_EQ(EnumModules(nullptr, 0, 0, 0, AI_CAMERA_MODULES_PARTIAL), CCountModules(version, sizeof version));
    EXPECT_STREQ("V4.2.0.2", version);
}

TEST_F(CInterface, AnImageAndAReportReachCCode)
{
    Answer(0x01, Cat({{0x00}, Le32(6), BytesOf("carol!")}));
    unsigned char copy[16];
    memset(copy, 0xEE, sizeof copy);
    unsigned int length = 0;
    EXPECT_EQ(0, CEnrolAndCopyImage(dev, copy, sizeof copy, &length));
    EXPECT_EQ(6u, length);
    EXPECT_EQ(0, memcmp(copy, "carol!", 7));
    EXPECT_EQ(Cat({{0x02}, Le32(5), BytesOf("carol")}), LastRequest(0x01));
    CRegisterReco(dev, ReportSink::Reco);
    sim.PushReport(0x31, BytesOf("from-c"));
    ASSERT_TRUE(ReportSink::WaitFor(1));
    EXPECT_EQ(BytesOf("from-c"), ReportSink::Received()[0].value);
}
