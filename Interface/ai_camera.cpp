// The exported C functions: handle checks and traces, then the device object.
#include "ai_camera.h"

#include <string.h>

#include <new>

#include "AICamera/Device/AICamera.h"
#include "AICamera/Video/Camera.h"
#include "AICamera/Log/Log.h"
#include "AICamera/Log/Trace.h"
#include "OS/Serial_Linux/OS_Serial.h"
#include "ai_camera_ext.h"

#define TRACE_FILE "ai_camera"
#define TRACE(...) TRACE_AT(LOG_LEVER_DEBUG, __VA_ARGS__)

namespace {
// Init and InitDev always ask for this kind.
const AI_CAMERA_TYPE kDeviceType = AI_CAMERA_TYPE_V2;

AICamera* Device(void* dev) { return static_cast<AICamera*>(dev); }

int RefuseNullHandle(const char* function, int line)
{
    TraceRecord(LOG_LEVER_DEBUG, TRACE_FILE, function, line,
                "[ERROR] dev == nullptr\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : %d\n", -1);
    return -1;
}

// Every device operation: a null handle is refused here, anything else is the
// device object's to check and trace.
template <typename Method, typename... Args>
int Forward(void* dev, const char* function, int line, Method method, Args... args)
{
    if (!dev)
        return RefuseNullHandle(function, line);
    return (Device(dev)->*method)(args...);
}

void* MakeDevice(const char* function, int line)
{
    void* dev = AICameraMaker::MakeAICamera(kDeviceType);
    TraceRecord(LOG_LEVER_DEBUG, TRACE_FILE, function, line, "[INPUT ]\n[OUTPUT]\n[RETURN] dev : %p\n", dev);
    return dev;
}

int ReleaseDevice(void* dev, const char* function, int line)
{
    TraceRecord(LOG_LEVER_DEBUG, TRACE_FILE, function, line, "[INPUT ] dev : %p\n[OUTPUT]\n[RETURN] nRet : %d\n", dev,
                0);
    Device(dev)->DisconnectSerial();
    Device(dev)->DisconnectCamera();
    // The two disconnects are all the destructor would do.
    ::operator delete(dev);
    return 0;
}

// The two connect functions differ only in their texts and the link they open.
struct ConnectionTexts {
    const char* nullHandle;
    const char* nullName;
    const char* emptyName;
    const char* nameInput;
};

int Connect(void* dev, const char* name, const ConnectionTexts& texts, int (AICamera::*connect)(void*),
            const char* function, int line)
{
    const char* refusal = nullptr;
    int nRet = -4;
    if (!dev) {
        refusal = texts.nullHandle;
        nRet = -1;
    } else if (!name) {
        refusal = texts.nullName;
    } else if (!strlen(name)) {
        refusal = texts.emptyName;
    }
    if (refusal) {
        TraceRecord(LOG_LEVER_DEBUG, TRACE_FILE, function, line,
                    "%s\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : %d\n", refusal, nRet);
        return nRet;
    }
    nRet = (Device(dev)->*connect)(const_cast<char*>(name));
    TraceRecord(LOG_LEVER_DEBUG, TRACE_FILE, function, line, "[INPUT ] dev : %p %s : %s\n[OUTPUT]\n[RETURN] nRet : %d\n",
                dev, texts.nameInput, name, nRet);
    return nRet;
}

void RegisterCallback(void* dev, const char* function, int line, void (AICamera::*slot)(ReportFunc),
                      AI_CAMERA_REPORT_FUNC handler_func)
{
    if (!dev)
        return;
    TraceRecord(LOG_LEVER_DEBUG, TRACE_FILE, function, line,
                "[INPUT ] dev : %p handler_func : %p\n[OUTPUT]\n[RETURN]\n", dev,
                reinterpret_cast<void*>(handler_func));
    (Device(dev)->*slot)(handler_func);
}
}  // namespace

#define FORWARD(method, ...) Forward(dev, __func__, __LINE__, &AICamera::method, ##__VA_ARGS__)
#define REGISTER(slot) RegisterCallback(dev, __func__, __LINE__, &AICamera::slot, handler_func)

void* Init(void) { return MakeDevice(__func__, __LINE__); }

void* InitDev(void) { return MakeDevice(__func__, __LINE__); }

int DeInit(void* dev)
{
    if (!dev) {
        TRACE("[ERROR ] dev == nullptr[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : %d\n", -1);
        return -1;
    }
    return ReleaseDevice(dev, __func__, __LINE__);
}

int DeInitDev(void* dev)
{
    if (!dev) {
        TRACE("[ERROR ] dev == nullptr\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : %d\n", -1);
        return -1;
    }
    return ReleaseDevice(dev, __func__, __LINE__);
}

int SetLogConfig(LOG_LEVER nLogLever, LOG_TARGET nLogTarget)
{
    int nRet = Log::GetInstance()->Init(nLogLever, nLogTarget, Log::GetInstance()->Directory(), ".log") == 0 ? 0 : -4;
    TRACE("[INPUT ] nLogLever : %d nLogTatget : %d\n[OUTPUT]\n[RETURN] nRet : %d\n", nLogLever, nLogTarget, nRet);
    return nRet;
}

int GetLogConfig(int* pLogLever, int* pLogTarget)
{
    int nRet = Log::GetInstance()->GetLogConfig(pLogLever, pLogTarget) == 0 ? 0 : -5;
    TRACE("[INPUT ]\n[OUTPUT] pLogLever : %d pLogTarget : %d\n[RETURN] nRet : %d\n", *pLogLever, *pLogTarget, nRet);
    return nRet;
}

int EnumDevice(char* videoDevBuf, int videoDevSize, char* serialBuf, int serialSize)
{
    if (!videoDevBuf || videoDevSize <= 0) {
        TRACE("[ERROR ] videoDevBuf == nullptr || videoDevSize <= 0[INPUT ] invalid input\n[OUTPUT] invalid "
              "output\n[RETURN] nRet : %d\n",
              -4);
        return -4;
    }
    if (!serialBuf || serialSize <= 0) {
        TRACE("[ERROR ] serialBuf == nullptr || serialSize <= 0[INPUT ] invalid input\n[OUTPUT] invalid "
              "output\n[RETURN] nRet : %d\n",
              -4);
        return -4;
    }
    Camera::EnumCamera(videoDevBuf, videoDevSize);
    OS_Serial::EnumSerial(serialBuf, serialSize);
    TRACE("[INPUT ]videoDevSize : %d serialSize : %d\n[OUTPUT] videoDevBuf : %s serialBuf : %s\n[RETURN] nRet : %d\n",
          videoDevSize, serialSize, videoDevBuf, serialBuf, 0);
    return 0;
}

int ConnectSerial(void* dev, const char* portName)
{
    static const ConnectionTexts texts = {"[ERROR ] dev == nullptr", "[ERROR ] portName == nullptr",
                                          "[ERROR ] !strlen(portName)", "portName"};
    return Connect(dev, portName, texts, &AICamera::ConnectSerial, __func__, __LINE__);
}

int DisconnectSerial(void* dev)
{
    if (!dev) {
        TRACE("[ERROR ] dev == nullptr\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : %d\n", -1);
        return -1;
    }
    return Device(dev)->DisconnectSerial();
}

int ConnectCamera(void* dev, const char* mediaName)
{
    static const ConnectionTexts texts = {"[ERROR] dev == nullptr", "[ERROR ] mediaName == nullptr",
                                          "[ERROR ] !strlen(mediaName)", "mediaName"};
    return Connect(dev, mediaName, texts, &AICamera::ConnectCamera, __func__, __LINE__);
}

int DisconnectCamera(void* dev)
{
    if (!dev) {
        TRACE("[ERROR] dev == nullptr\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : %d\n", -1);
        return -1;
    }
    return Device(dev)->DisconnectCamera();
}

int ConnectCameraPlayback(void* dev, const char* path) { return FORWARD(ConnectCameraPlayback, path); }

int GetFrame(void* dev, char* imageBuf, int imageSize, char* verifyBuf, int verifySize)
{
    return FORWARD(GetFrame, imageBuf, imageSize, verifyBuf, verifySize);
}

int WaitFrame(void* dev, char* imageBuf, int imageSize, char* verifyBuf, int verifySize, int timeoutMs)
{
    return FORWARD(WaitFrame, imageBuf, imageSize, verifyBuf, verifySize, timeoutMs);
}

int GetResolution(void* dev, int* width, int* height)
{
    return Forward(dev, __func__, __LINE__, static_cast<int (AICamera::*)(int*, int*)>(&AICamera::GetResolution),
                   width, height);
}

int AddFace(void* dev, void const* pID, unsigned int nIDLength) { return FORWARD(AddFace, pID, nIDLength); }

int AddFaceByImage(void* dev, void const* pID, unsigned int nIDLength, void const* pImage, unsigned int nImageLength)
{
    return FORWARD(AddFaceByImage, pID, nIDLength, pImage, nImageLength);
}

int AddFaceReturnImage(void* dev, void const* pID, unsigned int nIDLength, void** ppImage, unsigned int* pImageLength)
{
    return FORWARD(AddFaceReturnImage, pID, nIDLength, ppImage, pImageLength);
}

int AddFaceSlice(void* dev, void const* pID, unsigned int nIDLength, unsigned int nImageTotalLength,
                 unsigned int nPosition, int isLastSlice, void const* pSliceData, unsigned int nSliceDataLength)
{
    return FORWARD(AddFaceSlice, pID, nIDLength, nImageTotalLength, nPosition, isLastSlice, pSliceData,
                   nSliceDataLength);
}

int DeleteFace(void* dev, int nMode, void const* pID, unsigned int nIDLength)
{
    // Written on every call, before the handle is looked at.
    TRACE("[ERROR] pID = %p\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : %d\n", pID, 0);
    return FORWARD(DeleteFace, nMode, pID, nIDLength);
}

int QueryFace(void* dev, void const* pID, unsigned int nIDLength, int nMode)
{
    return FORWARD(QueryFace, pID, nIDLength, nMode);
}

int AddFeature(void* dev, void const* pID, unsigned int nIDLength, void const* pFeature, unsigned int nFeatureLength)
{
    return FORWARD(AddFeature, pID, nIDLength, pFeature, nFeatureLength);
}

int QueryFeature(void* dev, void const* pID, unsigned int nIDLength, void* pFeature, unsigned int nFeatureLength)
{
    return FORWARD(QueryFeature, pID, nIDLength, pFeature, nFeatureLength);
}

int GetDeviceFaceID(void* dev, void* pIDList, unsigned int nIDListLength)
{
    return FORWARD(GetDeviceFaceID, pIDList, nIDListLength);
}

int GetDeviceFaceLibraryNum(void* dev, unsigned int* nFaceNum) { return FORWARD(GetDeviceFaceLibraryNum, nFaceNum); }

int StartOnetoNumRecognize(void* dev, int nRecMode, int nMulMode)
{
    return FORWARD(StartOnetoNumRecognize, nRecMode, nMulMode);
}

int StartOnetoOneRecognize(void* dev, int nRecMode, int nMulMode, void const* pImage, unsigned int nImageLength)
{
    return FORWARD(StartOnetoOneRecognize, nRecMode, nMulMode, pImage, nImageLength);
}

int StartOnetoOneRecognizeSlice(void* dev, int nRecMode, int nMulMode, unsigned int nImageTotalLength,
                                unsigned int nPosition, int isLastSlice, void const* pSliceData,
                                unsigned int nSliceDataLength)
{
    return FORWARD(StartOnetoOneRecognizeSlice, nRecMode, nMulMode, nImageTotalLength, nPosition, isLastSlice,
                   pSliceData, nSliceDataLength);
}

int ResumeRecognize(void* dev) { return FORWARD(ResumeRecognize); }

int PauseRecognize(void* dev) { return FORWARD(PauseRecognize); }

int QueryRecognize(void* dev) { return FORWARD(QueryRecognize); }

int GetSingleRecognize(void* dev, void* pData, unsigned int nDataLength)
{
    return FORWARD(GetSingleRecognize, pData, nDataLength);
}

int StaticFaceCompare(void* dev, void** ppResImage, unsigned int* pResImageLength)
{
    return FORWARD(StaticFaceCompare, ppResImage, pResImageLength);
}

int StaticFaceCompareReturnImage(void* dev, void const* pImage, unsigned int nImageLength, void** ppResImage,
                                 unsigned int* pResImageLength)
{
    return FORWARD(StaticFaceCompareReturnImage, pImage, nImageLength, ppResImage, pResImageLength);
}

int StaticFaceCompareSlice(void* dev, int nMode, unsigned int nImageTotalLength, unsigned int nPosition,
                           int isLastSlice, void const* pSliceData, unsigned int nSliceDataLength, void** ppResImage,
                           unsigned int* pResImageLength)
{
    return FORWARD(StaticFaceCompareSlice, nMode, nImageTotalLength, nPosition, isLastSlice, pSliceData,
                   nSliceDataLength, ppResImage, pResImageLength);
}

int SetRecConfig(void* dev, void const* pData, unsigned int nDataLength, int nConfigType)
{
    return FORWARD(SetRecConfig, pData, nDataLength, nConfigType);
}

int GetRecConfig(void* dev, void* pData, unsigned int nDataLength, int nConfigType)
{
    return FORWARD(GetRecConfig, pData, nDataLength, nConfigType);
}

int SetRecognizeCount(void* dev, unsigned char nRecCount, unsigned char nLivingCount)
{
    return FORWARD(SetRecognizeCount, nRecCount, nLivingCount);
}

int GetRecognizeCount(void* dev, unsigned char* pRecCount, unsigned char* pLivingCount)
{
    return FORWARD(GetRecognizeCount, pRecCount, pLivingCount);
}

int SetTemplateUpdate(void* dev, unsigned char isUpdate) { return FORWARD(SetTemplateUpdate, isUpdate); }

int GetTemplateUpdate(void* dev, unsigned char* isUpdate) { return FORWARD(GetTemplateUpdate, isUpdate); }

int Ping(void* dev, void const* pTestData, unsigned int nTestDataLength)
{
    return FORWARD(Ping, pTestData, nTestDataLength);
}

int GetDeviceVersion(void* dev, void* pVersion, unsigned int nLength)
{
    return FORWARD(GetDeviceVersion, pVersion, nLength);
}

int GetDevSn(void* dev, char nMode, void* pDevSn, unsigned int nDevsnLength)
{
    return FORWARD(GetDevSn, nMode, pDevSn, nDevsnLength);
}

int GetDevModel(void* dev, void* pDevModel, unsigned int nDevModelLength)
{
    return FORWARD(GetDevModel, pDevModel, nDevModelLength);
}

int GetDevModelAppVer(void* dev, void* pModelVersion, unsigned int nModelVersionLength)
{
    return FORWARD(GetDevModelAppVer, pModelVersion, nModelVersionLength);
}

int GetCpuTemperature(void* dev, unsigned int* nTemperature) { return FORWARD(GetCpuTemperature, nTemperature); }

int GetAESensorModel(void* dev, unsigned int* pSensorModel) { return FORWARD(GetAESensorModel, pSensorModel); }

int Reboot(void* dev, int nMode) { return FORWARD(Reboot, nMode); }

int SetUmodeToEngin(void* dev) { return FORWARD(SetUmodeToEngin); }

int Reset(void* dev) { return FORWARD(Reset); }

int Recovery(void* dev, int nMode) { return FORWARD(Recovery, nMode); }

int UploadPackageSlice(void* dev, unsigned int nPosition, void const* pPacketData, unsigned int nPacketDataLength)
{
    return FORWARD(UploadPackageSlice, nPosition, pPacketData, nPacketDataLength);
}

int ApplyUpgrade(void* dev, void const* pHashData, unsigned int nHashDataLength)
{
    return FORWARD(ApplyUpgrade, pHashData, nHashDataLength);
}

int SetUvcSwitch(void* dev, char nMode) { return FORWARD(SetUvcSwitch, nMode); }

int SetCameraStream(void* dev, char isCloseCamera, char nCameraType)
{
    return FORWARD(SetCameraStream, isCloseCamera, nCameraType);
}

int GetCameraStream(void* dev, char nCameraType, unsigned char* isOpenCamera)
{
    return FORWARD(GetCameraStream, nCameraType, isOpenCamera);
}

int SwitchCamRgbIr(void* dev, char nMode) { return FORWARD(SwitchCamRgbIr, nMode); }

int SetStreamFormat(void* dev, char nMode) { return FORWARD(SetStreamFormat, nMode); }

int GetLuminousSensitivityThreshold(void* dev, unsigned int* nThreshold)
{
    return FORWARD(GetLuminousSensitivityThreshold, nThreshold);
}

int GetDeviceNoFlickerHz(void* dev, char nCameraId, unsigned char* pHz, unsigned char* isEnable)
{
    return FORWARD(GetDeviceNoFlickerHz, nCameraId, pHz, isEnable);
}

int SetDeviceNoFlickerHz(void* dev, char nCameraId, char nHz, char isEnable)
{
    return FORWARD(SetDeviceNoFlickerHz, nCameraId, nHz, isEnable);
}

int SetRotateAngle(void* dev, char nMode) { return FORWARD(SetRotateAngle, nMode); }

int GetScreenDirection(void* dev, unsigned char* pMode) { return FORWARD(GetScreenDirection, pMode); }

int SetScreenDirection(void* dev, char nMode) { return FORWARD(SetScreenDirection, nMode); }

int SetResolution(void* dev, char nMode)
{
    // The module's resolution command, not the local stream's size.
    return Forward(dev, __func__, __LINE__, static_cast<int (AICamera::*)(char)>(&AICamera::SetResolution), nMode);
}

int GetFrameRate(void* dev, unsigned int* pFrameRate) { return FORWARD(GetFrameRate, pFrameRate); }

int SetFrameRate(void* dev, int nFrameRate) { return FORWARD(SetFrameRate, nFrameRate); }

int GetIRlight(void* dev, unsigned char* pLuminance, unsigned char* pCloseTime)
{
    return FORWARD(GetIRlight, pLuminance, pCloseTime);
}

int SetIRlight(void* dev, unsigned char nLuminance, unsigned char nCloseTime)
{
    return FORWARD(SetIRlight, nLuminance, nCloseTime);
}

int OpenAutoUploadAiInfo(void* dev, char nUploadMode, char nImageMode)
{
    return FORWARD(OpenAutoUploadAiInfo, nUploadMode, nImageMode);
}

int CloseAutoUploadAiInfo(void* dev) { return FORWARD(CloseAutoUploadAiInfo); }

int OpenAutoUploadFaceInfoInFrame(void* dev) { return FORWARD(OpenAutoUploadFaceInfoInFrame); }

int CloseAutoUploadFaceInfoInFrame(void* dev) { return FORWARD(CloseAutoUploadFaceInfoInFrame); }

int SetQRCodeSwitch(void* dev, unsigned char isOpen, unsigned char interval)
{
    return FORWARD(SetQRCodeSwitch, isOpen, interval);
}

void RegisterRecoReportCb(void* dev, AI_CAMERA_REPORT_FUNC handler_func) { REGISTER(RegisterRecoReport); }

void RegisterTrackReportCb(void* dev, AI_CAMERA_REPORT_FUNC handler_func) { REGISTER(RegisterTrackReport); }

void RegisterImageReportCb(void* dev, AI_CAMERA_REPORT_FUNC handler_func) { REGISTER(RegisterImageReport); }

void RegisterFeatureReportCb(void* dev, AI_CAMERA_REPORT_FUNC handler_func) { REGISTER(RegisterFeatureReport); }

void RegisterQRCodeReportCb(void* dev, AI_CAMERA_REPORT_FUNC handler_func) { REGISTER(RegisterQRCodeReport); }
