// Reports the module sends on its own, reaching the application's callbacks.
#include "DeviceTest.h"
#include "ReportSink.h"

namespace {
const uint16_t kTrack = 0x30, kReco = 0x31, kQRCode = 0x32, kImage = 0x33, kFeature = 0x34;
}  // namespace

class Reports : public ReportingDevice {
protected:
    // Everything the library did for earlier reports is done once a
    // recognition report pushed after them has reached its callback, and the
    // module has read whatever was sent before a request made after that.
    void Fence()
    {
        RegisterRecoReportCb(dev, ReportSink::Reco2);
        size_t before = ReportSink::Received().size();
        sim.PushReport(kReco, BytesOf("fence"));
        ASSERT_TRUE(ReportSink::WaitFor(before + 1));
        Answer(0x16, {0x00});
        ASSERT_EQ(0, QueryRecognize(dev));
    }
};

TEST_F(Reports, CallbacksRegisteredBeforeConnectingReceiveEachKind)
{
    ASSERT_EQ(0, DisconnectSerial(dev));
    ReportSink::RegisterAll(dev);
    ASSERT_EQ(0, ConnectSerial(dev, sim.SlavePath().c_str()));
    const uint16_t kinds[] = {kTrack, kReco, kQRCode, kImage, kFeature, kReco};
    const sim::Bytes values[] = {BytesOf("{\"track\":[1,2,3,4]}"), BytesOf("{\"id\":\"alice\",\"score\":97}"),
                                 BytesOf("QR:hello"), sim::Bytes({0xFF, 0xD8, 0x00, 0x01, 0xFF, 0xD9}),
                                 sim::Bytes(1384, 'f'), sim::Bytes()};
    for (size_t i = 0; i < 6; ++i)
        sim.PushReport(kinds[i], values[i]);
    ASSERT_TRUE(ReportSink::WaitFor(6));
    std::vector<ReceivedReport> received = ReportSink::Received();
    ASSERT_EQ(6u, received.size());
    for (size_t i = 0; i < 6; ++i) {
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
    auto body = [this](const std::string& handler) {
        return "[INPUT ] " + DevText() + " handler_func : " + handler + "\n[OUTPUT]\n[RETURN]\n";
    };
    std::vector<Row> rows;
    for (const Case& c : cases) {
        rows.push_back({c.function, [this, c] { c.reg(dev, c.callback); return 0; }, 0,
                        body(Ptr(reinterpret_cast<void*>(c.callback)))});
        rows.push_back({c.function, [this, c] { c.reg(dev, nullptr); return 0; }, 0, body("(nil)")});
        // A null handle is ignored without a record.
        rows.push_back({c.function, [c] { c.reg(nullptr, c.callback); return 0; }, 0, ""});
    }
    Check(rows);
}

TEST_F(Reports, AnImageReportIsAcknowledgedOnceBeforeItsCallback)
{
    RegisterImageReportCb(dev, ReportSink::Image);
    sim.PushReport(kImage, BytesOf("jpeg-bytes"));
    ASSERT_TRUE(ReportSink::WaitFor(1));
    Fence();
    EXPECT_EQ(1u, ReportSink::Received()[0].acksBefore) << "acknowledgements the module had read on entry";
    EXPECT_EQ(1u, RequestCount(kImage));
    // The acknowledgement is a host frame holding one empty record tagged 0x33.
    for (const sim::Request& request : sim.Requests()) {
        if (request.tag == kImage) {
            EXPECT_EQ(sim::Bytes({0x33, 0x00, 0x00, 0x00, 0x00, 0x00}), request.payload);
        }
    }
    sim.PushReport(kImage, BytesOf("second"));
    ASSERT_TRUE(ReportSink::WaitFor(3));
    Fence();
    EXPECT_EQ(2u, ReportSink::Received()[2].acksBefore);
    EXPECT_EQ(2u, RequestCount(kImage));
    EXPECT_EQ(0u, sim.BadFrames());
    // Without a callback, or with a cleared one, an image is neither acknowledged nor delivered.
    RegisterImageReportCb(dev, nullptr);
    sim.PushReport(kImage, BytesOf("unwanted"));
    Fence();
    EXPECT_EQ(2u, RequestCount(kImage));
    EXPECT_EQ(kReco, ReportSink::Received().back().kind);
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

TEST_F(Reports, ReportsAroundRequestsAndBrokenRecords)
{
    RegisterTrackReportCb(dev, ReportSink::Track);
    RegisterRecoReportCb(dev, ReportSink::Reco);
    // A report sent while a request waits does not disturb its answer.
    sim::ModuleSimulator* module = &sim;
    sim.SetHandler(0x16, [module](const sim::Request&) {
        module->PushReport(kTrack, BytesOf("while-waiting"));
        return std::optional<sim::Bytes>(sim::Bytes{0x04});
    });
    EXPECT_EQ(4, QueryRecognize(dev));
    // The handler is chosen by the first two bytes; the record behind them
    // claims 16 bytes and holds one. The callback still runs, with nothing.
    sim.PushFrame({0x31, 0x00, 0x10, 0x00, 0x00, 0x00, 'x'});
    sim.PushReport(kTrack, BytesOf("after"));
    ASSERT_TRUE(ReportSink::WaitFor(3));
    std::vector<ReceivedReport> received = ReportSink::Received();
    ASSERT_EQ(3u, received.size());
    EXPECT_EQ(BytesOf("while-waiting"), received[0].value);
    EXPECT_EQ(kReco, received[1].kind);
    EXPECT_TRUE(received[1].value.empty());
    EXPECT_EQ(BytesOf("after"), received[2].value);
}
