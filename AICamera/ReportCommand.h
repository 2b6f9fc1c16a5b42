// Handlers of the reports the module sends on its own; each hands the value of
// the report's first record to the application's callback of its kind.
#ifndef AICAMERA_REPORT_COMMAND_H
#define AICAMERA_REPORT_COMMAND_H

#include "AICamera.h"
#include "AsyncCommand.h"

class ReportCommand : public AsyncCommand {
public:
    ReportCommand(AICamera* camera, unsigned short tag, ReportKind kind);
    ~ReportCommand() override;
    int Process() override;

protected:
    // Runs before the callback; the image report acknowledges here.
    virtual void BeforeCallback() {}
    AICamera* m_pCamera;

private:
    ReportKind m_kind;
};

class AsyncCommandTrackReport : public ReportCommand {
public:
    explicit AsyncCommandTrackReport(AICamera* camera);
};

class AsyncCommandRecoReport : public ReportCommand {
public:
    explicit AsyncCommandRecoReport(AICamera* camera);
};

class AsyncCommandQRCodeReport : public ReportCommand {
public:
    explicit AsyncCommandQRCodeReport(AICamera* camera);
};

class AsyncCommandImageReport : public ReportCommand {
public:
    explicit AsyncCommandImageReport(AICamera* camera);

protected:
    void BeforeCallback() override;
};

class AsyncCommandFeatureReport : public ReportCommand {
public:
    explicit AsyncCommandFeatureReport(AICamera* camera);
};

#endif
