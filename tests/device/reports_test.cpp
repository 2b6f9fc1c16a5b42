// Reports the module sends on its own, reaching the application's callbacks.
#include "DeviceTest.h"
#include "ReportSink.h"

namespace {
const uint16_t kTrack = 0x30, kReco = 0x31, kQRCode = 0x32, kImage = 0x33, kFeature = 0x34;
}  // namespace

class Reports : public DeviceTest {
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        ReportSink::Reset(&sim);
    }
    void TearDown() override
    {
        DeviceTest::TearDown();
        ReportSink::Reset(nullptr);
    }

    // Everything the library did for earlier reports is done once a
    // recognition report pushed after them has reached its callback, and the
    // module has read whatever was sent before a request made after that.
    void Fence()
    {
        RegisterRecoReportCb(dev, ReportSink::Reco2);
        size_t before = ReportSink::Received().size();
        sim.PushReport(kReco, BytesOf("fence"));
        ASSERT_TRUE(ReportSink::WaitFor(before + 1));
        AnswerStatus(0x16, 0);
        ASSERT_EQ(0, QueryRecognize(dev));
    }

    size_t Acknowledgements() const { return RequestCount(kImage); }
};

TEST_F(Reports, EachKindReachesItsCallbackWithTheRecordValue)
{
    RegisterTrackReportCb(dev, ReportSink::Track);
    RegisterRecoReportCb(dev, ReportSink::Reco);
    RegisterQRCodeReportCb(dev, ReportSink::QRCode);
    RegisterImageReportCb(dev, ReportSink::Image);
    RegisterFeatureReportCb(dev, ReportSink::Feature);
    const sim::Bytes values[] = {
        BytesOf("{\"track\":[1,2,3,4]}"), BytesOf("{\"id\":\"alice\",\"score\":97}"), BytesOf("QR:hello"),
        sim::Bytes({0xFF, 0xD8, 0x00, 0x01, 0xFF, 0xD9}), sim::Bytes(1384, 'f'),
    };
    const uint16_t kinds[] = {kTrack, kReco, kQRCode, kImage, kFeature};
    for (size_t i = 0; i < 5; ++i)
        sim.PushReport(kinds[i], values[i]);
    ASSERT_TRUE(ReportSink::WaitFor(5));
    std::vector<ReceivedReport> received = ReportSink::Received();
    ASSERT_EQ(5u, received.size());
    for (size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(kinds[i], received[i].kind);
        EXPECT_EQ(values[i], received[i].value);
        EXPECT_EQ(1, received[i].callback);
    }
}

TEST_F(Reports, RegistrationIsTraced)
{
    struct Case {
        const char* function;
        void (*reg)(void*, AI_CAMERA_REPORT_FUNC);
        AI_CAMERA_REPORT_FUNC callback;
    } cases[] = {
        {"RegisterRecoReportCb", RegisterRecoReportCb, ReportSink::Reco},
        {"RegisterTrackReportCb", RegisterTrackReportCb, ReportSink::Track},
        {"RegisterImageReportCb", RegisterImageReportCb, ReportSink::Image},
        {"RegisterFeatureReportCb", RegisterFeatureReportCb, ReportSink::Feature},
        {"RegisterQRCodeReportCb", RegisterQRCodeReportCb, ReportSink::QRCode},
    };
    for (const Case& c : cases) {
        NewRecords records;
        c.reg(dev, c.callback);
        EXPECT_EQ("[INPUT ] " + DevText() + " handler_func : " + Ptr(reinterpret_cast<void*>(c.callback)) +
                      "\n[OUTPUT]\n[RETURN]\n",
                  records.Only(c.function));
        NewRecords cleared;
        c.reg(dev, nullptr);
        EXPECT_EQ("[INPUT ] " + DevText() + " handler_func : (nil)\n[OUTPUT]\n[RETURN]\n", cleared.Only(c.function));
        NewRecords nullHandle;
        c.reg(nullptr, c.callback);
        EXPECT_TRUE(nullHandle.Take().empty()) << c.function << " traced a null handle";
    }
}

TEST_F(Reports, AnImageReportIsAcknowledgedOnceBeforeItsCallback)
{
    RegisterImageReportCb(dev, ReportSink::Image);
    sim.PushReport(kImage, BytesOf("jpeg-bytes"));
    ASSERT_TRUE(ReportSink::WaitFor(1));
    Fence();
    std::vector<ReceivedReport> received = ReportSink::Received();
    ASSERT_EQ(kImage, received[0].kind);
    EXPECT_EQ(1u, received[0].acksBefore) << "acknowledgements the module had read when the callback was entered";
    EXPECT_EQ(1u, Acknowledgements());
    // The acknowledgement is a host frame holding one empty record tagged 0x33.
    for (const sim::Request& request : sim.Requests()) {
        if (request.tag == kImage) {
            EXPECT_EQ(sim::Bytes({0x33, 0x00, 0x00, 0x00, 0x00, 0x00}), request.payload);
        }
    }
    // A second report gets a second acknowledgement, again before its callback.
    sim.PushReport(kImage, BytesOf("second"));
    ASSERT_TRUE(ReportSink::WaitFor(3));
    Fence();
    EXPECT_EQ(2u, ReportSink::Received()[2].acksBefore);
    EXPECT_EQ(2u, Acknowledgements());
    EXPECT_EQ(0u, sim.BadFrames());
}

TEST_F(Reports, AnImageReportWithoutCallbackIsNeitherAcknowledgedNorDelivered)
{
    sim.PushReport(kImage, BytesOf("unwanted"));
    Fence();
    EXPECT_EQ(0u, Acknowledgements());
    // Registered and then cleared: the same.
    RegisterImageReportCb(dev, ReportSink::Image);
    RegisterImageReportCb(dev, nullptr);
    sim.PushReport(kImage, BytesOf("unwanted"));
    Fence();
    EXPECT_EQ(0u, Acknowledgements());
    for (const ReceivedReport& report : ReportSink::Received())
        EXPECT_EQ(kReco, report.kind);
}

TEST_F(Reports, ANewRegistrationTakesEffectWithTheNextReport)
{
    RegisterTrackReportCb(dev, ReportSink::Track);
    sim.PushReport(kTrack, BytesOf("one"));
    ASSERT_TRUE(ReportSink::WaitFor(1));
    RegisterTrackReportCb(dev, ReportSink::Track2);
    sim.PushReport(kTrack, BytesOf("two"));
    ASSERT_TRUE(ReportSink::WaitFor(2));
    RegisterTrackReportCb(dev, nullptr);
    sim.PushReport(kTrack, BytesOf("three"));
    Fence();
    std::vector<ReceivedReport> received = ReportSink::Received();
    ASSERT_EQ(3u, received.size());
    EXPECT_EQ(1, received[0].callback);
    EXPECT_EQ(BytesOf("one"), received[0].value);
    EXPECT_EQ(2, received[1].callback);
    EXPECT_EQ(BytesOf("two"), received[1].value);
    EXPECT_EQ(kReco, received[2].kind);  // the fence; "three" went nowhere
}

TEST_F(Reports, CallbacksRegisteredBeforeConnectingAreUsed)
{
    ASSERT_EQ(0, DisconnectSerial(dev));
    RegisterQRCodeReportCb(dev, ReportSink::QRCode);
    RegisterFeatureReportCb(dev, ReportSink::Feature);
    ASSERT_EQ(0, ConnectSerial(dev, sim.SlavePath().c_str()));
    sim.PushReport(kQRCode, BytesOf("qr"));
    sim.PushReport(kFeature, BytesOf("feature"));
    ASSERT_TRUE(ReportSink::WaitFor(2));
    std::vector<ReceivedReport> received = ReportSink::Received();
    EXPECT_EQ(kQRCode, received[0].kind);
    EXPECT_EQ(BytesOf("qr"), received[0].value);
    EXPECT_EQ(kFeature, received[1].kind);
    EXPECT_EQ(BytesOf("feature"), received[1].value);
}

TEST_F(Reports, AnEmptyReportValueIsDeliveredWithLengthZero)
{
    RegisterRecoReportCb(dev, ReportSink::Reco);
    sim.PushReport(kReco, {});
    ASSERT_TRUE(ReportSink::WaitFor(1));
    EXPECT_TRUE(ReportSink::Received()[0].value.empty());
}

TEST_F(Reports, ReportsDuringARequestDoNotDisturbItsAnswer)
{
    RegisterTrackReportCb(dev, ReportSink::Track);
    sim::ModuleSimulator* module = &sim;
    sim.SetHandler(0x16, [module](const sim::Request&) {
        module->PushReport(kTrack, BytesOf("while-waiting"));
        return std::optional<sim::Bytes>(sim::Bytes{0x04});
    });
    EXPECT_EQ(4, QueryRecognize(dev));
    ASSERT_TRUE(ReportSink::WaitFor(1));
    EXPECT_EQ(BytesOf("while-waiting"), ReportSink::Received()[0].value);
}

TEST_F(Reports, AReportWithoutAWholeRecordReachesItsCallbackEmpty)
{
    // The handler is chosen by the first two bytes; the record behind them
    // claims 16 bytes and holds one. The callback still runs, with nothing.
    RegisterRecoReportCb(dev, ReportSink::Reco);
    sim.PushFrame({0x31, 0x00, 0x10, 0x00, 0x00, 0x00, 'x'});
    RegisterTrackReportCb(dev, ReportSink::Track);
    sim.PushReport(kTrack, BytesOf("after"));
    ReportSink::WaitFor(2);
    std::vector<ReceivedReport> received = ReportSink::Received();
    ASSERT_EQ(2u, received.size()) << "the first callback received: kind " << (received.empty() ? 0 : received[0].kind);
    EXPECT_EQ(kReco, received[0].kind);
    EXPECT_TRUE(received[0].value.empty());
    EXPECT_EQ(kTrack, received[1].kind);
}
