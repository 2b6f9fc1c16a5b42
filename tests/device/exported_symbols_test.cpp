// The shared library exports the functions its public headers declare, and nothing else.
#include <elf.h>
#include <string.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace {
std::vector<char> ReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::vector<char>(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

template <typename T>
bool ReadAt(const std::vector<char>& image, uint64_t offset, T* out)
{
    if (offset > image.size() || image.size() - offset < sizeof(T))
        return false;
    memcpy(out, image.data() + offset, sizeof(T));
    return true;
}

// Names of the symbols the library defines in its dynamic symbol table.
std::set<std::string> DefinedDynamicSymbols(const std::vector<char>& image)
{
    std::set<std::string> names;
    Elf64_Ehdr header;
    if (!ReadAt(image, 0, &header) || memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
        header.e_ident[EI_CLASS] != ELFCLASS64)
        return names;
    for (unsigned i = 0; i < header.e_shnum; ++i) {
        Elf64_Shdr section;
        if (!ReadAt(image, header.e_shoff + uint64_t(i) * header.e_shentsize, &section) || section.sh_type != SHT_DYNSYM)
            continue;
        Elf64_Shdr strings;
        if (!ReadAt(image, header.e_shoff + uint64_t(section.sh_link) * header.e_shentsize, &strings))
            continue;
        for (uint64_t at = 0; at + sizeof(Elf64_Sym) <= section.sh_size; at += sizeof(Elf64_Sym)) {
            Elf64_Sym symbol;
            if (!ReadAt(image, section.sh_offset + at, &symbol) || symbol.st_shndx == SHN_UNDEF || symbol.st_name == 0)
                continue;
            unsigned char binding = ELF64_ST_BIND(symbol.st_info);
            if (binding != STB_GLOBAL && binding != STB_WEAK)
                continue;
            uint64_t name = strings.sh_offset + symbol.st_name;
            if (name < image.size())
                names.insert(std::string(image.data() + name, strnlen(image.data() + name, image.size() - name)));
        }
    }
    return names;
}

// Names of the functions a header declares with AI_CAMERA_API: on one line,
// a type, the name, then "(".
std::set<std::string> DeclaredFunctions(const std::string& header)
{
    std::vector<char> text = ReadFile(header);
    std::string source(text.begin(), text.end());
    std::set<std::string> names;
    const std::string marker = "AI_CAMERA_API ";
    for (size_t at = source.find(marker); at != std::string::npos; at = source.find(marker, at + 1)) {
        size_t open = source.find('(', at);
        if (open == std::string::npos)
            break;
        std::string between = source.substr(at + marker.size(), open - at - marker.size());
        if (between.find_first_of("\n;") != std::string::npos)
            continue;
        size_t nameStart = between.find_last_of(" *");
        if (nameStart == std::string::npos)
            continue;  // "AI_CAMERA_API __attribute__((...))": no type before a name
        names.insert(between.substr(nameStart + 1));
    }
    return names;
}

// The functions of the interface: lifecycle, connections, forwarding functions,
// registrations, and the playback extension.
const std::set<std::string> kInterface = {
    "Init", "InitDev", "DeInit", "DeInitDev", "SetLogConfig", "GetLogConfig", "EnumDevice",
    "ConnectSerial", "DisconnectSerial", "ConnectCamera", "DisconnectCamera",
    "GetFrame", "GetResolution", "AddFace", "AddFaceByImage", "AddFaceReturnImage", "AddFaceSlice", "DeleteFace",
    "QueryFace", "StaticFaceCompare", "StaticFaceCompareReturnImage", "StaticFaceCompareSlice", "AddFeature",
    "QueryFeature", "StartOnetoNumRecognize", "StartOnetoOneRecognize", "StartOnetoOneRecognizeSlice",
    "ResumeRecognize", "PauseRecognize", "QueryRecognize", "SetRecConfig", "GetRecConfig",
    "OpenAutoUploadFaceInfoInFrame", "CloseAutoUploadFaceInfoInFrame", "GetDeviceFaceID", "SetRecognizeCount",
    "GetRecognizeCount", "SetTemplateUpdate", "GetTemplateUpdate", "SetQRCodeSwitch", "GetDeviceFaceLibraryNum",
    "GetSingleRecognize", "Ping", "UploadPackageSlice", "ApplyUpgrade", "GetDeviceVersion", "Reboot",
    "SetUmodeToEngin", "Reset", "Recovery", "GetDevSn", "GetDevModel", "SetUvcSwitch", "SetCameraStream",
    "GetCameraStream", "SwitchCamRgbIr", "SetStreamFormat", "GetDevModelAppVer", "GetLuminousSensitivityThreshold",
    "GetDeviceNoFlickerHz", "SetDeviceNoFlickerHz", "SetRotateAngle", "GetScreenDirection", "SetScreenDirection",
    "SetResolution", "GetFrameRate", "SetFrameRate", "GetIRlight", "SetIRlight", "GetCpuTemperature",
    "GetAESensorModel", "CloseAutoUploadAiInfo", "OpenAutoUploadAiInfo",
    "RegisterRecoReportCb", "RegisterTrackReportCb", "RegisterImageReportCb", "RegisterFeatureReportCb",
    "RegisterQRCodeReportCb",
    "ConnectCameraPlayback",
};
}  // namespace

TEST(ExportedSymbols, TheHeadersDeclareTheWholeInterface)
{
    std::set<std::string> declared = DeclaredFunctions(AICAM_INTERFACE_DIR "/ai_camera.h");
    std::set<std::string> extension = DeclaredFunctions(AICAM_INTERFACE_DIR "/ai_camera_ext.h");
    EXPECT_EQ(std::set<std::string>({"ConnectCameraPlayback"}), extension);
    declared.insert(extension.begin(), extension.end());
    EXPECT_EQ(79u, kInterface.size());
    EXPECT_EQ(kInterface, declared);
}

TEST(ExportedSymbols, OnlyTheDeclaredFunctionsAreExported)
{
    std::vector<char> image = ReadFile(AICAM_LIBRARY_FILE);
    ASSERT_FALSE(image.empty()) << AICAM_LIBRARY_FILE;
    std::set<std::string> exported = DefinedDynamicSymbols(image);
    EXPECT_EQ(kInterface, exported);
}
