// Handlers of the reports the module sends on its own; each hands the value of
// the report's first record to the application's callback of its kind.
#ifndef AICAMERA_REPORT_COMMAND_H
#define AICAMERA_REPORT_COMMAND_H

#include "../Protocol/AsyncCommand.h"
#include "ReportReceiver.h"

class ReportCommand : public AsyncCommand {
public:
    ReportCommand(ReportReceiver* receiver, unsigned short tag, ReportKind kind);
    ~ReportCommand() override;
    int Process() override;

protected:
    // Runs before the callback; the image report acknowledges here.
    virtual void BeforeCallback() {}
    ReportReceiver* m_pReceiver;

private:
    ReportKind m_kind;
};

class AsyncCommandTrackReport : public ReportCommand {
public:
    explicit AsyncCommandTrackReport(ReportReceiver* receiver);
};

class AsyncCommandRecoReport : public ReportCommand {
public:
    explicit AsyncCommandRecoReport(ReportReceiver* receiver);
};

class AsyncCommandQRCodeReport : public ReportCommand {
public:
    explicit AsyncCommandQRCodeReport(ReportReceiver* receiver);
};

class AsyncCommandImageReport : public ReportCommand {
public:
    explicit AsyncCommandImageReport(ReportReceiver* receiver);

protected:
    void BeforeCallback() override;
};

class AsyncCommandFeatureReport : public ReportCommand {
public:
    explicit AsyncCommandFeatureReport(ReportReceiver* receiver);
};

#endif
