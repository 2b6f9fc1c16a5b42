// The parts of aicam that need no module: the command line, the result texts
// and exit statuses, and the slicing of payloads.
#include <stdio.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Arguments.h"
#include "CommandLine.h"
#include "FileData.h"
#include "ModuleSelection.h"
#include "ResultText.h"

namespace {
// Parses a command line given as words after "aicam".
ParsedCommandLine Parse(std::vector<std::string> words)
{
    words.insert(words.begin(), "aicam");
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(&word[0]);
    argv.push_back(nullptr);
    return ParseCommandLine(static_cast<int>(words.size()), argv.data());
}

const OptionList kNoOptions;
}  // namespace

TEST(CommandLine, OptionsTakeTheirValueInBothFormsAndStandAnywhere)
{
    const ParsedCommandLine line =
        Parse({"faces", "--port=/dev/a", "add-image", "alice", "--slice", "512", "photo.jpg", "-q", "--md5=abc"});
    EXPECT_EQ("", line.error);
    EXPECT_EQ((std::vector<std::string>{"faces", "add-image", "alice", "photo.jpg"}), line.words);
    EXPECT_EQ((OptionList{{"--port", "/dev/a"}, {"--slice", "512"}, {"--quiet", ""}, {"--md5", "abc"}}), line.options);

    // A value that looks like an option is still the value; "--" ends the options.
    const ParsedCommandLine dashes = Parse({"ping", "--port", "--odd", "--", "--text"});
    EXPECT_EQ("", dashes.error);
    EXPECT_EQ((OptionList{{"--port", "--odd"}}), dashes.options);
    EXPECT_EQ((std::vector<std::string>{"ping", "--text"}), dashes.words);

    // A unique abbreviation is the option; -h is --help.
    EXPECT_EQ((OptionList{{"--playback", "x"}, {"--help", ""}}), Parse({"--playb", "x", "-h"}).options);
}

TEST(CommandLine, WaitTakesANumberThatFollowsOrNone)
{
    EXPECT_EQ((OptionList{{"--wait", "5"}}), Parse({"reboot", "--wait", "5"}).options);
    EXPECT_EQ((OptionList{{"--wait", "7"}}), Parse({"reboot", "--wait=7", "3"}).options);
    const ParsedCommandLine bare = Parse({"reboot", "--wait", "now"});
    EXPECT_EQ((OptionList{{"--wait", ""}}), bare.options);
    EXPECT_EQ((std::vector<std::string>{"reboot", "now"}), bare.words);
    EXPECT_EQ((OptionList{{"--wait", ""}}), Parse({"reboot", "--wait"}).options);
}

TEST(CommandLine, MistakesAreNamed)
{
    EXPECT_EQ("--port needs a value", Parse({"ping", "--port"}).error);
    EXPECT_EQ("unknown option '--frobnicate'", Parse({"--frobnicate", "ping"}).error);
    EXPECT_EQ("unknown option '-x'", Parse({"ping", "-x"}).error);
    EXPECT_EQ("--json takes no value", Parse({"list", "--json=yes"}).error);
    EXPECT_EQ("'--s' is ambiguous", Parse({"info", "--s", "1"}).error);
    // The same process parses again from the start.
    EXPECT_EQ("", Parse({"ping"}).error);
}

TEST(CommandLine, ACommandTakesItsOptionsAndRefusesTheRest)
{
    OptionList options = {{"--port", "/dev/a"}, {"--json", ""}, {"--slice", "1"}, {"--slice", "9"}};
    const OptionList globals = TakeOptions(options, {"port", "quiet"});
    EXPECT_EQ((OptionList{{"--port", "/dev/a"}}), globals);

    Arguments args({"alice"}, options);
    long slice = 0;
    EXPECT_TRUE(args.Number("--slice", 1, 8192, slice));
    EXPECT_EQ(9, slice);  // the last one given
    EXPECT_FALSE(args.Flag("--all"));
    std::string id;
    EXPECT_TRUE(args.Next("ID", id));
    EXPECT_EQ(kUsage, args.Finish("faces add"));  // --json is not taken

    Arguments extra({"a", "b"}, kNoOptions);
    std::string text;
    EXPECT_TRUE(extra.Next("TEXT", text));
    EXPECT_EQ(kUsage, extra.Finish("ping"));
    Arguments clean({}, {{"--json", ""}});
    EXPECT_TRUE(clean.Flag("--json"));
    EXPECT_EQ(0, clean.Finish("list"));
}

TEST(CommandLine, NumbersMustBeWholeAndInRange)
{
    long value = 7;
    EXPECT_TRUE(ParseNumber("0x1f", 0, 100, value) && value == 31);
    EXPECT_TRUE(ParseNumber("-3", -5, 5, value) && value == -3);
    for (const char* bad : {"", "12abc", "4.5", "101", "-6", "99999999999999999999"})
        EXPECT_FALSE(ParseNumber(bad, -5, 100, value)) << bad;
    EXPECT_EQ(-3, value);
}

TEST(ResultCodes, EveryCodeHasASentenceAndTheExitStatusesDoNotCollide)
{
    EXPECT_EQ("the module refused", ResultText(50));
    EXPECT_EQ("unknown result code", ResultText(-99));
    for (int code : {-1, -2, -4, -5, -6, -7, -8, -9, -10, -11, -12, -13, -14, -20, -21, -22, -23, -24, -25}) {
        EXPECT_NE("unknown result code", ResultText(code)) << code;
        EXPECT_NE(std::string::npos, ExitStatusHelp().find(ResultText(code))) << code;
        EXPECT_EQ(kExitFailure, ExitStatus(code)) << code;
    }
    EXPECT_EQ(kExitSuccess, ExitStatus(0));
    EXPECT_EQ(kExitUsage, ExitStatus(kUsage));
    // A module status of 6 and the library's -6 no longer meet.
    for (int status : {1, 6, 255})
        EXPECT_EQ(kExitRefused, ExitStatus(status)) << status;
}

TEST(ResultCodes, AFailureIsOneLineWithOnePrefix)
{
    testing::internal::CaptureStderr();
    Fail("ping", -6);
    Fail("", kUsage, "unknown option '--x'; see 'aicam --help'");
    Fail("faces query", 3, "carol is not enrolled");
    EXPECT_EQ("aicam: ping: " + ResultText(-6) + " (-6)\n"
              "aicam: unknown option '--x'; see 'aicam --help'\n"
              "aicam: faces query: carol is not enrolled (module status 3)\n",
              testing::internal::GetCapturedStderr());
}

TEST(Slicing, SlicesCoverThePayloadInOrderAndTheFirstFailureStops)
{
    for (size_t size : {size_t(10000), size_t(4096)}) {
        ByteVector data(size);
        for (size_t i = 0; i < data.size(); ++i)
            data[i] = static_cast<unsigned char>(i * 7);
        ByteVector joined;
        std::vector<unsigned int> offsets;
        std::vector<bool> lasts;
        EXPECT_EQ(0, SendInSlices(data, 4096, [&](unsigned int offset, const unsigned char* bytes, unsigned int n, bool last) {
            offsets.push_back(offset);
            lasts.push_back(last);
            joined.insert(joined.end(), bytes, bytes + n);
            return 0;
        }));
        EXPECT_EQ((size == 4096 ? std::vector<unsigned int>{0} : std::vector<unsigned int>{0, 4096, 8192}), offsets);
        EXPECT_EQ((size == 4096 ? std::vector<bool>{true} : std::vector<bool>{false, false, true}), lasts);
        EXPECT_EQ(data, joined);
    }
    int calls = 0;
    EXPECT_EQ(20, SendInSlices(ByteVector(4096 * 3), 4096, [&](unsigned int offset, const unsigned char*, unsigned int, bool) {
        ++calls;
        return offset == 4096 ? 20 : 0;
    }));
    EXPECT_EQ(2, calls);
}

namespace {
AI_CAMERA_MODULE Module(const char* serialNode, const char* videoNode, const char* usbSerial, const char* usbPath)
{
    AI_CAMERA_MODULE module = {};
    snprintf(module.serialNode, sizeof module.serialNode, "%s", serialNode);
    snprintf(module.videoNode, sizeof module.videoNode, "%s", videoNode);
    snprintf(module.usbSerial, sizeof module.usbSerial, "%s", usbSerial);
    snprintf(module.usbPath, sizeof module.usbPath, "%s", usbPath);
    module.vendorId = 0x1d6b;
    module.productId = 0x0104;
    return module;
}
}  // namespace

TEST(ModuleSelection, UsbIdsAreFourHexDigitsEach)
{
    UsbId id;
    EXPECT_TRUE(ParseUsbId("1d6b:0104", id));
    EXPECT_EQ(0x1d6b, id.vendorId);
    EXPECT_EQ(0x0104, id.productId);
    EXPECT_TRUE(ParseUsbId("FFFF:0000", id) && id.vendorId == 0xFFFF && id.productId == 0);
    for (const char* bad : {"", "1d6b", "1d6b:", "1d6b:104", "1d6b-0104", "1d6b:0104:", "0x1d:0104", "1d6g:0104",
                            " 1d6b:0104"})
        EXPECT_FALSE(ParseUsbId(bad, id)) << bad;
    EXPECT_EQ("ffff:0000", UsbIdText(id.vendorId, id.productId));
}

TEST(ModuleSelection, ASerialNumberWinsOverAnIndex)
{
    const std::vector<AI_CAMERA_MODULE> modules = {Module("/dev/ttyACM1", "/dev/video2", "1", "1-1.2"),
                                                   Module("/dev/ttyACM0", "/dev/video0", "B-002", "1-1.10")};
    EXPECT_EQ(1, FindModule(modules, "B-002"));
    EXPECT_EQ(0, FindModule(modules, "1"));  // the serial number "1", not index 1
    EXPECT_EQ(0, FindModule(modules, "0"));
    for (const char* none : {"2", "-1", "", "b-002"})
        EXPECT_EQ(-1, FindModule(modules, none)) << none;
    EXPECT_EQ(-1, FindModule({}, "0"));
}

TEST(ModuleSelection, TheTableNumbersOnlyWholeModules)
{
    const std::vector<AI_CAMERA_MODULE> modules = {Module("/dev/ttyACM1", "/dev/video2", "A-001", "1-1.2"),
                                                   Module("/dev/ttyACM3", "", "", "1-4"),
                                                   Module("/dev/ttyACM0", "/dev/video0", "B-002", "1-1.10")};
    EXPECT_EQ("#  SERIAL NODE   VIDEO NODE   USB ID     SERIAL NUMBER  USB PATH\n"
              "0  /dev/ttyACM1  /dev/video2  1d6b:0104  A-001          1-1.2\n"
              "-  /dev/ttyACM3  -            1d6b:0104  -              1-4\n"
              "1  /dev/ttyACM0  /dev/video0  1d6b:0104  B-002          1-1.10\n",
              ModuleTable(modules));
    EXPECT_EQ("module 1 (1d6b:0104, serial -, USB 1-4)", ModuleName(modules[1], 1));
}
