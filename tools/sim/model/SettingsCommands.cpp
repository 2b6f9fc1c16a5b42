// Recognition settings and the switches of the report streams, on the module's side.
#include "ModuleModel.h"
#include "ModuleProtocol.h"
#include "SettingRequests.h"

namespace sim {
namespace {

Bytes BadRequest() { return StatusOnly(proto::kBadRequest); }

constexpr size_t kMaxConfigText = 4096;
enum ConfigOp : uint8_t { kConfigSet = 0, kConfigGet = 1 };   // the reverse of the other pairs

}  // namespace

std::optional<Bytes> ModuleModel::OnRecConfig(ByteReader& in) {
    uint8_t op = 0, type = 0;
    if (!in.U8(op) || !in.U8(type)) return BadRequest();
    if (type != 0) return StatusOnly(proto::kInvalidParam);
    if (op == kConfigGet) {
        if (!in.AtEnd()) return BadRequest();
        Bytes answer{proto::kOk};
        PutText(answer, m_settings.recognition.config);
        return answer;
    }
    if (op != kConfigSet) return StatusOnly(proto::kInvalidParam);
    Bytes text = in.Rest();
    if (text.empty() || text.size() > kMaxConfigText) return StatusOnly(proto::kInvalidParam);
    m_settings.recognition.config.assign(text.begin(), text.end());
    return StatusOnly(proto::kOk);
}

std::optional<Bytes> ModuleModel::OnAutoUpload(ByteReader& in) {
    uint8_t mode = 0, imageMode = 0;
    if (!in.U8(mode)) return BadRequest();
    ReportSwitches& sw = m_settings.reports;
    if (mode == proto::kUploadClose) {
        if (!in.AtEnd()) return BadRequest();
        sw.uploadOpen = false;
        return StatusOnly(proto::kOk);
    }
    if (mode > proto::kUploadEverything) return StatusOnly(proto::kInvalidParam);
    if (!in.U8(imageMode) || !in.AtEnd()) return BadRequest();
    if (imageMode > 7) return StatusOnly(proto::kInvalidParam);
    sw.uploadOpen = true;
    sw.uploadMode = mode;
    sw.imageMode = imageMode;
    return StatusOnly(proto::kOk);
}

std::optional<Bytes> ModuleModel::OnFaceInfoInFrame(ByteReader& in) {
    uint8_t closed = 0;
    Bytes answer = SetOneByte(in, 0, 1, closed);
    if (answer[0] == proto::kOk) m_settings.reports.faceInfoInFrame = closed == 0;
    return answer;
}

std::optional<Bytes> ModuleModel::OnQrSwitch(ByteReader& in) {
    uint8_t open = 0, interval = 0;
    if (!in.U8(open) || !in.U8(interval) || !in.AtEnd()) return BadRequest();
    if (open > 1) return StatusOnly(proto::kInvalidParam);
    m_settings.reports.qrOpen = open == 1;
    m_settings.reports.qrInterval = interval;
    return StatusOnly(proto::kOk);
}

}  // namespace sim
