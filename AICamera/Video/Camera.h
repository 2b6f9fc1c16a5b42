// The abstract video source and the enumerator of the host's video nodes.
#ifndef AICAMERA_CAMERA_H
#define AICAMERA_CAMERA_H

class Camera {
public:
    Camera();
    virtual ~Camera();
    Camera(const Camera&) = delete;
    Camera& operator=(const Camera&) = delete;

    // 0, or -10 when the stream cannot be opened.
    virtual int openCamera(const char* name) = 0;
    virtual void closeCamera() = 0;
    // 0, -11 for no new picture since the last call, -4 for a side-text
    // buffer smaller than the side text.
    virtual int getFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize) = 0;
    // getFrame once a picture newer than the last one handed out is there,
    // waiting up to timeoutMs (0: not at all) for it; -11 when none came,
    // -10 when the stream ends or is closed meanwhile.
    virtual int waitFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize, int timeoutMs) = 0;

    // The pair 720 by 960 is stored as 720 by 480: the module reports its
    // stacked sensor picture that way.
    void setResolution(int width, int height);
    void getResolution(int* width, int* height);
    void setFramerate(int framerate);
    void getFramerate(int* framerate);
    void setDecoding(int decoding);
    void getDecoding(int* decoding);

    // Lists the "/dev/" entries whose name holds "video" as full paths joined
    // by "|", cut to size - 1 characters. -1 for a bad buffer, -2 when the
    // directory cannot be read, else the number of nodes found.
    static int EnumCamera(char* buf, int size);
    // The same over another directory; its path, as given, is the prefix.
    static int EnumCameraIn(const char* directory, char* buf, int size);

protected:
    char* m_pDeviceName;
    int m_nWidth;
    int m_nHeight;
    int m_nFrameSize;
    unsigned char m_bResolutionChanged;
    int m_nFramerate;
    int m_nDecoding;
};

#endif
