// Bytes from the serial link, cut at a random place, through the receive path
// (frame cutting, checks, report dispatch, the record index), and the same
// bytes as a JPEG packet through the side-text parser. Whatever came before,
// a valid frame sent again and again must get through: the receive path never
// wedges on what the line delivered.
#include <stdio.h>
#include <stdlib.h>

#include <string>

#include "AICamera/Protocol/AsyncCommand.h"
#include "AICamera/Protocol/CommandExecutor.h"
#include "AICamera/Protocol/CommandManager.h"
#include "AICamera/Protocol/Message.h"
#include "AICamera/Video/SideText.h"
#include "AICamera/Protocol/Transceiver.h"
#include "ModuleSimulator.h"
#include "RandomInput.h"

namespace {
const uint16_t kReportTag = 0x31;
const uint16_t kProbeTag = 0x32;

// Reads every byte of the record it is handed, so that a record reaching past
// its payload shows under the address sanitizer.
class TouchingReport : public AsyncCommand {
public:
    explicit TouchingReport(uint16_t tag) { SetTag(tag); }
    int Process() override
    {
        ++count;
        TLVMessage record = TLVMessage();
        if (GetResult(&record) == 0)
            for (unsigned int i = 0; i < record.nLength; ++i)
                sum += static_cast<unsigned char*>(record.pValue)[i];
        return 0;
    }
    unsigned long sum = 0;
    unsigned long count = 0;
};

// A frame whose only 0xA1 byte is its marker, so that a frame boundary
// falling inside one of its copies drops the rest of that read.
Bytes ProbeFrame()
{
    for (uint8_t value = 0;; ++value) {
        Bytes frame = RandomInput::Frame(sim::ModuleSimulator::EncodeTLV(kProbeTag, {value}));
        bool clean = true;
        for (size_t i = 1; i < frame.size(); ++i)
            clean = clean && frame[i] != 0xA1;
        if (clean)
            return frame;
    }
}

struct Registry {
    TouchingReport report{kReportTag};
    TouchingReport probe{kProbeTag};
    CommandManager* manager = CommandManager::GetInstance();
    Bytes probeFrame = ProbeFrame();

    Registry()
    {
        if (manager->Register(&report) != 0 || manager->Register(&probe) != 0) {
            fprintf(stderr, "fuzz_wire: cannot register the report handlers\n");
            exit(1);
        }
    }
};

Registry& TheRegistry()
{
    static Registry registry;
    return registry;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Registry& registry = TheRegistry();
    CommandExecutor executor(registry.manager, &registry.manager->Counters());
    LinkEvents events;
    Transceiver receiver(&executor, &registry.manager->Counters(), &events);
    size_t cut = size ? data[0] % (size + 1) : 0;
    receiver.Receive(data, static_cast<int>(cut));
    receiver.Receive(data + cut, static_cast<int>(size - cut));
    // A frame left incomplete swallows at most a buffer's worth of what follows.
    const Bytes& probe = registry.probeFrame;
    unsigned long before = registry.probe.count;
    for (size_t sent = 0; registry.probe.count == before; sent += probe.size()) {
        if (sent > DATA_BUFFER_SIZE + 2 * probe.size())
            abort();
        receiver.Receive(probe.data(), static_cast<int>(probe.size()));
    }

    char text[SIDE_TEXT_MAX];
    int length = ExtractSideText(data, size, text);
    if (length < 0 || length > SIDE_TEXT_MAX)
        abort();

    Message message(const_cast<uint8_t*>(data), static_cast<unsigned int>(size));
    unsigned int word = 0;
    void* view = nullptr;
    while (message.ReadInt(&word, 1) == 0 && message.ReadData(&view, word & 0xFF) == 0)
        message.MovePositionRight(word & 0xFF);
    return 0;
}

#ifndef AICAM_LIBFUZZER
int main(int argc, char** argv)
{
    const int rounds = argc > 1 ? atoi(argv[1]) : 10000;
    RandomInput random(20261121);
    Bytes previous;
    for (int i = 0; i < rounds; ++i) {
        Bytes input;
        switch (random.Below(5)) {
        case 0: input = random.Noise(64); break;
        case 4: {
            // A frame head whose length a corrupted byte made huge, or just too large.
            uint32_t size = random.Below(2) ? 0x7FFFFFFFu - random.Below(1u << 20) : DATA_BUFFER_SIZE - 9 + random.Below(64);
            input = {0xA1, uint8_t(size >> 24), uint8_t(size >> 16), uint8_t(size >> 8), uint8_t(size)};
            Bytes tail = random.Noise(64);
            input.insert(input.end(), tail.begin(), tail.end());
            break;
        }
        case 1: input = RandomInput::Frame(random.Records(kReportTag, 48)); break;
        case 2: input = random.Mutate(previous); break;
        default: {
            // Two frames in one read, the first of them possibly broken.
            input = random.Mutate(RandomInput::Frame(random.Records(kReportTag, 16)));
            Bytes next = RandomInput::Frame(random.Records(kReportTag, 16));
            input.insert(input.end(), next.begin(), next.end());
        }
        }
        LLVMFuzzerTestOneInput(input.data(), input.size());
        previous = input;
    }
    printf("fuzz_wire: %d inputs, report bytes seen %lu, frames through after each %lu\n", rounds,
           TheRegistry().report.sum, TheRegistry().probe.count);
    return 0;
}
#endif
