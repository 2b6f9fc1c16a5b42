#include "OS_Serial.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <string.h>
#include <sys/epoll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <new>

#include "../../AICamera/Log/Trace.h"
#include "../OS_DeviceList.h"

#define TRACE_FILE "OS_Serial"

// The open port. The listener thread works on this record only.
struct OS_SerialPort {
    int nFd = -1;
    int nPipeFd[2] = {-1, -1};
    pthread_t* pThread = nullptr;
    OS_Serial_Listener* pListener = nullptr;
    // Set by a Close inside the listener's process(): the thread ends after it.
    bool bClosedFromListener = false;
    // Set by the thread as it ends; read by whoever would join it.
    std::atomic<bool> bThreadDone{false};
};

namespace {
const char kDefaultDevDir[] = "/dev/";
const char kSerialNodeName[] = "ttyACM";
// How long a write waits for the line to take more bytes.
const int kWriteStallMs = 1000;
// How often a waiting write looks for an interruption.
const int kWriteSliceMs = 50;
const int kMaxEvents = 5;

// The listener that this thread serves, on listener threads.
thread_local const OS_Serial_Listener* t_pServedListener = nullptr;

void CloseIfOpen(int* fd)
{
    if (*fd >= 0)
        close(*fd);
    *fd = -1;
}

void CloseDescriptors(OS_SerialPort* port)
{
    if (port->nFd >= 0)
        ioctl(port->nFd, TIOCNXCL);  // the exclusive mark outlives us on a tty still open elsewhere
    CloseIfOpen(&port->nFd);
    CloseIfOpen(&port->nPipeFd[0]);
    CloseIfOpen(&port->nPipeFd[1]);
}

void FreePort(OS_SerialPort* port)
{
    CloseDescriptors(port);
    delete port->pThread;
    delete port;
}

bool OnListenerThread(const OS_SerialPort* port)
{
    return port && port->pThread && pthread_equal(*port->pThread, pthread_self());
}

// A terminal that no other process holds: another program on the port would
// steal the module's answers, and frames written into a plain file destroy it.
bool ClaimTerminal(int fd)
{
    struct termios settings;
    if (tcgetattr(fd, &settings) != 0) {
        TRACE_AT(LOG_LEVER_ERROR, "tcgetattr Return Fail | Errno: %d %s\n", errno, strerror(errno));
        return false;
    }
    if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
        int cause = errno == EWOULDBLOCK ? EBUSY : errno;
        TRACE_AT(LOG_LEVER_ERROR, "flock Return Fail | Errno: %d %s\n", cause, strerror(cause));
        return false;
    }
    // Keeps out programs that do not lock, too (root passes it regardless).
    ioctl(fd, TIOCEXCL);
    return true;
}

bool WatchInput(int epollFd, int fd)
{
    struct epoll_event event;
    memset(&event, 0, sizeof event);
    event.events = EPOLLIN | EPOLLET;
    event.data.fd = fd;
    return epoll_ctl(epollFd, EPOLL_CTL_ADD, fd, &event) == 0;
}

// True when the thread should end.
bool HandleEvents(OS_SerialPort* port, const struct epoll_event* events, int count)
{
    for (int i = 0; i < count; ++i) {
        if (events[i].data.fd == port->nFd) {
            if (events[i].events & (EPOLLERR | EPOLLHUP)) {
                TRACE_AT(LOG_LEVER_ERROR, "Device Pull Out\n");
                port->pListener->hangup();
                return true;
            }
            if (events[i].events & EPOLLIN) {
                port->pListener->process(1);
                if (port->bClosedFromListener)
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

long long NowMs()
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<long long>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

void WaitWritable(int fd, int ms)
{
    struct pollfd ready = {fd, POLLOUT, 0};
    poll(&ready, 1, ms);
}
}  // namespace

OS_Serial::OS_Serial() : m_pSerial(nullptr), m_pListener(nullptr), m_pEnded(nullptr), m_bInterrupted(false) {}

OS_Serial::~OS_Serial()
{
    Close();
    JoinEndedListener(true);
}

bool OS_Serial::EndedListenerRunning() const { return m_pEnded && !m_pEnded->bThreadDone; }

bool OS_Serial::IsListenerThreadOf(const OS_Serial_Listener* listener)
{
    return listener && t_pServedListener == listener;
}

void OS_Serial::JoinEndedListener(bool wait)
{
    if (!m_pEnded || OnListenerThread(m_pEnded) || (!wait && !m_pEnded->bThreadDone))
        return;
    pthread_join(*m_pEnded->pThread, nullptr);
    FreePort(m_pEnded);
    m_pEnded = nullptr;
}

int OS_Serial::Open(char const* path)
{
    if (!path || !path[0]) {
        TRACE_AT(LOG_LEVER_ERROR, "Invalid Parameter\n");
        return -1;
    }
    Close();
    m_bInterrupted = false;
    OS_SerialPort* port = new (std::nothrow) OS_SerialPort;
    if (!port)
        return -1;
    port->nFd = open(path, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (port->nFd < 0) {
        TRACE_AT(LOG_LEVER_ERROR, "open Return Fail | Errno: %d %s\n", errno, strerror(errno));
        // A port that could not be opened is not kept: the object stays closed.
        delete port;
        return -1;
    }
    if (!ClaimTerminal(port->nFd)) {
        CloseIfOpen(&port->nFd);
        delete port;
        return -1;
    }
    m_pSerial = port;
    return Configure(port);
}

int OS_Serial::Configure(OS_SerialPort* port)
{
    struct termios options;
    memset(&options, 0, sizeof options);
    tcgetattr(port->nFd, &options);
    options.c_iflag &= ~(IGNBRK | IGNPAR | INPCK | ISTRIP | INLCR | IGNCR | ICRNL | IUCLC | IXON |
                         IXANY | IXOFF);
    options.c_oflag &= ~(OPOST | OLCUC | ONLCR | OCRNL | ONOCR | ONLRET);
    // The character-size field stays zero, as the module's firmware expects.
    options.c_cflag &= ~(CSIZE | CSTOPB | PARENB | CRTSCTS);
    options.c_cflag |= CREAD | HUPCL | CLOCAL;
    options.c_lflag &= ~(ISIG | ICANON | ECHO | ECHOE | IEXTEN);
    cfsetispeed(&options, B115200);
    cfsetospeed(&options, B115200);
    tcsetattr(port->nFd, TCSANOW, &options);
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
    if (pipe2(m_pSerial->nPipeFd, O_CLOEXEC) != 0) {
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
int OS_Serial::Write(void const* buf, int len, int timeoutMs)
{
    if (!m_pSerial)
        return 0;
    const char* bytes = static_cast<const char*>(buf);
    long long deadline = timeoutMs >= 0 ? NowMs() + timeoutMs : -1;
    long long stalledSince = NowMs();
    int total = 0;
    int written = 0;
    int failure = 0;
    while (total < len && !m_bInterrupted) {
        written = static_cast<int>(write(m_pSerial->nFd, bytes + total, static_cast<size_t>(len - total)));
        if (written > 0) {
            total += written;
            stalledSince = NowMs();
            continue;
        }
        if (written == 0 || (errno != EAGAIN && errno != EINTR)) {
            failure = written < 0 ? errno : 0;
            break;
        }
        long long now = NowMs();
        long long left = stalledSince + kWriteStallMs - now;
        if (deadline >= 0 && deadline - now < left)
            left = deadline - now;
        if (left <= 0)
            break;
        WaitWritable(m_pSerial->nFd, static_cast<int>(left < kWriteSliceMs ? left : kWriteSliceMs));
    }
    if (total < len || len <= 0) {
        TRACE_AT(LOG_LEVER_ERROR, "write Return Fail | nWriteNum : %d  Errno : %d %s\n", written, errno,
                 strerror(errno));
    }
    errno = failure;
    return total > 0 ? total : written;
}

void OS_Serial::Interrupt() { m_bInterrupted = true; }

int OS_Serial::Read(void* buf, int len)
{
    if (!m_pSerial)
        return 0;
    return static_cast<int>(read(m_pSerial->nFd, buf, static_cast<size_t>(len)));
}

int OS_Serial::Close()
{
    JoinEndedListener(false);
    if (!m_pSerial)
        return -1;
    OS_SerialPort* port = m_pSerial;
    if (OnListenerThread(port)) {
        // Inside the listener's process(): it reads nothing more once it returns.
        port->bClosedFromListener = true;
        CloseDescriptors(port);
        m_pEnded = port;
    } else if (port->pThread) {
        ssize_t woken = write(port->nPipeFd[1], "Exit", 4);
        (void)woken;
        pthread_join(*port->pThread, nullptr);
    }
    // Cleared only once the listener thread reads through it no more.
    m_pSerial = nullptr;
    m_pListener = nullptr;
    if (port != m_pEnded)
        FreePort(port);
    return 0;
}

void* OS_Serial::ListenProcess(void* arg)
{
    OS_SerialPort* port = static_cast<OS_SerialPort*>(arg);
    t_pServedListener = port->pListener;
    port->pListener->started();
    // The listener may have closed the port from inside started().
    if (!port->bClosedFromListener)
        RunListenLoop(port);
    t_pServedListener = nullptr;
    port->bThreadDone = true;
    return nullptr;
}

int OS_Serial::EnumSerial(char* out, int size) { return EnumSerial(kDefaultDevDir, out, size); }

int OS_Serial::EnumSerial(const char* dir, char* out, int size)
{
    return OS_ListDeviceNodes(dir, kSerialNodeName, out, size);
}
