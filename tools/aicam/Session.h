// The device handle of one run of the tool and its connections, opened on
// first need: the serial link for device commands, the video for snapshots.
#ifndef AICAM_SESSION_H
#define AICAM_SESSION_H

#include <string>

#include "ModuleSelection.h"

class Arguments;

struct GlobalOptions {
    std::string port;       // serial node; empty: the chosen module's
    std::string video;      // video node; empty: the chosen module's
    std::string playback;   // recorded MJPEG stream (file or FIFO) instead of a video node
    std::string module;     // --module N|SERIAL
    UsbId usbId;            // --usb-id VID:PID narrows the modules
    int logLevel = -1;      // -1: the library's trace log stays off
    std::string logDirectory;  // "": the library's own, Log
    bool quiet = false;     // no progress on stderr
};

class Session {
public:
    explicit Session(const GlobalOptions& options);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void* Dev() const { return m_dev; }
    const GlobalOptions& Options() const { return m_options; }

    // 0, or the failure's code after its line has been printed.
    int ConnectSerial(const std::string& command);
    int ConnectVideo(const std::string& command);
    // Opens the serial link again on the same node, quietly (after a restart
    // the node comes back); 0 or the library's code.
    int Reconnect();

private:
    // Fills the nodes not given from the chosen module, saying which it uses.
    int ChooseNodes(const std::string& command);

    GlobalOptions m_options;
    void* m_dev;
    bool m_serialOpen = false;
    bool m_videoOpen = false;
    bool m_nodesChosen = false;
};

// The device nodes as EnumDevice lists them: full paths joined by '|'.
struct DeviceNodes {
    std::string video, serial;
};
int ListDeviceNodes(DeviceNodes& nodes);

// After the arguments are parsed: refuses leftovers, then opens the serial link.
int ReadySerial(Session& session, Arguments& args, const std::string& command);
// 0 stays 0; any other result is printed as a failure of `command` and returned.
int Check(const std::string& command, int result);

#endif
