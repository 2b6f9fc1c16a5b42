// aicam recognize against the module model over a pseudo-terminal: a
// recognition report of the other mode, still on its way from an earlier run
// when the new one starts, is neither printed nor counted.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <fstream>
#include <sstream>
#include <string>

#include "ModuleModel.h"
#include "ModuleProtocol.h"
#include "RecognitionMode.h"

namespace {

std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

sim::Bytes RecognitionReport(uint64_t seq, bool oneToOne)
{
    sim::RecognitionResult result;
    result.trackId = 1;
    result.oneToOne = oneToOne;
    result.id = "alice";
    const std::string text = sim::RecognitionReportText(seq, result);
    return sim::Bytes(text.begin(), text.end());
}

std::string AsString(const sim::Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

TEST(RecognitionMode, TheModuleNamesTheModeInRecognitionReportsOnly)
{
    EXPECT_EQ(RecognitionMode::OneToMany, ModeOfReport(AsString(RecognitionReport(3, false))));
    EXPECT_EQ(RecognitionMode::OneToOne, ModeOfReport(AsString(RecognitionReport(3, true))));
    EXPECT_EQ(RecognitionMode::Unnamed, ModeOfReport(sim::TrackReportText(4, 1, nullptr)));
    // Binary data after an image report's header is not searched.
    const std::string jpeg = "\xFF\xD8\"mode\":\"1:N\"";
    const std::string image = AsString(sim::ImageReportValue(5, 1, 16, 16, sim::Bytes(jpeg.begin(), jpeg.end())));
    EXPECT_EQ(RecognitionMode::Unnamed, ModeOfReport(image));
    EXPECT_FALSE(IsOfOtherMode(image, RecognitionMode::OneToOne));
    EXPECT_TRUE(IsOfOtherMode(AsString(RecognitionReport(3, false)), RecognitionMode::OneToOne));
}

TEST(RecognizeCommand, ALeftoverReportOfTheOtherModeIsSkipped)
{
    struct Case {
        uint16_t startTag;
        bool oneToOne;
    };
    for (const Case& c : {Case{sim::proto::kTagStartOneToOne, true}, Case{sim::proto::kTagStartOneToMany, false}}) {
        SCOPED_TRACE(c.oneToOne ? "one to one" : "one to many");
        sim::ModuleSimulator simulator;
        sim::ModuleModel model(simulator);
        ASSERT_TRUE(simulator.Start());
        model.Install();
        // A report of the earlier run reaches the host just before the answer to the start.
        const sim::Bytes leftover = RecognitionReport(999, !c.oneToOne);
        simulator.SetHandler(c.startTag, [&](const sim::Request& request) {
            simulator.PushReport(sim::proto::kTagRecoReport, leftover);
            return model.Handle(request);
        });
        model.SetReportInterval(20);
        std::ofstream("reference.jpg") << "\xFF\xD8 reference picture";
        const std::string command = std::string(AICAM_PROGRAM) + " --port " + simulator.SlavePath() +
                                    " recognize --count 2 --kinds recognition" +
                                    (c.oneToOne ? " --one-to-one reference.jpg" : "") + " >out 2>err";
        const int status = std::system(command.c_str());
        model.SetReportInterval(0);
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << ReadFile("err");

        const std::string out = ReadFile("out");
        const std::string mode = c.oneToOne ? "\"mode\":\"1:1\"" : "\"mode\":\"1:N\"";
        std::istringstream lines(out);
        int reports = 0;
        for (std::string line; std::getline(lines, line); ++reports)
            EXPECT_NE(std::string::npos, line.find(mode)) << line;
        EXPECT_EQ(2, reports) << out;
        EXPECT_NE(std::string::npos, ReadFile("err").find("2 reports; recognition paused"));
        EXPECT_EQ(sim::RecognitionRun::Paused, model.Recognition().run);
    }
}

}  // namespace
