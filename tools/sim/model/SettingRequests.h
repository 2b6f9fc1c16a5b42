#pragma once
// The two request shapes shared by most settings of the module.

#include <cstdint>
#include <vector>

#include "WireFormat.h"

namespace sim {

struct ByteField {
    uint8_t& value;
    uint8_t min;
    uint8_t max;
};

// "op, values...": with op == setOp one byte per field follows, each within its
// range (all or nothing); with op == getOp nothing follows and the answer is
// the status then the fields.
Bytes GetOrSetBytes(ByteReader& in, uint8_t getOp, uint8_t setOp, const std::vector<ByteField>& fields);
// The same, for a request whose operation byte has been read already.
Bytes GetOrSetAfterOp(uint8_t op, ByteReader& in, uint8_t getOp, uint8_t setOp, const std::vector<ByteField>& fields);
// One byte in [min, max] that becomes the setting.
Bytes SetOneByte(ByteReader& in, uint8_t min, uint8_t max, uint8_t& field);

}  // namespace sim
