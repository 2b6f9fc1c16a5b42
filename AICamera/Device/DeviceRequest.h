// The one shape of every device command: argument checks, one request with its
// answer tested, the status byte as the result, and exactly one trace record on
// whichever path the command leaves. A command states only its differences.
#ifndef AICAMERA_DEVICE_REQUEST_H
#define AICAMERA_DEVICE_REQUEST_H

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "../Protocol/Message.h"
#include "../Protocol/SyncCommand.h"
#include "../Protocol/TLVMessage.h"

class CommandManager;

// A bound on the length of the answer's first record; outside it the command
// fails with -8 and records `text` as the failed condition.
struct AnswerLength {
    unsigned int min;
    unsigned int max;
    std::string text;

    static AnswerLength Exactly(unsigned int n);  // "tlvMessage.nLength != n"
    static AnswerLength Exactly(unsigned int n, const char* text);
    static AnswerLength AtLeast(unsigned int n, const char* text);
};

// An output that a command writes through, with its name for the refusal record.
struct NamedOutput {
    const void* pointer;
    const char* name;
};
#define OUTPUT(p) NamedOutput{(p), #p}

class DeviceRequest {
public:
    static const unsigned int kDefaultTimeout = 10000;
    static const unsigned int kEnrolTimeout = 15000;

    DeviceRequest(const void* dev, CommandManager* manager, const char* function, int line,
                  unsigned short tag);
    DeviceRequest(const DeviceRequest&) = delete;
    DeviceRequest& operator=(const DeviceRequest&) = delete;

    // The inputs as they follow "[INPUT ] dev : %p" in the record, e.g. " nMode : %d".
    void Inputs(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void AppendInputs(const char* format, ...) __attribute__((format(printf, 2, 3)));
    // A refused call records " invalid input" unless the command lists its inputs.
    void ShowInputsOnRefusal() { m_bInputsOnRefusal = true; }
    void RefusalInputs(const char* format, ...) __attribute__((format(printf, 2, 3)));
    // Commands with outputs end the output line of a failure in " invalid output".
    void InvalidOutputOnFailure() { m_bInvalidOutputOnFailure = m_bInvalidOutputOnRefusal = true; }
    void InvalidOutputOnRefusal() { m_bInvalidOutputOnRefusal = true; }
    void SetTimeout(unsigned int ms) { m_nTimeout = ms; }
    // A few commands record the send failure without the trailing " != 0".
    void ExecuteFailureText(const char* text) { m_pExecuteText = text; }

    // Argument check: true when `failed`, after recording `text` with result -4.
    bool Refuse(bool failed, const char* text);
    // A text passed with its length: null, empty, or a length other than strlen.
    bool RefuseText(const void* text, unsigned int length, const char* nullText,
                    const char* emptyText, const char* lengthText);
    // The usual identifier checks on pID and nIDLength.
    bool RefuseID(const void* pID, unsigned int nIDLength);
    // The outputs the answer is written through: a null one is refused (-4,
    // "[ERROR] pX == nullptr") after the other argument checks, before anything is sent.
    void Outputs(std::initializer_list<NamedOutput> outputs) { m_outputs = outputs; }
    // True when the device object has lost its command manager (result -1).
    bool NoManager();

    // The request payload, sent as the value of one record tagged like the command.
    Message& Payload() { return m_message; }
    // Sends the request and waits for the answer, then applies each length check
    // in order. False after recording a failure (-1, -6, -7 or -8).
    bool Exchange(std::initializer_list<AnswerLength> checks);
    // Makes ready for one more exchange of the same command: fresh command, empty payload.
    void Restart();

    // The answer's first record, valid until the next exchange.
    const TLVMessage& Answer() const { return m_tlvMessage; }
    // Copies the answer into the message for reading, without taking a status byte.
    Message& LoadAnswer();
    // Copies the answer and takes its status byte as the result: 0 to 255, or as a
    // signed byte (-128 to 127) for the commands that keep an 8-bit result.
    Message& ReadStatus();
    Message& ReadSignedStatus();

    int Result() const { return m_nRet; }
    // Records a failure found in the answer (`text` null: no error line).
    int Fail(int code, const char* text);
    // Records the success with the outputs that follow "[OUTPUT]".
    int Succeed(const char* outputs, ...) __attribute__((format(printf, 2, 3)));
    int Succeed();
    // Exchange, status byte, success record: the whole tail of a status-only command.
    int StatusOnly(std::initializer_list<AnswerLength> checks);

private:
    int Record(int code, const char* error, const std::string& inputs, bool invalidOutput,
               const std::string& outputs);
    int RefusalRecord(const char* text);
    bool RefuseNullOutputs();

    const void* m_pDev;
    CommandManager* m_pCommandManager;
    const char* m_pFunction;
    int m_nLine;
    unsigned short m_nTag;
    unsigned int m_nTimeout;
    const char* m_pExecuteText;
    std::string m_strInputs;
    std::string m_strRefusalInputs;
    bool m_bInputsOnRefusal;
    bool m_bInvalidOutputOnFailure;
    bool m_bInvalidOutputOnRefusal;
    std::vector<NamedOutput> m_outputs;
    std::unique_ptr<SyncCommand> m_pSyncCommand;
    TLVMessage m_tlvMessage;
    Message m_message;
    int m_nRet;
};

// strncpy of an answer text into the caller's buffer: at most the smaller of the
// two lengths, stopping at a zero byte, with no terminator when the text fills it.
void CopyAnswerText(void* dst, unsigned int dstLength, const void* src, unsigned int srcLength);

#endif
