// The face library commands, on the module's side.
#include "ModuleModel.h"
#include "ModuleProtocol.h"

namespace sim {
namespace {

enum AddVariant : uint8_t { kFromCamera = 0, kFromImage = 1, kCameraReturningImage = 2 };

Bytes BadRequest() { return StatusOnly(proto::kBadRequest); }

}  // namespace

uint8_t ModuleModel::Enrol(const std::string& id, const std::string& source, const std::string& feature) {
    uint8_t status = m_faces.Add(FaceEntry{id, source, feature});
    if (status == proto::kOk) LibraryChanged();
    return status;
}

std::optional<Bytes> ModuleModel::OnAddFace(ByteReader& in) {
    uint8_t variant = 0;
    std::string id;
    if (!in.U8(variant) || !in.Text32(id)) return BadRequest();
    const std::string cameraFeature = FaceLibrary::SyntheticFeature(id + "@camera");
    switch (variant) {
    case kFromCamera:
        if (!in.AtEnd()) return BadRequest();
        return StatusOnly(m_faceVisible ? Enrol(id, "camera", cameraFeature) : uint8_t(proto::kNoFace));
    case kFromImage: {
        Bytes image;
        if (!in.Blob32(image) || !in.AtEnd()) return BadRequest();
        if (image.empty()) return StatusOnly(proto::kNoFace);
        return StatusOnly(Enrol(id, "image", FaceLibrary::SyntheticFeature(image)));
    }
    case kCameraReturningImage: {
        if (!in.AtEnd()) return StatusWithBlob(proto::kBadRequest, {});
        if (!m_faceVisible) return StatusWithBlob(proto::kNoFace, {});
        uint8_t status = Enrol(id, "camera", cameraFeature);
        return StatusWithBlob(status, status == proto::kOk ? SyntheticFaceJpeg(64) : Bytes{});
    }
    default:
        return StatusOnly(proto::kInvalidParam);
    }
}

std::optional<Bytes> ModuleModel::OnAddFaceSlice(ByteReader& in) {
    uint8_t idLength = 0, last = 0;
    uint32_t total = 0, position = 0;
    std::string id;
    if (!in.U8(idLength) || !in.Text(idLength, id) || !in.U32(total) || !in.U32(position) || !in.U8(last))
        return BadRequest();
    if (last > 1 || !FaceLibrary::ValidId(id)) return StatusOnly(proto::kInvalidParam);
    uint8_t status = m_faceSlices.Add(id, total, position, in.Rest(), last == 1);
    if (status != proto::kOk || !last) return StatusOnly(status);
    return StatusOnly(Enrol(id, "slices", FaceLibrary::SyntheticFeature(m_faceSlices.TakeComplete())));
}

std::optional<Bytes> ModuleModel::OnAddFeature(ByteReader& in) {
    std::string id, feature;
    if (!in.Text32(id) || !in.Text32(feature) || !in.AtEnd()) return BadRequest();
    if (feature.size() != proto::kFeatureLength) return StatusOnly(proto::kInvalidParam);
    return StatusOnly(Enrol(id, "feature", feature));
}

std::optional<Bytes> ModuleModel::OnDeleteFace(ByteReader& in) {
    uint8_t mode = 0;
    if (!in.U8(mode)) return BadRequest();
    if (mode == 0) {
        if (!in.AtEnd()) return BadRequest();
        m_faces.Clear();
        LibraryChanged();
        return StatusOnly(proto::kOk);
    }
    std::string id;
    if (mode != 1) return StatusOnly(proto::kInvalidParam);
    if (!in.Text32(id) || !in.AtEnd()) return BadRequest();
    uint8_t status = m_faces.Remove(id);
    if (status == proto::kOk) LibraryChanged();
    return StatusOnly(status);
}

std::optional<Bytes> ModuleModel::OnQueryFace(ByteReader& in) {
    uint8_t mode = 0;
    std::string id;
    if (!in.U8(mode) || !in.Text32(id) || !in.AtEnd()) return BadRequest();
    if (mode != 0) return StatusOnly(proto::kInvalidParam);
    return StatusOnly(m_faces.Find(id) ? proto::kOk : proto::kFaceNotFound);
}

std::optional<Bytes> ModuleModel::OnQueryFeature(ByteReader& in) {
    std::string id;
    if (!in.Text32(id) || !in.AtEnd()) return BadRequest();
    const FaceEntry* entry = m_faces.Find(id);
    if (!entry) return StatusOnly(proto::kFaceNotFound);
    Bytes answer{proto::kOk};
    PutU32(answer, uint32_t(entry->id.size()));
    PutText(answer, entry->id);
    PutU32(answer, uint32_t(entry->feature.size()));
    PutText(answer, entry->feature);
    return answer;
}

std::optional<Bytes> ModuleModel::OnListFaces(ByteReader& in) {
    uint32_t offset = 0;
    if (!in.U32(offset) || !in.AtEnd()) return BadRequest();
    const std::string text = m_faces.ListText();
    if (offset > text.size()) return StatusOnly(proto::kBadListOffset);
    const std::string chunk = text.substr(offset, proto::kListChunk);
    Bytes answer{proto::kOk, uint8_t(offset + chunk.size() >= text.size() ? 1 : 0)};
    PutU32(answer, offset);
    PutText(answer, chunk);
    if (chunk.empty()) answer.push_back(0);   // an empty list still carries one byte of text
    return answer;
}

std::optional<Bytes> ModuleModel::OnFaceCount(ByteReader& in) {
    if (!in.AtEnd()) return BadRequest();
    return StatusWithU32(proto::kOk, uint32_t(m_faces.Entries().size()));
}

}  // namespace sim
