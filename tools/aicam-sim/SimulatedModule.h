#pragma once
// The simulator, its module model and the fault modes, set up from the options.

#include <atomic>
#include <memory>
#include <string>

#include "ModuleModel.h"
#include "ModuleSimulator.h"
#include "SimOptions.h"
#include "VideoStream.h"

namespace aicamsim {

class SimulatedModule {
public:
    explicit SimulatedModule(const SimOptions& options);
    ~SimulatedModule();

    // False with `error` set when the module cannot start.
    bool Start(std::string& error);
    // Called regularly by the main loop: carries out a due unplug, and opens a
    // terminal device again after its host hung up.
    void Poll();
    void Stop();
    std::string SerialPath() const { return m_simulator.SlavePath(); }
    std::string VideoError() const { return m_video ? m_video->Error() : std::string(); }
    std::string SaveError() const { return m_model.SaveError(); }

private:
    std::optional<sim::Bytes> Gate(const sim::Request& request);
    bool MakeLink(std::string& error);
    void RemoveLink();
    bool OpenSerial(std::string& error);
    void ServeDeviceAgain();
    bool LoadLibrary(std::string& error);

    SimOptions m_options;
    sim::ModuleSimulator m_simulator;
    sim::ModuleModel m_model{m_simulator};
    std::unique_ptr<VideoStream> m_video;
    std::atomic<long long> m_requests{0};
    std::atomic<bool> m_unplugDue{false};
    bool m_unplugged = false;
    bool m_awaitingHost = false;   // the terminal device hung up and is not open again yet
    bool m_linkMade = false;
    bool m_fifoMade = false;
};

}  // namespace aicamsim
