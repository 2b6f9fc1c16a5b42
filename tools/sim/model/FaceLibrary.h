#pragma once
// The module's face library: identifiers with their features, in enrolment
// order, and the file in which the simulator keeps it between runs.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "WireFormat.h"

namespace sim {

struct FaceEntry {
    std::string id;
    std::string source;    // "camera", "image", "slices" or "feature"
    std::string feature;   // proto::kFeatureLength characters
};

class FaceLibrary {
public:
    // Returns a proto::Status: kOk, kInvalidParam, kFaceExists or kLibraryFull.
    uint8_t Add(const FaceEntry& entry);
    uint8_t Remove(const std::string& id);
    void Clear() { m_entries.clear(); }
    const FaceEntry* Find(const std::string& id) const;
    const std::vector<FaceEntry>& Entries() const { return m_entries; }
    std::vector<std::string> Ids() const;
    std::string ListText() const;   // identifiers joined by ","

    // The file holds one line "id<TAB>source<TAB>feature" per face, then
    // `otherLines` (the simulator keeps its settings there as two-field lines).
    bool Save(const std::string& path, std::string& error, const std::string& otherLines = {}) const;
    // Replaces the library only when the whole file is valid; every two-field
    // line goes to `onPair`, and the file is invalid when it returns false.
    using PairLine = std::function<bool(const std::string& name, const std::string& value)>;
    bool Load(const std::string& path, std::string& error, const PairLine& onPair = nullptr);

    static bool ValidId(const std::string& id);
    // A feature derived from a seed, so that the same face gives the same feature.
    static std::string SyntheticFeature(const std::string& seed);
    static std::string SyntheticFeature(const Bytes& seed);

private:
    static bool ValidEntry(const FaceEntry& entry);
    std::vector<FaceEntry> m_entries;
};

}  // namespace sim
