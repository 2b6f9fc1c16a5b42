#pragma once
// A simulator with the module model installed, and the host's end of its pty.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "HostLink.h"
#include "ModuleModel.h"
#include "ModuleProtocol.h"

namespace sim::test {

// `head`, then a u32 length and the text: how most requests carry an identifier.
inline Bytes WithId32(Bytes head, const std::string& id) {
    PutU32(head, uint32_t(id.size()));
    PutText(head, id);
    return head;
}

// Bytes that differ from slice to slice, so that a misplaced slice shows.
inline Bytes Pattern(size_t size) {
    Bytes b(size);
    for (size_t i = 0; i < size; ++i) b[i] = uint8_t((uint32_t(i) * 2654435761u) >> 13);
    return b;
}

class SimModelTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(simulator.Start());
        model.Install();
        host = std::make_unique<HostLink>(simulator.SlavePath());
        ASSERT_TRUE(host->IsOpen());
    }

    // The status byte of the answer, or -1 when no answer came.
    int StatusOf(uint16_t tag, const Bytes& value) {
        std::optional<Bytes> answer = host->Ask(tag, value);
        return answer && !answer->empty() ? (*answer)[0] : -1;
    }

    ModuleSimulator simulator;
    ModuleModel model{simulator};
    std::unique_ptr<HostLink> host;
};

}  // namespace sim::test
