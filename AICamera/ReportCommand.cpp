#include "ReportCommand.h"

#include "CommandManager.h"
#include "SyncCommand.h"
#include "TLVMessage.h"
#include "Trace.h"

#define TRACE_FILE "AICamera"

namespace {
enum : unsigned short {
    kTrackReport = 0x30,
    kRecoReport = 0x31,
    kQRCodeReport = 0x32,
    kImageReport = 0x33,
    kFeatureReport = 0x34,
};
}  // namespace

ReportCommand::ReportCommand(AICamera* camera, unsigned short tag, ReportKind kind)
    : m_pCamera(camera), m_kind(kind)
{
    SetTag(tag);
}

ReportCommand::~ReportCommand() { m_pCamera = nullptr; }

int ReportCommand::Process()
{
    // A report without a whole first record reaches the callback empty.
    TLVMessage tlvMessage = TLVMessage();
    GetResult(&tlvMessage);
    // The slot is read for every report, so a new registration applies at once.
    const ReportSlot& slot = m_pCamera->ReportSlotOf(m_kind);
    if (slot.Empty())
        return 0;
    BeforeCallback();
    m_pCamera->CountReport(m_kind);
    // The callback may even release the device object: nothing is touched after it.
    slot.Call(static_cast<char*>(tlvMessage.pValue), static_cast<int>(tlvMessage.nLength));
    return 0;
}

AsyncCommandTrackReport::AsyncCommandTrackReport(AICamera* camera)
    : ReportCommand(camera, kTrackReport, REPORT_TRACK) {}

AsyncCommandRecoReport::AsyncCommandRecoReport(AICamera* camera)
    : ReportCommand(camera, kRecoReport, REPORT_RECO) {}

AsyncCommandQRCodeReport::AsyncCommandQRCodeReport(AICamera* camera)
    : ReportCommand(camera, kQRCodeReport, REPORT_QRCODE) {}

AsyncCommandImageReport::AsyncCommandImageReport(AICamera* camera)
    : ReportCommand(camera, kImageReport, REPORT_IMAGE) {}

void AsyncCommandImageReport::BeforeCallback() { m_pCamera->SendImageReportReturn(); }

AsyncCommandFeatureReport::AsyncCommandFeatureReport(AICamera* camera)
    : ReportCommand(camera, kFeatureReport, REPORT_FEATURE) {}

int AICamera::SendImageReportReturn()
{
    if (!m_pCommandManager)
        return MissingManagerRecord(__func__, __LINE__, "m_pCommandManager");
    SyncCommand acknowledgement;
    acknowledgement.AddTLV(kImageReport, 0, nullptr);
    int nRet = m_pCommandManager->Execute(&acknowledgement, false);
    if (nRet == 0)
        LinkCounters::Add(m_pCommandManager->Counters().imageAcks);
    return nRet;
}
