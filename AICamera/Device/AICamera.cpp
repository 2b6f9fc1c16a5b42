// The device object's construction, its connections and the local video stream.
#include "AICamera.h"

#include <string.h>

#include <mutex>
#include <new>
#include <vector>

#include "../Video/CameraManager.h"
#include "../Protocol/CommandManager.h"
#include "../Protocol/SyncCommand.h"
#include "ReportCommand.h"
#include "../Log/Trace.h"

#define TRACE_FILE "AICamera"

namespace {
// The stream's initial size, as the camera starts with it.
const int kInitialWidth = 720;
const int kInitialHeight = 1280;
// A raw MJPEG recording carries no rate; the module streams at most 25 frames a second.
const int kPlaybackFramesPerSecond = 25;
const unsigned short kImageReportTag = 0x33;
}  // namespace

AICamera::AICamera()
    : m_pCommandManager(CommandManager::GetInstance()),
      m_pCameraManager(CameraManager::GetInstance()),
      m_nLastWidth(kInitialWidth),
      m_nLastHeight(kInitialHeight)
{
}

AICamera::~AICamera()
{
    if (m_pCommandManager) {
        DisconnectSerial();
        m_pCommandManager = nullptr;
    }
    if (m_pCameraManager) {
        DisconnectCamera();
        m_pCameraManager = nullptr;
    }
}

int AICamera::MissingManagerRecord(const char* function, int line, const char* manager)
{
    TraceRecord(LOG_LEVER_DEBUG, TRACE_FILE, function, line,
                "[ERROR] %s == nullptr\n[INPUT ] dev : %p\n[OUTPUT]\n[RETURN] nRet : %d\n", manager,
                static_cast<void*>(this), -1);
    return -1;
}

// The registry may reach a handler after its link is gone, so handlers are
// never deleted; they stay listed here for the life of the process.
void AICamera::RegisterReportHandler(AsyncCommand* handler)
{
    static std::vector<AsyncCommand*>* const everyHandler = new std::vector<AsyncCommand*>();
    static std::mutex listLock;
    {
        std::lock_guard<std::mutex> guard(listLock);
        everyHandler->push_back(handler);
    }
    m_pCommandManager->Register(handler);
}

ReportSlot& AICamera::ReportSlotOf(ReportKind kind)
{
    switch (kind) {
    case REPORT_TRACK: return m_pTrackReportFunc;
    case REPORT_IMAGE: return m_pImageReportFunc;
    case REPORT_FEATURE: return m_pFeatureReportFunc;
    case REPORT_QRCODE: return m_pQRCodeReportFunc;
    default: return m_pRecoReportFunc;
    }
}

void AICamera::OnLinkEvent(int event) { m_linkStateFunc.Call(event); }

void AICamera::CountReport(ReportKind kind)
{
    if (m_pCommandManager && kind >= 0 && kind < REPORT_KINDS)
        LinkCounters::Add(m_pCommandManager->Counters().reports[kind]);
}

const LinkCounters* AICamera::GetLinkCounters() const
{
    return m_pCommandManager ? &m_pCommandManager->Counters() : nullptr;
}

int AICamera::ConnectSerial(void* portName)
{
    if (!m_pCommandManager)
        return MissingManagerRecord(__func__, __LINE__, "m_pCommandManager");
    int nRet = m_pCommandManager->StartDataTransmit(portName, this);
    if (nRet != 0)
        return nRet;
    RegisterReportHandler(new AsyncCommandRecoReport(this));
    RegisterReportHandler(new AsyncCommandTrackReport(this));
    RegisterReportHandler(new AsyncCommandImageReport(this));
    RegisterReportHandler(new AsyncCommandFeatureReport(this));
    RegisterReportHandler(new AsyncCommandQRCodeReport(this));
    return 0;
}

int AICamera::DisconnectSerial()
{
    if (!m_pCommandManager)
        return MissingManagerRecord(__func__, __LINE__, "m_pCommandManager");
    int nRet = m_pCommandManager->StopDataTransmit();
    TRACE_AT(LOG_LEVER_DEBUG, "[INPUT ] dev : %p\n[OUTPUT]\n[RETURN] nRet : %d\n", static_cast<void*>(this), nRet);
    return nRet;
}

int AICamera::ConnectCamera(void* pCameraName)
{
    if (!m_pCameraManager)
        return MissingManagerRecord(__func__, __LINE__, "m_pCameraManager");
    const char* refusal = nullptr;
    if (!pCameraName)
        refusal = "pCameraName == nullptr";
    else if (!strlen(static_cast<char*>(pCameraName)))
        refusal = "!strlen(static_cast<char*>(pCameraName))";
    if (refusal) {
        TRACE_AT(LOG_LEVER_DEBUG, "[ERROR] %s\n[INPUT ] dev : %p\n[OUTPUT]\n[RETURN] nRet : %d\n", refusal,
                 static_cast<void*>(this), -4);
        return -4;
    }
    return m_pCameraManager->StartCamera(pCameraName);
}

int AICamera::ConnectCameraPlayback(const char* path)
{
    if (!m_pCameraManager)
        return MissingManagerRecord(__func__, __LINE__, "m_pCameraManager");
    if (!path || !*path) {
        TRACE_AT(LOG_LEVER_DEBUG, "[ERROR] %s\n[INPUT ] dev : %p\n[OUTPUT]\n[RETURN] nRet : %d\n",
                 path ? "!strlen(path)" : "path == nullptr", static_cast<void*>(this), -4);
        return -4;
    }
    int nRet = m_pCameraManager->StartPlayback(path, kPlaybackFramesPerSecond);
    TRACE_AT(LOG_LEVER_DEBUG, "[INPUT ] dev : %p path : %s\n[OUTPUT]\n[RETURN] nRet : %d\n",
             static_cast<void*>(this), path, nRet);
    return nRet;
}

int AICamera::DisconnectCamera()
{
    if (!m_pCameraManager)
        return MissingManagerRecord(__func__, __LINE__, "m_pCameraManager");
    int nRet = m_pCameraManager->StopCamera();
    TRACE_AT(LOG_LEVER_DEBUG, "[INPUT ] dev : %p\n[OUTPUT]\n[RETURN] nRet : %d\n", static_cast<void*>(this), nRet);
    return nRet;
}

namespace {
// The refusals GetFrame and WaitFrame share, in their order; null when none applies.
const char* FrameRefusal(const char* imageBuf, int imageSize, const char* verifyBuf, int verifySize)
{
    if (!imageBuf)
        return "imageBuf == nullptr";
    if (imageSize == 0)
        return "imageSize == 0";
    if (!verifyBuf)
        return "verifyBuf == nullptr";
    if (verifySize == 0)
        return "verifySize == 0";
    return nullptr;
}
}  // namespace

int AICamera::GetFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize)
{
    int nRet = -1;
    const char* refusal = "m_pCameraManager == nullptr";
    if (m_pCameraManager) {
        refusal = FrameRefusal(imageBuf, imageSize, verifyBuf, verifySize);
        nRet = -4;
    }
    if (!refusal)
        return m_pCameraManager->GetFrame(imageBuf, imageSize, verifyBuf, verifySize);
    TRACE_AT(LOG_LEVER_DEBUG, "[ERROR] %s\n[INPUT ] dev : %p\n[OUTPUT] output invalid\n[RETURN] nRet : %d\n",
             refusal, static_cast<void*>(this), nRet);
    return nRet;
}

int AICamera::WaitFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize, int timeoutMs)
{
    int nRet = -1;
    const char* refusal = "m_pCameraManager == nullptr";
    if (m_pCameraManager) {
        refusal = FrameRefusal(imageBuf, imageSize, verifyBuf, verifySize);
        if (!refusal && timeoutMs < 0)
            refusal = "timeoutMs < 0";
        nRet = -4;
    }
    if (refusal) {
        TRACE_AT(LOG_LEVER_DEBUG,
                 "[ERROR] %s\n[INPUT ] dev : %p timeoutMs : %d\n[OUTPUT] output invalid\n[RETURN] nRet : %d\n",
                 refusal, static_cast<void*>(this), timeoutMs, nRet);
        return nRet;
    }
    // Only the pointer's value is traced after the wait: a DeInit on another
    // thread may have freed this object meanwhile.
    const void* self = this;
    nRet = m_pCameraManager->WaitFrame(imageBuf, imageSize, verifyBuf, verifySize, timeoutMs);
    TRACE_AT(LOG_LEVER_DEBUG, "[INPUT ] dev : %p timeoutMs : %d\n[OUTPUT] imageSize : %d verifySize : %d\n[RETURN] nRet : %d\n",
             self, timeoutMs, imageSize, verifySize, nRet);
    return nRet;
}

int AICamera::GetResolution(int* width, int* height)
{
    if (!m_pCameraManager) {
        TRACE_AT(LOG_LEVER_DEBUG,
                 "[ERROR] m_pCameraManager == nullptr\n[INPUT ] dev : %p\n[OUTPUT] output invalid\n"
                 "[RETURN] nRet : %d\n",
                 static_cast<void*>(this), -1);
        return -1;
    }
    int nRet = m_pCameraManager->GetResolution(width, height);
    // Only a change is recorded, so that polling does not flood the log.
    if (*width != m_nLastWidth || *height != m_nLastHeight) {
        TRACE_AT(LOG_LEVER_DEBUG, "[INPUT ] dev : %p\n[OUTPUT] width : %d height : %d\n[RETURN] nRet : %d\n",
                 static_cast<void*>(this), *width, *height, nRet);
        m_nLastWidth = *width;
        m_nLastHeight = *height;
    }
    return nRet;
}

int AICamera::SetResolution(int width, int height)
{
    if (!m_pCameraManager) {
        TRACE_AT(LOG_LEVER_DEBUG,
                 "[ERROR] m_pCameraManager == nullptr\n[INPUT ] dev : %p width : %d height : %d\n[OUTPUT]\n"
                 "[RETURN] nRet : %d\n",
                 static_cast<void*>(this), width, height, -1);
        return -1;
    }
    int nRet = m_pCameraManager->SetResolution(width, height);
    TRACE_AT(LOG_LEVER_DEBUG, "[INPUT ] dev : %p width : %d height : %d\n[OUTPUT]\n[RETURN] nRet : %d\n",
             static_cast<void*>(this), width, height, nRet);
    return nRet;
}

int AICamera::SendImageReportReturn()
{
    if (!m_pCommandManager)
        return MissingManagerRecord(__func__, __LINE__, "m_pCommandManager");
    SyncCommand acknowledgement;
    // The acknowledgement is an empty record of the image report's tag.
    acknowledgement.AddTLV(kImageReportTag, 0, nullptr);
    int nRet = m_pCommandManager->Execute(&acknowledgement, false);
    if (nRet == 0)
        LinkCounters::Add(m_pCommandManager->Counters().imageAcks);
    return nRet;
}

AICamera* AICameraMaker::MakeAICamera(AI_CAMERA_TYPE type)
{
    switch (type) {
    case AI_CAMERA_TYPE_V1:
    case AI_CAMERA_TYPE_V2:
    case AI_CAMERA_TYPE_V3:
        return new (std::nothrow) AICamera();
    default:
        return nullptr;
    }
}
