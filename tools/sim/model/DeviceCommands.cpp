// Identity, maintenance and firmware upgrade, on the module's side.
#include "ModuleModel.h"
#include "ModuleProtocol.h"

namespace sim {
namespace {

Bytes BadRequest() { return StatusOnly(proto::kBadRequest); }

Bytes Text(const std::string& text) { return Bytes(text.begin(), text.end()); }

// The serial number and model answers: a u32 length, then the text.
Bytes HeadedText(const std::string& text) {
    Bytes answer;
    PutU32(answer, uint32_t(text.size()));
    PutText(answer, text);
    return answer;
}

}  // namespace

std::optional<Bytes> ModuleModel::OnPing(ByteReader& in) { return in.Rest(); }

std::optional<Bytes> ModuleModel::OnVersion(ByteReader&) { return Text(m_identity.firmwareVersion); }

std::optional<Bytes> ModuleModel::OnAppVersion(ByteReader&) { return Text(m_identity.appVersion); }

std::optional<Bytes> ModuleModel::OnModel(ByteReader&) { return HeadedText(m_identity.model); }

std::optional<Bytes> ModuleModel::OnSerialNumber(ByteReader& in) {
    uint8_t mode = 0;
    if (!in.U8(mode) || mode > 1) return HeadedText(std::string());   // nothing to tell
    return HeadedText(mode == 0 ? m_identity.serialNumber : m_identity.boardSerialNumber);
}

std::optional<Bytes> ModuleModel::OnTemperature(ByteReader&) {
    Bytes answer;
    PutU32(answer, m_identity.temperature);
    return answer;
}

std::optional<Bytes> ModuleModel::OnSensorModel(ByteReader&) {
    return StatusWithU32(proto::kOk, m_identity.sensorModel);
}

std::optional<Bytes> ModuleModel::OnReboot(ByteReader& in) {
    uint8_t mode = 0;
    if (!in.U8(mode) || !in.AtEnd()) return BadRequest();
    if (mode > proto::kRebootEngineering) return StatusOnly(proto::kInvalidParam);
    if (mode == proto::kRebootReset) m_settings = ModuleSettings{};
    m_settings.engineeringMode = mode == proto::kRebootEngineering;
    Restart(proto::kTagReboot, mode);
    return StatusOnly(proto::kOk);
}

std::optional<Bytes> ModuleModel::OnRecovery(ByteReader& in) {
    uint8_t mode = 0;
    if (!in.U8(mode) || !in.AtEnd()) return BadRequest();
    if (mode > proto::kRecoveryFull) return StatusOnly(proto::kInvalidParam);
    m_settings = ModuleSettings{};
    if (mode == proto::kRecoveryFull) {
        m_faces.Clear();
        LibraryChanged();
    }
    Restart(proto::kTagRecovery, mode);
    return StatusOnly(proto::kOk);
}

std::optional<Bytes> ModuleModel::OnFirmwareSlice(ByteReader& in) {
    uint32_t offset = 0;
    Bytes data;
    if (!in.U32(offset) || !in.Blob32(data) || !in.AtEnd()) return BadRequest();
    if (data.empty()) return StatusOnly(proto::kInvalidParam);
    return StatusOnly(m_firmware.AddSlice(offset, data));
}

std::optional<Bytes> ModuleModel::OnFirmwareApply(ByteReader& in) {
    std::string hash, error;
    if (!in.Text32(hash) || !in.AtEnd()) return BadRequest();
    uint8_t status = m_firmware.Apply(hash, error);
    Bytes answer{status};
    if (status != proto::kOk) PutText(answer, error);
    return answer;
}

}  // namespace sim
