// The message buffer: byte orders, bounds, and failures that change nothing.
#include <gtest/gtest.h>

#include <vector>

#include "AICamera/Message.h"

namespace {
std::vector<unsigned char> Contents(Message& m)
{
    void* p = nullptr;
    unsigned int len = 0;
    m.GetData(&p, &len);
    unsigned char* bytes = static_cast<unsigned char*>(p);
    return std::vector<unsigned char>(bytes, bytes + len);
}
}  // namespace

TEST(Message, WritesEachByteOrder)
{
    Message m;
    ASSERT_EQ(0, m.WriteShort(0x1234, 0));
    ASSERT_EQ(0, m.WriteShort(0x1234, 1));
    ASSERT_EQ(0, m.WriteInt(0x11223344, 0));
    ASSERT_EQ(0, m.WriteInt(0x11223344, 7));
    ASSERT_EQ(0, m.WriteChar(0xAB));
    std::vector<unsigned char> expected = {0x12, 0x34, 0x34, 0x12, 0x11, 0x22, 0x33, 0x44,
                                           0x44, 0x33, 0x22, 0x11, 0xAB};
    EXPECT_EQ(expected, Contents(m));
}

TEST(Message, ReadsBackWhatWasWritten)
{
    Message m;
    m.WriteInt(0xA1B2C3D4, 0);
    m.WriteInt(0xA1B2C3D4, 1);
    m.WriteShort(0xBEEF, 0);
    m.WriteShort(0xBEEF, 1);
    unsigned int big = 0, little = 0;
    unsigned short s1 = 0, s2 = 0;
    EXPECT_EQ(0, m.ReadInt(&big, 0));
    EXPECT_EQ(0, m.ReadInt(&little, 1));
    EXPECT_EQ(0, m.ReadShort(&s1, 0));
    EXPECT_EQ(0, m.ReadShort(&s2, 1));
    EXPECT_EQ(0xA1B2C3D4u, big);
    EXPECT_EQ(0xA1B2C3D4u, little);
    EXPECT_EQ(0xBEEF, s1);
    EXPECT_EQ(0xBEEF, s2);
    EXPECT_EQ(12u, m.GetPosition());
}

TEST(Message, FailedReadLeavesPositionAndOutput)
{
    unsigned char bytes[] = {1, 2, 3, 4, 5};
    Message m(bytes, sizeof bytes);
    unsigned char c = 0;
    ASSERT_EQ(0, m.ReadChar(&c));
    ASSERT_EQ(0, m.ReadChar(&c));
    unsigned int v = 0xDEADBEEF;
    EXPECT_EQ(-1, m.ReadInt(&v, 0));  // three bytes left
    EXPECT_EQ(0xDEADBEEFu, v);
    EXPECT_EQ(2u, m.GetPosition());
    unsigned char out[4] = {9, 9, 9, 9};
    EXPECT_EQ(-1, m.ReadData(out, 4));
    EXPECT_EQ(9, out[0]);
    EXPECT_EQ(0, m.ReadData(out, 3));  // reads may reach the end exactly
    EXPECT_EQ(5u, m.GetPosition());
    EXPECT_EQ(-1, m.ReadChar(&c));
}

TEST(Message, PositionSettersNeverReachTheEnd)
{
    unsigned char bytes[] = {1, 2, 3, 4};
    Message m(bytes, sizeof bytes);
    EXPECT_EQ(-1, m.SetPosition(4));
    EXPECT_EQ(0, m.SetPosition(3));
    EXPECT_EQ(0, m.MovePositionLeft(3));
    EXPECT_EQ(-1, m.MovePositionLeft(1));
    EXPECT_EQ(-1, m.MovePositionRight(4));
    EXPECT_EQ(0, m.MovePositionRight(3));
    EXPECT_EQ(3u, m.GetPosition());
    EXPECT_EQ(-1, m.MovePositionRight(0xFFFFFFFFu));  // no wrap-around
    EXPECT_EQ(3u, m.GetPosition());
}

TEST(Message, PointerReadDoesNotMove)
{
    unsigned char bytes[] = {7, 8, 9};
    Message m(bytes, sizeof bytes);
    void* first = nullptr;
    void* second = nullptr;
    EXPECT_EQ(0, m.ReadData(&first, 2));
    EXPECT_EQ(0, m.ReadData(&second, 2));
    EXPECT_EQ(first, second);
    EXPECT_EQ(0u, m.GetPosition());
    EXPECT_EQ(7, *static_cast<unsigned char*>(first));
    void* untouched = &m;
    EXPECT_EQ(-1, m.ReadData(&untouched, 4));
    EXPECT_EQ(static_cast<void*>(&m), untouched);
}

TEST(Message, EmptyCopyHoldsNoBlock)
{
    unsigned char byte = 1;
    Message m(&byte, 0);
    void* p = &m;
    unsigned int len = 99;
    m.GetData(&p, &len);
    EXPECT_EQ(nullptr, p);
    EXPECT_EQ(0u, len);
}

TEST(Message, ClearThenWriteStartsANewBlock)
{
    Message m;
    m.WriteInt(1, 0);
    m.Clear();
    void* p = &m;
    unsigned int len = 99;
    m.GetData(&p, &len);
    EXPECT_EQ(nullptr, p);
    EXPECT_EQ(0u, len);
    std::vector<unsigned char> big(3000, 0x5A);
    ASSERT_EQ(0, m.WriteData(big.data(), 3000));
    ASSERT_EQ(0, m.WriteData(big.data(), 1000));  // grows past the first block
    std::vector<unsigned char> all = Contents(m);
    ASSERT_EQ(4000u, all.size());
    EXPECT_EQ(std::vector<unsigned char>(4000, 0x5A), all);
}

TEST(Message, WriteOfNullDataFailsUnchanged)
{
    Message m;
    m.WriteChar(1);
    EXPECT_EQ(-1, m.WriteData(nullptr, 4));
    EXPECT_EQ(std::vector<unsigned char>{1}, Contents(m));
}
