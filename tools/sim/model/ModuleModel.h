#pragma once
// A plausible module behind the simulator's serial link: it answers every
// device command, keeps a face library, settings and a firmware store, runs
// a recognition engine and sends its reports while recognition runs.
// All methods are thread-safe; handlers run on the simulator's reader thread.

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "FaceLibrary.h"
#include "FirmwareStore.h"
#include "JpegEncoder.h"
#include "ModuleSettings.h"
#include "ModuleSimulator.h"
#include "ReportText.h"
#include "SliceAssembler.h"

namespace sim {

enum class RecognitionRun { Idle, Running, Paused };

struct RecognitionStatus {
    RecognitionRun run = RecognitionRun::Idle;
    bool oneToOne = false;
    uint8_t recMode = 0;     // 0 recognition only, 1 with liveness
    uint8_t mulMode = 0;     // 0 single face, 1 several
    size_t referenceBytes = 0;   // one-to-one reference image
    std::string lastResult;      // the text that 0x25 returns
};

struct ReportCounters {
    uint64_t rounds = 0;
    uint64_t track = 0, recognition = 0, qr = 0, image = 0, feature = 0;
    uint64_t imagesWithheld = 0;   // image reports skipped while an acknowledgement was due
    uint64_t imageAcks = 0;
    bool awaitingImageAck = false;
};

class ModuleModel {
public:
    explicit ModuleModel(ModuleSimulator& simulator);
    ~ModuleModel();
    ModuleModel(const ModuleModel&) = delete;
    ModuleModel& operator=(const ModuleModel&) = delete;

    // Installs a handler on the simulator for every tag the module knows, and a
    // default one that answers unknown tags with kUnknownCommand. The handlers
    // fall silent when the model is destroyed, even if the simulator runs on.
    void Install();
    // Runs one request as the module would; std::nullopt means no answer.
    std::optional<Bytes> Handle(const Request& request);

    // Report stream: every intervalMs one round (0: only EmitRound sends reports).
    void SetReportInterval(int intervalMs);
    void EmitRound();
    ReportCounters Counters() const;
    // Waits until `done` holds for the counters, or timeoutMs passes.
    bool WaitForCounters(const std::function<bool(const ReportCounters&)>& done, int timeoutMs) const;

    // How the simulated world behaves.
    void SetRebootQuietMs(int ms);            // silence after a reboot or recovery (default 1000)
    bool IsQuiet() const;
    void SetFaceVisible(bool visible);        // false: the camera sees nobody
    void SetFrameSize(int width, int height); // coordinates of track reports and side text
    void SetTemperature(uint32_t celsius);
    // The face in front of the camera at `elapsedMs` and who it is, for the video.
    std::optional<FaceBox> FaceInView(int64_t elapsedMs) const;
    std::string FaceIdInView() const;
    int64_t ElapsedMs() const;

    // State, copied out.
    std::vector<std::string> FaceIds() const;
    std::optional<FaceEntry> Face(const std::string& id) const;
    Bytes FirmwarePackage() const;
    AppliedPackage FirmwareApplied() const;
    ModuleSettings Settings() const;
    ModuleIdentity Identity() const;
    RecognitionStatus Recognition() const;
    std::vector<std::pair<uint16_t, uint8_t>> Restarts() const;   // (0x1004 or 0x1005, mode) in order

    // The face library and the settings in one file. With a library file set,
    // every change to either is saved at once.
    bool SaveLibrary(const std::string& path, std::string& error) const;
    bool LoadLibrary(const std::string& path, std::string& error);
    void SetLibraryFile(const std::string& path);
    // Why the last save to the library file failed; empty after a good one.
    std::string SaveError() const;

private:
    using Command = std::function<std::optional<Bytes>(ByteReader&)>;
    using Method = std::optional<Bytes> (ModuleModel::*)(ByteReader&);
    using Clock = std::chrono::steady_clock;

    void BuildCommandTable();
    Command Bind(Method method);
    template <class F>
    auto Locked(F f) const {
        std::lock_guard<std::mutex> lock(m_mutex);
        return f();
    }
    void LibraryChanged();
    bool SaveLocked(const std::string& path, std::string& error) const;
    void Restart(uint16_t tag, uint8_t mode);
    void ReportLoop();
    std::vector<std::pair<uint16_t, Bytes>> BuildRound();
    RecognitionResult Recognize(uint32_t trackId) const;
    uint32_t CurrentTrackId() const;
    Bytes SyntheticFaceJpeg(int size);

    // Face library (FaceCommands.cpp).
    std::optional<Bytes> OnAddFace(ByteReader& in);
    std::optional<Bytes> OnAddFaceSlice(ByteReader& in);
    std::optional<Bytes> OnAddFeature(ByteReader& in);
    std::optional<Bytes> OnDeleteFace(ByteReader& in);
    std::optional<Bytes> OnQueryFace(ByteReader& in);
    std::optional<Bytes> OnQueryFeature(ByteReader& in);
    std::optional<Bytes> OnListFaces(ByteReader& in);
    std::optional<Bytes> OnFaceCount(ByteReader& in);
    uint8_t Enrol(const std::string& id, const std::string& source, const std::string& feature);
    // Recognition engine (RecognitionCommands.cpp).
    std::optional<Bytes> OnStartOneToMany(ByteReader& in);
    std::optional<Bytes> OnStartOneToOne(ByteReader& in);
    std::optional<Bytes> ChangeRun(ByteReader& in, RecognitionRun to);
    std::optional<Bytes> OnQueryRecognition(ByteReader& in);
    std::optional<Bytes> OnSingleResult(ByteReader& in);
    std::optional<Bytes> OnStaticCompare(ByteReader& in);
    std::optional<Bytes> OnCompareSlice(ByteReader& in);
    std::optional<Bytes> OnImageAck(ByteReader& in);
    void StartRecognition(bool oneToOne, uint8_t recMode, uint8_t mulMode);
    Bytes CompareAnswer();
    // Recognition settings and report switches (SettingsCommands.cpp).
    std::optional<Bytes> OnRecConfig(ByteReader& in);
    std::optional<Bytes> OnAutoUpload(ByteReader& in);
    std::optional<Bytes> OnFaceInfoInFrame(ByteReader& in);
    std::optional<Bytes> OnQrSwitch(ByteReader& in);
    // Identity, maintenance, firmware (DeviceCommands.cpp).
    std::optional<Bytes> OnPing(ByteReader& in);
    std::optional<Bytes> OnVersion(ByteReader& in);
    std::optional<Bytes> OnAppVersion(ByteReader& in);
    std::optional<Bytes> OnSerialNumber(ByteReader& in);
    std::optional<Bytes> OnModel(ByteReader& in);
    std::optional<Bytes> OnTemperature(ByteReader& in);
    std::optional<Bytes> OnSensorModel(ByteReader& in);
    std::optional<Bytes> OnReboot(ByteReader& in);
    std::optional<Bytes> OnRecovery(ByteReader& in);
    std::optional<Bytes> OnFirmwareSlice(ByteReader& in);
    std::optional<Bytes> OnFirmwareApply(ByteReader& in);
    // Camera and sensor settings with more than one byte to them (CameraCommands.cpp).
    std::optional<Bytes> OnCameraStream(ByteReader& in);
    std::optional<Bytes> OnLuminousThreshold(ByteReader& in);
    std::optional<Bytes> OnNoFlicker(ByteReader& in);
    std::optional<Bytes> OnFrameRate(ByteReader& in);

    // Shared with the installed handlers, which may outlive the model.
    struct Liveness {
        std::mutex mutex;
        ModuleModel* model = nullptr;
    };

    ModuleSimulator& m_sim;
    std::map<uint16_t, Command> m_commands;
    std::shared_ptr<Liveness> m_liveness = std::make_shared<Liveness>();

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    FaceLibrary m_faces;
    SliceAssembler m_faceSlices;
    SliceAssembler m_oneToOneSlices;
    SliceAssembler m_compareSlices;
    FirmwareStore m_firmware;
    ModuleSettings m_settings;
    ModuleIdentity m_identity;
    RecognitionStatus m_recognition;
    ReportCounters m_counters;
    std::vector<std::pair<uint16_t, uint8_t>> m_restarts;
    uint64_t m_seq = 0;
    std::string m_libraryFile;
    std::string m_saveError;
    JpegEncoder m_jpeg;

    Clock::time_point m_start = Clock::now();
    Clock::time_point m_quietUntil = m_start;
    int m_rebootQuietMs = 1000;
    bool m_faceVisible = true;
    int m_frameWidth = 640, m_frameHeight = 480;

    int m_intervalMs = 0;
    bool m_stopReports = false;
    std::thread m_reportThread;
};

}  // namespace sim
