// The public headers used from C: values, null handles, a malloc'd image freed
// by C code, and a callback registered from C.
#include <string.h>

#include "DeviceTest.h"
#include "ReportSink.h"
#include "c_interface.h"

using CInterface = DeviceTest;

TEST_F(CInterface, EnumerationValuesSeenFromC)
{
    int values[C_ENUM_VALUE_COUNT];
    CEnumValues(values);
    EXPECT_EQ(std::vector<int>({0, 1, 6, 0, 1, 2, 10, 20, 30}), std::vector<int>(values, values + C_ENUM_VALUE_COUNT));
}

TEST_F(CInterface, NullHandlesFromC)
{
    int results[C_NULL_HANDLE_COUNT];
    CNullHandleResults(results);
    EXPECT_EQ(std::vector<int>(C_NULL_HANDLE_COUNT, -1), std::vector<int>(results, results + C_NULL_HANDLE_COUNT));
    int refusals[2];
    CPlaybackRefusals(dev, refusals);
    EXPECT_EQ(-4, refusals[0]);
    EXPECT_EQ(-4, refusals[1]);
}

TEST_F(CInterface, AnImageAllocatedByTheLibraryIsFreedByC)
{
    Answer(0x01, Cat({{0x00}, Le32(6), BytesOf("carol!")}));
    unsigned char copy[16];
    memset(copy, 0xEE, sizeof copy);
    unsigned int length = 0;
    EXPECT_EQ(0, CEnrolAndCopyImage(dev, copy, sizeof copy, &length));
    EXPECT_EQ(6u, length);
    EXPECT_EQ(0, memcmp(copy, "carol!", 7));
    EXPECT_EQ(Cat({{0x02}, Le32(5), BytesOf("carol")}), LastRequest(0x01));
}

TEST_F(CInterface, ACallbackRegisteredFromCReceivesReports)
{
    ReportSink::Reset(&sim);
    CRegisterReco(dev, ReportSink::Reco);
    sim.PushReport(0x31, BytesOf("from-c"));
    ASSERT_TRUE(ReportSink::WaitFor(1));
    EXPECT_EQ(BytesOf("from-c"), ReportSink::Received()[0].value);
    ReportSink::Reset(nullptr);
}
