// Module enumeration over sysfs trees built in the test's scratch directory.
#include <limits.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FakeSysfs.h"
#include "OS/OS_UsbModules.h"

namespace {
const int kVendor = 0x1d6b, kProduct = 0x0104;

std::string Here()
{
    char cwd[PATH_MAX];
    return getcwd(cwd, sizeof cwd) ? cwd : ".";
}

// "1-1.2 ttyACM1 video3 1d6b:0104 A-001", node names relative to the tree's dev/.
std::vector<std::string> Describe(const std::vector<OS_UsbModule>& modules, const std::string& dev)
{
    std::vector<std::string> lines;
    auto name = [&](const std::string& node) { return node.empty() ? "-" : node.substr(dev.size() + 1); };
    for (const OS_UsbModule& module : modules) {
        char ids[16];
        snprintf(ids, sizeof ids, "%04x:%04x", module.vendorId, module.productId);
        lines.push_back(module.usbPath + " " + name(module.serialNode) + " " + name(module.videoNode) + " " + ids +
                        " " + module.usbSerial);
    }
    return lines;
}

class UsbModules : public ::testing::Test {
protected:
    UsbModules() : tree(Here())
    {
        // Two modules whose node numbers run against their sockets, each capture
        // node beside its metadata node (the metadata node named first).
        tree.AddUsbDevice("1-1.10", kVendor, kProduct, "B-002");
        tree.AddTty("1-1.10", 0, "ttyACM0");
        tree.AddVideo("1-1.10", 2, "video0", 0);
        tree.AddVideo("1-1.10", 2, "video1", 1);
        tree.AddUsbDevice("1-1.2", kVendor, kProduct, "A-001");
        tree.AddTty("1-1.2", 0, "ttyACM1");
        tree.AddVideo("1-1.2", 2, "video2", 1);
        tree.AddVideo("1-1.2", 2, "video3", 0);
        // A modem, a webcam with its metadata node, a module without its camera,
        // and a camera beside a serial port that is not CDC-ACM.
        tree.AddUsbDevice("2-1", 0x1546, 0x01a8, "MODEM");
        tree.AddTty("2-1", 0, "ttyACM2");
        tree.AddUsbDevice("1-3", 0x046d, 0x0825, "");
        tree.AddVideo("1-3", 0, "video4", 0);
        tree.AddVideo("1-3", 0, "video5", 1);
        tree.AddUsbDevice("1-4", kVendor, kProduct, "HALF");
        tree.AddTty("1-4", 0, "ttyACM3");
        tree.AddUsbDevice("1-5", 0x0403, 0x6001, "FTDI");
        tree.AddTty("1-5", 0, "ttyUSB0", "ftdi_sio");
        tree.AddVideo("1-5", 1, "video6", 0);
    }

    std::vector<std::string> Find(int vendorId, int productId, bool partial)
    {
        OS_ModuleQuery query;
        query.sysRoot = tree.SysRoot();
        query.devRoot = tree.DevRoot();
        query.vendorId = vendorId;
        query.productId = productId;
        query.partial = partial;
        return Describe(OS_EnumUsbModules(query), tree.DevRoot());
    }

    FakeSysfs tree;
};
}  // namespace

TEST_F(UsbModules, OnlyDevicesWithBothNodesArePairedInSocketOrder)
{
    const std::vector<std::string> modules = {"1-1.2 ttyACM1 video3 1d6b:0104 A-001",
                                              "1-1.10 ttyACM0 video0 1d6b:0104 B-002"};
    EXPECT_EQ(modules, Find(0, 0, false));
    EXPECT_EQ(modules, Find(kVendor, 0, false));
    EXPECT_EQ(modules, Find(kVendor, kProduct, false));
    EXPECT_EQ(std::vector<std::string>(), Find(kVendor, 0x0105, false));
    EXPECT_EQ(std::vector<std::string>(), Find(0x046d, 0, false));
}

TEST_F(UsbModules, PartialDevicesShowWhichNodeIsMissing)
{
    EXPECT_EQ(std::vector<std::string>({"1-1.2 ttyACM1 video3 1d6b:0104 A-001", "1-1.10 ttyACM0 video0 1d6b:0104 B-002",
                                        "1-3 - video4 046d:0825 ", "1-4 ttyACM3 - 1d6b:0104 HALF",
                                        "1-5 - video6 0403:6001 FTDI", "2-1 ttyACM2 - 1546:01a8 MODEM"}),
              Find(0, 0, true));
    EXPECT_EQ(std::vector<std::string>({"1-1.2 ttyACM1 video3 1d6b:0104 A-001", "1-1.10 ttyACM0 video0 1d6b:0104 B-002",
                                        "1-4 ttyACM3 - 1d6b:0104 HALF"}),
              Find(kVendor, kProduct, true));
}

TEST_F(UsbModules, TheLowestNumberedNodeOfAKindWins)
{
    tree.AddUsbDevice("3-2", 0x2bdf, 0x0001, "TWO-PORTS");
    tree.AddTty("3-2", 0, "ttyACM10");
    tree.AddTty("3-2", 2, "ttyACM9");
    tree.AddVideo("3-2", 4, "video12", 2);
    tree.AddVideo("3-2", 4, "video13", 3);
    tree.AddVideo("3-2", 5, "video10", 0);
    tree.AddVideo("3-2", 5, "video11", 1);
    EXPECT_EQ(std::vector<std::string>({"3-2 ttyACM9 video10 2bdf:0001 TWO-PORTS"}), Find(0x2bdf, 0, false));
}

TEST(UsbModulesWithoutSysfs, NothingIsFound)
{
    OS_ModuleQuery query;
    query.sysRoot = Here() + "/no-such-sys";
    EXPECT_TRUE(OS_EnumUsbModules(query).empty());
}
