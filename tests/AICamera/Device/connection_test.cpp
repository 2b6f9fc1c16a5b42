// The serial link and the camera of a handle: argument checks, failures to
// open, commands without a link or with unusable answers, and two handles on one link.
#include <string.h>

#include "DeviceTest.h"
#include "ReportSink.h"

namespace {
const char* const kId = kCommandId;
}  // namespace

using Connection = ReportingDevice;

TEST_F(Connection, ConnectAndDisconnectCodesAndTexts)
{
    const char serial[] = "/dev/ttyACM-not-here", camera[] = "/dev/video-not-here";
    auto refused = [](const char* text) {
        return "[ERROR ] " + std::string(text) + "\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : -4\n";
    };
    Check({
        {"ConnectSerial", [&] { return ConnectSerial(dev, nullptr); }, -4, refused("portName == nullptr")},
        {"ConnectSerial", [&] { return ConnectSerial(dev, ""); }, -4, refused("!strlen(portName)")},
        {"ConnectCamera", [&] { return ConnectCamera(dev, nullptr); }, -4, refused("mediaName == nullptr")},
        {"ConnectCamera", [&] { return ConnectCamera(dev, ""); }, -4, refused("!strlen(mediaName)")},
        {"QueryRecognize", [&] { return QueryRecognize(dev); }, 0, Body("", "", 0), 0x16, {0x00}, {0x00}},
    });
    // Failures to open come with the records of the layers below.
    EXPECT_EQ(-10, ConnectCamera(dev, camera));
    EXPECT_EQ(Body(" mediaName : " + std::string(camera), "", -10), LastRecord("ConnectCamera"));
    // A failed open leaves no link: the running one was stopped first.
    EXPECT_EQ(-2, ConnectSerial(dev, serial));
    EXPECT_EQ(Body(" portName : " + std::string(serial), "", -2), LastRecord("ConnectSerial"));
    Check({
        {"QueryRecognize", [&] { return QueryRecognize(dev); }, -6,
         Failure("m_pCommandManager->Execute(&syncCommand) != 0", "", "", -6)},
        {"ConnectSerial", [&] { return ConnectSerial(dev, sim.SlavePath().c_str()); }, 0,
         Body(" portName : " + sim.SlavePath(), "", 0)},
        {"DisconnectSerial", [&] { return DisconnectSerial(dev); }, 0, Body("", "", 0)},
        {"DisconnectSerial", [&] { return DisconnectSerial(dev); }, -1, Body("", "", -1)},
    });
    EXPECT_NE(std::string::npos, TraceLog::Of("DisconnectSerial").back().header.find("[FILE : AICamera]"));
}

TEST_F(Connection, EveryCommandWithoutASerialLinkFailsWithMinusSix)
{
    ASSERT_EQ(0, DisconnectSerial(dev));
    std::vector<Row> rows;
    for (const Command& c : Commands()) {
        rows.push_back({c.function, [this, c] { return c.call(dev); }, -6,
                        NoteOf(c.function, kId) +
                            Failure("m_pCommandManager->Execute(&syncCommand) != 0", c.inputs, c.output, -6)});
    }
    char feature[8];
    memset(feature, 'x', sizeof feature);
    // This command's text lacks the " != 0".
    rows.push_back({"QueryFeature", [&] { return QueryFeature(dev, kId, 5, feature, sizeof feature); }, -6,
                    Failure("m_pCommandManager->Execute(&syncCommand)",
                            " pID : " + Ptr(kId) + " nIDLength : 5 nFeatureLength : 8", " invalid output", -6)});
    Check(rows);
    EXPECT_EQ(std::string(8, 'x'), std::string(feature, sizeof feature));
    // The outputs are left alone, or zeroed where the command zeroes them first.
    void* image = &image;
    unsigned int length = 3;
    EXPECT_EQ(-6, AddFaceReturnImage(dev, kId, 5, &image, &length));
    EXPECT_EQ(&image, image);
    EXPECT_EQ(3u, length);
    for (auto call : {GetSingleRecognize, GetDeviceFaceID}) {
        char text[8];
        memset(text, 'x', sizeof text);
        EXPECT_EQ(-6, call(dev, text, sizeof text));
        EXPECT_EQ(std::string(8, '\0'), std::string(text, sizeof text));
    }
}

TEST_F(Connection, UnusableAnswersFailWithMinusSevenOrEight)
{
    // A payload that starts with the request's tag but holds no whole record.
    for (const sim::Bytes& payload : {sim::Bytes({0x16, 0x00}), sim::Bytes({0x16, 0x00, 0x09, 0x00, 0x00, 0x00, 0x01})}) {
        AnswerPayload(0x16, payload);
        EXPECT_EQ(-7, QueryRecognize(dev));
        EXPECT_EQ(Failure("syncCommand.GetResult(&tlvMessage) != 0", "", "", -7), LastRecord("QueryRecognize"));
    }
    sim.SetHandler(0x16, nullptr);
    // The status-only commands want exactly one byte; the others have length checks of their own.
    for (const sim::Bytes& answer : {sim::Bytes(), sim::Bytes({0x00, 0x00})}) {
        sim.SetDefaultHandler([answer](const sim::Request&) { return std::optional<sim::Bytes>(answer); });
        for (const Command& c : Commands()) {
            if (!c.output.empty())
                continue;
            EXPECT_EQ(-8, c.call(dev)) << c.function << " with " << answer.size() << " bytes";
            EXPECT_EQ(Failure("tlvMessage.nLength != 1", c.inputs, "", -8), LastRecord(c.function)) << c.function;
        }
    }
}

TEST_F(Connection, TwoHandlesShareOneLink)
{
    RegisterRecoReportCb(dev, ReportSink::Reco);
    void* second = Init();
    ASSERT_NE(nullptr, second);
    RegisterRecoReportCb(second, ReportSink::Reco2);
    // The second handle never connected, yet its commands go over the first one's link.
    Answer(0x16, {0x06});
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
}

TEST_F(Connection, CameraCallsWithoutACamera)
{
    char image[16], side[16];
    int width = 720, height = 1280, one = 1, two = 2;
    auto frame = [&](char* i, int in, char* s, int sn, const char* text) {
        return Row{"GetFrame", [=] { return GetFrame(dev, i, in, s, sn); }, -4,
                   Failure(text, "", " output invalid", -4)};
    };
    Check({
        frame(nullptr, 16, side, 16, "imageBuf == nullptr"), frame(image, 0, side, 16, "imageSize == 0"),
        frame(image, 16, nullptr, 16, "verifyBuf == nullptr"), frame(image, 16, side, 0, "verifySize == 0"),
        // A negative size passes these checks; without a camera there is no picture, and no record.
        {"GetFrame", [&] { return GetFrame(dev, image, -1, side, 16); }, -1, ""},
        // GetResolution traces only a pair other than the one it last saw.
        {"GetResolution", [&] { return GetResolution(dev, &width, &height); }, -1, ""},
        {"GetResolution", [&] { return GetResolution(dev, &one, &two); }, -1, Body("", " width : 1 height : 2", -1)},
        {"GetResolution", [&] { return GetResolution(dev, &one, &two); }, -1, ""},
    });
}
