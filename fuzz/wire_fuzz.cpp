// Bytes from the serial link, cut at a random place, through the receive path
// (frame cutting, checks, report dispatch, the record index), and the same
// bytes as a JPEG packet through the side-text parser.
#include <stdio.h>
#include <stdlib.h>

#include <string>

#include "AICamera/AsyncCommand.h"
#include "AICamera/CommandManager.h"
#include "AICamera/Message.h"
#include "AICamera/SideText.h"
#include "AICamera/Transceiver.h"
#include "ModuleSimulator.h"
#include "RandomInput.h"

namespace {
const uint16_t kReportTag = 0x31;

// Reads every byte of the record it is handed, so that a record reaching past
// its payload shows under the address sanitizer.
class TouchingReport : public AsyncCommand {
public:
    TouchingReport() { SetTag(kReportTag); }
    int Process() override
    {
        TLVMessage record = TLVMessage();
        if (GetResult(&record) == 0)
            for (unsigned int i = 0; i < record.nLength; ++i)
                sum += static_cast<unsigned char*>(record.pValue)[i];
        return 0;
    }
    unsigned long sum = 0;
};

struct Link {
    sim::ModuleSimulator module;
    TouchingReport report;
    CommandManager* manager = CommandManager::GetInstance();

    Link()
    {
        std::string path;
        if (module.Start())
            path = module.SlavePath();
        if (path.empty() || manager->StartDataTransmit(&path[0]) != 0 || manager->Register(&report) != 0) {
            fprintf(stderr, "fuzz_wire: no serial link to the simulator\n");
            exit(1);
        }
    }
};

Link& TheLink()
{
    static Link link;
    return link;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // A fresh receive buffer for every input: a frame that never completes
    // would otherwise hold the buffer for all that follow.
    Transceiver receiver(TheLink().manager);
    size_t cut = size ? data[0] % (size + 1) : 0;
    receiver.Receive(data, static_cast<int>(cut));
    receiver.Receive(data + cut, static_cast<int>(size - cut));

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
        switch (random.Below(4)) {
        case 0: input = random.Noise(64); break;
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
    printf("fuzz_wire: %d inputs, report bytes seen %lu\n", rounds, TheLink().report.sum);
    TheLink().manager->StopDataTransmit();
    return 0;
}
#endif
