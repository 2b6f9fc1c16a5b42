#include "AsyncCommand.h"

int AsyncCommand::SetReport(void* data, unsigned int size) { return SetData(data, size); }

int AsyncCommand::GetResult(TLVMessage* out) { return GetTLV(out); }
