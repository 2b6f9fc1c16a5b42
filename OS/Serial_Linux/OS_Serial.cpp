#include "OS_Serial.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <string.h>
#include <sys/epoll.h>
#include <termios.h>
#include <unistd.h>

#include <new>

#include "../../AICamera/Trace.h"
#include "../OS_DeviceList.h"

#define TRACE_FILE "OS_Serial"

// The open port, kept apart from the OS_Serial object so that a listener
// thread that closes its own port can finish with it after the object is gone.
struct OS_SerialPort {
    int nFd = 0;
    int nPipeFd[2] = {-1, -1};
    pthread_t* pThread = nullptr;
    OS_Serial_Listener* pListener = nullptr;
    // Set when Close ran on the listener thread: the thread tears down.
    bool bClosing = false;
    OS_Serial_Listener* pDeleteOnExit = nullptr;
};

namespace {
const char kDefaultDevDir[] = "/dev/";
const char kSerialNodeName[] = "ttyACM";
// How long a write waits for the line to take more bytes.
const int kWriteStallMs = 1000;
const int kMaxEvents = 5;

thread_local OS_SerialPort* t_pListenedPort = nullptr;

void CloseIfOpen(int* fd)
{
    if (*fd >= 0)
        close(*fd);
    *fd = -1;
}

// Closes every descriptor of the port and frees it; the thread is over by now.
void FreePort(OS_SerialPort* port)
{
    CloseIfOpen(&port->nPipeFd[0]);
    CloseIfOpen(&port->nPipeFd[1]);
    CloseIfOpen(&port->nFd);
    delete port->pThread;
    delete port;
}

bool WatchInput(int epollFd, int fd)
{
    struct epoll_event event;
    memset(&event, 0, sizeof event);
    event.events = EPOLLIN | EPOLLET;
    event.data.fd = fd;
    return epoll_ctl(epollFd, EPOLL_CTL_ADD, fd, &event) == 0;
}

// Waits on the device and the wake-up pipe; true when the thread should end.
bool HandleEvents(OS_SerialPort* port, const struct epoll_event* events, int count)
{
    for (int i = 0; i < count; ++i) {
        if (events[i].data.fd == port->nFd) {
            if (events[i].events & (EPOLLERR | EPOLLHUP)) {
                TRACE_AT(LOG_LEVER_ERROR, "Device Pull Out\n");
                return true;
            }
            if (events[i].events & EPOLLIN) {
                port->pListener->process(1);
                if (port->bClosing)
                    return true;
            }
        } else if (events[i].data.fd == port->nPipeFd[0] && (events[i].events & EPOLLIN)) {
            char exitText[8];
            if (read(port->nPipeFd[0], exitText, sizeof exitText) > 0)
                return true;
        }
    }
    return false;
}

void RunListenLoop(OS_SerialPort* port)
{
    int epollFd = epoll_create(2);
    if (epollFd < 0) {
        TRACE_AT(LOG_LEVER_ERROR, "epoll_create Return Fail | Errno: %d %s\n", errno, strerror(errno));
        return;
    }
    if (!WatchInput(epollFd, port->nFd)) {
        TRACE_AT(LOG_LEVER_ERROR, "epoll_ctl nFd Return Fail | Errno: %d %s\n", errno, strerror(errno));
        close(epollFd);
        return;
    }
    if (!WatchInput(epollFd, port->nPipeFd[0])) {
        TRACE_AT(LOG_LEVER_ERROR, "epoll_ctl nPipeFd0 Return Fail | Errno: %d %s\n", errno, strerror(errno));
        close(epollFd);
        return;
    }
    struct epoll_event events[kMaxEvents];
    for (;;) {
        int count = epoll_wait(epollFd, events, kMaxEvents, -1);
        if (count < 0) {
            TRACE_AT(LOG_LEVER_ERROR, "OS_Serial::ListenProcess epoll_wait count = %d\n", count);
            continue;
        }
        if (HandleEvents(port, events, count))
            break;
    }
    close(epollFd);
}

// True when the port can take more bytes before the line stalls for too long.
bool WaitWritable(int fd)
{
    struct pollfd ready = {fd, POLLOUT, 0};
    return poll(&ready, 1, kWriteStallMs) == 1 && (ready.revents & POLLOUT);
}
}  // namespace

OS_Serial::OS_Serial() : m_pSerial(nullptr), m_pListener(nullptr), m_pDetached(nullptr) {}

OS_Serial::~OS_Serial() { Close(); }

bool OS_Serial::IsOpen() const { return m_pSerial != nullptr; }

bool OS_Serial::IsListenerThread() const
{
    return t_pListenedPort && (t_pListenedPort == m_pSerial || t_pListenedPort == m_pDetached);
}

int OS_Serial::Open(char const* path)
{
    if (!path || !path[0]) {
        TRACE_AT(LOG_LEVER_ERROR, "Invalid Parameter\n");
        return -1;
    }
    Close();
    m_pDetached = nullptr;
    OS_SerialPort* port = new (std::nothrow) OS_SerialPort;
    if (!port)
        return -1;
    port->nFd = open(path, O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (port->nFd < 0) {
        TRACE_AT(LOG_LEVER_ERROR, "open Return Fail | Errno: %d %s\n", errno, strerror(errno));
        // A port that could not be opened is not kept: the object stays closed.
        delete port;
        return -1;
    }
    m_pSerial = port;
    return Configure();
}

int OS_Serial::Configure()
{
    struct termios options;
    memset(&options, 0, sizeof options);
    tcgetattr(m_pSerial->nFd, &options);
    options.c_iflag &= ~(IGNBRK | IGNPAR | INPCK | ISTRIP | INLCR | IGNCR | ICRNL | IUCLC | IXON |
                         IXANY | IXOFF);
    options.c_oflag &= ~(OPOST | OLCUC | ONLCR | OCRNL | ONOCR | ONLRET);
    // The character-size field stays zero, as the module's firmware expects.
    options.c_cflag &= ~(CSIZE | CSTOPB | PARENB | CRTSCTS);
    options.c_cflag |= CREAD | HUPCL | CLOCAL;
    options.c_lflag &= ~(ISIG | ICANON | ECHO | ECHOE | IEXTEN);
    cfsetispeed(&options, B115200);
    cfsetospeed(&options, B115200);
    tcsetattr(m_pSerial->nFd, TCSANOW, &options);
    return 0;
}

int OS_Serial::Open(char const* path, OS_Serial_Listener* listener)
{
    if (!path || !listener) {
        TRACE_AT(LOG_LEVER_ERROR, "Invalid Parameter\n");
        return -1;
    }
    if (Open(path) != 0) {
        TRACE_AT(LOG_LEVER_ERROR, "Serial Open Fail\n");
        return -2;
    }
    if (!m_pSerial) {
        TRACE_AT(LOG_LEVER_ERROR, "pSerial == nullptr\n");
        return -3;
    }
    if (pipe(m_pSerial->nPipeFd) != 0) {
        m_pSerial->nPipeFd[0] = m_pSerial->nPipeFd[1] = -1;
        TRACE_AT(LOG_LEVER_ERROR, "pipe Return Fail | Errno: %d %s\n", errno, strerror(errno));
        return -4;
    }
    m_pSerial->pListener = listener;
    m_pSerial->pThread = new (std::nothrow) pthread_t;
    int created = m_pSerial->pThread ? pthread_create(m_pSerial->pThread, nullptr, &OS_Serial::ListenProcess, m_pSerial)
                                     : ENOMEM;
    if (created != 0) {
        delete m_pSerial->pThread;
        m_pSerial->pThread = nullptr;
        TRACE_AT(LOG_LEVER_ERROR, "pthread_create Return Fail | Errno: %d %s\n", created, strerror(created));
        return -5;
    }
    m_pListener = listener;
    return 0;
}

// The port is non-blocking, so a frame larger than the driver's buffer is taken
// in pieces; the rest follows as room appears, while the line keeps draining.
int OS_Serial::Write(void const* buf, int len)
{
    if (!m_pSerial)
        return 0;
    const char* bytes = static_cast<const char*>(buf);
    int written = static_cast<int>(write(m_pSerial->nFd, bytes, len));
    if (written <= 0) {
        TRACE_AT(LOG_LEVER_ERROR, "write Return Fail | nWriteNum : %d  Errno : %d %s\n", written, errno,
                 strerror(errno));
        return written;
    }
    int total = written;
    while (total < len && WaitWritable(m_pSerial->nFd)) {
        written = static_cast<int>(write(m_pSerial->nFd, bytes + total, len - total));
        if (written <= 0 && errno != EAGAIN)
            break;
        if (written > 0)
            total += written;
    }
    return total;
}

int OS_Serial::Read(void* buf, int len)
{
    if (!m_pSerial)
        return 0;
    return static_cast<int>(read(m_pSerial->nFd, buf, len));
}

int OS_Serial::Close()
{
    if (!m_pSerial)
        return -1;
    OS_SerialPort* port = m_pSerial;
    if (t_pListenedPort == port) {
        // Still running on the port's own thread: it finishes the teardown.
        port->bClosing = true;
        m_pDetached = port;
    } else if (port->pThread) {
        ssize_t woken = write(port->nPipeFd[1], "Exit", 4);
        (void)woken;
        pthread_join(*port->pThread, nullptr);
    }
    // Cleared only once the thread no longer reads them.
    m_pSerial = nullptr;
    m_pListener = nullptr;
    if (port != m_pDetached)
        FreePort(port);
    return 0;
}

bool OS_Serial::ClosedByListener() const { return t_pListenedPort && t_pListenedPort->bClosing; }

void OS_Serial::DeleteListenerOnExit(OS_Serial_Listener* listener)
{
    if (m_pDetached && t_pListenedPort == m_pDetached)
        m_pDetached->pDeleteOnExit = listener;
}

void* OS_Serial::ListenProcess(void* arg)
{
    OS_SerialPort* port = static_cast<OS_SerialPort*>(arg);
    t_pListenedPort = port;
    RunListenLoop(port);
    t_pListenedPort = nullptr;
    if (port->bClosing) {
        // Nobody will join this thread: it frees the port and what it was handed.
        pthread_detach(pthread_self());
        OS_Serial_Listener* orphan = port->pDeleteOnExit;
        FreePort(port);
        delete orphan;
    }
    return nullptr;
}

int OS_Serial::EnumSerial(char* out, int size) { return EnumSerial(kDefaultDevDir, out, size); }

int OS_Serial::EnumSerial(const char* dir, char* out, int size)
{
    return OS_ListDeviceNodes(dir, kSerialNodeName, out, size);
}
