// Recognition and comparison commands through the exported functions against the simulated module.
#include <stdlib.h>
#include <string.h>

#include "DeviceTest.h"

namespace {
const char kRecMode[] = "nRecMode != MTC_MODE_RECOGNIZE_ONLY && nRecMode != MTC_MODE_RECOGNIZE_LIVE";
const char kMulMode[] = "nMulMode != MTC_MODE_RECOGNIZE_SINGLE && nMulMode != MTC_MODE_RECOGNIZE_MULTI";
const char kLastSlice[] = "(isLastSlice != 0) && (isLastSlice != 1)";
const char kSlice[] = "abc";
}  // namespace

using Recognition = DeviceTest;

TEST_F(Recognition, ArgumentChecks)
{
    void* image = nullptr;
    unsigned int length = 0;
    char text[4];
    auto oneToMany = [&](int rec, int mul, const char* error) {
        return Row{"StartOnetoNumRecognize", [=] { return StartOnetoNumRecognize(dev, rec, mul); }, -4,
                   Failure(error, " nRecMode : " + std::to_string(rec) + " nMulMode : " + std::to_string(mul), "",
                           -4)};
    };
    auto oneToOne = [&](int rec, int mul, const char* data, unsigned int n, const char* error) {
        return Row{"StartOnetoOneRecognize", [=] { return StartOnetoOneRecognize(dev, rec, mul, data, n); }, -4,
                   Refusal(error)};
    };
    auto oneToOneSlice = [&](int last, const char* data, unsigned int n, const char* error) {
        return Row{"StartOnetoOneRecognizeSlice",
                   [=] { return StartOnetoOneRecognizeSlice(dev, 0, 0, 10, 0, last, data, n); }, -4, Refusal(error)};
    };
    // The slice comparison lists every input even when refusing one.
    auto compareSlice = [&](int mode, unsigned int total, int last, const char* data, unsigned int n,
                            const char* error) {
        return Row{"StaticFaceCompareSlice",
                   [=, &image, &length] {
                       return StaticFaceCompareSlice(dev, mode, total, 0, last, data, n, &image, &length);
                   },
                   -4,
                   Failure(error,
                           " nMode : " + std::to_string(mode) + " nImageTotalLength : " + std::to_string(total) +
                               " nPosition : 0 isLastSlice : " + std::to_string(last) + " pSliceData : " + Ptr(data) +
                               " nSliceDataLength : " + std::to_string(n),
                           " invalid output", -4)};
    };
    Check({
        oneToMany(2, 0, kRecMode), oneToMany(-1, 0, kRecMode), oneToMany(0, 2, kMulMode), oneToMany(1, -1, kMulMode),
        oneToOne(2, 0, kSlice, 3, kRecMode), oneToOne(0, 3, kSlice, 3, kMulMode),
        oneToOne(0, 0, nullptr, 3, "pImage == nullptr"), oneToOne(0, 0, kSlice, 0, "nImageLength == 0"),
        oneToOneSlice(2, kSlice, 3, kLastSlice), oneToOneSlice(0, nullptr, 3, "pSliceData == nullptr"),
        oneToOneSlice(1, kSlice, 0, "nSliceDataLength == 0"),
        {"GetSingleRecognize", [&] { return GetSingleRecognize(dev, nullptr, 4); }, -4,
         Refusal("pData == nullptr", " invalid output")},
        {"GetSingleRecognize", [&] { return GetSingleRecognize(dev, text, 0); }, -4,
         Refusal("nDataLength == 0", " invalid output")},
        {"StaticFaceCompareReturnImage", [&] { return StaticFaceCompareReturnImage(dev, nullptr, 4, &image, &length); },
         -4, Refusal("pImage == nullptr", " invalid output")},
        {"StaticFaceCompareReturnImage", [&] { return StaticFaceCompareReturnImage(dev, kSlice, 0, &image, &length); },
         -4, Refusal("nImageLength == 0", " invalid output")},
        compareSlice(2, 8, 0, kSlice, 3,
                     "nMode != MTC_STATIC_COMPARE_LOCAL_CAPTURE && nMode != MTC_STATIC_COMPARE_REMOTE_INPUT"),
        compareSlice(0, 0, 0, kSlice, 3, "nImageTotalLength == 0"), compareSlice(0, 8, 3, kSlice, 3, kLastSlice),
        compareSlice(0, 8, 0, nullptr, 3, "pSliceData == nullptr"),
        compareSlice(0, 8, 0, kSlice, 0, "nSliceDataLength == 0"),
    });
}

TEST_F(Recognition, RequestsStatusesAndRecords)
{
    std::string image(1000, '\0');
    for (size_t i = 0; i < image.size(); ++i)
        image[i] = static_cast<char>(i * 7);
    auto plain = [&](const char* function, int (*call)(void*), uint16_t tag, uint8_t status, sim::Bytes request) {
        return Row{function, [=] { return call(dev); }, status, Body("", "", status), tag, {status}, request};
    };
    Check({
        {"StartOnetoNumRecognize", [&] { return StartOnetoNumRecognize(dev, 1, 1); }, 0,
         Body(" nRecMode : 1 nMulMode : 1", "", 0), 0x10, {0x00}, {0x01, 0x01}},
        {"StartOnetoNumRecognize", [&] { return StartOnetoNumRecognize(dev, 0, 0); }, 254,
         Body(" nRecMode : 0 nMulMode : 0", "", 254), 0x10, {0xFE}, {0x00, 0x00}},
        // The whole image goes out as the last slice of a one-to-one recognition.
        {"StartOnetoOneRecognize", [&] { return StartOnetoOneRecognize(dev, 1, 0, image.data(), 1000); }, 0,
         Body(" nRecMode : 1 nMulMode : 0 pImage : " + Ptr(image.data()) + " nImageLength : 1000", "", 0), 0x24,
         {0x00}, Cat({{0x01, 0x00, 0xE8, 0x03, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01}, BytesOf(image)})},
        {"StartOnetoOneRecognizeSlice", [&] { return StartOnetoOneRecognizeSlice(dev, 0, 1, 0, 300, 0, kSlice, 3); },
         7,
         Body(" nRecMode : 0 nMulMode : 1 nImageTotalLength : 0 nPosition : 300 isLastSlice : 0 pSliceData : " +
                  Ptr(kSlice) + " nSliceDataLength : 3",
              "", 7),
         0x24, {0x07}, Cat({{0x00, 0x01}, Le32(0), Le32(300), {0x00}, BytesOf(kSlice)})},
        plain("ResumeRecognize", ResumeRecognize, 0x14, 0x02, {}),
        plain("PauseRecognize", PauseRecognize, 0x15, 0xFF, {}),
        plain("QueryRecognize", QueryRecognize, 0x16, 0x80, {0x00}),
    });
}

TEST_F(Recognition, SingleResultIsCutToTheBufferWithoutTerminatorAndToTheAnswer)
{
    char text[8 + 16];
    memset(text, 'g', sizeof text);
    Answer(0x25, Cat({Le32(12), BytesOf("result-text!")}));
    EXPECT_EQ(0, GetSingleRecognize(dev, text, 8));
    EXPECT_EQ("result-t" + std::string(16, 'g'), std::string(text, sizeof text));
    EXPECT_EQ(Body(" nDataLength : 8", " pData : result-t", 0), LastRecord("GetSingleRecognize"));
    EXPECT_EQ(sim::Bytes(), LastRequest(0x25));
    // The buffer is zeroed first; a text claimed longer than the answer is cut to what arrived.
    Answer(0x25, Cat({Le32(500), BytesOf("ab")}));
    EXPECT_EQ(0, GetSingleRecognize(dev, text, 16));
    EXPECT_EQ("ab" + std::string(14, '\0'), std::string(text, 16));
    // Three bytes cannot hold the length field; the buffer stays zeroed.
    memset(text, 'x', sizeof text);
    Answer(0x25, {0x01, 0x00, 0x00});
    EXPECT_EQ(-8, GetSingleRecognize(dev, text, 16));
    EXPECT_EQ(std::string(16, '\0'), std::string(text, 16));
    EXPECT_EQ(Failure("tlvMessage.nLength < 4", " nDataLength : 16", " invalid output", -8),
              LastRecord("GetSingleRecognize"));
}

TEST_F(Recognition, ComparisonsHandOutTheImageOfTheAnswer)
{
    void* image = nullptr;
    unsigned int length = 0;
    // Whatever the status, the image comes with a trailing zero.
    Answer(0x04, Cat({{0x03}, Le32(4), BytesOf("IMG!")}));
    EXPECT_EQ(3, StaticFaceCompare(dev, &image, &length));
    ASSERT_EQ(4u, length);
    EXPECT_EQ(0, memcmp(image, "IMG!", 5));
    EXPECT_EQ(Body("", " ppResImage : " + Ptr(image) + " pResImageLength : 4", 3), LastRecord("StaticFaceCompare"));
    EXPECT_EQ(sim::Bytes({0x00}), LastRequest(0x04));
    free(image);
    // The status alone: no image.
    Answer(0x04, {0x00});
    EXPECT_EQ(0, StaticFaceCompare(dev, &image, &length));
    EXPECT_EQ(nullptr, image);
    EXPECT_EQ(0u, length);
    // An empty answer leaves the outputs alone.
    image = &image;
    Answer(0x04, {});
    EXPECT_EQ(-8, StaticFaceCompare(dev, &image, &length));
    EXPECT_EQ(&image, image);
    EXPECT_EQ(Failure("tlvMessage.nLength < 1", "", " invalid output", -8), LastRecord("StaticFaceCompare"));
    Answer(0x04, Cat({{0x00}, Le32(2), BytesOf("ok")}));
    EXPECT_EQ(0, StaticFaceCompareReturnImage(dev, "HOST", 4, &image, &length));
    EXPECT_EQ(Cat({{0x01}, Le32(4), BytesOf("HOST")}), LastRequest(0x04));
    ASSERT_EQ(2u, length);
    EXPECT_EQ(0, memcmp(image, "ok", 3));
    free(image);
}

TEST_F(Recognition, StaticCompareSliceLeavesTheOutputsOnAFailingStatus)
{
    const std::string inputs = " nMode : 1 nImageTotalLength : 8 nPosition : 4 isLastSlice : 1 pSliceData : " +
                               Ptr(kSlice) + " nSliceDataLength : 3";
    Answer(0x23, Cat({{0x03}, Le32(2), BytesOf("no")}));
    void* image = &image;
    unsigned int length = 55;
    EXPECT_EQ(3, StaticFaceCompareSlice(dev, 1, 8, 4, 1, kSlice, 3, &image, &length));
    EXPECT_EQ(&image, image);
    EXPECT_EQ(55u, length);
    EXPECT_EQ(Body(inputs, " ppResImage : " + Ptr(&image) + " pResImageLength : 55", 3),
              LastRecord("StaticFaceCompareSlice"));
    EXPECT_EQ(Cat({{0x01}, Le32(8), Le32(4), {0x01}, BytesOf(kSlice)}), LastRequest(0x23));
    Answer(0x23, Cat({{0x00}, Le32(2), BytesOf("ok")}));
    EXPECT_EQ(0, StaticFaceCompareSlice(dev, 1, 8, 4, 1, kSlice, 3, &image, &length));
    ASSERT_EQ(2u, length);
    EXPECT_EQ(0, memcmp(image, "ok", 3));
    free(image);
}
