#include "FaceLibrary.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "ModuleProtocol.h"

namespace sim {
namespace {

const char kFileHeader[] = "# simulated module: faces id<TAB>source<TAB>feature, settings name<TAB>value";

uint64_t Fnv1a(const uint8_t* data, size_t length) {
    uint64_t h = 1469598103934665603ull;
    for (size_t i = 0; i < length; ++i) h = (h ^ data[i]) * 1099511628211ull;
    return h;
}

std::string FeatureFromHash(uint64_t state) {
    static const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out(proto::kFeatureLength, 'A');
    for (char& c : out) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        c = kAlphabet[state & 63];
    }
    return out;
}

}  // namespace

bool FaceLibrary::ValidId(const std::string& id) {
    if (id.empty() || id.size() > proto::kMaxIdLength) return false;
    return std::none_of(id.begin(), id.end(), [](unsigned char c) { return c < 0x20 || c == ',' || c == 0x7F; });
}

bool FaceLibrary::ValidEntry(const FaceEntry& e) {
    return ValidId(e.id) && e.feature.size() == proto::kFeatureLength &&
           e.feature.find_first_of("\t\r\n", 0) == std::string::npos && !e.source.empty() &&
           e.source.find_first_of("\t\r\n", 0) == std::string::npos;
}

uint8_t FaceLibrary::Add(const FaceEntry& entry) {
    if (!ValidEntry(entry)) return proto::kInvalidParam;
    if (Find(entry.id)) return proto::kFaceExists;
    if (m_entries.size() >= proto::kMaxFaces) return proto::kLibraryFull;
    m_entries.push_back(entry);
    return proto::kOk;
}

uint8_t FaceLibrary::Remove(const std::string& id) {
    auto it = std::find_if(m_entries.begin(), m_entries.end(), [&](const FaceEntry& e) { return e.id == id; });
    if (it == m_entries.end()) return proto::kFaceNotFound;
    m_entries.erase(it);
    return proto::kOk;
}

const FaceEntry* FaceLibrary::Find(const std::string& id) const {
    for (const FaceEntry& e : m_entries)
        if (e.id == id) return &e;
    return nullptr;
}

std::vector<std::string> FaceLibrary::Ids() const {
    std::vector<std::string> ids;
    for (const FaceEntry& e : m_entries) ids.push_back(e.id);
    return ids;
}

std::string FaceLibrary::ListText() const {
    std::string text;
    for (const FaceEntry& e : m_entries) {
        if (!text.empty()) text += ',';
        text += e.id;
    }
    return text;
}

std::string FaceLibrary::SyntheticFeature(const std::string& seed) {
    return FeatureFromHash(Fnv1a(reinterpret_cast<const uint8_t*>(seed.data()), seed.size()) | 1);
}

std::string FaceLibrary::SyntheticFeature(const Bytes& seed) {
    return FeatureFromHash(Fnv1a(seed.data(), seed.size()) | 1);
}

bool FaceLibrary::Save(const std::string& path, std::string& error, const std::string& otherLines) const {
    // Written aside and renamed, so that a crash never leaves half a library.
    std::string temp = path + ".tmp";
    {
        std::ofstream out(temp, std::ios::trunc);
        out << kFileHeader << '\n';
        for (const FaceEntry& e : m_entries) out << e.id << '\t' << e.source << '\t' << e.feature << '\n';
        out << otherLines;
        out.flush();
        if (!out) {
            error = "cannot write " + temp + ": " + std::strerror(errno);
            return false;
        }
    }
    if (std::rename(temp.c_str(), path.c_str()) != 0) {
        error = "cannot rename " + temp + " to " + path + ": " + std::strerror(errno);
        std::remove(temp.c_str());
        return false;
    }
    return true;
}

bool FaceLibrary::Load(const std::string& path, std::string& error, const PairLine& onPair) {
    std::ifstream in(path);
    if (!in) {
        error = "cannot open " + path;
        return false;
    }
    FaceLibrary loaded;
    std::string line;
    size_t lineNo = 0;
    while (std::getline(in, line)) {
        ++lineNo;
        if (line.empty() || line[0] == '#') continue;
        const size_t tab = line.find('\t');
        if (onPair && tab != std::string::npos && line.find('\t', tab + 1) == std::string::npos) {
            if (onPair(line.substr(0, tab), line.substr(tab + 1))) continue;
            error = path + ":" + std::to_string(lineNo) + ": not a valid setting";
            return false;
        }
        FaceEntry e;
        std::istringstream fields(line);
        std::getline(fields, e.id, '\t');
        std::getline(fields, e.source, '\t');
        std::getline(fields, e.feature);
        if (loaded.Add(e) != proto::kOk) {
            error = path + ":" + std::to_string(lineNo) + ": not a valid face entry";
            return false;
        }
    }
    m_entries.swap(loaded.m_entries);
    return true;
}

}  // namespace sim
