// Face library commands through the exported functions against the simulated module.
#include <stdlib.h>
#include <string.h>

#include "DeviceTest.h"

namespace {
const char kId[] = "alice";
const sim::Bytes kIdValue = {5, 0, 0, 0, 'a', 'l', 'i', 'c', 'e'};
const char kQueryMismatch[] = "tlvMessage.nLength != nIDLength || strncmp(static_cast<const OS_INT8*>(pID),static_cast"
                              "<const OS_INT8*>(tlvMessage.pValue),nIDLength) != 0";
}  // namespace

using FaceLibrary = DeviceTest;

TEST_F(FaceLibrary, IdentifierChecksRefuseWithTheirTextsAndSendNothing)
{
    static char buffer[64];
    static void* image;
    static unsigned int length;
    struct Command {
        const char* function;
        int (*call)(void* dev, const char* id, unsigned int length);
        const char* output;
    } commands[] = {
        {"AddFace", [](void* d, const char* id, unsigned n) { return AddFace(d, id, n); }, ""},
        {"AddFaceByImage", [](void* d, const char* id, unsigned n) { return AddFaceByImage(d, id, n, "JPEG", 4); },
         " invalid output"},
        {"AddFaceReturnImage",
         [](void* d, const char* id, unsigned n) { return AddFaceReturnImage(d, id, n, &image, &length); },
         " invalid output"},
        {"AddFaceSlice", [](void* d, const char* id, unsigned n) { return AddFaceSlice(d, id, n, 4, 0, 1, "JPEG", 4); },
         ""},
        {"DeleteFace", [](void* d, const char* id, unsigned n) { return DeleteFace(d, 1, id, n); }, ""},
        {"QueryFace", [](void* d, const char* id, unsigned n) { return QueryFace(d, id, n, 0); }, ""},
        {"QueryFeature", [](void* d, const char* id, unsigned n) { return QueryFeature(d, id, n, buffer, 64); },
         " invalid output"},
    };
    struct Case {
        const char* id;
        unsigned int length;
        const char* text;
    } cases[] = {
        {nullptr, 0, "pID == nullptr"},
        {"", 0, "!strlen(static_cast<char*>(const_cast<void*>(pID)))"},
        {kId, 6, "nIDLength != strlen(static_cast<char*>(const_cast<void*>(pID)))"},
    };
    std::vector<Row> rows;
    for (const Command& command : commands)
        for (const Case& c : cases)
            rows.push_back({command.function, [this, command, c] { return command.call(dev, c.id, c.length); }, -4,
                            NoteOf(command.function, c.id) + Refusal(c.text, command.output)});
    Check(rows);
}

TEST_F(FaceLibrary, OtherArgumentChecks)
{
    const std::string feature(1384, 'f'), shortFeature(1383, 'f');
    char buffer[4];
    auto addFeature = [&](const char* id, unsigned int idLength, const char* f, unsigned int n, const char* text) {
        return Row{"AddFeature", [=] { return AddFeature(dev, id, idLength, f, n); }, -4, Refusal(text)};
    };
    auto slice = [&](unsigned int total, unsigned int position, int last, const char* data, unsigned int n,
                     const char* text) {
        return Row{"AddFaceSlice", [=] { return AddFaceSlice(dev, kId, 5, total, position, last, data, n); }, -4,
                   Refusal(text)};
    };
    const char* const lastSlice = "(isLastSlice != 0) && (isLastSlice != 1)";
    Check({
        {"AddFaceByImage", [&] { return AddFaceByImage(dev, kId, 5, nullptr, 3); }, -4,
         Refusal("pImage == nullptr", " invalid output")},
        {"AddFaceByImage", [&] { return AddFaceByImage(dev, kId, 5, "img", 0); }, -4,
         Refusal("nImageLength == 0", " invalid output")},
        slice(10, 11, 0, "abcd", 4, "nImageTotalLength < nPosition"),
        slice(10, 0, 2, "abcd", 4, lastSlice),
        slice(10, 0, -1, "abcd", 4, lastSlice),
        slice(10, 0, 0, nullptr, 4, "pSliceData == nullptr"),
        slice(10, 0, 0, "abcd", 0, "nSliceDataLength == 0"),
        {"DeleteFace", [&] { return DeleteFace(dev, 2, kId, 5); }, -4,
         DeleteFaceNote(kId) + Refusal("nMode invalid")},
        {"DeleteFace", [&] { return DeleteFace(dev, -1, kId, 5); }, -4,
         DeleteFaceNote(kId) + Refusal("nMode invalid")},
        {"QueryFace", [&] { return QueryFace(dev, kId, 5, 1); }, -4, Refusal("nMode != 0")},
        // Some texts name another argument than the one checked; they stay as they are.
        addFeature(nullptr, 0, feature.c_str(), 1384, "pID == nullptr"),
        addFeature("", 0, feature.c_str(), 1384, "!strlen(static_cast<char*>(const_cast<void*>(pFeature)))"),
        addFeature(kId, 4, feature.c_str(), 1384, "nIDLength != 1384"),
        addFeature(kId, 5, shortFeature.c_str(), 1384, "strlen(static_cast<char*>(const_cast<void*>(pID))) != 1384"),
        addFeature(kId, 5, feature.c_str(), 1000, "nIDLength != 1384"),
        addFeature(kId, 5, nullptr, 1384, "pFeature == nullptr"),
        {"QueryFeature", [&] { return QueryFeature(dev, kId, 5, nullptr, 4); }, -4,
         Refusal("pFeature == nullptr", " invalid output")},
        {"QueryFeature", [&] { return QueryFeature(dev, kId, 5, buffer, 0); }, -4,
         Refusal("nFeatureLength == 0", " invalid output")},
        {"GetDeviceFaceID", [&] { return GetDeviceFaceID(dev, nullptr, 32); }, -4,
         Failure("pIDList == nullptr", " nIDListLength : 32", " invalid output", -4)},
        {"GetDeviceFaceID", [&] { return GetDeviceFaceID(dev, buffer, 0); }, -4,
         Failure("nIDListLength == 0", " nIDListLength : 0", " invalid output", -4)},
    });
}

TEST_F(FaceLibrary, RequestsStatusesAndRecords)
{
    const std::string id = " pID : " + Ptr(kId) + " nIDLength : 5";
    const std::string longId(300, 'i'), feature(1384, 'f');
    const char image[] = "\xFF\xD8jpeg", slice[] = "abcd", bob[] = "bob", big[] = "big";
    sim::Bytes large(300 * 1024);
    for (size_t i = 0; i < large.size(); ++i)
        large[i] = static_cast<uint8_t>(i * 7 + 3);
    auto addFace = [&](uint8_t status, int result) {
        return Row{"AddFace", [&] { return AddFace(dev, kId, 5); }, result, Body(id, "", result), 0x01, {status},
                   Cat({{0x00}, kIdValue})};
    };
    unsigned int count = 0;
    auto faceCount = [&](const sim::Bytes& answer, int result, unsigned int expected, const std::string& record) {
        return Row{"GetDeviceFaceLibraryNum",
                   [&count, expected, this] {
                       int r = GetDeviceFaceLibraryNum(dev, &count);
                       EXPECT_EQ(expected, count);
                       return r;
                   },
                   result, record, 0x35, answer, {}};
    };
    char buffer[8];
    const std::string queryInputs = id + " nFeatureLength : 8";
    auto queryFeature = [&](const sim::Bytes& answer, int result, const std::string& record) {
        return Row{"QueryFeature",
                   [&] {
                       memset(buffer, 'x', sizeof buffer);
                       int r = QueryFeature(dev, kId, 5, buffer, sizeof buffer);
                       EXPECT_EQ(std::string(8, 'x'), std::string(buffer, 8)) << "a failed query leaves the buffer";
                       return r;
                   },
                   result, record, 0x06, answer, kIdValue};
    };
    Check({
        // AddFace widens a signed status byte; the other commands pass it on unsigned.
        addFace(0x7F, 127), addFace(0x80, -128), addFace(0xFF, -1),
        {"AddFaceByImage", [&] { return AddFaceByImage(dev, kId, 5, image, 6); }, 255,
         Body(id + " pImage : " + Ptr(image) + " nImageLength : 6", "", 255), 0x01, {0xFF},
         Cat({{0x01}, kIdValue, Le32(6), BytesOf(image)})},
        // Far larger than the serial driver's buffer, and still whole.
        {"AddFaceByImage", [&] { return AddFaceByImage(dev, big, 3, large.data(), 300 * 1024); }, 0,
         Body(" pID : " + Ptr(big) + " nIDLength : 3 pImage : " + Ptr(large.data()) + " nImageLength : 307200", "",
              0),
         0x01, {0x00}, Cat({{0x01}, Le32(3), BytesOf(big), Le32(300 * 1024), large})},
        // A 300-byte identifier goes out after the low byte of its length.
        {"AddFaceSlice", [&] { return AddFaceSlice(dev, longId.c_str(), 300, 1000, 996, 1, slice, 4); }, 0,
         Body(" pID : " + Ptr(longId.c_str()) + " nIDLength : 300 nImageTotalLength : 1000 nPosition : 996 " +
                  "isLastSlice : 1 pSliceData : " + Ptr(slice) + " nSliceDataLength :4",
              "", 0),
         0x07, {0x00}, Cat({{44}, BytesOf(longId), Le32(1000), Le32(996), {0x01}, BytesOf(slice)})},
        {"AddFaceSlice", [&] { return AddFaceSlice(dev, kId, 5, 10, 10, 0, slice, 4); }, 0,
         Body(id + " nImageTotalLength : 10 nPosition : 10 isLastSlice : 0 pSliceData : " + Ptr(slice) +
                  " nSliceDataLength :4",
              "", 0),
         0x07, {0x00}, Cat({{5}, BytesOf(kId), Le32(10), Le32(10), {0x00}, BytesOf(slice)})},
        // Deleting all sends one zero byte.
        {"DeleteFace", [&] { return DeleteFace(dev, 0, nullptr, 0); }, 0,
         DeleteFaceNote(nullptr) + Body(" nMode : 0 pID : (nil) nIDLength : 0", "", 0), 0x02, {0x00}, {0x00}},
        {"DeleteFace", [&] { return DeleteFace(dev, 1, bob, 3); }, 255,
         DeleteFaceNote(bob) + Body(" nMode : 1 pID : " + Ptr(bob) + " nIDLength : 3", "", 255), 0x02, {0xFF},
         Cat({{0x01}, Le32(3), BytesOf(bob)})},
        {"QueryFace", [&] { return QueryFace(dev, kId, 5, 0); }, 1, Body(id + " nMode : 0 ", "", 1), 0x03, {0x01},
         Cat({{0x00}, kIdValue})},
        {"AddFeature", [&] { return AddFeature(dev, kId, 5, feature.c_str(), 1384); }, 0,
         Body(id + " pFeature : " + Ptr(feature.c_str()) + " nFeatureLength : 1384", "", 0), 0x05, {0x00},
         Cat({kIdValue, Le32(1384), BytesOf(feature)})},
        // The count is read whatever the status; the status byte is signed here too.
        faceCount(Cat({{0x00}, Le32(42)}), 0, 42, Body("", " nFaceNum : 42", 0)),
        faceCount(Cat({{0xFF}, Le32(3)}), -1, 3, Body("", " nFaceNum : 3", -1)),
        faceCount(Cat({{0x00}, Le32(7), {0x00}}), -8, 3,
                  Failure("tlvMessage.nLength != 5", "", " invalid output", -8)),
        // The answer must carry the identifier asked for, before any feature.
        queryFeature(Cat({{0x00}, Le32(5), BytesOf("alicf"), Le32(3), BytesOf("abc")}), -7,
                     Failure(kQueryMismatch, queryInputs, " invalid output", -7)),
        queryFeature(Cat({{0x00}, Le32(4), BytesOf("alic"), Le32(3), BytesOf("abc")}), -7,
                     Failure(kQueryMismatch, queryInputs, " invalid output", -7)),
        queryFeature(Cat({{0x09}, kIdValue, Le32(3), BytesOf("abc")}), 9, Body(queryInputs, " invalid output", 9)),
        queryFeature(Cat({{0x00}, kIdValue, Le32(0)}), -8,
                     Failure("tlvMessage.nLength <= 1 + 4 + nIDLength + 4", queryInputs, " invalid output", -8)),
        queryFeature({}, -8, Failure("tlvMessage.nLength < 1", queryInputs, " invalid output", -8)),
        {"GetDeviceFaceID", [&] { return GetDeviceFaceID(dev, buffer, 8); }, -8,
         Failure("tlvMessage.nLength  <= 6", " nIDListLength : 8", " invalid output", -8), 0x08,
         Cat({{0x00, 0x01}, Le32(0)}), Le32(0)},
    });
}

TEST_F(FaceLibrary, ImagesAndFeaturesAreHandedOutWithinTheAnswer)
{
    void* image = &image;  // overwritten with null
    unsigned int length = 77;
    const std::string id = " pID : " + Ptr(kId) + " nIDLength : 5";
    Answer(0x01, {0x03});
    EXPECT_EQ(3, AddFaceReturnImage(dev, kId, 5, &image, &length));
    EXPECT_EQ(nullptr, image);
    EXPECT_EQ(0u, length);
    EXPECT_EQ(Body(id, " ppImage : (nil) pImageLength : 0", 3), LastRecord("AddFaceReturnImage"));
    EXPECT_EQ(Cat({{0x02}, kIdValue}), LastRequest(0x01));
    // A malloc'd copy with a trailing zero.
    Answer(0x01, Cat({{0x00}, Le32(5), {'J', 0x00, 'P', 'E', 'G'}}));
    ASSERT_EQ(0, AddFaceReturnImage(dev, kId, 5, &image, &length));
    ASSERT_EQ(5u, length);
    EXPECT_EQ(sim::Bytes({'J', 0x00, 'P', 'E', 'G', 0x00}), sim::Bytes((uint8_t*)image, (uint8_t*)image + 6));
    EXPECT_EQ(Body(id, " ppImage : " + Ptr(image) + " pImageLength : 5", 0), LastRecord("AddFaceReturnImage"));
    free(image);
    // A length claimed past the answer: the claimed length, in a buffer left zero.
    Answer(0x01, Cat({{0x00}, Le32(100), BytesOf("abc")}));
    EXPECT_EQ(0, AddFaceReturnImage(dev, kId, 5, &image, &length));
    ASSERT_EQ(100u, length);
    EXPECT_EQ(sim::Bytes(101, 0x00), sim::Bytes((uint8_t*)image, (uint8_t*)image + 101));
    free(image);
    // The largest claim: length + 1 computed without wrapping.
    Answer(0x04, Cat({{0x00}, Le32(0xFFFFFFFFu), BytesOf("abc")}));
    ASSERT_EQ(0, StaticFaceCompare(dev, &image, &length));
    EXPECT_EQ(0xFFFFFFFFu, length);
    ASSERT_NE(nullptr, image);
    EXPECT_EQ(0, static_cast<uint8_t*>(image)[0xFFFFFFFFu]);
    free(image);
    // QueryFeature copies at most the buffer, without a terminator, and no more than arrived.
    char feature[16];
    memset(feature, 'x', sizeof feature);
    Answer(0x06, Cat({{0x00}, kIdValue, Le32(8), BytesOf("12345678")}));
    EXPECT_EQ(0, QueryFeature(dev, kId, 5, feature, 4));
    EXPECT_EQ("1234xxxxxxxxxxxx", std::string(feature, sizeof feature));
    EXPECT_EQ(Body(" pID : alice nIDLength : 5 nFeatureLength : 4", " pFeature : " + Ptr(feature), 0),
              LastRecord("QueryFeature"));
    Answer(0x06, Cat({{0x00}, kIdValue, Le32(1000), BytesOf("ab")}));
    EXPECT_EQ(0, QueryFeature(dev, kId, 5, feature, sizeof feature));
    EXPECT_EQ("ab34xxxxxxxxxxxx", std::string(feature, sizeof feature));
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

TEST_F(FaceLibrary, GetDeviceFaceIDGathersTheListWithARunningOffsetAndCutsItToFit)
{
    const std::string list = "alice,bob,carol,dave,eve";  // 24 bytes: chunks of 7 at 0, 7, 14, 21
    sim.SetHandler(0x08, IdListModule(list, 7));
    unsigned char ids[64 + 32];
    memset(ids, 0xAA, sizeof ids);
    EXPECT_EQ(0, GetDeviceFaceID(dev, ids, 64));
    EXPECT_EQ(list, std::string((char*)ids));
    EXPECT_EQ(std::vector<sim::Bytes>({Le32(0), Le32(7), Le32(14), Le32(21)}), RequestValues(sim, 0x08));
    EXPECT_EQ(Body(" nIDListLength : 64", " pIDList : " + Ptr(ids), 0), LastRecord("GetDeviceFaceID"));
    // A list that does not fit is cut and terminated, and the gathering still runs to the last slice.
    for (unsigned int size : {10u, 1u}) {
        sim.ClearRequests();
        memset(ids, 0xAA, sizeof ids);
        EXPECT_EQ(0, GetDeviceFaceID(dev, ids, size));
        EXPECT_EQ(list.substr(0, size - 1), std::string((char*)ids));
        EXPECT_EQ(sim::Bytes(sizeof ids - size, 0xAA), sim::Bytes(ids + size, ids + sizeof ids)) << "written past";
        EXPECT_EQ(4u, RequestCount(0x08));
    }
}

TEST_F(FaceLibrary, GetDeviceFaceIDStopsAChunkAtAZeroAndKeepsWhatCameBeforeAFailure)
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
    pass = 0;
    sim.SetHandler(0x08, [&pass](const sim::Request&) {
        ++pass;
        return std::optional<sim::Bytes>(Cat({{uint8_t(pass == 1 ? 0 : 0x21), 0x00}, Le32(0), BytesOf("abc")}));
    });
    EXPECT_EQ(0x21, GetDeviceFaceID(dev, ids, sizeof ids));
    EXPECT_STREQ("abc", ids);
    EXPECT_EQ(Body(" nIDListLength : 16", " invalid output", 33), LastRecord("GetDeviceFaceID"));
}

TEST_F(FaceLibrary, EnrolmentWaitsLongerForItsAnswerThanOtherCommands)
{
    // An answer 12.5 s late: inside the enrolment commands' wait, past the others'.
    sim.SetAnswerDelay(12500);
    Answer(0x01, {0x00});
    EXPECT_EQ(0, AddFace(dev, kId, 5));
    Answer(0x03, {0x00});
    EXPECT_EQ(-6, QueryFace(dev, kId, 5, 0));
    EXPECT_EQ(Failure("m_pCommandManager->Execute(&syncCommand) != 0", " pID : " + Ptr(kId) + " nIDLength : 5 nMode : 0 ",
                      "", -6),
              LastRecord("QueryFace"));
}
