// The recognition configuration text, the recognition and liveness counts and
// template updating, through the exported functions.
#include <string.h>

#include "SettingsDevice.h"

namespace {
const uint16_t kConfigTag = 0x17;
const uint16_t kCountTag = 0x09;
const uint16_t kTemplateTag = 0x0A;
const char* const kConfigInputs = " nDataLength : 8 nConfigType : 0";
}  // namespace

using RecognitionSettings = SettingsDevice;

TEST_F(RecognitionSettings, SetRecConfigSendsSetTypeAndTextWithoutTerminator)
{
    Answer(kConfigTag, {0x00});
    EXPECT_EQ(0, SetRecConfig(dev, "abc", 3, 0));
    EXPECT_EQ((sim::Bytes{0x00, 0x00, 0x61, 0x62, 0x63}), LastRequest(kConfigTag));
    EXPECT_EQ(Body(" pData : abc nDataLength : 3 nConfigType : 0", "", 0), LastRecord("SetRecConfig"));
}

TEST_F(RecognitionSettings, SetRecConfigRefusesBadTextsWithoutSending)
{
    EXPECT_EQ(-4, SetRecConfig(dev, nullptr, 3, 0));
    EXPECT_EQ(Refusal("pData == nullptr"), LastRecord("SetRecConfig"));
    EXPECT_EQ(-4, SetRecConfig(dev, "", 0, 0));
    EXPECT_EQ(Refusal("!strlen(static_cast<char*>(const_cast<void*>(pData)))"), LastRecord("SetRecConfig"));
    EXPECT_EQ(-4, SetRecConfig(dev, "abc", 2, 0));
    EXPECT_EQ(Refusal("nDataLength != strlen(static_cast<char*>(const_cast<void*>(pData)))"),
              LastRecord("SetRecConfig"));
    EXPECT_EQ(-4, SetRecConfig(dev, "abc", 3, 1));
    EXPECT_EQ(Refusal("nConfigType != 0"), LastRecord("SetRecConfig"));
    EXPECT_EQ(0u, SentCount(kConfigTag));
}

TEST_F(RecognitionSettings, SetRecConfigWantsAOneByteAnswer)
{
    Answer(kConfigTag, {0x00, 0x00});
    EXPECT_EQ(-8, SetRecConfig(dev, "abc", 3, 0));
    EXPECT_EQ(Failure("tlvMessage.nLength != 1", " pData : abc nDataLength : 3 nConfigType : 0", "", -8),
              LastRecord("SetRecConfig"));
}

TEST_F(RecognitionSettings, GetRecConfigZeroesTheBufferThenCopiesTheText)
{
    Answer(kConfigTag, {0x00, 'x', 'y', 'z'});
    char text[8];
    memset(text, 'Q', sizeof text);
    EXPECT_EQ(0, GetRecConfig(dev, text, sizeof text, 0));
    EXPECT_EQ((sim::Bytes{0x01, 0x00}), LastRequest(kConfigTag));
    EXPECT_EQ(0, memcmp(text, "xyz\0\0\0\0\0", sizeof text));
    EXPECT_EQ(Body(kConfigInputs, " pData : xyz ", 0), LastRecord("GetRecConfig"));
}

TEST_F(RecognitionSettings, GetRecConfigCutsTheTextAtTheBufferWithoutTerminator)
{
    Answer(kConfigTag, {0x00, 'x', 'y', 'z'});
    char text[4];
    memset(text, 'Q', sizeof text);
    EXPECT_EQ(0, GetRecConfig(dev, text, 2, 0));
    EXPECT_EQ(0, memcmp(text, "xyQQ", sizeof text));
    EXPECT_EQ(Body(" nDataLength : 2 nConfigType : 0", " pData : xy ", 0), LastRecord("GetRecConfig"));
}

TEST_F(RecognitionSettings, GetRecConfigStopsAtAZeroByteOfTheText)
{
    Answer(kConfigTag, {0x00, 'a', 0x00, 'b'});
    char text[8];
    memset(text, 'Q', sizeof text);
    EXPECT_EQ(0, GetRecConfig(dev, text, sizeof text, 0));
    EXPECT_EQ(0, memcmp(text, "a\0\0\0\0\0\0\0", sizeof text));
}

TEST_F(RecognitionSettings, GetRecConfigCopiesTheTextWhateverTheStatus)
{
    Answer(kConfigTag, {0x07, 'o', 'k'});
    char text[8];
    EXPECT_EQ(7, GetRecConfig(dev, text, sizeof text, 0));
    EXPECT_STREQ("ok", text);
    EXPECT_EQ(Body(kConfigInputs, " pData : ok ", 7), LastRecord("GetRecConfig"));
}

TEST_F(RecognitionSettings, GetRecConfigWithOnlyAStatusLeavesTheBufferZeroed)
{
    Answer(kConfigTag, {0x05});
    char text[8];
    memset(text, 'Q', sizeof text);
    EXPECT_EQ(5, GetRecConfig(dev, text, sizeof text, 0));
    EXPECT_EQ(0, memcmp(text, "\0\0\0\0\0\0\0\0", sizeof text));
}

TEST_F(RecognitionSettings, GetRecConfigEmptyAnswerFailsWithTheBufferZeroed)
{
    Answer(kConfigTag, {});
    char text[8];
    memset(text, 'Q', sizeof text);
    EXPECT_EQ(-8, GetRecConfig(dev, text, sizeof text, 0));
    EXPECT_EQ(0, memcmp(text, "\0\0\0\0\0\0\0\0", sizeof text));
    EXPECT_EQ(Failure("tlvMessage.nLength  == 0", kConfigInputs, " invalid output", -8), LastRecord("GetRecConfig"));
}

TEST_F(RecognitionSettings, GetRecConfigRefusalsLeaveTheBufferAlone)
{
    char text[8];
    memset(text, 'Q', sizeof text);
    EXPECT_EQ(-4, GetRecConfig(dev, nullptr, 8, 0));
    EXPECT_EQ(Refusal("pData == nullptr", " invalid output"), LastRecord("GetRecConfig"));
    EXPECT_EQ(-4, GetRecConfig(dev, text, 0, 0));
    EXPECT_EQ(Refusal("nDataLength == 0", " invalid output"), LastRecord("GetRecConfig"));
    // The configuration type is refused under the length's text.
    EXPECT_EQ(-4, GetRecConfig(dev, text, sizeof text, 1));
    EXPECT_EQ(Refusal("nDataLength == 0", " invalid output"), LastRecord("GetRecConfig"));
    EXPECT_EQ(0, memcmp(text, "QQQQQQQQ", sizeof text));
    EXPECT_EQ(0u, SentCount(kConfigTag));
}

TEST_F(RecognitionSettings, SetRecognizeCountSendsBothCounts)
{
    Answer(kCountTag, {0x00});
    EXPECT_EQ(0, SetRecognizeCount(dev, 10, 10));
    EXPECT_EQ((sim::Bytes{0x01, 0x0A, 0x0A}), LastRequest(kCountTag));
    EXPECT_EQ(Body(" nRecCount : 10 nLivingCount : 10", "", 0), LastRecord("SetRecognizeCount"));
}

TEST_F(RecognitionSettings, SetRecognizeCountRefusesCountsOutsideOneToTen)
{
    const char* recText = "(nRecCount == 0) || (nRecCount > 10)";
    const char* livingText = "(nLivingCount == 0) || (nLivingCount > 10)";
    EXPECT_EQ(-4, SetRecognizeCount(dev, 0, 5));
    EXPECT_EQ(Failure(recText, " nRecCount : 0 nLivingCount : 5", "", -4), LastRecord("SetRecognizeCount"));
    EXPECT_EQ(-4, SetRecognizeCount(dev, 11, 5));
    EXPECT_EQ(Failure(recText, " nRecCount : 11 nLivingCount : 5", "", -4), LastRecord("SetRecognizeCount"));
    EXPECT_EQ(-4, SetRecognizeCount(dev, 5, 0));
    EXPECT_EQ(Failure(livingText, " nRecCount : 5 nLivingCount : 0", "", -4), LastRecord("SetRecognizeCount"));
    EXPECT_EQ(-4, SetRecognizeCount(dev, 5, 11));
    EXPECT_EQ(Failure(livingText, " nRecCount : 5 nLivingCount : 11", "", -4), LastRecord("SetRecognizeCount"));
    EXPECT_EQ(0u, SentCount(kCountTag));
}

TEST_F(RecognitionSettings, GetRecognizeCountReturnsTheStatusUnsigned)
{
    Answer(kCountTag, {0xFE, 0x03, 0x04});
    unsigned char rec = 0, living = 0;
    EXPECT_EQ(254, GetRecognizeCount(dev, &rec, &living));
    EXPECT_EQ((sim::Bytes{0x00}), LastRequest(kCountTag));
    EXPECT_EQ(3, rec);
    EXPECT_EQ(4, living);
    EXPECT_EQ(Body("", " pRecCount : 3 pLivingCount : 4", 254), LastRecord("GetRecognizeCount"));
}

TEST_F(RecognitionSettings, GetRecognizeCountShortAnswerLeavesTheOutputs)
{
    Answer(kCountTag, {0x00, 0x03});
    unsigned char rec = 77, living = 88;
    EXPECT_EQ(-8, GetRecognizeCount(dev, &rec, &living));
    EXPECT_EQ(77, rec);
    EXPECT_EQ(88, living);
    EXPECT_EQ(Failure("tlvMessage.nLength != 3", "", " invalid output", -8), LastRecord("GetRecognizeCount"));
}

TEST_F(RecognitionSettings, SetTemplateUpdateSendsTheSwitch)
{
    Answer(kTemplateTag, {0x00});
    EXPECT_EQ(0, SetTemplateUpdate(dev, 1));
    EXPECT_EQ((sim::Bytes{0x01, 0x01}), LastRequest(kTemplateTag));
    EXPECT_EQ(Body(" isUpdate : 1", "", 0), LastRecord("SetTemplateUpdate"));
    EXPECT_EQ(-4, SetTemplateUpdate(dev, 2));
    EXPECT_EQ(Failure("isUpdate != 0 && isUpdate != 1", " isUpdate : 2", "", -4), LastRecord("SetTemplateUpdate"));
    EXPECT_EQ(1u, SentCount(kTemplateTag));
}

TEST_F(RecognitionSettings, GetTemplateUpdateReturnsTheStatusAsASignedByte)
{
    Answer(kTemplateTag, {0xFE, 0x01});
    unsigned char isUpdate = 0;
    EXPECT_EQ(-2, GetTemplateUpdate(dev, &isUpdate));
    EXPECT_EQ((sim::Bytes{0x00}), LastRequest(kTemplateTag));
    EXPECT_EQ(1, isUpdate);
    EXPECT_EQ(Body("", " isUpdate : 1", -2), LastRecord("GetTemplateUpdate"));
    Answer(kTemplateTag, {0x7F, 0x00});
    EXPECT_EQ(127, GetTemplateUpdate(dev, &isUpdate));
    EXPECT_EQ(0, isUpdate);
}

TEST_F(RecognitionSettings, GetTemplateUpdateWantsTwoBytes)
{
    Answer(kTemplateTag, {0x00, 0x01, 0x00});
    unsigned char isUpdate = 9;
    EXPECT_EQ(-8, GetTemplateUpdate(dev, &isUpdate));
    EXPECT_EQ(9, isUpdate);
    EXPECT_EQ(Failure("tlvMessage.nLength != 2", "", " invalid output", -8), LastRecord("GetTemplateUpdate"));
}

using RecognitionSettingsOfTheModule = ModelDevice;

TEST_F(RecognitionSettingsOfTheModule, WhatIsSetIsReadBack)
{
    const char config[] = "{\"threshold\":0.91}";
    ASSERT_EQ(0, SetRecConfig(dev, config, strlen(config), 0));
    char text[64];
    ASSERT_EQ(0, GetRecConfig(dev, text, sizeof text, 0));
    EXPECT_STREQ(config, text);
    EXPECT_EQ(config, model.Settings().recognition.config);

    ASSERT_EQ(0, SetRecognizeCount(dev, 7, 2));
    unsigned char rec = 0, living = 0;
    ASSERT_EQ(0, GetRecognizeCount(dev, &rec, &living));
    EXPECT_EQ(7, rec);
    EXPECT_EQ(2, living);

    ASSERT_EQ(0, SetTemplateUpdate(dev, 1));
    unsigned char isUpdate = 0;
    ASSERT_EQ(0, GetTemplateUpdate(dev, &isUpdate));
    EXPECT_EQ(1, isUpdate);
    EXPECT_EQ(1, model.Settings().recognition.templateUpdate);
}
