// What a report handler needs of the device object that made it: the
// application's callback slot of its kind, the count of delivered reports, and
// the image report's acknowledgement.
#ifndef AICAMERA_REPORTRECEIVER_H
#define AICAMERA_REPORTRECEIVER_H

#include "../Protocol/LinkStatistics.h"
#include "CallbackSlot.h"

class ReportReceiver {
public:
    virtual ReportSlot& ReportSlotOf(ReportKind kind) = 0;
    virtual void CountReport(ReportKind kind) = 0;
    // Sent, not awaited.
    virtual int SendImageReportReturn() = 0;

protected:
    ~ReportReceiver() = default;
};

#endif
