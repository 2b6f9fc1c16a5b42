// The roles that the parts of the serial link play for one another, so that
// each part knows only what it uses: the executor writes frames and looks up
// report handlers; the transceiver hands received frames on.
#ifndef AICAMERA_LINKROLES_H
#define AICAMERA_LINKROLES_H

class AsyncCommand;

// Where report handlers are registered by tag.
class ReportRegistry {
public:
    virtual AsyncCommand* GetCommand(unsigned short tag) = 0;

protected:
    ~ReportRegistry() = default;
};

// Writes one whole frame: returns the bytes written, len on success.
class FrameWriter {
public:
    virtual int SendData(void* data, int len, int timeoutMs) = 0;

protected:
    ~FrameWriter() = default;
};

// Takes the frames cut from the input, and hears that the link is gone.
class FrameReceiver {
public:
    virtual int Process(void* frame, unsigned int len) = 0;
    virtual void Abort() = 0;

protected:
    ~FrameReceiver() = default;
};

#endif
