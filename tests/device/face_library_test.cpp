// Face library commands through the exported functions against the simulated module.
#include <stdlib.h>
#include <string.h>

#include <functional>

#include "DeviceTest.h"

namespace {
const char kId[] = "alice";
const unsigned int kIdLength = 5;

// One command that takes an identifier, called with the identifier under test.
struct IdentifierCommand {
    const char* function;
    std::function<int(void* dev, const char* id, unsigned int length)> call;
    const char* refusedOutput;  // the output line of its refusal records
};

std::vector<IdentifierCommand> IdentifierCommands()
{
    static char feature[1385];
    memset(feature, 'f', 1384);
    static char buffer[64];
    static const char image[] = "JPEG";
    return {
        {"AddFace", [](void* d, const char* id, unsigned int n) { return AddFace(d, id, n); }, "[OUTPUT]\n"},
        {"AddFaceByImage",
         [](void* d, const char* id, unsigned int n) { return AddFaceByImage(d, id, n, image, 4); },
         "[OUTPUT] invalid output\n"},
        {"AddFaceReturnImage",
         [](void* d, const char* id, unsigned int n) {
             void* out = nullptr;
             unsigned int length = 0;
             return AddFaceReturnImage(d, id, n, &out, &length);
         },
         "[OUTPUT] invalid output\n"},
        {"AddFaceSlice",
         [](void* d, const char* id, unsigned int n) { return AddFaceSlice(d, id, n, 4, 0, 1, image, 4); },
         "[OUTPUT]\n"},
        {"DeleteFace", [](void* d, const char* id, unsigned int n) { return DeleteFace(d, 1, id, n); },
         "[OUTPUT]\n"},
        {"QueryFace", [](void* d, const char* id, unsigned int n) { return QueryFace(d, id, n, 0); }, "[OUTPUT]\n"},
        {"QueryFeature",
         [](void* d, const char* id, unsigned int n) { return QueryFeature(d, id, n, buffer, sizeof buffer); },
         "[OUTPUT] invalid output\n"},
    };
}

std::string FeatureOf(size_t length, char fill) { return std::string(length, fill); }
}  // namespace

using FaceLibrary = DeviceTest;

TEST_F(FaceLibrary, IdentifierChecksRefuseWithTheirTextsAndSendNothing)
{
    struct Case {
        const char* id;
        unsigned int length;
        const char* text;
    } cases[] = {
        {nullptr, 0, "pID == nullptr"},
        {"", 0, "!strlen(static_cast<char*>(const_cast<void*>(pID)))"},
        {kId, kIdLength + 1, "nIDLength != strlen(static_cast<char*>(const_cast<void*>(pID)))"},
    };
    for (const IdentifierCommand& command : IdentifierCommands()) {
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(command.function) + " / " + c.text);
            NewRecords records;
            EXPECT_EQ(-4, command.call(dev, c.id, c.length));
            std::vector<TraceEntry> added = records.Take();
            // DeleteFace's exported function writes its record about pID first.
            ASSERT_EQ(strcmp(command.function, "DeleteFace") == 0 ? 2u : 1u, added.size());
            EXPECT_EQ(command.function, added.back().function);
            EXPECT_EQ(Refused(c.text) + Input(" invalid input") + command.refusedOutput + "[RETURN] nRet : -4\n",
                      added.back().body);
        }
    }
    EXPECT_TRUE(sim.Requests().empty());
}

TEST_F(FaceLibrary, AddFaceSendsTheLiveVariantAndReturnsTheStatusAsASignedByte)
{
    struct Case {
        uint8_t status;
        int result;
    } cases[] = {{0x00, 0}, {0x05, 5}, {0x7F, 127}, {0x80, -128}, {0xFF, -1}};
    for (const Case& c : cases) {
        AnswerStatus(0x01, c.status);
        NewRecords records;
        EXPECT_EQ(c.result, AddFace(dev, kId, kIdLength)) << int(c.status);
        EXPECT_EQ(Input(" pID : " + Ptr(kId) + " nIDLength : 5") + "[OUTPUT]\n[RETURN] nRet : " +
                      std::to_string(c.result) + "\n",
                  records.Only("AddFace"));
    }
    EXPECT_EQ(Cat({{0x00}, Le32(5), BytesOf("alice")}), LastRequest(0x01));
}

TEST_F(FaceLibrary, AddFaceByImageReturnsTheStatusUnsigned)
{
    const char image[] = "\xFF\xD8jpeg";
    for (uint8_t status : {0x00, 0x05, 0xFF}) {
        AnswerStatus(0x01, status);
        NewRecords records;
        EXPECT_EQ(int(status), AddFaceByImage(dev, kId, kIdLength, image, 6));
        EXPECT_EQ(Input(" pID : " + Ptr(kId) + " nIDLength : 5 pImage : " + Ptr(image) + " nImageLength : 6") +
                      "[OUTPUT]\n[RETURN] nRet : " + std::to_string(status) + "\n",
                  records.Only("AddFaceByImage"));
    }
    EXPECT_EQ(Cat({{0x01}, Le32(5), BytesOf("alice"), Le32(6), {0xFF, 0xD8}, BytesOf("jpeg")}), LastRequest(0x01));
}

TEST_F(FaceLibrary, AddFaceByImageRefusesAMissingImage)
{
    const char image[] = "img";
    ExpectRefusal("AddFaceByImage", "pImage == nullptr", "[OUTPUT] invalid output\n",
                  [&] { return AddFaceByImage(dev, kId, kIdLength, nullptr, 3); });
    ExpectRefusal("AddFaceByImage", "nImageLength == 0", "[OUTPUT] invalid output\n",
                  [&] { return AddFaceByImage(dev, kId, kIdLength, image, 0); });
    EXPECT_EQ(0u, RequestCount(0x01));
}

TEST_F(FaceLibrary, AddFaceReturnImageWithAStatusOnlyAnswerHandsOutNoImage)
{
    AnswerStatus(0x01, 3);
    void* image = &image;  // overwritten with null
    unsigned int length = 77;
    NewRecords records;
    EXPECT_EQ(3, AddFaceReturnImage(dev, kId, kIdLength, &image, &length));
    EXPECT_EQ(nullptr, image);
    EXPECT_EQ(0u, length);
    EXPECT_EQ(Input(" pID : " + Ptr(kId) + " nIDLength : 5") + "[OUTPUT] ppImage : (nil) pImageLength : 0\n" +
                  "[RETURN] nRet : 3\n",
              records.Only("AddFaceReturnImage"));
    EXPECT_EQ(Cat({{0x02}, Le32(5), BytesOf("alice")}), LastRequest(0x01));
}

TEST_F(FaceLibrary, AddFaceReturnImageHandsOutAMallocdImageWithATrailingZero)
{
    Answer(0x01, Cat({{0x00}, Le32(5), {'J', 0x00, 'P', 'E', 'G'}}));
    void* image = nullptr;
    unsigned int length = 0;
    NewRecords records;
    ASSERT_EQ(0, AddFaceReturnImage(dev, kId, kIdLength, &image, &length));
    ASSERT_NE(nullptr, image);
    ASSERT_EQ(5u, length);
    const unsigned char* bytes = static_cast<const unsigned char*>(image);
    EXPECT_EQ(sim::Bytes({'J', 0x00, 'P', 'E', 'G', 0x00}), sim::Bytes(bytes, bytes + 6));
    EXPECT_EQ(Input(" pID : " + Ptr(kId) + " nIDLength : 5") + "[OUTPUT] ppImage : " + Ptr(image) +
                  " pImageLength : 5\n[RETURN] nRet : 0\n",
              records.Only("AddFaceReturnImage"));
    free(image);
}

TEST_F(FaceLibrary, AddFaceReturnImageReadsNoFurtherThanTheAnswer)
{
    // The module claims 100 bytes and sends 3: nothing past the answer is read.
    Answer(0x01, Cat({{0x00}, Le32(100), BytesOf("abc")}));
    void* image = nullptr;
    unsigned int length = 0;
    EXPECT_EQ(0, AddFaceReturnImage(dev, kId, kIdLength, &image, &length));
    ASSERT_NE(nullptr, image);
    EXPECT_EQ(100u, length);
    const unsigned char* bytes = static_cast<const unsigned char*>(image);
    EXPECT_EQ(sim::Bytes(101, 0), sim::Bytes(bytes, bytes + 101));
    free(image);
}

TEST_F(FaceLibrary, AddFaceSliceSendsTheLowByteOfALongIdentifierLength)
{
    std::string id(300, 'i');
    const char slice[] = "abcd";
    AnswerStatus(0x07, 0);
    NewRecords records;
    EXPECT_EQ(0, AddFaceSlice(dev, id.c_str(), 300, 1000, 996, 1, slice, 4));
    sim::Bytes expected = Cat({{44}, BytesOf(id), Le32(1000), Le32(996), {0x01}, BytesOf("abcd")});
    EXPECT_EQ(expected, LastRequest(0x07));
    EXPECT_EQ(Input(" pID : " + Ptr(id.c_str()) + " nIDLength : 300 nImageTotalLength : 1000 nPosition : 996 " +
                    "isLastSlice : 1 pSliceData : " + Ptr(slice) + " nSliceDataLength :4") +
                  "[OUTPUT]\n[RETURN] nRet : 0\n",
              records.Only("AddFaceSlice"));
}

TEST_F(FaceLibrary, AddFaceSliceChecksPositionLastFlagAndSlice)
{
    const char slice[] = "abcd";
    struct Case {
        unsigned int total, position;
        int last;
        const char* data;
        unsigned int length;
        const char* text;
    } cases[] = {
        {10, 11, 0, slice, 4, "nImageTotalLength < nPosition"},
        {10, 0, 2, slice, 4, "(isLastSlice != 0) && (isLastSlice != 1)"},
        {10, 0, -1, slice, 4, "(isLastSlice != 0) && (isLastSlice != 1)"},
        {10, 0, 0, nullptr, 4, "pSliceData == nullptr"},
        {10, 0, 0, slice, 0, "nSliceDataLength == 0"},
    };
    for (const Case& c : cases) {
        ExpectRefusal("AddFaceSlice", c.text, "[OUTPUT]\n", [&] {
            return AddFaceSlice(dev, kId, kIdLength, c.total, c.position, c.last, c.data, c.length);
        });
    }
    EXPECT_EQ(0u, RequestCount(0x07));
    // A position equal to the total passes.
    AnswerStatus(0x07, 0);
    EXPECT_EQ(0, AddFaceSlice(dev, kId, kIdLength, 10, 10, 0, slice, 4));
    EXPECT_EQ(Cat({{5}, BytesOf("alice"), Le32(10), Le32(10), {0x00}, BytesOf("abcd")}), LastRequest(0x07));
}

TEST_F(FaceLibrary, DeleteAllSendsOneZeroByteAndIgnoresTheIdentifier)
{
    AnswerStatus(0x02, 0);
    NewRecords records;
    EXPECT_EQ(0, DeleteFace(dev, 0, nullptr, 0));
    EXPECT_EQ(sim::Bytes({0x00}), LastRequest(0x02));
    std::vector<TraceEntry> added = records.Take();
    ASSERT_EQ(2u, added.size());
    EXPECT_EQ("DeleteFace", added[0].function);
    EXPECT_EQ("[ERROR] pID = (nil)\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : 0\n", added[0].body);
    EXPECT_EQ("DeleteFace", added[1].function);
    EXPECT_EQ(Input(" nMode : 0 pID : (nil) nIDLength : 0") + "[OUTPUT]\n[RETURN] nRet : 0\n", added[1].body);
    // With mode 0 even an inconsistent identifier is not looked at.
    EXPECT_EQ(0, DeleteFace(dev, 0, "xy", 7));
    EXPECT_EQ(sim::Bytes({0x00}), LastRequest(0x02));
}

TEST_F(FaceLibrary, DeleteOneSendsTheIdentifierAndRefusesOtherModes)
{
    AnswerStatus(0x02, 0xFF);
    EXPECT_EQ(255, DeleteFace(dev, 1, "bob", 3));
    EXPECT_EQ(Cat({{0x01}, Le32(3), BytesOf("bob")}), LastRequest(0x02));
    for (int mode : {2, -1}) {
        NewRecords records;
        EXPECT_EQ(-4, DeleteFace(dev, mode, "bob", 3));
        std::vector<TraceEntry> added = records.Take();
        ASSERT_EQ(2u, added.size());
        EXPECT_EQ("[ERROR] pID = " + Ptr("bob") + "\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : 0\n",
                  added[0].body);
        EXPECT_EQ(Refused("nMode invalid") + Input(" invalid input") + "[OUTPUT]\n[RETURN] nRet : -4\n",
                  added[1].body);
    }
    EXPECT_EQ(1u, RequestCount(0x02));
}

TEST_F(FaceLibrary, QueryFaceSendsModeZeroAndRefusesOthers)
{
    AnswerStatus(0x03, 1);
    NewRecords records;
    EXPECT_EQ(1, QueryFace(dev, kId, kIdLength, 0));
    EXPECT_EQ(Input(" pID : " + Ptr(kId) + " nIDLength : 5 nMode : 0 ") + "[OUTPUT]\n[RETURN] nRet : 1\n",
              records.Only("QueryFace"));
    EXPECT_EQ(Cat({{0x00}, Le32(5), BytesOf("alice")}), LastRequest(0x03));
    ExpectRefusal("QueryFace", "nMode != 0", "[OUTPUT]\n", [&] { return QueryFace(dev, kId, kIdLength, 1); });
    EXPECT_EQ(1u, RequestCount(0x03));
}

TEST_F(FaceLibrary, AddFeatureSendsTheFixedFeatureLength)
{
    std::string feature = FeatureOf(1384, 'f');
    AnswerStatus(0x05, 0);
    NewRecords records;
    EXPECT_EQ(0, AddFeature(dev, kId, kIdLength, feature.c_str(), 1384));
    EXPECT_EQ(Cat({Le32(5), BytesOf("alice"), Le32(1384), BytesOf(feature)}), LastRequest(0x05));
    EXPECT_EQ(Input(" pID : " + Ptr(kId) + " nIDLength : 5 pFeature : " + Ptr(feature.c_str()) +
                    " nFeatureLength : 1384") +
                  "[OUTPUT]\n[RETURN] nRet : 0\n",
              records.Only("AddFeature"));
}

TEST_F(FaceLibrary, AddFeatureRefusalsKeepTheirMismatchedTexts)
{
    std::string feature = FeatureOf(1384, 'f');
    std::string shortFeature = FeatureOf(1383, 'f');
    struct Case {
        const char* id;
        unsigned int idLength;
        const char* feature;
        unsigned int featureLength;
        const char* text;
    } cases[] = {
        {nullptr, 0, feature.c_str(), 1384, "pID == nullptr"},
        {"", 0, feature.c_str(), 1384, "!strlen(static_cast<char*>(const_cast<void*>(pFeature)))"},
        {kId, 4, feature.c_str(), 1384, "nIDLength != 1384"},
        {kId, kIdLength, shortFeature.c_str(), 1384, "strlen(static_cast<char*>(const_cast<void*>(pID))) != 1384"},
        {kId, kIdLength, feature.c_str(), 1000, "nIDLength != 1384"},
        {kId, kIdLength, nullptr, 1384, "pFeature == nullptr"},
    };
    for (const Case& c : cases) {
        ExpectRefusal("AddFeature", c.text, "[OUTPUT]\n",
                      [&] { return AddFeature(dev, c.id, c.idLength, c.feature, c.featureLength); });
    }
    EXPECT_EQ(0u, RequestCount(0x05));
}

TEST_F(FaceLibrary, QueryFeatureCopiesTheFeatureOfTheMatchingIdentifier)
{
    Answer(0x06, Cat({{0x00}, Le32(5), BytesOf("alice"), Le32(5), BytesOf("feat!")}));
    char feature[16];
    memset(feature, 'x', sizeof feature);
    NewRecords records;
    EXPECT_EQ(0, QueryFeature(dev, kId, kIdLength, feature, sizeof feature));
    EXPECT_EQ("feat!xxxxxxxxxxx", std::string(feature, sizeof feature));
    EXPECT_EQ(Cat({Le32(5), BytesOf("alice")}), LastRequest(0x06));
    EXPECT_EQ(Input(" pID : alice nIDLength : 5 nFeatureLength : 16") + "[OUTPUT] pFeature : " + Ptr(feature) +
                  "\n[RETURN] nRet : 0\n",
              records.Only("QueryFeature"));
}

TEST_F(FaceLibrary, QueryFeatureFillsASmallBufferWithoutTerminator)
{
    Answer(0x06, Cat({{0x00}, Le32(5), BytesOf("alice"), Le32(8), BytesOf("12345678")}));
    char feature[8];
    memset(feature, 'x', sizeof feature);
    char guard[8];
    memset(guard, 'g', sizeof guard);
    EXPECT_EQ(0, QueryFeature(dev, kId, kIdLength, feature, 4));
    EXPECT_EQ("1234xxxx", std::string(feature, sizeof feature));
    EXPECT_EQ(std::string(8, 'g'), std::string(guard, sizeof guard));
    // A feature claimed longer than the answer is cut to what arrived.
    Answer(0x06, Cat({{0x00}, Le32(5), BytesOf("alice"), Le32(1000), BytesOf("ab")}));
    memset(feature, 'x', sizeof feature);
    EXPECT_EQ(0, QueryFeature(dev, kId, kIdLength, feature, sizeof feature));
    EXPECT_EQ("ab", std::string(feature, 2));
}

TEST_F(FaceLibrary, QueryFeatureWithAnotherIdentifierInTheAnswerFails)
{
    const std::string mismatch =
        "[ERROR] tlvMessage.nLength != nIDLength || strncmp(static_cast<const OS_INT8*>(pID),static_cast<const "
        "OS_INT8*>(tlvMessage.pValue),nIDLength) != 0\n";
    const sim::Bytes answers[] = {
        Cat({{0x00}, Le32(5), BytesOf("alicf"), Le32(3), BytesOf("abc")}),
        Cat({{0x00}, Le32(4), BytesOf("alic"), Le32(3), BytesOf("abc")}),
        Cat({{0x00}, Le32(6), BytesOf("alicex"), Le32(3), BytesOf("abc")}),
    };
    for (const sim::Bytes& answer : answers) {
        Answer(0x06, answer);
        char feature[8];
        memset(feature, 'x', sizeof feature);
        NewRecords records;
        EXPECT_EQ(-7, QueryFeature(dev, kId, kIdLength, feature, sizeof feature));
        EXPECT_EQ(std::string(8, 'x'), std::string(feature, sizeof feature));
        EXPECT_EQ(mismatch + Input(" pID : " + Ptr(kId) + " nIDLength : 5 nFeatureLength : 8") +
                      "[OUTPUT] invalid output\n[RETURN] nRet : -7\n",
                  records.Only("QueryFeature"));
    }
}

TEST_F(FaceLibrary, QueryFeatureStatusAndShortAnswers)
{
    char feature[8];
    memset(feature, 'x', sizeof feature);
    const std::string inputs = Input(" pID : " + Ptr(kId) + " nIDLength : 5 nFeatureLength : 8");
    Answer(0x06, Cat({{0x09}, Le32(5), BytesOf("alice"), Le32(3), BytesOf("abc")}));
    NewRecords status;
    EXPECT_EQ(9, QueryFeature(dev, kId, kIdLength, feature, sizeof feature));
    EXPECT_EQ(inputs + "[OUTPUT] invalid output\n[RETURN] nRet : 9\n", status.Only("QueryFeature"));
    // 1 + 4 + 5 + 4 bytes: the check wants more.
    Answer(0x06, Cat({{0x00}, Le32(5), BytesOf("alice"), Le32(0)}));
    NewRecords shortAnswer;
    EXPECT_EQ(-8, QueryFeature(dev, kId, kIdLength, feature, sizeof feature));
    EXPECT_EQ("[ERROR] tlvMessage.nLength <= 1 + 4 + nIDLength + 4\n" + inputs +
                  "[OUTPUT] invalid output\n[RETURN] nRet : -8\n",
              shortAnswer.Only("QueryFeature"));
    Answer(0x06, {});
    NewRecords empty;
    EXPECT_EQ(-8, QueryFeature(dev, kId, kIdLength, feature, sizeof feature));
    EXPECT_EQ("[ERROR] tlvMessage.nLength < 1\n" + inputs + "[OUTPUT] invalid output\n[RETURN] nRet : -8\n",
              empty.Only("QueryFeature"));
    EXPECT_EQ(std::string(8, 'x'), std::string(feature, sizeof feature));
}

TEST_F(FaceLibrary, QueryFeatureRefusesAMissingBuffer)
{
    char feature[4];
    ExpectRefusal("QueryFeature", "pFeature == nullptr", "[OUTPUT] invalid output\n",
                  [&] { return QueryFeature(dev, kId, kIdLength, nullptr, 4); });
    ExpectRefusal("QueryFeature", "nFeatureLength == 0", "[OUTPUT] invalid output\n",
                  [&] { return QueryFeature(dev, kId, kIdLength, feature, 0); });
}

namespace {
// The module's identifier list, handed out in chunks of `chunk` bytes from the
// requested offset; the position it reports is its own and deliberately off.
sim::Handler IdListModule(const std::string& list, size_t chunk)
{
    return [list, chunk](const sim::Request& request) {
        size_t offset = request.value.size() == 4 ? request.value[0] | request.value[1] << 8 |
                                                        request.value[2] << 16 | request.value[3] << 24
                                                  : 0;
        std::string piece = offset < list.size() ? list.substr(offset, chunk) : std::string();
        uint8_t last = offset + chunk >= list.size() ? 1 : 0;
        return std::optional<sim::Bytes>(Cat({{0x00, last}, Le32(7777), BytesOf(piece)}));
    };
}

std::vector<sim::Bytes> RequestValues(const sim::ModuleSimulator& module, uint16_t tag)
{
    std::vector<sim::Bytes> values;
    for (const sim::Request& request : module.Requests())
        if (request.tag == tag)
            values.push_back(request.value);
    return values;
}
}  // namespace

TEST_F(FaceLibrary, GetDeviceFaceIDGathersTheListWithARunningOffset)
{
    const std::string list = "alice,bob,carol,dave,eve";  // 24 bytes: chunks of 7 at 0, 7, 14, 21
    sim.SetHandler(0x08, IdListModule(list, 7));
    char ids[64];
    memset(ids, 'x', sizeof ids);
    NewRecords records;
    EXPECT_EQ(0, GetDeviceFaceID(dev, ids, sizeof ids));
    EXPECT_STREQ(list.c_str(), ids);
    EXPECT_EQ(std::vector<sim::Bytes>({Le32(0), Le32(7), Le32(14), Le32(21)}), RequestValues(sim, 0x08));
    EXPECT_EQ(Input(" nIDListLength : 64") + "[OUTPUT] pIDList : " + Ptr(ids) + "\n[RETURN] nRet : 0\n",
              records.Only("GetDeviceFaceID"));
}

TEST_F(FaceLibrary, GetDeviceFaceIDCutsAListThatDoesNotFitAndTerminatesIt)
{
    const std::string list = "alice,bob,carol,dave,eve";
    sim.SetHandler(0x08, IdListModule(list, 7));
    unsigned char region[10 + 32];
    memset(region, 0xAA, sizeof region);
    EXPECT_EQ(0, GetDeviceFaceID(dev, region, 10));
    EXPECT_EQ(std::string("alice,bob"), std::string(reinterpret_cast<char*>(region)));
    EXPECT_EQ(0, region[9]);
    EXPECT_EQ(sim::Bytes(32, 0xAA), sim::Bytes(region + 10, region + sizeof region)) << "written past the list";
    // The gathering runs to the module's last slice all the same.
    EXPECT_EQ(4u, RequestCount(0x08));
    // A one-byte list holds the terminator only.
    memset(region, 0xAA, sizeof region);
    EXPECT_EQ(0, GetDeviceFaceID(dev, region, 1));
    EXPECT_EQ(0, region[0]);
    EXPECT_EQ(sim::Bytes(41, 0xAA), sim::Bytes(region + 1, region + sizeof region));
}

TEST_F(FaceLibrary, GetDeviceFaceIDStopsAChunkAtAZeroByte)
{
    int pass = 0;
    sim.SetHandler(0x08, [&pass](const sim::Request&) {
        ++pass;
        sim::Bytes text = pass == 1 ? sim::Bytes({'a', 'b', 0x00, 'z', 'z'}) : BytesOf("cd");
        return std::optional<sim::Bytes>(Cat({{0x00, uint8_t(pass == 2)}, Le32(0), text}));
    });
    char ids[16];
    EXPECT_EQ(0, GetDeviceFaceID(dev, ids, sizeof ids));
    EXPECT_STREQ("abcd", ids);
    // The offset counts every byte received, the zero and what followed it too.
    EXPECT_EQ(std::vector<sim::Bytes>({Le32(0), Le32(5)}), RequestValues(sim, 0x08));
}

TEST_F(FaceLibrary, GetDeviceFaceIDFailures)
{
    char ids[32];
    const std::string inputs = Input(" nIDListLength : 32");
    Answer(0x08, Cat({{0x00, 0x01}, Le32(0)}));
    NewRecords sixBytes;
    EXPECT_EQ(-8, GetDeviceFaceID(dev, ids, sizeof ids));
    EXPECT_EQ("[ERROR] tlvMessage.nLength  <= 6\n" + inputs + "[OUTPUT] invalid output\n[RETURN] nRet : -8\n",
              sixBytes.Only("GetDeviceFaceID"));
    // A failing status on the second pass keeps the first chunk.
    int pass = 0;
    sim.SetHandler(0x08, [&pass](const sim::Request&) {
        ++pass;
        return std::optional<sim::Bytes>(Cat({{uint8_t(pass == 1 ? 0 : 0x21), 0x00}, Le32(0), BytesOf("abc")}));
    });
    NewRecords status;
    EXPECT_EQ(0x21, GetDeviceFaceID(dev, ids, sizeof ids));
    EXPECT_STREQ("abc", ids);
    EXPECT_EQ(inputs + "[OUTPUT] invalid output\n[RETURN] nRet : 33\n", status.Only("GetDeviceFaceID"));
    NewRecords nullList;
    EXPECT_EQ(-4, GetDeviceFaceID(dev, nullptr, 32));
    EXPECT_EQ(Refused("pIDList == nullptr") + inputs + "[OUTPUT] invalid output\n[RETURN] nRet : -4\n",
              nullList.Only("GetDeviceFaceID"));
    NewRecords zero;
    EXPECT_EQ(-4, GetDeviceFaceID(dev, ids, 0));
    EXPECT_EQ(Refused("nIDListLength == 0") + Input(" nIDListLength : 0") +
                  "[OUTPUT] invalid output\n[RETURN] nRet : -4\n",
              zero.Only("GetDeviceFaceID"));
}

TEST_F(FaceLibrary, GetDeviceFaceLibraryNumReadsTheCountWhateverTheStatus)
{
    unsigned int count = 0;
    Answer(0x35, Cat({{0x00}, Le32(42)}));
    NewRecords records;
    EXPECT_EQ(0, GetDeviceFaceLibraryNum(dev, &count));
    EXPECT_EQ(42u, count);
    EXPECT_EQ(Input("") + "[OUTPUT] nFaceNum : 42\n[RETURN] nRet : 0\n", records.Only("GetDeviceFaceLibraryNum"));
    EXPECT_EQ(sim::Bytes(), LastRequest(0x35));
    Answer(0x35, Cat({{0xFF}, Le32(3)}));
    EXPECT_EQ(-1, GetDeviceFaceLibraryNum(dev, &count));
    EXPECT_EQ(3u, count);
    Answer(0x35, Cat({{0x00}, Le32(7), {0x00}}));
    NewRecords tooLong;
    EXPECT_EQ(-8, GetDeviceFaceLibraryNum(dev, &count));
    EXPECT_EQ(3u, count);
    EXPECT_EQ("[ERROR] tlvMessage.nLength != 5\n" + Input("") + "[OUTPUT] invalid output\n[RETURN] nRet : -8\n",
              tooLong.Only("GetDeviceFaceLibraryNum"));
}

TEST_F(FaceLibrary, EnrolmentWaitsLongerForItsAnswerThanOtherCommands)
{
    // An answer 12.5 s late: inside the enrolment commands' wait, past the others'.
    sim.SetAnswerDelay(12500);
    AnswerStatus(0x01, 0);
    EXPECT_EQ(0, AddFace(dev, kId, kIdLength));
    AnswerStatus(0x03, 0);
    EXPECT_EQ(-6, QueryFace(dev, kId, kIdLength, 0));
    EXPECT_EQ("[ERROR] m_pCommandManager->Execute(&syncCommand) != 0\n" +
                  Input(" pID : " + Ptr(kId) + " nIDLength : 5 nMode : 0 ") + "[OUTPUT]\n[RETURN] nRet : -6\n",
              LastRecord("QueryFace"));
}
