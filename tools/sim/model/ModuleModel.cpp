#include "ModuleModel.h"

#include "ModuleProtocol.h"
#include "SettingRequests.h"
#include "SettingsText.h"

namespace sim {

ModuleModel::ModuleModel(ModuleSimulator& simulator)
    : m_sim(simulator),
      m_faceSlices(proto::kMaxImageBytes),
      m_oneToOneSlices(proto::kMaxImageBytes),
      m_compareSlices(proto::kMaxImageBytes) {
    BuildCommandTable();
    m_liveness->model = this;
}

ModuleModel::~ModuleModel() {
    {
        std::lock_guard<std::mutex> lock(m_liveness->mutex);
        m_liveness->model = nullptr;
    }
    SetReportInterval(0);
}

ModuleModel::Command ModuleModel::Bind(Method method) {
    return [this, method](ByteReader& in) { return (this->*method)(in); };
}

namespace {

// Settings that are one plain byte, or bytes behind a get/set operation byte.
std::function<std::optional<Bytes>(ByteReader&)> OneByte(uint8_t min, uint8_t max, uint8_t& field) {
    return [min, max, &field](ByteReader& in) { return SetOneByte(in, min, max, field); };
}

std::function<std::optional<Bytes>(ByteReader&)> GetOrSet(uint8_t getOp, uint8_t setOp,
                                                           std::vector<ByteField> fields) {
    return [getOp, setOp, fields](ByteReader& in) { return GetOrSetBytes(in, getOp, setOp, fields); };
}

}  // namespace

void ModuleModel::BuildCommandTable() {
    using namespace proto;
    CameraSettings& cam = m_settings.camera;
    RecognitionSettings& rec = m_settings.recognition;
    m_commands = {
        {kTagAddFace, Bind(&ModuleModel::OnAddFace)},
        {kTagDeleteFace, Bind(&ModuleModel::OnDeleteFace)},
        {kTagQueryFace, Bind(&ModuleModel::OnQueryFace)},
        {kTagStaticCompare, Bind(&ModuleModel::OnStaticCompare)},
        {kTagAddFeature, Bind(&ModuleModel::OnAddFeature)},
        {kTagQueryFeature, Bind(&ModuleModel::OnQueryFeature)},
        {kTagAddFaceSlice, Bind(&ModuleModel::OnAddFaceSlice)},
        {kTagListFaces, Bind(&ModuleModel::OnListFaces)},
        {kTagRecognizeCount, GetOrSet(0, 1, {{rec.recognizeCount, 1, 10}, {rec.livingCount, 1, 10}})},
        {kTagTemplateUpdate, GetOrSet(0, 1, {{rec.templateUpdate, 0, 1}})},
        {kTagStartOneToMany, Bind(&ModuleModel::OnStartOneToMany)},
        {kTagResume, [this](ByteReader& in) { return ChangeRun(in, RecognitionRun::Running); }},
        {kTagPause, [this](ByteReader& in) { return ChangeRun(in, RecognitionRun::Paused); }},
        {kTagQueryRecognition, Bind(&ModuleModel::OnQueryRecognition)},
        {kTagRecConfig, Bind(&ModuleModel::OnRecConfig)},
        {kTagAutoUpload, Bind(&ModuleModel::OnAutoUpload)},
        {kTagFaceInfoInFrame, Bind(&ModuleModel::OnFaceInfoInFrame)},
        {kTagFirmwareSlice, Bind(&ModuleModel::OnFirmwareSlice)},
        {kTagFirmwareApply, Bind(&ModuleModel::OnFirmwareApply)},
        {kTagQrSwitch, Bind(&ModuleModel::OnQrSwitch)},
        {kTagCompareSlice, Bind(&ModuleModel::OnCompareSlice)},
        {kTagStartOneToOne, Bind(&ModuleModel::OnStartOneToOne)},
        {kTagSingleResult, Bind(&ModuleModel::OnSingleResult)},
        {kTagImageReport, Bind(&ModuleModel::OnImageAck)},
        {kTagFaceCount, Bind(&ModuleModel::OnFaceCount)},
        {kTagPing, Bind(&ModuleModel::OnPing)},
        {kTagVersion, Bind(&ModuleModel::OnVersion)},
        {kTagReboot, Bind(&ModuleModel::OnReboot)},
        {kTagRecovery, Bind(&ModuleModel::OnRecovery)},
        {kTagSerialNumber, Bind(&ModuleModel::OnSerialNumber)},
        {kTagModel, Bind(&ModuleModel::OnModel)},
        {kTagUvcSwitch, OneByte(0, 1, cam.uvcOn)},
        {kTagCameraStream, Bind(&ModuleModel::OnCameraStream)},
        {kTagRgbIrSwitch, OneByte(0, 1, cam.rgbIr)},
        {kTagIrLight, GetOrSet(1, 0, {{cam.irLuminance, 0, 200}, {cam.irCloseTime, 0, 120}})},   // 1 reads
        {kTagFrameRate, Bind(&ModuleModel::OnFrameRate)},
        {kTagResolution, OneByte(0, 4, cam.resolution)},
        {kTagScreenDirection, GetOrSet(0, 1, {{cam.screenDirection, 1, 4}})},
        {kTagRotateAngle, OneByte(0, 3, cam.rotateAngle)},
        {kTagNoFlicker, Bind(&ModuleModel::OnNoFlicker)},
        {kTagLuminousThreshold, Bind(&ModuleModel::OnLuminousThreshold)},
        {kTagAppVersion, Bind(&ModuleModel::OnAppVersion)},
        {kTagStreamFormat, OneByte(0, 1, cam.streamFormat)},
        {kTagTemperature, Bind(&ModuleModel::OnTemperature)},
        {kTagSensorModel, Bind(&ModuleModel::OnSensorModel)},
    };
}

void ModuleModel::Install() {
    auto handle = [liveness = m_liveness](const Request& request) -> std::optional<Bytes> {
        std::lock_guard<std::mutex> lock(liveness->mutex);
        return liveness->model ? liveness->model->Handle(request) : std::nullopt;
    };
    for (const auto& command : m_commands) m_sim.SetHandler(command.first, handle);
    m_sim.SetDefaultHandler(handle);
}

std::optional<Bytes> ModuleModel::Handle(const Request& request) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (Clock::now() < m_quietUntil) return std::nullopt;
    auto it = m_commands.find(request.tag);
    if (it == m_commands.end()) return StatusOnly(proto::kUnknownCommand);
    ByteReader in(request.value);
    const std::string settingsBefore = m_libraryFile.empty() ? std::string() : SettingsLines(m_settings);
    std::optional<Bytes> answer = it->second(in);
    if (!m_libraryFile.empty() && SettingsLines(m_settings) != settingsBefore) LibraryChanged();
    m_changed.notify_all();
    return answer;
}

void ModuleModel::Restart(uint16_t tag, uint8_t mode) {
    m_restarts.emplace_back(tag, mode);
    m_recognition.run = RecognitionRun::Idle;
    m_counters.awaitingImageAck = false;
    m_quietUntil = Clock::now() + std::chrono::milliseconds(m_rebootQuietMs);
}

void ModuleModel::LibraryChanged() {
    if (m_libraryFile.empty()) return;
    m_saveError.clear();
    SaveLocked(m_libraryFile, m_saveError);   // a failed save leaves the previous file
}

bool ModuleModel::SaveLocked(const std::string& path, std::string& error) const {
    return m_faces.Save(path, error, SettingsLines(m_settings));
}

void ModuleModel::SetRebootQuietMs(int ms) {
    Locked([&] { m_rebootQuietMs = ms < 0 ? 0 : ms; });
}

bool ModuleModel::IsQuiet() const { return Locked([&] { return Clock::now() < m_quietUntil; }); }

void ModuleModel::SetFaceVisible(bool visible) { Locked([&] { m_faceVisible = visible; }); }

void ModuleModel::SetFrameSize(int width, int height) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (width > 0 && height > 0) {
        m_frameWidth = width;
        m_frameHeight = height;
    }
}

void ModuleModel::SetTemperature(uint32_t celsius) { Locked([&] { m_identity.temperature = celsius; }); }

int64_t ModuleModel::ElapsedMs() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_start).count();
}

std::optional<FaceBox> ModuleModel::FaceInView(int64_t elapsedMs) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_faceVisible) return std::nullopt;
    return FaceBoxAt(elapsedMs, m_frameWidth, m_frameHeight);
}

std::string ModuleModel::FaceIdInView() const { return Locked([&] { return Recognize(CurrentTrackId()).id; }); }

std::vector<std::string> ModuleModel::FaceIds() const { return Locked([&] { return m_faces.Ids(); }); }
Bytes ModuleModel::FirmwarePackage() const { return Locked([&] { return m_firmware.Package(); }); }
AppliedPackage ModuleModel::FirmwareApplied() const { return Locked([&] { return m_firmware.Applied(); }); }
ModuleSettings ModuleModel::Settings() const { return Locked([&] { return m_settings; }); }
ModuleIdentity ModuleModel::Identity() const { return Locked([&] { return m_identity; }); }
RecognitionStatus ModuleModel::Recognition() const { return Locked([&] { return m_recognition; }); }
ReportCounters ModuleModel::Counters() const { return Locked([&] { return m_counters; }); }

std::vector<std::pair<uint16_t, uint8_t>> ModuleModel::Restarts() const {
    return Locked([&] { return m_restarts; });
}

std::optional<FaceEntry> ModuleModel::Face(const std::string& id) const {
    return Locked([&] {
        const FaceEntry* entry = m_faces.Find(id);
        return entry ? std::optional<FaceEntry>(*entry) : std::nullopt;
    });
}

bool ModuleModel::SaveLibrary(const std::string& path, std::string& error) const {
    return Locked([&] { return SaveLocked(path, error); });
}

// Settings missing from the file keep their values; nothing changes unless the whole file is valid.
bool ModuleModel::LoadLibrary(const std::string& path, std::string& error) {
    std::lock_guard<std::mutex> lock(m_mutex);
    ModuleSettings loaded = m_settings;
    auto onSetting = [&loaded](const std::string& name, const std::string& value) {
        return ApplySettingLine(loaded, name, value);
    };
    if (!m_faces.Load(path, error, onSetting)) return false;
    m_settings = loaded;
    return true;
}

void ModuleModel::SetLibraryFile(const std::string& path) { Locked([&] { m_libraryFile = path; }); }

std::string ModuleModel::SaveError() const { return Locked([&] { return m_saveError; }); }

}  // namespace sim
