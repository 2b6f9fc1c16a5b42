// The serial link and the camera of a handle: argument checks, failures to
// open, commands without a link, and two handles on one link.
#include <string.h>

#include <functional>

#include "DeviceTest.h"
#include "ReportSink.h"

using Connection = DeviceTest;

TEST_F(Connection, ConnectFunctionsRefuseAMissingOrEmptyNameAndKeepTheLink)
{
    struct Case {
        const char* function;
        std::function<int()> call;
        const char* text;
    } cases[] = {
        {"ConnectSerial", [this] { return ConnectSerial(dev, nullptr); }, "portName == nullptr"},
        {"ConnectSerial", [this] { return ConnectSerial(dev, ""); }, "!strlen(portName)"},
        {"ConnectCamera", [this] { return ConnectCamera(dev, nullptr); }, "mediaName == nullptr"},
        {"ConnectCamera", [this] { return ConnectCamera(dev, ""); }, "!strlen(mediaName)"},
    };
    for (const Case& c : cases) {
        NewRecords records;
        EXPECT_EQ(-4, c.call()) << c.text;
        EXPECT_EQ("[ERROR ] " + std::string(c.text) + "\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : -4\n",
                  records.Only(c.function));
    }
    AnswerStatus(0x16, 0);
    EXPECT_EQ(0, QueryRecognize(dev));
}

TEST_F(Connection, ConnectSerialToAMissingNodeFailsWithItsCodeAndASuccessShapedRecord)
{
    const char missing[] = "/dev/ttyACM-not-here";
    NewRecords records;
    EXPECT_EQ(-2, ConnectSerial(dev, missing));
    EXPECT_EQ(Input(" portName : " + std::string(missing)) + "[OUTPUT]\n[RETURN] nRet : -2\n",
              TraceLog::Of("ConnectSerial").back().body);
    // The running link was stopped first, so there is none now.
    EXPECT_EQ(-6, QueryRecognize(dev));
    NewRecords reconnect;
    ASSERT_EQ(0, ConnectSerial(dev, sim.SlavePath().c_str()));
    EXPECT_EQ(Input(" portName : " + sim.SlavePath()) + "[OUTPUT]\n[RETURN] nRet : 0\n",
              reconnect.Only("ConnectSerial"));
    AnswerStatus(0x16, 0);
    EXPECT_EQ(0, QueryRecognize(dev));
}

TEST_F(Connection, DisconnectSerialTracesTheManagersResult)
{
    NewRecords first;
    EXPECT_EQ(0, DisconnectSerial(dev));
    std::vector<TraceEntry> added = first.Take();
    ASSERT_EQ(1u, added.size());
    EXPECT_EQ("DisconnectSerial", added[0].function);
    EXPECT_NE(std::string::npos, added[0].header.find("[FILE : AICamera]"));
    EXPECT_EQ(Input("") + "[OUTPUT]\n[RETURN] nRet : 0\n", added[0].body);
    NewRecords second;
    EXPECT_EQ(-1, DisconnectSerial(dev));
    EXPECT_EQ(Input("") + "[OUTPUT]\n[RETURN] nRet : -1\n", second.Only("DisconnectSerial"));
}

TEST_F(Connection, ConnectCameraToAMissingNodeTracesTheFailureCode)
{
    const char missing[] = "/dev/video-not-here";
    EXPECT_EQ(-10, ConnectCamera(dev, missing));
    EXPECT_EQ(Input(" mediaName : " + std::string(missing)) + "[OUTPUT]\n[RETURN] nRet : -10\n",
              TraceLog::Of("ConnectCamera").back().body);
}

namespace {
// One device command with valid arguments, and the output line of its failure records.
struct Command {
    const char* function;
    std::function<int(void*)> call;
    std::string inputs;  // after "dev : %p"
    const char* output;
};

const char kId[] = "alice";
const char kBytes[] = "data";

std::vector<Command> CommandsOfThisInterface()
{
    static std::string feature(1384, 'f');
    static char buffer[16];
    static void* image;
    static unsigned int length;
    const std::string id = " pID : " + Ptr(kId) + " nIDLength : 5";
    const std::string data = Ptr(kBytes);
    const std::string buf = Ptr(buffer);
    return {
        {"AddFace", [](void* d) { return AddFace(d, kId, 5); }, id, "[OUTPUT]"},
        {"AddFaceByImage", [](void* d) { return AddFaceByImage(d, kId, 5, kBytes, 4); },
         id + " pImage : " + data + " nImageLength : 4", "[OUTPUT]"},
        {"AddFaceReturnImage", [](void* d) { return AddFaceReturnImage(d, kId, 5, &image, &length); }, id,
         "[OUTPUT] invalid output"},
        {"AddFaceSlice", [](void* d) { return AddFaceSlice(d, kId, 5, 8, 0, 0, kBytes, 4); },
         id + " nImageTotalLength : 8 nPosition : 0 isLastSlice : 0 pSliceData : " + data + " nSliceDataLength :4",
         "[OUTPUT]"},
        {"DeleteFace", [](void* d) { return DeleteFace(d, 1, kId, 5); }, " nMode : 1" + id, "[OUTPUT]"},
        {"QueryFace", [](void* d) { return QueryFace(d, kId, 5, 0); }, id + " nMode : 0 ", "[OUTPUT]"},
        {"AddFeature", [](void* d) { return AddFeature(d, kId, 5, feature.c_str(), 1384); },
         id + " pFeature : " + Ptr(feature.c_str()) + " nFeatureLength : 1384", "[OUTPUT]"},
        {"GetDeviceFaceID", [](void* d) { return GetDeviceFaceID(d, buffer, sizeof buffer); }, " nIDListLength : 16",
         "[OUTPUT] invalid output"},
        {"GetDeviceFaceLibraryNum", [](void* d) { return GetDeviceFaceLibraryNum(d, &length); }, "",
         "[OUTPUT] invalid output"},
        {"StartOnetoNumRecognize", [](void* d) { return StartOnetoNumRecognize(d, 0, 1); },
         " nRecMode : 0 nMulMode : 1", "[OUTPUT]"},
        {"StartOnetoOneRecognize", [](void* d) { return StartOnetoOneRecognize(d, 1, 1, kBytes, 4); },
         " nRecMode : 1 nMulMode : 1 pImage : " + data + " nImageLength : 4", "[OUTPUT]"},
        {"StartOnetoOneRecognizeSlice", [](void* d) { return StartOnetoOneRecognizeSlice(d, 1, 0, 8, 4, 1, kBytes, 4); },
         " nRecMode : 1 nMulMode : 0 nImageTotalLength : 8 nPosition : 4 isLastSlice : 1 pSliceData : " + data +
             " nSliceDataLength : 4",
         "[OUTPUT]"},
        {"ResumeRecognize", ResumeRecognize, "", "[OUTPUT]"},
        {"PauseRecognize", PauseRecognize, "", "[OUTPUT]"},
        {"QueryRecognize", QueryRecognize, "", "[OUTPUT]"},
        {"GetSingleRecognize", [](void* d) { return GetSingleRecognize(d, buffer, sizeof buffer); },
         " nDataLength : 16", "[OUTPUT] invalid output"},
        {"StaticFaceCompare", [](void* d) { return StaticFaceCompare(d, &image, &length); }, "",
         "[OUTPUT] invalid output"},
        {"StaticFaceCompareReturnImage",
         [](void* d) { return StaticFaceCompareReturnImage(d, kBytes, 4, &image, &length); },
         " pImage : " + data + " nImageLength : 4", "[OUTPUT] invalid output"},
        {"StaticFaceCompareSlice",
         [](void* d) { return StaticFaceCompareSlice(d, 0, 8, 0, 0, kBytes, 4, &image, &length); },
         " nMode : 0 nImageTotalLength : 8 nPosition : 0 isLastSlice : 0 pSliceData : " + data +
             " nSliceDataLength : 4",
         "[OUTPUT] invalid output"},
    };
}
}  // namespace

TEST_F(Connection, EveryCommandWithoutASerialLinkFailsWithMinusSix)
{
    ASSERT_EQ(0, DisconnectSerial(dev));
    for (const Command& c : CommandsOfThisInterface()) {
        NewRecords records;
        EXPECT_EQ(-6, c.call(dev)) << c.function;
        std::vector<TraceEntry> added = records.Take();
        if (!added.empty() && strcmp(c.function, "DeleteFace") == 0)
            added.erase(added.begin());  // the exported function's own record about pID
        ASSERT_EQ(1u, added.size()) << c.function;
        EXPECT_EQ(c.function, added[0].function);
        EXPECT_EQ("[ERROR] m_pCommandManager->Execute(&syncCommand) != 0\n" + Input(c.inputs) + c.output +
                      "\n[RETURN] nRet : -6\n",
                  added[0].body)
            << c.function;
    }
    EXPECT_TRUE(sim.Requests().empty());
}

TEST_F(Connection, WithoutALinkTheCallersOutputsAreLeftAloneOrZeroed)
{
    ASSERT_EQ(0, DisconnectSerial(dev));
    char feature[8];
    memset(feature, 'x', sizeof feature);
    NewRecords query;
    EXPECT_EQ(-6, QueryFeature(dev, kId, 5, feature, sizeof feature));
    // This command's text lacks the " != 0".
    EXPECT_EQ("[ERROR] m_pCommandManager->Execute(&syncCommand)\n" +
                  Input(" pID : " + Ptr(kId) + " nIDLength : 5 nFeatureLength : 8") +
                  "[OUTPUT] invalid output\n[RETURN] nRet : -6\n",
              query.Only("QueryFeature"));
    EXPECT_EQ(std::string(8, 'x'), std::string(feature, sizeof feature));
    void* image = &image;
    unsigned int length = 3;
    EXPECT_EQ(-6, AddFaceReturnImage(dev, kId, 5, &image, &length));
    EXPECT_EQ(&image, image);
    EXPECT_EQ(3u, length);
    char text[8];
    memset(text, 'x', sizeof text);
    EXPECT_EQ(-6, GetSingleRecognize(dev, text, sizeof text));
    EXPECT_EQ(std::string(8, '\0'), std::string(text, sizeof text));
    memset(text, 'x', sizeof text);
    EXPECT_EQ(-6, GetDeviceFaceID(dev, text, sizeof text));
    EXPECT_EQ(std::string(8, '\0'), std::string(text, sizeof text));
    // Argument checks come before the link is needed.
    EXPECT_EQ(-4, AddFace(dev, kId, 4));
    EXPECT_EQ(-4, StartOnetoNumRecognize(dev, 3, 0));
}

TEST_F(Connection, ATwoByteAnswerWithoutARecordIsUnusable)
{
    // The module's payload starts with the request's tag but holds no whole record.
    for (const sim::Bytes& payload : {sim::Bytes({0x16, 0x00}), sim::Bytes({0x16, 0x00, 0x09, 0x00, 0x00, 0x00, 0x01})}) {
        AnswerPayload(0x16, payload);
        NewRecords records;
        EXPECT_EQ(-7, QueryRecognize(dev));
        EXPECT_EQ("[ERROR] syncCommand.GetResult(&tlvMessage) != 0\n" + Input("") + "[OUTPUT]\n[RETURN] nRet : -7\n",
                  records.Only("QueryRecognize"));
    }
}

TEST_F(Connection, StatusOnlyCommandsRefuseAnswersOfAnotherLength)
{
    for (const Command& c : CommandsOfThisInterface()) {
        if (strcmp(c.output, "[OUTPUT]") != 0)
            continue;  // the commands with outputs have their own length checks
        for (const sim::Bytes& answer : {sim::Bytes(), sim::Bytes({0x00, 0x00})}) {
            sim.SetDefaultHandler([answer](const sim::Request&) { return std::optional<sim::Bytes>(answer); });
            NewRecords records;
            EXPECT_EQ(-8, c.call(dev)) << c.function << " with " << answer.size() << " bytes";
            std::vector<TraceEntry> added = records.Take();
            ASSERT_FALSE(added.empty());
            EXPECT_EQ("[ERROR] tlvMessage.nLength != 1\n" + Input(c.inputs) + "[OUTPUT]\n[RETURN] nRet : -8\n",
                      added.back().body)
                << c.function;
        }
    }
}

TEST_F(Connection, TwoHandlesShareOneLink)
{
    ReportSink::Reset(&sim);
    RegisterRecoReportCb(dev, ReportSink::Reco);
    void* second = Init();
    ASSERT_NE(nullptr, second);
    RegisterRecoReportCb(second, ReportSink::Reco2);
    // The second handle never connected, yet its commands go over the first one's link.
    AnswerStatus(0x16, 6);
    EXPECT_EQ(6, QueryRecognize(second));
    EXPECT_EQ(1u, RequestCount(0x16));
    // The report handlers belong to the handle that connected.
    sim.PushReport(0x31, BytesOf("to-first"));
    ASSERT_TRUE(ReportSink::WaitFor(1));
    EXPECT_EQ(1, ReportSink::Received()[0].callback);
    // Connecting the second restarts the link with handlers of its own.
    ASSERT_EQ(0, ConnectSerial(second, sim.SlavePath().c_str()));
    sim.PushReport(0x31, BytesOf("to-second"));
    ASSERT_TRUE(ReportSink::WaitFor(2));
    EXPECT_EQ(2, ReportSink::Received()[1].callback);
    EXPECT_EQ(BytesOf("to-second"), ReportSink::Received()[1].value);
    EXPECT_EQ(6, QueryRecognize(dev));
    // Releasing either handle closes the one link for both.
    EXPECT_EQ(0, DeInit(second));
    EXPECT_EQ(-6, QueryRecognize(dev));
    ReportSink::Reset(nullptr);
}

TEST_F(Connection, GetFrameChecksItsBuffersBeforeAskingForAPicture)
{
    char image[16], side[16];
    struct Case {
        char* image;
        int imageSize;
        char* side;
        int sideSize;
        const char* text;
    } cases[] = {
        {nullptr, 16, side, 16, "imageBuf == nullptr"},
        {image, 0, side, 16, "imageSize == 0"},
        {image, 16, nullptr, 16, "verifyBuf == nullptr"},
        {image, 16, side, 0, "verifySize == 0"},
    };
    for (const Case& c : cases) {
        NewRecords records;
        EXPECT_EQ(-4, GetFrame(dev, c.image, c.imageSize, c.side, c.sideSize)) << c.text;
        EXPECT_EQ(Refused(c.text) + Input("") + "[OUTPUT] output invalid\n[RETURN] nRet : -4\n",
                  records.Only("GetFrame"));
    }
    // A negative size passes these checks; without a camera there is no picture.
    NewRecords negative;
    EXPECT_EQ(-1, GetFrame(dev, image, -1, side, 16));
    EXPECT_TRUE(negative.Take().empty());
}

TEST_F(Connection, GetResolutionWithoutACameraTracesOnlyAChangedPair)
{
    int width = 720, height = 1280;
    NewRecords unchanged;
    EXPECT_EQ(-1, GetResolution(dev, &width, &height));
    EXPECT_TRUE(unchanged.Take().empty());
    width = 1;
    height = 2;
    NewRecords changed;
    EXPECT_EQ(-1, GetResolution(dev, &width, &height));
    EXPECT_EQ(Input("") + "[OUTPUT] width : 1 height : 2\n[RETURN] nRet : -1\n", changed.Only("GetResolution"));
    NewRecords again;
    EXPECT_EQ(-1, GetResolution(dev, &width, &height));
    EXPECT_TRUE(again.Take().empty());
}
