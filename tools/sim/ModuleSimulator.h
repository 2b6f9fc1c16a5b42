// The module's end of the serial link, on a pseudo-terminal: reads host
// frames (0x1A), checks length and CRC, records them, and answers with
// module frames (0xA1) from per-tag handlers. Its framing and CRC are its
// own, written apart from the library's, so that a shared mistake shows.
#ifndef SIM_MODULESIMULATOR_H
#define SIM_MODULESIMULATOR_H

#include <stddef.h>
#include <stdint.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sim {
using Bytes = std::vector<uint8_t>;

struct Request {              // one host frame that passed length and CRC checks
    uint16_t tag = 0;         // tag of the first TLV record
    Bytes value;              // value of the first TLV record
    Bytes payload;            // the whole payload as received
};

// Returns the answer's value (sent back as one TLV record with the request's
// tag, in a 0xA1 frame), or std::nullopt for no answer.
using Handler = std::function<std::optional<Bytes>(const Request&)>;

// Faults that go on at a steady rate, each in parts per million of the frames
// (answers and reports) sent after they are set; drawn from a seeded sequence.
struct FaultRates {
    int dropPpm = 0;     // an answer is not sent
    int delayPpm = 0;    // an answer is held back up to delayMaxMs
    int delayMaxMs = 0;
    int corruptPpm = 0;  // a bit of a frame's checksum is flipped
    int garbagePpm = 0;  // 1 to 16 random bytes go out before a frame
    uint32_t seed = 1;

    // Every fault at the same rate.
    static FaultRates Uniform(int ppm, int delayMaxMs, uint32_t seed)
    {
        return FaultRates{ppm, ppm, delayMaxMs, ppm, ppm, seed};
    }
};

class ModuleSimulator {
public:
    ModuleSimulator();
    ~ModuleSimulator();                       // stops the thread, closes the pty
    ModuleSimulator(const ModuleSimulator&) = delete;
    ModuleSimulator& operator=(const ModuleSimulator&) = delete;

    bool Start();                             // opens a pty pair (raw mode), starts the reader thread
    // Serves an existing terminal device (such as a USB gadget's serial node)
    // in raw mode instead of a pty; SlavePath() is then that device.
    bool StartOnDevice(const std::string& path);
    void Stop();
    bool IsRunning() const;                   // false after Stop, Unplug or a hang-up
    std::string SlavePath() const;            // e.g. "/dev/pts/5": what the library opens
    // The device hung up (its host went away): the reader has stopped; Stop()
    // and StartOnDevice() again to serve the next host.
    bool HungUp() const;

    void SetHandler(uint16_t tag, Handler h); // replaces; an empty Handler removes it
    void SetDefaultHandler(Handler h);        // for tags without a handler (default: no answer)

    std::vector<Request> Requests() const;    // every valid request received, in order
    void ClearRequests();
    // Blocks until at least n requests have been recorded, or timeoutMs passes.
    bool WaitForRequests(size_t n, int timeoutMs) const;
    size_t BadFrames() const;                 // host frames refused (bad marker, length or CRC)

    // Output toward the host; all thread-safe, callable from handlers too.
    void PushReport(uint16_t tag, const Bytes& value);  // unsolicited 0xA1 frame, one TLV record
    void PushFrame(const Bytes& payload);                // 0xA1 frame around a raw payload
    void PushRaw(const Bytes& bytes);                    // bytes as they are

    // Fault modes (each affects output written after it is set).
    void SetSplitWrites(size_t chunk);        // write every frame in pieces of `chunk` bytes (0 = whole)
    void SetGarbageBeforeNext(const Bytes& g);// these bytes go out just before the next frame
    void CorruptNextChecksums(int n);         // flip a bit in the CRC of the next n frames
    void SetAnswerDelay(int ms);              // delay each answer by ms (the reader keeps reading)
    void DropNextAnswers(int n);              // handlers run, but their next n answers are not sent
    void SetPacing(int bytesPerMs);           // 0 = off; else write in small pieces at this rate
    void SetReadPacing(int bytesPerMs);       // 0 = off; else take the host's bytes no faster than this
    void Unplug();                            // close the master side: the host sees a hang-up
    void SetFaultRates(const FaultRates& rates);
    // The next request with this tag is not answered: the module hangs up
    // instead, in the middle of the host's request.
    void UnplugOnRequest(uint16_t tag);
    // Once the n-th request from now has been answered and its answer written,
    // the module hangs up.
    void UnplugAfterRequests(long n);

    static Bytes EncodeFrame(uint8_t marker, const Bytes& payload);  // the simulator's own framing
    static Bytes EncodeTLV(uint16_t tag, const Bytes& value);
    static uint32_t Crc(const uint8_t* data, size_t len);           // the simulator's own CRC

    struct State;

private:
    std::unique_ptr<State> m_state;
};
}  // namespace sim

#endif
