// Camera and sensor settings, on the module's side.
#include "ModuleModel.h"
#include "ModuleProtocol.h"
#include "SettingRequests.h"

namespace sim {
namespace {

Bytes BadRequest() { return StatusOnly(proto::kBadRequest); }

enum StreamOp : uint8_t { kStreamOpen = 0, kStreamClose = 1, kStreamQuery = 2 };
constexpr uint8_t kMinFrameRate = 10, kMaxFrameRate = 25;

}  // namespace

std::optional<Bytes> ModuleModel::OnNoFlicker(ByteReader& in) {
    uint8_t op = 0, camera = 0;
    if (!in.U8(op) || !in.U8(camera)) return BadRequest();
    if (camera > 1) return StatusOnly(proto::kInvalidParam);
    CameraSettings& c = m_settings.camera;
    return GetOrSetAfterOp(op, in, 0, 1, {{c.flickerHz[camera], 0, 1}, {c.flickerEnable[camera], 0, 1}});
}

std::optional<Bytes> ModuleModel::OnCameraStream(ByteReader& in) {
    uint8_t op = 0, camera = 0;
    if (!in.U8(op) || !in.U8(camera) || !in.AtEnd()) return BadRequest();
    if (camera > 1 || op > kStreamQuery) return StatusOnly(proto::kInvalidParam);
    if (op == kStreamQuery) return Bytes{proto::kOk, m_settings.camera.cameraOpen[camera]};
    m_settings.camera.cameraOpen[camera] = op == kStreamOpen ? 1 : 0;
    return StatusOnly(proto::kOk);
}

std::optional<Bytes> ModuleModel::OnLuminousThreshold(ByteReader& in) {
    if (!in.AtEnd()) return BadRequest();
    return StatusWithU32(proto::kOk, m_settings.camera.luminousThreshold);
}

std::optional<Bytes> ModuleModel::OnFrameRate(ByteReader& in) {
    uint8_t op = 0, rate = 0;
    if (!in.U8(op)) return BadRequest();
    if (op == 0) return in.AtEnd() ? StatusWithU32(proto::kOk, m_settings.camera.frameRate) : BadRequest();
    if (op != 1) return StatusOnly(proto::kInvalidParam);
    if (!in.U8(rate) || !in.AtEnd()) return BadRequest();
    if (rate < kMinFrameRate || rate > kMaxFrameRate) return StatusOnly(proto::kInvalidParam);
    m_settings.camera.frameRate = rate;
    return StatusOnly(proto::kOk);
}

}  // namespace sim
