// The recognition engine's commands, on the module's side.
#include "ModuleModel.h"
#include "ModuleProtocol.h"

namespace sim {
namespace {

Bytes BadRequest() { return StatusOnly(proto::kBadRequest); }

}  // namespace

void ModuleModel::StartRecognition(bool oneToOne, uint8_t recMode, uint8_t mulMode) {
    m_recognition.run = RecognitionRun::Running;
    m_recognition.oneToOne = oneToOne;
    m_recognition.recMode = recMode;
    m_recognition.mulMode = mulMode;
    m_counters.awaitingImageAck = false;   // a new session does not wait for the old one's acknowledgement
}

std::optional<Bytes> ModuleModel::OnStartOneToMany(ByteReader& in) {
    uint8_t recMode = 0, mulMode = 0;
    if (!in.U8(recMode) || !in.U8(mulMode) || !in.AtEnd()) return BadRequest();
    if (recMode > 1 || mulMode > 1) return StatusOnly(proto::kInvalidParam);
    StartRecognition(false, recMode, mulMode);
    return StatusOnly(proto::kOk);
}

std::optional<Bytes> ModuleModel::OnStartOneToOne(ByteReader& in) {
    uint8_t recMode = 0, mulMode = 0, last = 0;
    uint32_t total = 0, position = 0;
    if (!in.U8(recMode) || !in.U8(mulMode) || !in.U32(total) || !in.U32(position) || !in.U8(last))
        return BadRequest();
    if (recMode > 1 || mulMode > 1 || last > 1) return StatusOnly(proto::kInvalidParam);
    uint8_t status = m_oneToOneSlices.Add(std::string(), total, position, in.Rest(), last == 1);
    if (status != proto::kOk || !last) return StatusOnly(status);
    m_recognition.referenceBytes = m_oneToOneSlices.TakeComplete().size();
    StartRecognition(true, recMode, mulMode);
    return StatusOnly(proto::kOk);
}

// Pause and resume: both only once recognition has been started.
std::optional<Bytes> ModuleModel::ChangeRun(ByteReader& in, RecognitionRun to) {
    if (!in.AtEnd()) return BadRequest();
    if (m_recognition.run == RecognitionRun::Idle) return StatusOnly(proto::kRecognitionIdle);
    m_recognition.run = to;
    return StatusOnly(proto::kOk);
}

std::optional<Bytes> ModuleModel::OnQueryRecognition(ByteReader& in) {
    uint8_t what = 0;
    if (!in.U8(what) || !in.AtEnd()) return BadRequest();
    if (what != 0) return StatusOnly(proto::kInvalidParam);
    switch (m_recognition.run) {
    case RecognitionRun::Running: return StatusOnly(proto::kOk);
    case RecognitionRun::Paused: return StatusOnly(proto::kRecognitionPaused);
    default: return StatusOnly(proto::kRecognitionIdle);
    }
}

std::optional<Bytes> ModuleModel::OnSingleResult(ByteReader&) {
    // One recognition of whoever is in view right now; the answer has no status byte.
    RecognitionResult result;
    if (m_faceVisible) result = Recognize(CurrentTrackId());
    m_recognition.lastResult = RecognitionReportText(++m_seq, result);
    Bytes answer;
    PutU32(answer, uint32_t(m_recognition.lastResult.size()));
    PutText(answer, m_recognition.lastResult);
    return answer;
}

Bytes ModuleModel::CompareAnswer() {
    if (!m_faceVisible) return StatusWithBlob(proto::kNoFace, {});
    return StatusWithBlob(proto::kOk, SyntheticFaceJpeg(96));
}

std::optional<Bytes> ModuleModel::OnStaticCompare(ByteReader& in) {
    uint8_t variant = 0;
    if (!in.U8(variant)) return StatusWithBlob(proto::kBadRequest, {});
    Bytes image;
    if (variant == 1 && (!in.Blob32(image) || image.empty())) return StatusWithBlob(proto::kBadRequest, {});
    if (variant > 1) return StatusWithBlob(proto::kInvalidParam, {});
    if (!in.AtEnd()) return StatusWithBlob(proto::kBadRequest, {});
    return CompareAnswer();
}

std::optional<Bytes> ModuleModel::OnCompareSlice(ByteReader& in) {
    uint8_t mode = 0, last = 0;
    uint32_t total = 0, position = 0;
    if (!in.U8(mode) || !in.U32(total) || !in.U32(position) || !in.U8(last)) return BadRequest();
    if (mode > 1 || last > 1) return StatusOnly(proto::kInvalidParam);
    uint8_t status = m_compareSlices.Add(std::string(), total, position, in.Rest(), last == 1);
    if (status != proto::kOk) return StatusOnly(status);
    if (!last) return StatusWithBlob(proto::kOk, {});
    m_compareSlices.TakeComplete();
    return CompareAnswer();
}

std::optional<Bytes> ModuleModel::OnImageAck(ByteReader& in) {
    if (in.AtEnd()) {
        m_counters.awaitingImageAck = false;
        m_counters.imageAcks++;
    }
    return std::nullopt;   // acknowledgements are not answered
}

}  // namespace sim
