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
std::string ReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

template <typename T>
bool ReadAt(const std::string& image, uint64_t offset, T* out)
{
    if (offset > image.size() || image.size() - offset < sizeof(T))
        return false;
    memcpy(out, image.data() + offset, sizeof(T));
    return true;
}

// Names of the global and weak symbols the library defines in its dynamic symbol table.
std::set<std::string> DefinedDynamicSymbols(const std::string& image)
{
    std::set<std::string> names;
    Elf64_Ehdr header;
    if (!ReadAt(image, 0, &header) || memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
        return names;
    for (unsigned i = 0; i < header.e_shnum; ++i) {
        Elf64_Shdr section, strings;
        if (!ReadAt(image, header.e_shoff + uint64_t(i) * header.e_shentsize, &section) ||
            section.sh_type != SHT_DYNSYM ||
            !ReadAt(image, header.e_shoff + uint64_t(section.sh_link) * header.e_shentsize, &strings))
            continue;
        for (uint64_t at = 0; at + sizeof(Elf64_Sym) <= section.sh_size; at += sizeof(Elf64_Sym)) {
            Elf64_Sym symbol;
            if (!ReadAt(image, section.sh_offset + at, &symbol) || symbol.st_shndx == SHN_UNDEF || !symbol.st_name)
                continue;
            unsigned char binding = ELF64_ST_BIND(symbol.st_info);
            uint64_t name = strings.sh_offset + symbol.st_name;
            if ((binding == STB_GLOBAL || binding == STB_WEAK) && name < image.size())
                names.insert(std::string(image.data() + name, strnlen(image.data() + name, image.size() - name)));
        }
    }
    return names;
}

// Names of the functions a header declares with AI_CAMERA_API: on one line, a type, the name, then "(".
std::set<std::string> DeclaredFunctions(const std::string& header)
{
    std::string source = ReadFile(header);
    std::set<std::string> names;
    const std::string marker = "AI_CAMERA_API ";
    for (size_t at = source.find(marker); at != std::string::npos; at = source.find(marker, at + 1)) {
        size_t open = source.find('(', at);
        std::string between = source.substr(at + marker.size(), open - at - marker.size());
        size_t nameStart = between.find_last_of(" *");
        // Skips "AI_CAMERA_API __attribute__((...))", which has no type before a name.
        if (open != std::string::npos && between.find_first_of("\n;") == std::string::npos &&
            nameStart != std::string::npos)
            names.insert(between.substr(nameStart + 1));
    }
    return names;
}
}  // namespace

// The tests of this program call every one of these functions by name, so the
// declared set cannot hold a misspelt one; its size says that none is missing.
TEST(ExportedSymbols, OnlyTheFunctionsOfTheHeadersAreExported)
{
    std::set<std::string> declared = DeclaredFunctions(AICAM_INTERFACE_DIR "/ai_camera.h");
    std::set<std::string> extension = DeclaredFunctions(AICAM_INTERFACE_DIR "/ai_camera_ext.h");
    EXPECT_EQ(std::set<std::string>({"ConnectCameraPlayback", "EnumModules", "GetSdkVersion", "GetResultText",
                                     "SetLogDirectory", "RegisterRecoReportCbEx", "RegisterTrackReportCbEx",
                                     "RegisterImageReportCbEx", "RegisterFeatureReportCbEx",
                                     "RegisterQRCodeReportCbEx", "RegisterLinkStateCb", "GetLinkStats",
                                     "UpgradeFirmware", "UpgradeFirmwareFromFile", "WaitFrame"}),
              extension);
    EXPECT_EQ(78u, declared.size());
    declared.insert(extension.begin(), extension.end());
    std::string image = ReadFile(AICAM_LIBRARY_FILE);
    ASSERT_FALSE(image.empty()) << AICAM_LIBRARY_FILE;
    EXPECT_EQ(declared, DefinedDynamicSymbols(image));
}
