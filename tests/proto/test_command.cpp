// Commands and their TLV records: encoding, indexing, truncated records.
#include <gtest/gtest.h>

#include <vector>

#include "AICamera/Command.h"

namespace {
std::vector<unsigned char> Request(SyncCommand& cmd)
{
    void* p = nullptr;
    unsigned int size = 0;
    EXPECT_EQ(0, cmd.GetRequest(&p, &size));
    unsigned char* bytes = static_cast<unsigned char*>(p);
    return std::vector<unsigned char>(bytes, bytes + size);
}

class RecordedReport : public AsyncCommand {
public:
    int Process() override { return 0; }
};
}  // namespace

TEST(Command, AddTLVEncodesLittleEndianRecord)
{
    SyncCommand cmd;
    unsigned char value[] = {0x01, 0x00};
    ASSERT_EQ(0, cmd.AddTLV(0x1004, 2, value));
    std::vector<unsigned char> expected = {0x04, 0x10, 0x02, 0x00, 0x00, 0x00, 0x01, 0x00};
    EXPECT_EQ(expected, Request(cmd));
}

TEST(Command, AddTLVWithoutValueIsAHeaderOnly)
{
    SyncCommand cmd;
    ASSERT_EQ(0, cmd.AddTLV(0x33, 0, nullptr));
    std::vector<unsigned char> expected = {0x33, 0x00, 0x00, 0x00, 0x00, 0x00};
    EXPECT_EQ(expected, Request(cmd));
    TLVMessage record{};
    ASSERT_EQ(0, cmd.GetResult(&record));
    EXPECT_EQ(0x33, record.nTag);
    EXPECT_EQ(0u, record.nLength);
}

TEST(Command, SecondRecordAppendsAndFirstStaysFirst)
{
    SyncCommand cmd;
    unsigned char a = 0xAA, b[] = {0xB0, 0xB1};
    ASSERT_EQ(0, cmd.AddTLV(0x0001, 1, &a));
    TLVMessage before{};
    ASSERT_EQ(0, cmd.GetResult(&before));
    ASSERT_EQ(0, cmd.AddTLV(0x0002, 2, b));
    std::vector<unsigned char> expected = {0x01, 0x00, 0x01, 0x00, 0x00, 0x00, 0xAA,
                                           0x02, 0x00, 0x02, 0x00, 0x00, 0x00, 0xB0, 0xB1};
    EXPECT_EQ(expected, Request(cmd));
    // A value handed out before the second record still reads correctly.
    EXPECT_EQ(0xAA, *static_cast<unsigned char*>(before.pValue));
    TLVMessage after{};
    ASSERT_EQ(0, cmd.GetResult(&after));
    EXPECT_EQ(0x0001, after.nTag);
    EXPECT_EQ(0xAA, *static_cast<unsigned char*>(after.pValue));
}

TEST(Command, SetDataIndexesRecordsAndHandsOutTheFirst)
{
    unsigned char payload[] = {0x31, 0x00, 0x02, 0x00, 0x00, 0x00, 0x10, 0x20,
                               0x32, 0x00, 0x01, 0x00, 0x00, 0x00, 0x30};
    SyncCommand cmd;
    ASSERT_EQ(0, cmd.SetResponse(payload, sizeof payload));
    unsigned short tag = 0;
    unsigned int len = 0;
    void* value = nullptr;
    ASSERT_EQ(0, cmd.GetResult(&tag, &len, &value));
    EXPECT_EQ(0x31, tag);
    EXPECT_EQ(2u, len);
    EXPECT_EQ(0x10, static_cast<unsigned char*>(value)[0]);
    EXPECT_EQ(0x20, static_cast<unsigned char*>(value)[1]);
    EXPECT_EQ(std::vector<unsigned char>(payload, payload + sizeof payload), Request(cmd));
}

TEST(Command, ResponseReplacesRequest)
{
    SyncCommand cmd;
    cmd.SetTag(0x1004);
    unsigned char mode = 1;
    cmd.AddTLV(0x1004, 1, &mode);
    unsigned char answer[] = {0x04, 0x10, 0x01, 0x00, 0x00, 0x00, 0x00};
    ASSERT_EQ(0, cmd.SetResponse(answer, sizeof answer));
    EXPECT_EQ(std::vector<unsigned char>(answer, answer + sizeof answer), Request(cmd));
    EXPECT_EQ(0x1004, cmd.GetTag());
}

TEST(Command, NoPayloadAndEmptyPayloadGiveNoRecord)
{
    SyncCommand cmd;
    TLVMessage record{0x77, 5, &cmd};
    EXPECT_EQ(-1, cmd.GetResult(&record));
    EXPECT_EQ(0x77, record.nTag);  // outputs untouched
    unsigned char none = 0;
    ASSERT_EQ(0, cmd.SetResponse(&none, 0));
    EXPECT_EQ(std::vector<unsigned char>{}, Request(cmd));
    EXPECT_EQ(-1, cmd.GetResult(&record));
}

TEST(Command, TruncatedRecordIsNeverHandedOut)
{
    // The value claims 16 bytes, the block holds 3.
    unsigned char longValue[] = {0x31, 0x00, 0x10, 0x00, 0x00, 0x00, 0x01, 0x02, 0x03};
    // A header cut short after the tag.
    unsigned char shortHeader[] = {0x31, 0x00, 0x01};
    // The length would wrap a 32-bit offset.
    unsigned char hugeValue[] = {0x31, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
    struct Case {
        unsigned char* data;
        unsigned int size;
    } cases[] = {{longValue, sizeof longValue}, {shortHeader, sizeof shortHeader}, {hugeValue, sizeof hugeValue}};
    for (const Case& c : cases) {
        AsyncCommand* report = new RecordedReport;
        ASSERT_EQ(0, report->SetReport(c.data, c.size));
        TLVMessage record{};
        EXPECT_EQ(-1, report->GetResult(&record)) << "size " << c.size;
        EXPECT_EQ(nullptr, record.pValue);
        delete report;
    }
}

TEST(Command, RecordFillingTheBlockExactlyIsHandedOut)
{
    unsigned char exact[] = {0x34, 0x00, 0x03, 0x00, 0x00, 0x00, 0x01, 0x02, 0x03};
    RecordedReport report;
    ASSERT_EQ(0, report.SetReport(exact, sizeof exact));
    TLVMessage record{};
    ASSERT_EQ(0, report.GetResult(&record));
    EXPECT_EQ(3u, record.nLength);
    EXPECT_EQ(0x03, static_cast<unsigned char*>(record.pValue)[2]);
}

TEST(Command, TimeoutDefaultsAndChanges)
{
    SyncCommand cmd;
    EXPECT_EQ(10000u, cmd.GetTimeout());
    cmd.SetTimeout(15000);
    EXPECT_EQ(15000u, cmd.GetTimeout());
}
