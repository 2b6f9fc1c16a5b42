// The serial protocol through the kernel's cdc_acm driver and the gadget's
// serial function: enumeration, a sample of every command family, the five
// report kinds, and a firmware package of 1 MiB.
#include <string.h>

#include <map>

extern "C" {
#include <libavutil/md5.h>
}

#include "../AICamera/Device/ReportSink.h"
#include "RealDeviceTest.h"

namespace {
const char kAlice[] = "alice";
const char kBob[] = "bob";

std::string Text(const char* buffer, size_t size) { return std::string(buffer, strnlen(buffer, size)); }

TEST_F(RealDeviceTest, EnumDeviceListsTheModulesNodes)
{
    char video[512] = {0};
    char serial[512] = {0};
    ASSERT_EQ(0, EnumDevice(video, sizeof video, serial, sizeof serial));
    const std::string videos = std::string("|") + video + "|";
    const std::string serials = std::string("|") + serial + "|";
    EXPECT_NE(std::string::npos, serials.find("|" + rig::SerialNode() + "|")) << serials;
    EXPECT_NE(std::string::npos, videos.find("|" + rig::CaptureNode() + "|")) << videos;
    EXPECT_NE(std::string::npos, videos.find("|" + rig::MetadataNode() + "|")) << videos;
}

TEST_F(RealDeviceTest, EveryCommandFamilyAnswersThroughTheRealDriver)
{
    ConnectModule();
    module.model.SetTemperature(37);
    // Device information.
    EXPECT_EQ(0, Ping(dev, "over cdc_acm", 12));
    char text[128] = {0};
    EXPECT_EQ(0, GetDeviceVersion(dev, text, sizeof text));
    EXPECT_EQ(module.model.Identity().firmwareVersion, Text(text, sizeof text));
    memset(text, 0, sizeof text);
    EXPECT_EQ(0, GetDevSn(dev, 0, text, sizeof text));
    EXPECT_EQ(module.model.Identity().serialNumber, Text(text, sizeof text));
    unsigned int temperature = 0;
    EXPECT_EQ(0, GetCpuTemperature(dev, &temperature));
    EXPECT_EQ(37u, temperature);
    // Face library.
    EXPECT_EQ(0, AddFace(dev, kAlice, strlen(kAlice)));
    const std::string feature(1384, 'f');
    EXPECT_EQ(0, AddFeature(dev, kBob, strlen(kBob), feature.data(), static_cast<unsigned int>(feature.size())));
    EXPECT_EQ(0, QueryFace(dev, kAlice, strlen(kAlice), 0));
    std::vector<char> back(feature.size());
    EXPECT_EQ(0, QueryFeature(dev, kBob, strlen(kBob), back.data(), static_cast<unsigned int>(back.size())));
    EXPECT_EQ(feature, std::string(back.begin(), back.end()));
    unsigned int faces = 0;
    EXPECT_EQ(0, GetDeviceFaceLibraryNum(dev, &faces));
    EXPECT_EQ(2u, faces);
    EXPECT_EQ(0, DeleteFace(dev, 1, kAlice, strlen(kAlice)));
    EXPECT_EQ(std::vector<std::string>{kBob}, module.model.FaceIds());
    // Recognition.
    EXPECT_EQ(0, StartOnetoNumRecognize(dev, 1, 0));
    EXPECT_EQ(0, QueryRecognize(dev));
    EXPECT_EQ(0, PauseRecognize(dev));
    EXPECT_EQ(0x20, QueryRecognize(dev));
    EXPECT_EQ(0, ResumeRecognize(dev));
    // Recognition settings.
    unsigned char recognitions = 0, livings = 0;
    EXPECT_EQ(0, SetRecognizeCount(dev, 4, 2));
    EXPECT_EQ(0, GetRecognizeCount(dev, &recognitions, &livings));
    EXPECT_TRUE(recognitions == 4 && livings == 2) << int(recognitions) << " " << int(livings);
    // Camera and sensor settings.
    unsigned int rate = 0;
    EXPECT_EQ(0, SetFrameRate(dev, 20));
    EXPECT_EQ(0, GetFrameRate(dev, &rate));
    EXPECT_EQ(20u, rate);
    unsigned char luminance = 0, closeTime = 0;
    EXPECT_EQ(0, SetIRlight(dev, 150, 60));
    EXPECT_EQ(0, GetIRlight(dev, &luminance, &closeTime));
    EXPECT_TRUE(luminance == 150 && closeTime == 60) << int(luminance) << " " << int(closeTime);
    // Upload and QR-code switches.
    EXPECT_EQ(0, OpenAutoUploadAiInfo(dev, 3, 0));
    EXPECT_EQ(0, SetQRCodeSwitch(dev, 1, 2));
    const sim::ReportSwitches reports = module.model.Settings().reports;
    EXPECT_TRUE(reports.uploadOpen && reports.uploadMode == 3 && reports.qrOpen && reports.qrInterval == 2);
}

TEST_F(RealDeviceTest, AllFiveReportKindsWithTheImageAcknowledged)
{
    ReportSink::Reset(&module.simulator);
    ReportSink::RegisterAll(dev);
    ConnectModule();
    ASSERT_EQ(0, AddFace(dev, kAlice, strlen(kAlice)));
    ASSERT_EQ(0, OpenAutoUploadAiInfo(dev, 4, 1));
    ASSERT_EQ(0, SetQRCodeSwitch(dev, 1, 1));
    ASSERT_EQ(0, StartOnetoNumRecognize(dev, 1, 0));
    module.model.EmitRound();
    ASSERT_TRUE(ReportSink::WaitFor(5));
    ASSERT_TRUE(module.model.WaitForCounters([](const sim::ReportCounters& c) { return c.imageAcks == 1; }, 10000));
    module.model.EmitRound();  // a second image only once the first was acknowledged
    ASSERT_TRUE(ReportSink::WaitFor(10));
    std::map<uint16_t, std::vector<ReceivedReport>> kinds;
    for (const ReceivedReport& report : ReportSink::Received())
        kinds[report.kind].push_back(report);
    ASSERT_EQ(5u, kinds.size());
    for (const auto& kind : kinds)
        EXPECT_EQ(2u, kind.second.size()) << "kind 0x" << std::hex << kind.first;
    const std::string reco(kinds[0x31][0].value.begin(), kinds[0x31][0].value.end());
    EXPECT_NE(std::string::npos, reco.find("\"id\":\"alice\"")) << reco;
    const std::string qr(kinds[0x32][0].value.begin(), kinds[0x32][0].value.end());
    EXPECT_NE(std::string::npos, qr.find("SIM-QR-")) << qr;
    // Each image callback runs once its acknowledgement has reached the module.
    EXPECT_EQ(1u, kinds[0x33][0].acksBefore);
    EXPECT_EQ(2u, kinds[0x33][1].acksBefore);
    EXPECT_EQ(2u, module.model.Counters().image);
}

TEST_F(RealDeviceTest, FirmwarePackageOfOneMebibyte)
{
    ConnectModule();
    std::vector<unsigned char> package(1 << 20);
    for (size_t i = 0; i < package.size(); ++i)
        package[i] = static_cast<unsigned char>((i * 2654435761u) >> 13);
    const unsigned int slice = 64 * 1024;
    for (unsigned int at = 0; at < package.size(); at += slice)
        ASSERT_EQ(0, UploadPackageSlice(dev, at, package.data() + at, slice)) << "slice at " << at;
    uint8_t digest[16];
    av_md5_sum(digest, package.data(), static_cast<int>(package.size()));
    char hash[33];
    for (int i = 0; i < 16; ++i)
        snprintf(hash + 2 * i, 3, "%02x", digest[i]);
    EXPECT_TRUE(std::vector<uint8_t>(package.begin(), package.end()) == module.model.FirmwarePackage());
    ASSERT_EQ(0, ApplyUpgrade(dev, hash, 32));
    const sim::AppliedPackage applied = module.model.FirmwareApplied();
    EXPECT_EQ(1u, applied.count);
    EXPECT_EQ(package.size(), applied.size);
    EXPECT_EQ(hash, applied.md5);
}
}  // namespace
