// The device object behind the handle of the C interface: the application's
// report callbacks, the shared serial command channel and camera, and every
// device command.
#ifndef AICAMERA_AICAMERA_H
#define AICAMERA_AICAMERA_H

#include <string>

#include "../../Interface/ai_camera.h"
#include "CallbackSlot.h"
#include "ReportReceiver.h"
#include "../Protocol/LinkEvents.h"
#include "../Protocol/LinkStatistics.h"

class AsyncCommand;
class CommandManager;
class CameraManager;

class AICamera final : private LinkObserver, private ReportReceiver {
public:
    AICamera();
    ~AICamera();
    AICamera(const AICamera&) = delete;
    AICamera& operator=(const AICamera&) = delete;

    void RegisterRecoReport(ReportFunc func) { m_pRecoReportFunc.Set(func); }
    void RegisterTrackReport(ReportFunc func) { m_pTrackReportFunc.Set(func); }
    void RegisterImageReport(ReportFunc func) { m_pImageReportFunc.Set(func); }
    void RegisterFeatureReport(ReportFunc func) { m_pFeatureReportFunc.Set(func); }
    void RegisterQRCodeReport(ReportFunc func) { m_pQRCodeReportFunc.Set(func); }
    // The same slots, with the application's context pointer handed back.
    void RegisterReport(ReportKind kind, ReportUserFunc func, void* user) { ReportSlotOf(kind).Set(func, user); }
    ReportSlot& ReportSlotOf(ReportKind kind) override;
    // Called with LINK_EVENT_UP, _LOST and _CLOSED for the links this object starts.
    void RegisterLinkState(LinkStateSlot::WithUser func, void* user) { m_linkStateFunc.Set(func, user); }
    // A report reached its callback.
    void CountReport(ReportKind kind) override;
    // The counters of the shared serial link since its last start.
    const LinkCounters* GetLinkCounters() const;

    // Connections and the local video stream.
    int ConnectSerial(void* portName);
    int DisconnectSerial();
    int ConnectCamera(void* pCameraName);
    int ConnectCameraPlayback(const char* path);
    int DisconnectCamera();
    int GetFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize);
    int WaitFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize, int timeoutMs);
    int GetResolution(int* width, int* height);
    int SetResolution(int width, int height);
    // The image report's acknowledgement: sent, not awaited.
    int SendImageReportReturn() override;

    // Face library.
    int AddFace(const void* pID, unsigned int nIDLength);
    int AddFaceByImage(const void* pID, unsigned int nIDLength, const void* pImage, unsigned int nImageLength);
    int AddFaceReturnImage(const void* pID, unsigned int nIDLength, void** ppImage, unsigned int* pImageLength);
    int AddFaceSlice(const void* pID, unsigned int nIDLength, unsigned int nImageTotalLength,
                     unsigned int nPosition, int isLastSlice, const void* pSliceData, unsigned int nSliceDataLength);
    int DeleteFace(int nMode, const void* pID, unsigned int nIDLength);
    int QueryFace(const void* pID, unsigned int nIDLength, int nMode);
    int AddFeature(const void* pID, unsigned int nIDLength, const void* pFeature, unsigned int nFeatureLength);
    int QueryFeature(const void* pID, unsigned int nIDLength, void* pFeature, unsigned int nFeatureLength);
    int GetDeviceFaceID(void* pIDList, unsigned int nIDListLength);
    int GetDeviceFaceLibraryNum(unsigned int* nFaceNum);

    // Recognition and comparison.
    int StartOnetoNumRecognize(int nRecMode, int nMulMode);
    int StartOnetoOneRecognize(int nRecMode, int nMulMode, const void* pImage, unsigned int nImageLength);
    int StartOnetoOneRecognizeSlice(int nRecMode, int nMulMode, unsigned int nImageTotalLength, unsigned int nPosition,
                                    int isLastSlice, const void* pSliceData, unsigned int nSliceDataLength);
    int ResumeRecognize();
    int PauseRecognize();
    int QueryRecognize();
    int GetSingleRecognize(void* pData, unsigned int nDataLength);
    int StaticFaceCompare(void** ppResImage, unsigned int* pResImageLength);
    int StaticFaceCompareReturnImage(const void* pImage, unsigned int nImageLength, void** ppResImage,
                                     unsigned int* pResImageLength);
    int StaticFaceCompareSlice(int nMode, unsigned int nImageTotalLength, unsigned int nPosition, int isLastSlice,
                               const void* pSliceData, unsigned int nSliceDataLength, void** ppResImage,
                               unsigned int* pResImageLength);

    // Recognition settings.
    int SetRecConfig(const void* pData, unsigned int nDataLength, int nConfigType);
    int GetRecConfig(void* pData, unsigned int nDataLength, int nConfigType);
    int SetRecognizeCount(unsigned char nRecCount, unsigned char nLivingCount);
    int GetRecognizeCount(unsigned char* pRecCount, unsigned char* pLivingCount);
    int SetTemplateUpdate(unsigned char isUpdate);
    int GetTemplateUpdate(unsigned char* isUpdate);

    // Device information and maintenance.
    int Ping(const void* pTestData, unsigned int nTestDataLength);
    int GetDeviceVersion(void* pVersion, unsigned int nLength);
    int Reboot(int nMode);
    int Reset();
    int SetUmodeToEngin();
    int Recovery(int nMode);
    int GetDevSn(char nMode, void* pDevSn, unsigned int nDevsnLength);
    int GetDevModel(void* pDevModel, unsigned int nDevModelLength);
    int GetDevModelAppVer(void* pModelVersion, unsigned int nModelVersionLength);
    int GetCpuTemperature(unsigned int* nTemperature);
    int GetAESensorModel(unsigned int* pSensorModel);

    // Firmware upgrade.
    int UploadPackageSlice(unsigned int nPosition, const void* pPacketData, unsigned int nPacketDataLength);
    int ApplyUpgrade(const void* pHashData, unsigned int nHashDataLength);
    // The same, handing the module's error text (empty when it gave none) to the caller.
    int ApplyUpgradeWithErrorInfo(const void* pHashData, unsigned int nHashDataLength, std::string& errorInfo);

    // Camera and sensor settings.
    int SetUvcSwitch(char nMode);
    int SetCameraStream(char isCloseCamera, char nCameraType);
    int GetCameraStream(char nCameraType, unsigned char* isOpenCamera);
    int SwitchCamRgbIr(char nMode);
    int SetStreamFormat(char nMode);
    int GetLuminousSensitivityThreshold(unsigned int* nThreshold);
    int GetDeviceNoFlickerHz(char nCameraId, unsigned char* pHz, unsigned char* isEnable);
    int SetDeviceNoFlickerHz(char nCameraId, char nHz, char isEnable);
    int SetRotateAngle(char nMode);
    int GetScreenDirection(unsigned char* pMode);
    int SetScreenDirection(char nMode);
    int SetResolution(char nMode);
    int GetFrameRate(unsigned int* pFrameRate);
    int SetFrameRate(int nFrameRate);
    int GetIRlight(unsigned char* pLuminance, unsigned char* pCloseTime);
    int SetIRlight(unsigned char nLuminance, unsigned char nCloseTime);

    // Automatic upload and QR-code switches.
    int OpenAutoUploadAiInfo(char nUploadMode, char nImageMode);
    int CloseAutoUploadAiInfo();
    int OpenAutoUploadFaceInfoInFrame();
    int CloseAutoUploadFaceInfoInFrame();
    int SetQRCodeSwitch(unsigned char isOpen, unsigned char interval);

private:
    void RegisterReportHandler(AsyncCommand* handler);
    int MissingManagerRecord(const char* function, int line, const char* manager);
    int UploadSwitch(const char* function, int line, unsigned short tag, unsigned char value);

    void OnLinkEvent(int event) override;

    // Set by the application's threads, read by the listener thread for every report.
    ReportSlot m_pRecoReportFunc;
    ReportSlot m_pTrackReportFunc;
    ReportSlot m_pImageReportFunc;
    ReportSlot m_pFeatureReportFunc;
    ReportSlot m_pQRCodeReportFunc;
    LinkStateSlot m_linkStateFunc;
    CommandManager* m_pCommandManager;
    CameraManager* m_pCameraManager;
    int m_nLastWidth;
    int m_nLastHeight;
};

class AICameraMaker {
public:
    // 10, 20 and 30 make the same device object; any other kind makes nothing.
    static AICamera* MakeAICamera(AI_CAMERA_TYPE type);
};

#endif
