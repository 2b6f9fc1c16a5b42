// The parts of aicam that need no module: the command line, the result texts
// and exit statuses, and the slicing of payloads.
#include <stdio.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Arguments.h"
#include "FileData.h"
#include "ModuleSelection.h"
#include "ResultText.h"

TEST(CommandLine, OptionsAreTakenWhereverTheyStandInBothForms)
{
    Arguments args({"alice", "--slice", "512", "photo.jpg", "--md5=abc", "--all"});
    std::string md5, id, file;
    long slice = 0;
    EXPECT_TRUE(args.Flag("--all"));
    EXPECT_FALSE(args.Flag("--all"));
    EXPECT_TRUE(args.Number("--slice", 1, 8192, slice) && slice == 512);
    EXPECT_TRUE(args.Option("--md5", md5) && md5 == "abc");
    EXPECT_TRUE(args.Next("ID", id) && args.Next("FILE", file));
    EXPECT_EQ("alice", id);
    EXPECT_EQ("photo.jpg", file);
    EXPECT_EQ(0, args.Finish("faces add-image"));
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

TEST(ResultCodes, EveryCodeHasASentence)
{
    EXPECT_EQ("module status 50", ResultText(50));
    EXPECT_EQ("unknown result code", ResultText(-99));
    for (int code : {-1, -2, -4, -5, -6, -7, -8, -9, -10, -11, -20, -21, -22}) {
        EXPECT_NE("unknown result code", ResultText(code)) << code;
        EXPECT_NE(std::string::npos, ExitStatusHelp().find(ResultText(code))) << code;
        EXPECT_EQ(-code, ExitStatus(code));
    }
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
