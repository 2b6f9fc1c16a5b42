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

ReportCommand::ReportCommand(AICamera* camera, unsigned short tag, CallbackSlot slot)
    : m_pCamera(camera), m_pSlot(slot)
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
    ReportFunc callback = (m_pCamera->*m_pSlot)();
    if (!callback)
        return 0;
    BeforeCallback();
    callback(static_cast<char*>(tlvMessage.pValue), static_cast<int>(tlvMessage.nLength));
    return 0;
}

AsyncCommandTrackReport::AsyncCommandTrackReport(AICamera* camera)
    : ReportCommand(camera, kTrackReport, &AICamera::TrackReportFunc) {}

AsyncCommandRecoReport::AsyncCommandRecoReport(AICamera* camera)
    : ReportCommand(camera, kRecoReport, &AICamera::RecoReportFunc) {}

AsyncCommandQRCodeReport::AsyncCommandQRCodeReport(AICamera* camera)
    : ReportCommand(camera, kQRCodeReport, &AICamera::QRCodeReportFunc) {}

AsyncCommandImageReport::AsyncCommandImageReport(AICamera* camera)
    : ReportCommand(camera, kImageReport, &AICamera::ImageReportFunc) {}

void AsyncCommandImageReport::BeforeCallback() { m_pCamera->SendImageReportReturn(); }

AsyncCommandFeatureReport::AsyncCommandFeatureReport(AICamera* camera)
    : ReportCommand(camera, kFeatureReport, &AICamera::FeatureReportFunc) {}

int AICamera::SendImageReportReturn()
{
    if (!m_pCommandManager)
        return MissingManagerRecord(__func__, __LINE__, "m_pCommandManager");
    SyncCommand acknowledgement;
    acknowledgement.AddTLV(kImageReport, 0, nullptr);
    return m_pCommandManager->Execute(&acknowledgement, false);
}
