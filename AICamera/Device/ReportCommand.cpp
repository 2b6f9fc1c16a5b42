#include "ReportCommand.h"

#include "../Protocol/TLVMessage.h"
#include "../Log/Trace.h"

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

ReportCommand::ReportCommand(ReportReceiver* receiver, unsigned short tag, ReportKind kind)
    : m_pReceiver(receiver), m_kind(kind)
{
    SetTag(tag);
}

ReportCommand::~ReportCommand() { m_pReceiver = nullptr; }

int ReportCommand::Process()
{
    // A report without a whole first record reaches the callback empty.
    TLVMessage tlvMessage = TLVMessage();
    GetResult(&tlvMessage);
    // The slot is read for every report, so a new registration applies at once.
    const ReportSlot& slot = m_pReceiver->ReportSlotOf(m_kind);
    if (slot.Empty())
        return 0;
    BeforeCallback();
    m_pReceiver->CountReport(m_kind);
    // The callback may even release the device object: nothing is touched after it.
    slot.Call(static_cast<char*>(tlvMessage.pValue), static_cast<int>(tlvMessage.nLength));
    return 0;
}

AsyncCommandTrackReport::AsyncCommandTrackReport(ReportReceiver* receiver)
    : ReportCommand(receiver, kTrackReport, REPORT_TRACK) {}

AsyncCommandRecoReport::AsyncCommandRecoReport(ReportReceiver* receiver)
    : ReportCommand(receiver, kRecoReport, REPORT_RECO) {}

AsyncCommandQRCodeReport::AsyncCommandQRCodeReport(ReportReceiver* receiver)
    : ReportCommand(receiver, kQRCodeReport, REPORT_QRCODE) {}

AsyncCommandImageReport::AsyncCommandImageReport(ReportReceiver* receiver)
    : ReportCommand(receiver, kImageReport, REPORT_IMAGE) {}

void AsyncCommandImageReport::BeforeCallback() { m_pReceiver->SendImageReportReturn(); }

AsyncCommandFeatureReport::AsyncCommandFeatureReport(ReportReceiver* receiver)
    : ReportCommand(receiver, kFeatureReport, REPORT_FEATURE) {}
