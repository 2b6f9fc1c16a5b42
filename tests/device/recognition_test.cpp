// Recognition and comparison commands through the exported functions against the simulated module.
#include <stdlib.h>
#include <string.h>

#include "DeviceTest.h"

namespace {
const char kRecModeText[] = "nRecMode != MTC_MODE_RECOGNIZE_ONLY && nRecMode != MTC_MODE_RECOGNIZE_LIVE";
const char kMulModeText[] = "nMulMode != MTC_MODE_RECOGNIZE_SINGLE && nMulMode != MTC_MODE_RECOGNIZE_MULTI";
const char kLastSliceText[] = "(isLastSlice != 0) && (isLastSlice != 1)";
}  // namespace

using Recognition = DeviceTest;

TEST_F(Recognition, OneToManySendsBothModeBytes)
{
    AnswerStatus(0x10, 0);
    NewRecords records;
    EXPECT_EQ(0, StartOnetoNumRecognize(dev, 1, 1));
    EXPECT_EQ(sim::Bytes({0x01, 0x01}), LastRequest(0x10));
    EXPECT_EQ(Input(" nRecMode : 1 nMulMode : 1") + "[OUTPUT]\n[RETURN] nRet : 0\n",
              records.Only("StartOnetoNumRecognize"));
    AnswerStatus(0x10, 0xFE);
    EXPECT_EQ(254, StartOnetoNumRecognize(dev, 0, 0));
    EXPECT_EQ(sim::Bytes({0x00, 0x00}), LastRequest(0x10));
}

TEST_F(Recognition, OneToManyRefusesModesOtherThanZeroAndOne)
{
    struct Case {
        int rec, mul;
        const char* text;
    } cases[] = {{2, 0, kRecModeText}, {-1, 0, kRecModeText}, {0, 2, kMulModeText}, {1, -1, kMulModeText}};
    for (const Case& c : cases) {
        NewRecords records;
        EXPECT_EQ(-4, StartOnetoNumRecognize(dev, c.rec, c.mul));
        EXPECT_EQ(Refused(c.text) + Input(" nRecMode : " + std::to_string(c.rec) + " nMulMode : " +
                                          std::to_string(c.mul)) +
                      "[OUTPUT]\n[RETURN] nRet : -4\n",
                  records.Only("StartOnetoNumRecognize"));
    }
    EXPECT_EQ(0u, RequestCount(0x10));
}

TEST_F(Recognition, OneToOneSendsTheWholeImageAsTheLastSlice)
{
    std::string image(1000, '\0');
    for (size_t i = 0; i < image.size(); ++i)
        image[i] = static_cast<char>(i * 7);
    AnswerStatus(0x24, 0);
    NewRecords records;
    EXPECT_EQ(0, StartOnetoOneRecognize(dev, 1, 0, image.data(), 1000));
    sim::Bytes sent = LastRequest(0x24);
    ASSERT_EQ(1011u, sent.size());
    EXPECT_EQ(Cat({{0x01, 0x00, 0xE8, 0x03, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01}, BytesOf(image)}), sent);
    EXPECT_EQ(Input(" nRecMode : 1 nMulMode : 0 pImage : " + Ptr(image.data()) + " nImageLength : 1000") +
                  "[OUTPUT]\n[RETURN] nRet : 0\n",
              records.Only("StartOnetoOneRecognize"));
}

TEST_F(Recognition, OneToOneRefusals)
{
    const char image[] = "img";
    struct Case {
        int rec, mul;
        const char* data;
        unsigned int length;
        const char* text;
    } cases[] = {
        {2, 0, image, 3, kRecModeText},
        {0, 3, image, 3, kMulModeText},
        {0, 0, nullptr, 3, "pImage == nullptr"},
        {0, 0, image, 0, "nImageLength == 0"},
    };
    for (const Case& c : cases) {
        ExpectRefusal("StartOnetoOneRecognize", c.text, "[OUTPUT]\n",
                      [&] { return StartOnetoOneRecognize(dev, c.rec, c.mul, c.data, c.length); });
    }
    EXPECT_EQ(0u, RequestCount(0x24));
}

TEST_F(Recognition, OneToOneSliceSendsItsLayoutEvenWithAZeroTotal)
{
    const char slice[] = "abc";
    AnswerStatus(0x24, 7);
    NewRecords records;
    EXPECT_EQ(7, StartOnetoOneRecognizeSlice(dev, 0, 1, 0, 300, 0, slice, 3));
    EXPECT_EQ(Cat({{0x00, 0x01}, Le32(0), Le32(300), {0x00}, BytesOf("abc")}), LastRequest(0x24));
    EXPECT_EQ(Input(" nRecMode : 0 nMulMode : 1 nImageTotalLength : 0 nPosition : 300 isLastSlice : 0 pSliceData : " +
                    Ptr(slice) + " nSliceDataLength : 3") +
                  "[OUTPUT]\n[RETURN] nRet : 7\n",
              records.Only("StartOnetoOneRecognizeSlice"));
    struct Case {
        int last;
        const char* data;
        unsigned int length;
        const char* text;
    } cases[] = {{2, slice, 3, kLastSliceText}, {0, nullptr, 3, "pSliceData == nullptr"}, {1, slice, 0, "nSliceDataLength == 0"}};
    for (const Case& c : cases) {
        ExpectRefusal("StartOnetoOneRecognizeSlice", c.text, "[OUTPUT]\n",
                      [&] { return StartOnetoOneRecognizeSlice(dev, 0, 0, 10, 0, c.last, c.data, c.length); });
    }
    EXPECT_EQ(1u, RequestCount(0x24));
}

TEST_F(Recognition, PauseResumeAndQuerySendTheirPayloadsAndPassTheStatusThrough)
{
    struct Case {
        const char* function;
        int (*call)(void*);
        uint16_t tag;
        sim::Bytes payload;
    } cases[] = {
        {"ResumeRecognize", ResumeRecognize, 0x14, {}},
        {"PauseRecognize", PauseRecognize, 0x15, {}},
        {"QueryRecognize", QueryRecognize, 0x16, {0x00}},
    };
    for (const Case& c : cases) {
        for (uint8_t status : {0x00, 0x02, 0xFF}) {
            AnswerStatus(c.tag, status);
            NewRecords records;
            EXPECT_EQ(int(status), c.call(dev)) << c.function;
            EXPECT_EQ(Input("") + "[OUTPUT]\n[RETURN] nRet : " + std::to_string(status) + "\n",
                      records.Only(c.function));
            EXPECT_EQ(c.payload, LastRequest(c.tag));
        }
    }
}

TEST_F(Recognition, SingleResultFillsTheBufferWithoutTerminator)
{
    Answer(0x25, Cat({Le32(12), BytesOf("result-text!")}));
    char region[8 + 16];
    memset(region, 'g', sizeof region);
    NewRecords records;
    EXPECT_EQ(0, GetSingleRecognize(dev, region, 8));
    EXPECT_EQ("result-t" + std::string(16, 'g'), std::string(region, sizeof region));
    EXPECT_EQ(Input(" nDataLength : 8") + "[OUTPUT] pData : result-t\n[RETURN] nRet : 0\n",
              records.Only("GetSingleRecognize"));
    EXPECT_EQ(sim::Bytes(), LastRequest(0x25));
}

TEST_F(Recognition, SingleResultZeroesTheBufferFirst)
{
    char text[16];
    memset(text, 'x', sizeof text);
    Answer(0x25, Cat({Le32(3), BytesOf("abc")}));
    EXPECT_EQ(0, GetSingleRecognize(dev, text, sizeof text));
    EXPECT_EQ(std::string("abc") + std::string(13, '\0'), std::string(text, sizeof text));
    // A text claimed longer than the answer is cut to what arrived.
    memset(text, 'x', sizeof text);
    Answer(0x25, Cat({Le32(500), BytesOf("ab")}));
    EXPECT_EQ(0, GetSingleRecognize(dev, text, sizeof text));
    EXPECT_EQ(std::string("ab") + std::string(14, '\0'), std::string(text, sizeof text));
    // Three bytes cannot hold the length field; the buffer stays zeroed.
    memset(text, 'x', sizeof text);
    Answer(0x25, {0x01, 0x00, 0x00});
    NewRecords records;
    EXPECT_EQ(-8, GetSingleRecognize(dev, text, sizeof text));
    EXPECT_EQ(std::string(16, '\0'), std::string(text, sizeof text));
    EXPECT_EQ("[ERROR] tlvMessage.nLength < 4\n" + Input(" nDataLength : 16") +
                  "[OUTPUT] invalid output\n[RETURN] nRet : -8\n",
              records.Only("GetSingleRecognize"));
}

TEST_F(Recognition, SingleResultRefusals)
{
    char text[4];
    ExpectRefusal("GetSingleRecognize", "pData == nullptr", "[OUTPUT] invalid output\n",
                  [&] { return GetSingleRecognize(dev, nullptr, 4); });
    ExpectRefusal("GetSingleRecognize", "nDataLength == 0", "[OUTPUT] invalid output\n",
                  [&] { return GetSingleRecognize(dev, text, 0); });
}

TEST_F(Recognition, StaticCompareHandsOutTheImageWhateverTheStatus)
{
    Answer(0x04, Cat({{0x03}, Le32(4), BytesOf("IMG!")}));
    void* image = nullptr;
    unsigned int length = 0;
    NewRecords records;
    EXPECT_EQ(3, StaticFaceCompare(dev, &image, &length));
    ASSERT_NE(nullptr, image);
    ASSERT_EQ(4u, length);
    EXPECT_EQ(0, memcmp(image, "IMG!", 5));  // with its trailing zero
    EXPECT_EQ(Input("") + "[OUTPUT] ppResImage : " + Ptr(image) + " pResImageLength : 4\n[RETURN] nRet : 3\n",
              records.Only("StaticFaceCompare"));
    EXPECT_EQ(sim::Bytes({0x00}), LastRequest(0x04));
    free(image);
    // The status alone: no image.
    AnswerStatus(0x04, 0);
    image = &image;
    length = 9;
    EXPECT_EQ(0, StaticFaceCompare(dev, &image, &length));
    EXPECT_EQ(nullptr, image);
    EXPECT_EQ(0u, length);
}

TEST_F(Recognition, StaticCompareWithAHostImage)
{
    const char mine[] = "HOST";
    Answer(0x04, Cat({{0x00}, Le32(2), BytesOf("ok")}));
    void* image = nullptr;
    unsigned int length = 0;
    NewRecords records;
    EXPECT_EQ(0, StaticFaceCompareReturnImage(dev, mine, 4, &image, &length));
    EXPECT_EQ(Cat({{0x01}, Le32(4), BytesOf("HOST")}), LastRequest(0x04));
    ASSERT_EQ(2u, length);
    EXPECT_EQ(0, memcmp(image, "ok", 3));
    EXPECT_EQ(Input(" pImage : " + Ptr(mine) + " nImageLength : 4") + "[OUTPUT] ppResImage : " + Ptr(image) +
                  " pResImageLength : 2\n[RETURN] nRet : 0\n",
              records.Only("StaticFaceCompareReturnImage"));
    free(image);
    ExpectRefusal("StaticFaceCompareReturnImage", "pImage == nullptr", "[OUTPUT] invalid output\n",
                  [&] { return StaticFaceCompareReturnImage(dev, nullptr, 4, &image, &length); });
    ExpectRefusal("StaticFaceCompareReturnImage", "nImageLength == 0", "[OUTPUT] invalid output\n",
                  [&] { return StaticFaceCompareReturnImage(dev, mine, 0, &image, &length); });
}

TEST_F(Recognition, StaticCompareSliceLeavesTheOutputsOnAFailingStatus)
{
    const char slice[] = "part";
    const std::string inputs = Input(" nMode : 1 nImageTotalLength : 8 nPosition : 4 isLastSlice : 1 pSliceData : " +
                                     Ptr(slice) + " nSliceDataLength : 4");
    Answer(0x23, Cat({{0x03}, Le32(2), BytesOf("no")}));
    void* image = &image;
    unsigned int length = 55;
    NewRecords records;
    EXPECT_EQ(3, StaticFaceCompareSlice(dev, 1, 8, 4, 1, slice, 4, &image, &length));
    EXPECT_EQ(&image, image);
    EXPECT_EQ(55u, length);
    EXPECT_EQ(inputs + "[OUTPUT] ppResImage : " + Ptr(&image) + " pResImageLength : 55\n[RETURN] nRet : 3\n",
              records.Only("StaticFaceCompareSlice"));
    EXPECT_EQ(Cat({{0x01}, Le32(8), Le32(4), {0x01}, BytesOf("part")}), LastRequest(0x23));
    Answer(0x23, Cat({{0x00}, Le32(2), BytesOf("ok")}));
    EXPECT_EQ(0, StaticFaceCompareSlice(dev, 1, 8, 4, 1, slice, 4, &image, &length));
    ASSERT_EQ(2u, length);
    EXPECT_EQ(0, memcmp(image, "ok", 3));
    free(image);
}

TEST_F(Recognition, StaticCompareSliceRefusalsListAllInputs)
{
    const char slice[] = "part";
    struct Case {
        int mode;
        unsigned int total;
        int last;
        const char* data;
        unsigned int length;
        const char* text;
    } cases[] = {
        {2, 8, 0, slice, 4, "nMode != MTC_STATIC_COMPARE_LOCAL_CAPTURE && nMode != MTC_STATIC_COMPARE_REMOTE_INPUT"},
        {0, 0, 0, slice, 4, "nImageTotalLength == 0"},
        {0, 8, 3, slice, 4, kLastSliceText},
        {0, 8, 0, nullptr, 4, "pSliceData == nullptr"},
        {0, 8, 0, slice, 0, "nSliceDataLength == 0"},
    };
    for (const Case& c : cases) {
        void* image = nullptr;
        unsigned int length = 0;
        NewRecords records;
        EXPECT_EQ(-4, StaticFaceCompareSlice(dev, c.mode, c.total, 0, c.last, c.data, c.length, &image, &length));
        EXPECT_EQ(Refused(c.text) +
                      Input(" nMode : " + std::to_string(c.mode) + " nImageTotalLength : " + std::to_string(c.total) +
                            " nPosition : 0 isLastSlice : " + std::to_string(c.last) + " pSliceData : " +
                            Ptr(c.data) + " nSliceDataLength : " + std::to_string(c.length)) +
                      "[OUTPUT] invalid output\n[RETURN] nRet : -4\n",
                  records.Only("StaticFaceCompareSlice"));
    }
    EXPECT_EQ(0u, RequestCount(0x23));
}

TEST_F(Recognition, ComparisonsRefuseAnEmptyAnswer)
{
    Answer(0x04, {});
    void* image = &image;
    unsigned int length = 5;
    NewRecords records;
    EXPECT_EQ(-8, StaticFaceCompare(dev, &image, &length));
    EXPECT_EQ(&image, image);
    EXPECT_EQ(5u, length);
    EXPECT_EQ("[ERROR] tlvMessage.nLength < 1\n" + Input("") + "[OUTPUT] invalid output\n[RETURN] nRet : -8\n",
              records.Only("StaticFaceCompare"));
}
