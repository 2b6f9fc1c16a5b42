#include "SettingsText.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace sim {
namespace {

struct Field {
    const char* name;
    uint8_t* byte = nullptr;
    uint32_t* word = nullptr;
    bool* flag = nullptr;
    std::string* text = nullptr;
};

Field Byte(const char* name, uint8_t& v) { return Field{name, &v}; }
Field Word(const char* name, uint32_t& v) { return Field{name, nullptr, &v}; }
Field Flag(const char* name, bool& v) { return Field{name, nullptr, nullptr, &v}; }
Field Text(const char* name, std::string& v) { return Field{name, nullptr, nullptr, nullptr, &v}; }

std::vector<Field> Fields(ModuleSettings& s) {
    CameraSettings& c = s.camera;
    RecognitionSettings& r = s.recognition;
    ReportSwitches& w = s.reports;
    return {
        Byte("camera.uvcOn", c.uvcOn), Byte("camera.colourOpen", c.cameraOpen[0]),
        Byte("camera.infraredOpen", c.cameraOpen[1]), Byte("camera.rgbIr", c.rgbIr),
        Byte("camera.streamFormat", c.streamFormat), Word("camera.luminousThreshold", c.luminousThreshold),
        Byte("camera.colourFlickerHz", c.flickerHz[0]), Byte("camera.infraredFlickerHz", c.flickerHz[1]),
        Byte("camera.colourFlickerEnable", c.flickerEnable[0]),
        Byte("camera.infraredFlickerEnable", c.flickerEnable[1]), Byte("camera.rotateAngle", c.rotateAngle),
        Byte("camera.screenDirection", c.screenDirection), Byte("camera.resolution", c.resolution),
        Word("camera.frameRate", c.frameRate), Byte("camera.irLuminance", c.irLuminance),
        Byte("camera.irCloseTime", c.irCloseTime),
        Text("recognition.config", r.config), Byte("recognition.recognizeCount", r.recognizeCount),
        Byte("recognition.livingCount", r.livingCount), Byte("recognition.templateUpdate", r.templateUpdate),
        Flag("reports.uploadOpen", w.uploadOpen), Byte("reports.uploadMode", w.uploadMode),
        Byte("reports.imageMode", w.imageMode), Flag("reports.faceInfoInFrame", w.faceInfoInFrame),
        Flag("reports.qrOpen", w.qrOpen), Byte("reports.qrInterval", w.qrInterval),
        Flag("engineeringMode", s.engineeringMode),
    };
}

std::string Escape(const std::string& text) {
    std::string out;
    for (unsigned char c : text) {
        if (c >= 0x20 && c != 0x7F && c != '\\') {
            out += char(c);
            continue;
        }
        char hex[5];
        std::snprintf(hex, sizeof hex, "\\x%02X", c);
        out += hex;
    }
    return out;
}

bool Unescape(const std::string& text, std::string& out) {
    out.clear();
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            out += text[i];
            continue;
        }
        if (text.size() - i < 4 || text[i + 1] != 'x') return false;
        const std::string hex = text.substr(i + 2, 2);
        if (!std::isxdigit(static_cast<unsigned char>(hex[0])) || !std::isxdigit(static_cast<unsigned char>(hex[1])))
            return false;
        out += char(std::strtol(hex.c_str(), nullptr, 16));
        i += 3;
    }
    return true;
}

bool Number(const std::string& text, unsigned long long max, unsigned long long& out) {
    if (text.empty() || text.size() > 10 || text.find_first_not_of("0123456789") != std::string::npos) return false;
    errno = 0;
    out = std::strtoull(text.c_str(), nullptr, 10);
    return errno == 0 && out <= max;
}

}  // namespace

std::string SettingsLines(const ModuleSettings& settings) {
    ModuleSettings copy = settings;
    std::string lines;
    for (const Field& f : Fields(copy)) {
        lines += f.name;
        lines += '\t';
        if (f.byte) lines += std::to_string(*f.byte);
        if (f.word) lines += std::to_string(*f.word);
        if (f.flag) lines += *f.flag ? "1" : "0";
        if (f.text) lines += Escape(*f.text);
        lines += '\n';
    }
    return lines;
}

bool ApplySettingLine(ModuleSettings& settings, const std::string& name, const std::string& value) {
    for (const Field& f : Fields(settings)) {
        if (name != f.name) continue;
        if (f.text) return Unescape(value, *f.text);
        unsigned long long v = 0;
        const unsigned long long max = f.byte ? 0xFF : f.word ? 0xFFFFFFFFull : 1;
        if (!Number(value, max, v)) return false;
        if (f.byte) *f.byte = uint8_t(v);
        if (f.word) *f.word = uint32_t(v);
        if (f.flag) *f.flag = v == 1;
        return true;
    }
    return false;
}

}  // namespace sim
