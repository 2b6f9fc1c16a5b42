#include "Session.h"

#include <vector>

#include "Arguments.h"
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

std::string FirstNode(const std::string& list) { return list.substr(0, list.find('|')); }

Session::Session(const GlobalOptions& options) : m_options(options), m_dev(nullptr)
{
    // The level is checked by main; the log goes to Log/ under the working directory.
    if (m_options.logLevel >= 0)
        SetLogConfig(static_cast<LOG_LEVER>(m_options.logLevel), LOG_TARGET_FILE);
    m_dev = Init();
}

Session::~Session()
{
    if (m_dev)
        DeInit(m_dev);
}

int Session::ConnectSerial(const std::string& command)
{
    if (m_serialOpen)
        return 0;
    std::string port = m_options.port;
    if (port.empty()) {
        DeviceNodes nodes;
        ListDeviceNodes(nodes);
        port = FirstNode(nodes.serial);
        if (port.empty())
            return Fail(command, -4, "no serial port given and none found");
    }
    if (port.size() > kMaxPortName)
        return Fail(command, -4, "the serial port name is longer than 254 characters");
    int result = ::ConnectSerial(m_dev, port.c_str());
    if (result != 0)
        return Fail(command, result, ResultText(result) + ": " + port);
    m_serialOpen = true;
    return 0;
}

int Session::ConnectVideo(const std::string& command)
{
    if (m_videoOpen)
        return 0;
    int result = 0;
    std::string source = m_options.playback;
    if (!source.empty()) {
        result = ConnectCameraPlayback(m_dev, source.c_str());
    } else {
        source = m_options.video;
        if (source.empty()) {
            DeviceNodes nodes;
            ListDeviceNodes(nodes);
            source = FirstNode(nodes.video);
            if (source.empty())
                return Fail(command, -4, "no video node or playback stream given and none found");
        }
        result = ConnectCamera(m_dev, source.c_str());
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
