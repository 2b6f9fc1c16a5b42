#include "DeviceRequest.h"

#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "../Protocol/CommandManager.h"
#include "../Log/Trace.h"

#define TRACE_FILE "AICamera"

namespace {
std::string FormatV(const char* format, va_list args)
{
    va_list copy;
    va_copy(copy, args);
    int size = vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    if (size <= 0)
        return std::string();
    std::string text(static_cast<size_t>(size) + 1, '\0');
    vsnprintf(&text[0], text.size(), format, args);
    text.resize(static_cast<size_t>(size));
    return text;
}

#define FORMAT_ARGS(target, format)      \
    do {                                 \
        va_list args;                    \
        va_start(args, format);          \
        target = FormatV(format, args);  \
        va_end(args);                    \
    } while (0)
}  // namespace

AnswerLength AnswerLength::Exactly(unsigned int n)
{
    return AnswerLength{n, n, "tlvMessage.nLength != " + std::to_string(n)};
}

AnswerLength AnswerLength::Exactly(unsigned int n, const char* text)
{
    return AnswerLength{n, n, text};
}

AnswerLength AnswerLength::AtLeast(unsigned int n, const char* text)
{
    return AnswerLength{n, UINT_MAX, text};
}

DeviceRequest::DeviceRequest(const void* dev, CommandManager* manager, const char* function,
                             int line, unsigned short tag)
    : m_pDev(dev),
      m_pCommandManager(manager),
      m_pFunction(function),
      m_nLine(line),
      m_nTag(tag),
      m_nTimeout(kDefaultTimeout),
      m_pExecuteText("m_pCommandManager->Execute(&syncCommand) != 0"),
      m_bInputsOnRefusal(false),
      m_bInvalidOutputOnFailure(false),
      m_bInvalidOutputOnRefusal(false),
      m_pSyncCommand(new SyncCommand()),
      m_tlvMessage(),
      m_nRet(0)
{
}

void DeviceRequest::Inputs(const char* format, ...) { FORMAT_ARGS(m_strInputs, format); }

void DeviceRequest::AppendInputs(const char* format, ...)
{
    std::string more;
    FORMAT_ARGS(more, format);
    m_strInputs += more;
}

void DeviceRequest::RefusalInputs(const char* format, ...) { FORMAT_ARGS(m_strRefusalInputs, format); }

int DeviceRequest::Record(int code, const char* error, const std::string& inputs,
                          bool invalidOutput, const std::string& outputs)
{
    m_nRet = code;
    char dev[32];
    snprintf(dev, sizeof dev, "%p", m_pDev);
    std::string body;
    if (error)
        body = std::string("[ERROR] ") + error + "\n";
    body += std::string("[INPUT ] dev : ") + dev + inputs + "\n";
    body += std::string("[OUTPUT]") + (invalidOutput ? " invalid output" : outputs) + "\n";
    body += "[RETURN] nRet : " + std::to_string(code) + "\n";
    TraceRecord(LOG_LEVER_DEBUG, TRACE_FILE, m_pFunction, m_nLine, "%s", body.c_str());
    return code;
}

int DeviceRequest::RefusalRecord(const char* text)
{
    std::string inputs = m_bInputsOnRefusal ? m_strInputs : m_strRefusalInputs;
    if (!m_bInputsOnRefusal && inputs.empty())
        inputs = " invalid input";
    return Record(-4, text, inputs, m_bInvalidOutputOnRefusal, "");
}

bool DeviceRequest::Refuse(bool failed, const char* text)
{
    if (failed)
        RefusalRecord(text);
    return failed;
}

bool DeviceRequest::RefuseText(const void* text, unsigned int length, const char* nullText,
                               const char* emptyText, const char* lengthText)
{
    if (Refuse(text == nullptr, nullText))
        return true;
    size_t actual = strlen(static_cast<const char*>(text));
    return Refuse(actual == 0, emptyText) || Refuse(length != actual, lengthText);
}

bool DeviceRequest::RefuseID(const void* pID, unsigned int nIDLength)
{
    return RefuseText(pID, nIDLength, "pID == nullptr",
                      "!strlen(static_cast<char*>(const_cast<void*>(pID)))",
                      "nIDLength != strlen(static_cast<char*>(const_cast<void*>(pID)))");
}

bool DeviceRequest::RefuseNullOutputs()
{
    for (const NamedOutput& output : m_outputs)
        if (Refuse(output.pointer == nullptr, (std::string(output.name) + " == nullptr").c_str()))
            return true;
    return false;
}

bool DeviceRequest::NoManager()
{
    if (m_pCommandManager)
        return false;
    Record(-1, "m_pCommandManager == nullptr", "", false, "");
    return true;
}

bool DeviceRequest::Exchange(std::initializer_list<AnswerLength> checks)
{
    if (RefuseNullOutputs() || NoManager())
        return false;
    void* payload = nullptr;
    unsigned int size = 0;
    m_message.GetData(&payload, &size);
    m_pSyncCommand->SetTag(m_nTag);
    m_pSyncCommand->AddTLV(m_nTag, size, size ? payload : nullptr);
    if (m_nTimeout != kDefaultTimeout)
        m_pSyncCommand->SetTimeout(m_nTimeout);
    if (m_pCommandManager->Execute(m_pSyncCommand.get(), true) != 0) {
        Record(-6, m_pExecuteText, m_strInputs, m_bInvalidOutputOnFailure, "");
        return false;
    }
    if (m_pSyncCommand->GetResult(&m_tlvMessage) != 0) {
        Record(-7, "syncCommand.GetResult(&tlvMessage) != 0", m_strInputs,
               m_bInvalidOutputOnFailure, "");
        return false;
    }
    for (const AnswerLength& check : checks) {
        if (m_tlvMessage.nLength < check.min || m_tlvMessage.nLength > check.max) {
            Record(-8, check.text.c_str(), m_strInputs, m_bInvalidOutputOnFailure, "");
            return false;
        }
    }
    return true;
}

void DeviceRequest::Restart()
{
    m_pSyncCommand.reset(new SyncCommand());
    m_tlvMessage = TLVMessage();
    m_message.Clear();
}

Message& DeviceRequest::LoadAnswer()
{
    m_message.Clear();
    m_message.WriteData(m_tlvMessage.pValue, m_tlvMessage.nLength);
    return m_message;
}

Message& DeviceRequest::ReadStatus()
{
    unsigned char status = 0;
    LoadAnswer().ReadChar(&status);
    m_nRet = status;
    return m_message;
}

Message& DeviceRequest::ReadSignedStatus()
{
    ReadStatus();
    m_nRet = static_cast<signed char>(m_nRet);
    return m_message;
}

int DeviceRequest::Fail(int code, const char* text)
{
    return Record(code, text, m_strInputs, m_bInvalidOutputOnFailure, "");
}

int DeviceRequest::Succeed(const char* outputs, ...)
{
    std::string text;
    FORMAT_ARGS(text, outputs);
    return Record(m_nRet, nullptr, m_strInputs, false, text);
}

int DeviceRequest::Succeed() { return Record(m_nRet, nullptr, m_strInputs, false, ""); }

int DeviceRequest::StatusOnly(std::initializer_list<AnswerLength> checks)
{
    if (!Exchange(checks))
        return m_nRet;
    ReadStatus();
    return Succeed();
}

void CopyAnswerText(void* dst, unsigned int dstLength, const void* src, unsigned int srcLength)
{
    unsigned int n = dstLength < srcLength ? dstLength : srcLength;
    if (n)
        strncpy(static_cast<char*>(dst), static_cast<const char*>(src), n);
}
