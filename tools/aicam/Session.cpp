#include "Session.h"

#include <stdio.h>

#include <vector>

#include "Arguments.h"
#include "ModuleChoice.h"
#include "NodeAccess.h"
#include "ResultText.h"
#include "ai_camera.h"
#include "ai_camera_ext.h"

namespace {
const int kNodeListSize = 4096;
// The library takes port names of at most this many characters.
const size_t kMaxPortName = 254;
}  // namespace

int ListDeviceNodes(DeviceNodes& nodes)
{
    std::vector<char> video(kNodeListSize, 0), serial(kNodeListSize, 0);
    int result = EnumDevice(video.data(), kNodeListSize, serial.data(), kNodeListSize);
    nodes.video = video.data();
    nodes.serial = serial.data();
    return result;
}

Session::Session(const GlobalOptions& options) : m_options(options), m_dev(nullptr)
{
    // The level is checked by main; the log goes to Log/ under the working
    // directory unless --log-dir says otherwise.
    if (!m_options.logDirectory.empty()) {
        int result = SetLogDirectory(m_options.logDirectory.c_str());
        if (result != 0)
            Fail("--log-dir " + m_options.logDirectory, result);
    }
    if (m_options.logLevel >= 0)
        SetLogConfig(static_cast<LOG_LEVER>(m_options.logLevel), LOG_TARGET_FILE);
    m_dev = Init();
}

Session::~Session()
{
    if (m_dev)
        DeInit(m_dev);
}

int Session::ChooseNodes(const std::string& command)
{
    if (m_nodesChosen)
        return 0;
    std::vector<AI_CAMERA_MODULE> modules;
    int index = -1;
    std::string problem;
    if (int result = ChooseModule(m_options, modules, index, problem))
        return Fail(command, result, problem);
    const AI_CAMERA_MODULE& module = modules[static_cast<size_t>(index)];
    if (m_options.port.empty())
        m_options.port = module.serialNode;
    if (m_options.video.empty())
        m_options.video = module.videoNode;
    fprintf(stderr, "aicam: using %s: serial %s, video %s\n", ModuleName(module, index).c_str(),
            m_options.port.c_str(), m_options.video.c_str());
    m_nodesChosen = true;
    return 0;
}

int Session::ConnectSerial(const std::string& command)
{
    if (m_serialOpen)
        return 0;
    if (m_options.port.empty() || !m_options.module.empty()) {
        if (int result = ChooseNodes(command))
            return result;
    }
    const std::string& port = m_options.port;
    if (port.size() > kMaxPortName)
        return Fail(command, kUsage, "the serial port name is longer than 254 characters");
    int result = ::ConnectSerial(m_dev, port.c_str());
    if (result != 0)
        return Fail(command, result, ConnectProblem(port, kSerialGroup, result));
    m_serialOpen = true;
    return 0;
}

int Session::Reconnect() { return ::ConnectSerial(m_dev, m_options.port.c_str()); }

int Session::ConnectVideo(const std::string& command)
{
    if (m_videoOpen)
        return 0;
    int result = 0;
    std::string source = m_options.playback;
    if (!source.empty()) {
        result = ConnectCameraPlayback(m_dev, source.c_str());
    } else {
        if (m_options.video.empty() || !m_options.module.empty()) {
            if (int chosen = ChooseNodes(command))
                return chosen;
        }
        source = m_options.video;
        result = ConnectCamera(m_dev, source.c_str());
        if (result != 0)
            return Fail(command, result, ConnectProblem(source, kVideoGroup, result));
    }
    if (result != 0)
        return Fail(command, result, ResultText(result) + ": " + source);
    m_videoOpen = true;
    return 0;
}

int ReadySerial(Session& session, Arguments& args, const std::string& command)
{
    int result = args.Finish(command);
    return result != 0 ? result : session.ConnectSerial(command);
}

int Check(const std::string& command, int result) { return result == 0 ? 0 : Fail(command, result); }
