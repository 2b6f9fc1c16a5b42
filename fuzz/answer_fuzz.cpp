// Random answers to every device command, through the exported functions: each
// call must return one of its documented codes and write nothing outside the
// buffers it was given.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "ModuleSimulator.h"
#include "RandomInput.h"
#include "ai_camera.h"

namespace {
const size_t kGuard = 32;
const uint8_t kGuardByte = 0xA5;

// A caller's buffer with guard bytes on both sides.
class GuardedBuffer {
public:
    explicit GuardedBuffer(size_t size) : m_bytes(size + 2 * kGuard, kGuardByte), m_size(size) {}
    void* Data() { return &m_bytes[kGuard]; }
    unsigned int Size() const { return static_cast<unsigned int>(m_size); }
    bool GuardsIntact() const
    {
        for (size_t i = 0; i < kGuard; ++i)
            if (m_bytes[i] != kGuardByte || m_bytes[kGuard + m_size + i] != kGuardByte)
                return false;
        return true;
    }

private:
    std::vector<uint8_t> m_bytes;
    size_t m_size;
};

// What the module answers next: random bytes, or a plausible head with wild lengths.
class RandomModule {
public:
    explicit RandomModule(uint32_t seed) : m_random(seed) {}
    std::optional<Bytes> Answer(uint16_t tag)
    {
        std::lock_guard<std::mutex> guard(m_lock);
        Bytes value = m_random.Noise(48);
        if (!value.empty() && m_random.Below(2))
            value[0] = 0;  // status 0, so that the outputs are read
        // An image answer's claimed length is handed out in a buffer of that size:
        // mostly a few kilobytes, now and then up to 4 GiB.
        bool image = tag == 0x01 || tag == 0x04 || tag == 0x23;
        if (image && value.size() >= 5 && m_random.Below(64) != 0)
            value[3] = value[4] = 0;
        return value;
    }

private:
    std::mutex m_lock;
    RandomInput m_random;
};

// Library codes, or a status byte (signed in the commands that keep 8 bits).
bool Allowed(int code) { return code >= -128 && code <= 255; }

struct Call {
    const char* name;
    std::function<int(void* dev, GuardedBuffer& buffer)> run;
};

const char kId[] = "fuzz";
const unsigned int kIdLength = 4;

std::vector<Call> Calls()
{
    // Frees the image after the call has filled it in.
    auto freeing = [](int code, void** image) {
        free(*image);
        return code;
    };
    return {
        {"AddFaceReturnImage", [=](void* dev, GuardedBuffer&) {
             void* image = nullptr;
             unsigned int length = 0;
             return freeing(AddFaceReturnImage(dev, kId, kIdLength, &image, &length), &image);
         }},
        {"StaticFaceCompare", [=](void* dev, GuardedBuffer&) {
             void* image = nullptr;
             unsigned int length = 0;
             return freeing(StaticFaceCompare(dev, &image, &length), &image);
         }},
        {"StaticFaceCompareSlice", [=](void* dev, GuardedBuffer&) {
             void* image = nullptr;
             unsigned int length = 0;
             return freeing(StaticFaceCompareSlice(dev, 1, 4, 0, 1, "abcd", 4, &image, &length), &image);
         }},
        {"QueryFeature", [](void* dev, GuardedBuffer& b) { return QueryFeature(dev, kId, kIdLength, b.Data(), b.Size()); }},
        {"GetDeviceFaceID", [](void* dev, GuardedBuffer& b) { return GetDeviceFaceID(dev, b.Data(), b.Size()); }},
        {"GetDeviceFaceLibraryNum", [](void* dev, GuardedBuffer& b) {
             return GetDeviceFaceLibraryNum(dev, static_cast<unsigned int*>(b.Data()));
         }},
        {"GetSingleRecognize", [](void* dev, GuardedBuffer& b) { return GetSingleRecognize(dev, b.Data(), b.Size()); }},
        {"GetRecConfig", [](void* dev, GuardedBuffer& b) { return GetRecConfig(dev, b.Data(), b.Size(), 0); }},
        {"GetRecognizeCount", [](void* dev, GuardedBuffer& b) {
             unsigned char* out = static_cast<unsigned char*>(b.Data());
             return GetRecognizeCount(dev, out, out + 1);
         }},
        {"Ping", [](void* dev, GuardedBuffer&) { return Ping(dev, "abc", 3); }},
        {"GetDeviceVersion", [](void* dev, GuardedBuffer& b) { return GetDeviceVersion(dev, b.Data(), b.Size()); }},
        {"GetDevSn", [](void* dev, GuardedBuffer& b) { return GetDevSn(dev, 0, b.Data(), b.Size()); }},
        {"GetDevModel", [](void* dev, GuardedBuffer& b) { return GetDevModel(dev, b.Data(), b.Size()); }},
        {"GetDevModelAppVer", [](void* dev, GuardedBuffer& b) { return GetDevModelAppVer(dev, b.Data(), b.Size()); }},
        {"GetCpuTemperature", [](void* dev, GuardedBuffer& b) {
             return GetCpuTemperature(dev, static_cast<unsigned int*>(b.Data()));
         }},
        {"GetAESensorModel", [](void* dev, GuardedBuffer& b) {
             return GetAESensorModel(dev, static_cast<unsigned int*>(b.Data()));
         }},
        {"ApplyUpgrade", [](void* dev, GuardedBuffer&) { return ApplyUpgrade(dev, "0123456789abcdef", 16); }},
        {"GetDeviceNoFlickerHz", [](void* dev, GuardedBuffer& b) {
             unsigned char* out = static_cast<unsigned char*>(b.Data());
             return GetDeviceNoFlickerHz(dev, 0, out, out + 1);
         }},
        {"GetFrameRate", [](void* dev, GuardedBuffer& b) {
             return GetFrameRate(dev, static_cast<unsigned int*>(b.Data()));
         }},
        {"OpenAutoUploadAiInfo", [](void* dev, GuardedBuffer&) { return OpenAutoUploadAiInfo(dev, 2, 3); }},
    };
}
}  // namespace

int main(int argc, char** argv)
{
    const int rounds = argc > 1 ? atoi(argv[1]) : 1000;
    sim::ModuleSimulator module;
    RandomModule answers(20261121);
    if (!module.Start())
        return 1;
    // The identifier list ends after a few passes, whatever else the module says.
    int listPasses = 0;
    module.SetDefaultHandler([&](const sim::Request& request) {
        std::optional<Bytes> value = answers.Answer(request.tag);
        if (request.tag == 0x08 && value->size() > 1 && ++listPasses % 3 == 0)
            (*value)[1] = 1;
        return value;
    });
    void* dev = Init();
    if (ConnectSerial(dev, module.SlavePath().c_str()) != 0)
        return 1;
    std::vector<Call> calls = Calls();
    int failures = 0;
    for (int i = 0; i < rounds; ++i) {
        const Call& call = calls[static_cast<size_t>(i) % calls.size()];
        // At least the 4 bytes that the integer outputs take.
        GuardedBuffer buffer(4 + static_cast<size_t>(i * 7) % 40);
        int code = call.run(dev, buffer);
        if (!Allowed(code) || !buffer.GuardsIntact()) {
            fprintf(stderr, "fuzz_answers: %s returned %d, guards %s\n", call.name, code,
                    buffer.GuardsIntact() ? "intact" : "overwritten");
            ++failures;
        }
    }
    DeInit(dev);
    printf("fuzz_answers: %d calls, %d failures\n", rounds, failures);
    return failures ? 1 : 0;
}
