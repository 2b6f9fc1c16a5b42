// The module enumeration and version query of the extension header: refusals,
// counting without an array, cut texts, and their trace records. The pairing
// itself is tested on sysfs trees (tests/OS) and on real USB in the rig.
#include <string.h>

#include "DeviceTest.h"
#include "ai_camera_ext.h"

using ModulesInterface = DeviceTest;

namespace {
std::string Refused(const std::string& why)
{
    return "[ERROR] " + why + "\n[INPUT ] invalid input\n[OUTPUT] invalid output\n[RETURN] nRet : -4\n";
}
}  // namespace

TEST_F(ModulesInterface, BadArgumentsAreRefusedWithoutTouchingTheArray)
{
    AI_CAMERA_MODULE modules[2];
    memset(modules, 0x5A, sizeof modules);
    const std::string ids = Refused("vendorId or productId outside 0..0xFFFF");
    auto row = [&](const std::function<int()>& call, const std::string& why) {
        return Row{"EnumModules", call, -4, why};
    };
    char version[4];
    Check({row([&] { return EnumModules(modules, -1, 0, 0, 0); }, Refused("capacity < 0")),
           row([] { return EnumModules(nullptr, 1, 0, 0, 0); }, Refused("modules == nullptr && capacity > 0")),
           row([&] { return EnumModules(modules, 2, 0x10000, 0, 0); }, ids),
           row([&] { return EnumModules(modules, 2, 0, -1, 0); }, ids),
           row([&] { return EnumModules(modules, 2, 0, 0, 2); }, Refused("unknown flags")),
           Row{"GetSdkVersion", [] { return GetSdkVersion(nullptr, 8); }, -4,
               Refused("versionBuf == nullptr || versionSize <= 0")},
           Row{"GetSdkVersion", [&] { return GetSdkVersion(version, 0); }, -4,
               Refused("versionBuf == nullptr || versionSize <= 0")}});
    for (const AI_CAMERA_MODULE& module : modules)
        EXPECT_EQ(0x5A, module.serialNode[0]);
}

TEST_F(ModulesInterface, CountingNeedsNoArrayAndAgreesWithTheFilledArray)
{
    const int count = EnumModules(nullptr, 0, 0, 0, AI_CAMERA_MODULES_PARTIAL);
    ASSERT_GE(count, 0);
    std::vector<AI_CAMERA_MODULE> modules(count + 1);
    memset(modules.data(), 0x5A, modules.size() * sizeof modules[0]);
    EXPECT_EQ(count, EnumModules(modules.data(), count + 1, 0, 0, AI_CAMERA_MODULES_PARTIAL));
    EXPECT_EQ(0x5A, modules[count].serialNode[0]) << "the entry past the count stays as it was";
    for (int i = 0; i < count; ++i)
        EXPECT_TRUE(modules[i].serialNode[0] || modules[i].videoNode[0]) << i;
    const std::string record = LastRecord("EnumModules");
    EXPECT_EQ(0u, record.find("[INPUT ] capacity : " + std::to_string(count + 1) +
                              " vendorId : 0x0000 productId : 0x0000 flags : 1\n[OUTPUT] modules : "))
        << record;
    EXPECT_NE(std::string::npos, record.find("\n[RETURN] nRet : " + std::to_string(count) + "\n")) << record;
}

TEST_F(ModulesInterface, TheVersionIsCutToTheBuffer)
{
    char version[16];
    EXPECT_EQ(0, GetSdkVersion(version, sizeof version));
    EXPECT_STREQ("V4.2.0.2", version);
    EXPECT_EQ("[INPUT ] versionSize : 16\n[OUTPUT] versionBuf : V4.2.0.2\n[RETURN] nRet : 0\n",
              LastRecord("GetSdkVersion"));
    memset(version, 'x', sizeof version);
    EXPECT_EQ(0, GetSdkVersion(version, 4));
    EXPECT_EQ(std::string("V4.\0xxxx", 8), std::string(version, 8));
}
