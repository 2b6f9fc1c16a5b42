#include "SimulatedModule.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace aicamsim {

SimulatedModule::SimulatedModule(const SimOptions& options) : m_options(options) {}

SimulatedModule::~SimulatedModule() { Stop(); }

// Every request passes here first: for the log, and for the unplug after N requests.
std::optional<sim::Bytes> SimulatedModule::Gate(const sim::Request& request) {
    const long long n = ++m_requests;
    if (m_options.verbose)
        std::fprintf(stderr, "aicam-sim: request %lld: tag 0x%04X, %zu value bytes\n", n, request.tag,
                     request.value.size());
    if (m_options.unplugAfter > 0 && n >= m_options.unplugAfter) m_unplugDue = true;
    return m_model.Handle(request);
}

// Another simulator's link, or anything else, stays unless --force says otherwise;
// a dangling link is what a killed simulator leaves, and is taken over.
bool SimulatedModule::MakeLink(std::string& error) {
    const char* path = m_options.linkPath.c_str();
    struct stat st {};
    if (::lstat(path, &st) == 0) {
        const bool dangling = S_ISLNK(st.st_mode) && ::stat(path, &st) != 0;
        if (!dangling && !m_options.forceLink) {
            error = m_options.linkPath + " already exists (another simulator's link?); use --force to replace it";
            return false;
        }
        if (::unlink(path) != 0) {
            error = "cannot remove " + m_options.linkPath + ": " + std::strerror(errno);
            return false;
        }
    }
    if (::symlink(SerialPath().c_str(), path) != 0) {
        error = "cannot create " + m_options.linkPath + ": " + std::strerror(errno);
        return false;
    }
    m_linkMade = true;
    return true;
}

bool SimulatedModule::OpenSerial(std::string& error) {
    if (m_options.ttyPath.empty()) {
        if (m_simulator.Start()) return true;
        error = "cannot open a pseudo-terminal";
        return false;
    }
    if (m_simulator.StartOnDevice(m_options.ttyPath)) return true;
    error = "cannot open " + m_options.ttyPath + " as a terminal: " + std::strerror(errno);
    return false;
}

// A gadget's serial node hangs up for good when its host unplugs the module;
// the next host session needs the node opened anew.
void SimulatedModule::ServeDeviceAgain() {
    if (!m_awaitingHost) {
        if (!m_simulator.HungUp()) return;
        m_simulator.Stop();
        m_awaitingHost = true;
        std::fprintf(stderr, "aicam-sim: the host hung up %s; opening it again\n", m_options.ttyPath.c_str());
    }
    std::string error;
    if (!OpenSerial(error)) return;   // tried again on the next poll
    m_awaitingHost = false;
    std::fprintf(stderr, "aicam-sim: module ready on %s\n", m_options.ttyPath.c_str());
}

// Removed only while it still names our device: a --force'd successor keeps its own.
void SimulatedModule::RemoveLink() {
    if (!m_linkMade) return;
    m_linkMade = false;
    char target[4096];
    const ssize_t n = ::readlink(m_options.linkPath.c_str(), target, sizeof target - 1);
    if (n < 0 || std::string(target, size_t(n)) != SerialPath()) return;
    ::unlink(m_options.linkPath.c_str());
}

// Saved once at start, so that a file that cannot be written stops us now
// rather than losing the first face enrolled.
bool SimulatedModule::LoadLibrary(std::string& error) {
    const std::string& file = m_options.libraryFile;
    if (::access(file.c_str(), F_OK) == 0 && !m_model.LoadLibrary(file, error)) return false;
    std::string why;
    if (!m_model.SaveLibrary(file, why)) {
        error = "cannot keep the library in " + file + " (" + why + ")";
        return false;
    }
    m_model.SetLibraryFile(file);
    return true;
}

bool SimulatedModule::Start(std::string& error) {
    if (!m_options.libraryFile.empty() && !LoadLibrary(error)) return false;
    m_model.SetRebootQuietMs(m_options.rebootQuietMs);
    m_model.SetFaceVisible(m_options.faceVisible);
    m_model.SetFrameSize(m_options.width, m_options.height);
    m_simulator.SetDefaultHandler([this](const sim::Request& r) { return Gate(r); });
    m_simulator.SetSplitWrites(size_t(m_options.splitWrites));
    m_simulator.SetPacing(m_options.pacingBytesPerMs);
    m_simulator.SetAnswerDelay(m_options.answerDelayMs);
    m_simulator.DropNextAnswers(m_options.dropAnswers);
    m_simulator.CorruptNextChecksums(m_options.corruptChecksums);
    if (m_options.unplugAfter > 0) m_simulator.UnplugAfterRequests(long(m_options.unplugAfter));
    if (!m_options.garbage.empty()) m_simulator.SetGarbageBeforeNext(m_options.garbage);
    if (!OpenSerial(error)) return false;
    if (!m_options.linkPath.empty() && !MakeLink(error)) return false;
    if (!m_options.videoPath.empty()) {
        if (m_options.makeFifo && ::access(m_options.videoPath.c_str(), F_OK) != 0) {
            if (::mkfifo(m_options.videoPath.c_str(), 0644) != 0) {
                error = "cannot create the FIFO " + m_options.videoPath + ": " + std::strerror(errno);
                return false;
            }
            m_fifoMade = true;
        }
        m_video = std::make_unique<VideoStream>(
            m_model, VideoSettings{m_options.videoPath, m_options.fps, m_options.width, m_options.height,
                                   m_options.frames});
        m_video->Start();
    }
    m_model.SetReportInterval(m_options.reportIntervalMs);
    return true;
}

void SimulatedModule::Poll() {
    if (!m_options.ttyPath.empty() && !m_unplugged) ServeDeviceAgain();
    // The simulator hangs up itself once the last answer is out.
    if (!m_unplugDue || m_unplugged || m_simulator.IsRunning()) return;
    m_unplugged = true;
    std::fprintf(stderr, "aicam-sim: unplugged after %lld requests\n", m_options.unplugAfter);
}

void SimulatedModule::Stop() {
    m_model.SetReportInterval(0);
    if (m_video) m_video->Stop();
    m_simulator.Stop();
    // What the simulator created goes with it.
    RemoveLink();
    if (m_fifoMade) ::unlink(m_options.videoPath.c_str());
    m_fifoMade = false;
    if (!m_options.libraryFile.empty() && m_model.SaveError().empty()) {
        std::string error;
        if (!m_model.SaveLibrary(m_options.libraryFile, error))
            std::fprintf(stderr, "aicam-sim: %s\n", error.c_str());
    }
}

}  // namespace aicamsim
