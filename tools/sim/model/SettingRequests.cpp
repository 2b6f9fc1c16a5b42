#include "SettingRequests.h"

#include "ModuleProtocol.h"

namespace sim {

Bytes GetOrSetBytes(ByteReader& in, uint8_t getOp, uint8_t setOp, const std::vector<ByteField>& fields) {
    uint8_t op = 0;
    if (!in.U8(op)) return StatusOnly(proto::kBadRequest);
    return GetOrSetAfterOp(op, in, getOp, setOp, fields);
}

Bytes GetOrSetAfterOp(uint8_t op, ByteReader& in, uint8_t getOp, uint8_t setOp, const std::vector<ByteField>& fields) {
    if (op == getOp) {
        if (!in.AtEnd()) return StatusOnly(proto::kBadRequest);
        Bytes answer{proto::kOk};
        for (const ByteField& f : fields) answer.push_back(f.value);
        return answer;
    }
    if (op != setOp) return StatusOnly(proto::kInvalidParam);
    std::vector<uint8_t> values(fields.size());
    for (uint8_t& v : values)
        if (!in.U8(v)) return StatusOnly(proto::kBadRequest);
    if (!in.AtEnd()) return StatusOnly(proto::kBadRequest);
    for (size_t i = 0; i < fields.size(); ++i)
        if (values[i] < fields[i].min || values[i] > fields[i].max) return StatusOnly(proto::kInvalidParam);
    for (size_t i = 0; i < fields.size(); ++i) fields[i].value = values[i];
    return StatusOnly(proto::kOk);
}

Bytes SetOneByte(ByteReader& in, uint8_t min, uint8_t max, uint8_t& field) {
    uint8_t v = 0;
    if (!in.U8(v) || !in.AtEnd()) return StatusOnly(proto::kBadRequest);
    if (v < min || v > max) return StatusOnly(proto::kInvalidParam);
    field = v;
    return StatusOnly(proto::kOk);
}

}  // namespace sim
