// The serial link as applications watch it: report callbacks with a context
// pointer, link-state events and the link's counters.
#include "AICamera/Device/AICamera.h"
#include "AICamera/Log/Trace.h"
#include "ai_camera_ext.h"

#define TRACE_FILE "ai_camera"

static_assert(AI_CAMERA_LINK_UP == LINK_EVENT_UP && AI_CAMERA_LINK_LOST == LINK_EVENT_LOST &&
                  AI_CAMERA_LINK_CLOSED == LINK_EVENT_CLOSED,
              "the public link states are the link's own");
static_assert(AI_CAMERA_REPORT_RECO == REPORT_RECO && AI_CAMERA_REPORT_TRACK == REPORT_TRACK &&
                  AI_CAMERA_REPORT_IMAGE == REPORT_IMAGE && AI_CAMERA_REPORT_FEATURE == REPORT_FEATURE &&
                  AI_CAMERA_REPORT_QRCODE == REPORT_QRCODE && REPORT_KINDS == 5,
              "the public report indexes are the counters' own");

namespace {
int RefuseNullHandle(const char* function, int line)
{
    TraceRecord(LOG_LEVER_DEBUG, TRACE_FILE, function, line,
                "[ERROR] dev == nullptr\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : %d\n", -1);
    return -1;
}

int RegisterWithUser(void* dev, const char* function, int line, ReportKind kind, AI_CAMERA_REPORT_USER_FUNC func,
                     void* user)
{
    if (!dev)
        return RefuseNullHandle(function, line);
    static_cast<AICamera*>(dev)->RegisterReport(kind, func, user);
    TraceRecord(LOG_LEVER_DEBUG, TRACE_FILE, function, line,
                "[INPUT ] dev : %p handler_func : %p user : %p\n[OUTPUT]\n[RETURN] nRet : %d\n", dev,
                reinterpret_cast<void*>(func), user, 0);
    return 0;
}
}  // namespace

#define REGISTER_WITH_USER(kind) RegisterWithUser(dev, __func__, __LINE__, kind, handler_func, user)

int RegisterRecoReportCbEx(void* dev, AI_CAMERA_REPORT_USER_FUNC handler_func, void* user)
{
    return REGISTER_WITH_USER(REPORT_RECO);
}

int RegisterTrackReportCbEx(void* dev, AI_CAMERA_REPORT_USER_FUNC handler_func, void* user)
{
    return REGISTER_WITH_USER(REPORT_TRACK);
}

int RegisterImageReportCbEx(void* dev, AI_CAMERA_REPORT_USER_FUNC handler_func, void* user)
{
    return REGISTER_WITH_USER(REPORT_IMAGE);
}

int RegisterFeatureReportCbEx(void* dev, AI_CAMERA_REPORT_USER_FUNC handler_func, void* user)
{
    return REGISTER_WITH_USER(REPORT_FEATURE);
}

int RegisterQRCodeReportCbEx(void* dev, AI_CAMERA_REPORT_USER_FUNC handler_func, void* user)
{
    return REGISTER_WITH_USER(REPORT_QRCODE);
}

int RegisterLinkStateCb(void* dev, AI_CAMERA_LINK_STATE_FUNC handler_func, void* user)
{
    if (!dev)
        return RefuseNullHandle(__func__, __LINE__);
    static_cast<AICamera*>(dev)->RegisterLinkState(handler_func, user);
    TRACE_AT(LOG_LEVER_DEBUG, "[INPUT ] dev : %p handler_func : %p user : %p\n[OUTPUT]\n[RETURN] nRet : %d\n", dev,
             reinterpret_cast<void*>(handler_func), user, 0);
    return 0;
}

int GetLinkStats(void* dev, AI_CAMERA_LINK_STATS* stats)
{
    if (!dev)
        return RefuseNullHandle(__func__, __LINE__);
    const LinkCounters* counters = static_cast<AICamera*>(dev)->GetLinkCounters();
    if (!stats || !counters) {
        TRACE_AT(LOG_LEVER_DEBUG, "[ERROR] stats == nullptr\n[INPUT ] dev : %p\n[OUTPUT] invalid output\n[RETURN] "
                 "nRet : %d\n", dev, -4);
        return -4;
    }
    stats->framesSent = LinkCounters::Read(counters->framesSent);
    stats->bytesSent = LinkCounters::Read(counters->bytesSent);
    stats->framesReceived = LinkCounters::Read(counters->framesReceived);
    stats->bytesReceived = LinkCounters::Read(counters->bytesReceived);
    stats->checksumErrors = LinkCounters::Read(counters->checksumErrors);
    stats->resyncs = LinkCounters::Read(counters->resyncs);
    stats->requestsTimedOut = LinkCounters::Read(counters->requestsTimedOut);
    stats->lateAnswers = LinkCounters::Read(counters->lateAnswers);
    for (int kind = 0; kind < REPORT_KINDS; ++kind)
        stats->reports[kind] = LinkCounters::Read(counters->reports[kind]);
    stats->imageAcks = LinkCounters::Read(counters->imageAcks);
    TRACE_AT(LOG_LEVER_DEBUG,
             "[INPUT ] dev : %p\n[OUTPUT] framesSent : %llu bytesSent : %llu framesReceived : %llu bytesReceived : "
             "%llu checksumErrors : %llu resyncs : %llu requestsTimedOut : %llu lateAnswers : %llu reports : "
             "%llu %llu %llu %llu %llu imageAcks : %llu\n[RETURN] nRet : %d\n",
             dev, stats->framesSent, stats->bytesSent, stats->framesReceived, stats->bytesReceived,
             stats->checksumErrors, stats->resyncs, stats->requestsTimedOut, stats->lateAnswers, stats->reports[0],
             stats->reports[1], stats->reports[2], stats->reports[3], stats->reports[4], stats->imageAcks, 0);
    return 0;
}
