// The module's reports while recognition runs, sent in rounds.
#include "ModuleModel.h"
#include "ModuleProtocol.h"

namespace sim {
namespace {

Bytes TextValue(const std::string& text) { return Bytes(text.begin(), text.end()); }

}  // namespace

uint32_t ModuleModel::CurrentTrackId() const {
    return uint32_t(m_counters.rounds / 10 + 1);   // a new person every ten rounds
}

RecognitionResult ModuleModel::Recognize(uint32_t trackId) const {
    RecognitionResult r;
    r.trackId = trackId;
    r.oneToOne = m_recognition.oneToOne;
    r.live = m_recognition.recMode == 1;
    const auto& entries = m_faces.Entries();
    if (r.oneToOne) {
        r.id = "reference";
    } else if (!entries.empty()) {
        r.id = entries[(trackId - 1) % entries.size()].id;
    }
    r.scorePercent = r.id.empty() ? 20 + int(trackId * 7 % 30) : 82 + int(trackId * 37 % 17);
    return r;
}

Bytes ModuleModel::SyntheticFaceJpeg(int size) {
    Picture picture(size, size);
    FaceBox box{size / 8, size / 16, size * 3 / 4, size * 7 / 8};
    DrawScene(picture, 0, &box);
    Bytes jpeg;
    if (!m_jpeg.Encode(picture, jpeg)) jpeg.clear();
    return jpeg;
}

std::vector<std::pair<uint16_t, Bytes>> ModuleModel::BuildRound() {
    std::vector<std::pair<uint16_t, Bytes>> out;
    if (Clock::now() < m_quietUntil) return out;
    m_counters.rounds++;
    const ReportSwitches& sw = m_settings.reports;
    if (m_recognition.run == RecognitionRun::Running) {
        const uint32_t track = CurrentTrackId();
        std::optional<FaceBox> face;
        if (m_faceVisible) face = FaceBoxAt(ElapsedMs(), m_frameWidth, m_frameHeight);
        out.emplace_back(proto::kTagTrackReport, TextValue(TrackReportText(++m_seq, track, face ? &*face : nullptr)));
        m_counters.track++;
        if (face && sw.uploadOpen) {
            const RecognitionResult result = Recognize(track);
            m_recognition.lastResult = RecognitionReportText(++m_seq, result);
            out.emplace_back(proto::kTagRecoReport, TextValue(m_recognition.lastResult));
            m_counters.recognition++;
            const bool images = sw.uploadMode == proto::kUploadImages || sw.uploadMode == proto::kUploadEverything;
            const bool features = sw.uploadMode == proto::kUploadFeatures || sw.uploadMode == proto::kUploadEverything;
            if (images && m_counters.awaitingImageAck) {
                m_counters.imagesWithheld++;
            } else if (images) {
                const int side = 16 + 8 * sw.imageMode;
                out.emplace_back(proto::kTagImageReport,
                                 ImageReportValue(++m_seq, track, side, side, SyntheticFaceJpeg(side)));
                m_counters.awaitingImageAck = true;
                m_counters.image++;
            }
            if (features) {
                const FaceEntry* entry = m_faces.Find(result.id);
                const std::string feature =
                    entry ? entry->feature : FaceLibrary::SyntheticFeature("track" + std::to_string(track));
                out.emplace_back(proto::kTagFeatureReport, TextValue(FeatureReportText(++m_seq, track, feature)));
                m_counters.feature++;
            }
        }
    }
    if (sw.qrOpen && m_counters.rounds % (sw.qrInterval ? sw.qrInterval : 1) == 0) {
        out.emplace_back(proto::kTagQrReport,
                         TextValue(QrReportText(++m_seq, "SIM-QR-" + std::to_string(m_counters.rounds))));
        m_counters.qr++;
    }
    return out;
}

void ModuleModel::EmitRound() {
    {
        // The round is queued for the link before the lock is let go: a pause
        // handled meanwhile would otherwise be answered ahead of a round of the
        // running recognition, and that round would reach the host afterwards.
        std::lock_guard<std::mutex> lock(m_mutex);
        for (const auto& report : BuildRound()) m_sim.PushReport(report.first, report.second);
    }
    m_changed.notify_all();
}

void ModuleModel::ReportLoop() {
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_changed.wait_for(lock, std::chrono::milliseconds(m_intervalMs), [this] { return m_stopReports; })) {
        lock.unlock();
        EmitRound();
        lock.lock();
    }
}

void ModuleModel::SetReportInterval(int intervalMs) {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stopReports = true;
    }
    m_changed.notify_all();
    if (m_reportThread.joinable()) m_reportThread.join();
    std::lock_guard<std::mutex> lock(m_mutex);
    m_stopReports = false;
    m_intervalMs = intervalMs > 0 ? intervalMs : 0;
    if (m_intervalMs > 0) m_reportThread = std::thread(&ModuleModel::ReportLoop, this);
}

bool ModuleModel::WaitForCounters(const std::function<bool(const ReportCounters&)>& done, int timeoutMs) const {
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_changed.wait_for(lock, std::chrono::milliseconds(timeoutMs), [&] { return done(m_counters); });
}

}  // namespace sim
