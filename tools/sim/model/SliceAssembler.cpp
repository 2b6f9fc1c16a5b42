#include "SliceAssembler.h"

#include <algorithm>

#include "ModuleProtocol.h"

namespace sim {

void Coverage::Add(size_t begin, size_t end) {
    if (begin >= end) return;
    auto it = m_ranges.upper_bound(begin);
    if (it != m_ranges.begin()) {
        auto prev = std::prev(it);
        if (prev->second >= begin) {
            begin = prev->first;
            end = std::max(end, prev->second);
            it = m_ranges.erase(prev);
        }
    }
    while (it != m_ranges.end() && it->first <= end) {
        end = std::max(end, it->second);
        it = m_ranges.erase(it);
    }
    m_ranges[begin] = end;
}

bool Coverage::CoversUpTo(size_t end) const { return end == 0 || FirstGap() >= end; }

size_t Coverage::FirstGap() const {
    auto it = m_ranges.find(0);
    return it == m_ranges.end() ? 0 : it->second;
}

void SliceAssembler::Reset() {
    m_key.clear();
    m_image.clear();
    m_coverage.Clear();
}

uint8_t SliceAssembler::Add(const std::string& key, uint32_t total, uint32_t position, const Bytes& data,
                            bool last) {
    if (total == 0 || total > m_maxTotal) return proto::kInvalidParam;
    if (position > total || data.size() > total - position) return proto::kBadSlice;
    if (position == 0 || key != m_key || total != m_image.size()) {
        Reset();
        m_key = key;
        m_image.assign(total, 0);
    }
    std::copy(data.begin(), data.end(), m_image.begin() + position);
    m_coverage.Add(position, position + data.size());
    if (!last) return proto::kOk;
    bool whole = m_coverage.CoversUpTo(total);
    if (whole) m_complete.swap(m_image);
    Reset();
    return whole ? proto::kOk : proto::kBadSlice;
}

Bytes SliceAssembler::TakeComplete() {
    Bytes out;
    out.swap(m_complete);
    return out;
}

}  // namespace sim
