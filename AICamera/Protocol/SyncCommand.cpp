#include "SyncCommand.h"

SyncCommand::SyncCommand() : m_nTimeout(10000) {}

int SyncCommand::GetRequest(void** data, unsigned int* size)
{
    GetPayload(data, size);
    return 0;
}

int SyncCommand::SetResponse(void* data, unsigned int size) { return SetData(data, size); }

int SyncCommand::GetResult(TLVMessage* out) { return GetTLV(out); }

int SyncCommand::GetResult(unsigned short* tag, unsigned int* len, void** value)
{
    return GetTLV(tag, len, value);
}

unsigned int SyncCommand::GetTimeout() { return m_nTimeout; }

void SyncCommand::SetTimeout(unsigned int ms) { m_nTimeout = ms; }
