// The message buffer and the TLV records of commands.
#include "AICamera/Protocol/Message.h"
#include "ProtoFixture.h"

namespace {
Bytes Block(void* data, unsigned int size)
{
    return data ? Bytes(static_cast<unsigned char*>(data), static_cast<unsigned char*>(data) + size) : Bytes();
}

Bytes Contents(Message& m)
{
    void* data = nullptr;
    unsigned int size = 0;
    m.GetData(&data, &size);
    return Block(data, size);
}
}  // namespace

TEST(Message, WritesAndReadsBothByteOrders)
{
    Message m;
    ASSERT_EQ(0, m.WriteShort(0x1234, 0));
    ASSERT_EQ(0, m.WriteShort(0x1234, 1));
    ASSERT_EQ(0, m.WriteInt(0x11223344, 0));
    ASSERT_EQ(0, m.WriteInt(0x11223344, 7));  // any order but 0 is little-endian
    ASSERT_EQ(0, m.WriteChar(0xAB));
    EXPECT_EQ((Bytes{0x12, 0x34, 0x34, 0x12, 0x11, 0x22, 0x33, 0x44, 0x44, 0x33, 0x22, 0x11, 0xAB}), Contents(m));
    unsigned short s = 0;
    unsigned int i = 0;
    for (int order : {0, 1})
        EXPECT_TRUE(m.ReadShort(&s, order) == 0 && s == 0x1234) << order;
    for (int order : {0, 1})
        EXPECT_TRUE(m.ReadInt(&i, order) == 0 && i == 0x11223344u) << order;
    EXPECT_EQ(12u, m.GetPosition());
}

TEST(Message, FailuresLeavePositionAndOutputUnchanged)
{
    unsigned char bytes[] = {1, 2, 3, 4, 5};
    Message m(bytes, sizeof bytes);
    EXPECT_EQ(-1, m.SetPosition(5));  // the position never reaches the end
    EXPECT_EQ(-1, m.MovePositionLeft(1));
    EXPECT_EQ(-1, m.MovePositionRight(0xFFFFFFFFu));  // no wrap-around
    ASSERT_EQ(0, m.MovePositionRight(2));
    unsigned int v = 0xDEADBEEF;
    EXPECT_EQ(-1, m.ReadInt(&v, 0));  // three bytes left
    EXPECT_EQ(0xDEADBEEFu, v);
    unsigned char out[4] = {9, 9, 9, 9};
    EXPECT_EQ(-1, m.ReadData(out, 4));
    EXPECT_EQ(9, out[0]);
    void* p = &m;
    EXPECT_EQ(-1, m.ReadData(&p, 4));
    EXPECT_EQ(static_cast<void*>(&m), p);
    EXPECT_EQ(0, m.ReadData(&p, 3));  // a pointer read does not move
    EXPECT_EQ(3, *static_cast<unsigned char*>(p));
    EXPECT_EQ(0, m.ReadData(out, 3));  // reads may reach the end exactly
    EXPECT_EQ(-1, m.ReadChar(out));
    EXPECT_EQ(-1, m.WriteData(nullptr, 4));
    EXPECT_EQ(Bytes(bytes, bytes + 5), Contents(m));
    m.Clear();
    EXPECT_EQ(Bytes(), Contents(m));
    Bytes big(3000, 0x5A);
    ASSERT_EQ(0, m.WriteData(big.data(), 3000));
    ASSERT_EQ(0, m.WriteData(big.data(), 1000));  // grows past the first block
    EXPECT_EQ(Bytes(4000, 0x5A), Contents(m));
}

TEST(Command, RecordsAreAppendedLittleEndianAndAnAnswerReplacesThem)
{
    SyncCommand cmd;
    EXPECT_EQ(10000u, cmd.GetTimeout());
    TLVMessage first{0x77, 5, &cmd};
    EXPECT_EQ(-1, cmd.GetResult(&first));  // no payload yet, outputs untouched
    EXPECT_EQ(0x77, first.nTag);
    unsigned char value[] = {0x01, 0x00};
    ASSERT_EQ(0, cmd.AddTLV(0x1004, 2, value));
    ASSERT_EQ(0, cmd.GetResult(&first));
    ASSERT_EQ(0, cmd.AddTLV(0x33, 0, nullptr));
    void* data = nullptr;
    unsigned int size = 0;
    ASSERT_EQ(0, cmd.GetRequest(&data, &size));
    EXPECT_EQ((Bytes{0x04, 0x10, 0x02, 0, 0, 0, 0x01, 0x00, 0x33, 0, 0, 0, 0, 0}), Block(data, size));
    EXPECT_EQ(0x01, *static_cast<unsigned char*>(first.pValue));  // handed out before the block grew
    EXPECT_EQ((Bytes{0x01, 0x00}), FirstValue(cmd));
    // The answer's records replace the request's, and the first is handed out.
    Bytes answer = {0x31, 0, 0x02, 0, 0, 0, 0x10, 0x20, 0x32, 0, 0x01, 0, 0, 0, 0x30};
    ASSERT_EQ(0, cmd.SetResponse(answer.data(), static_cast<unsigned int>(answer.size())));
    ASSERT_EQ(0, cmd.GetRequest(&data, &size));
    EXPECT_EQ(answer, Block(data, size));
    unsigned short tag = 0;
    unsigned int len = 0;
    ASSERT_EQ(0, cmd.GetResult(&tag, &len, &data));
    EXPECT_EQ(0x31, tag);
    EXPECT_EQ((Bytes{0x10, 0x20}), Block(data, len));
    ASSERT_EQ(0, cmd.SetResponse(value, 0));
    EXPECT_EQ(-1, cmd.GetResult(&tag, &len, &data));
}

TEST(Command, TruncatedRecordIsNeverHandedOut)
{
    const struct { const char* name; Bytes data; int result; } rows[] = {
        {"value longer than the block", {0x31, 0, 0x10, 0, 0, 0, 1, 2, 3}, -1},
        {"header cut after the tag", {0x31, 0, 0x01}, -1},
        {"length wrapping 32 bits", {0x31, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0}, -1},
        {"value filling the block", {0x34, 0, 0x03, 0, 0, 0, 1, 2, 3}, 0},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        RecordingReport report(0x31);
        Bytes data = r.data;
        ASSERT_EQ(0, report.SetReport(data.data(), static_cast<unsigned int>(data.size())));
        TLVMessage record{};
        EXPECT_EQ(r.result, report.GetResult(&record));
        EXPECT_EQ((r.result ? Bytes() : Bytes{1, 2, 3}), Block(record.pValue, record.nLength));
    }
}
