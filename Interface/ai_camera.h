/*
 * ai_camera.h - C interface of the AI camera module library (libai_camera).
 *
 * Result codes shared by every function returning int:
 *    0  success
 *   -1  dev is null (device commands: the device object has no command manager)
 *   -4  invalid argument (null or empty name or buffer, zero size, value out of range)
 *   -5  GetLogConfig: the stored log configuration is out of range
 *   -6  the request failed: serial link not connected, send failed, or no answer in time
 *   -7  no answer record, or the answer is unusable (for example a mismatched echo)
 *   -8  the answer has the wrong length
 *   -10 the camera stream could not be opened;  -11 no new picture since the last GetFrame
 *   1..255  the module's own non-zero status byte (AddFace, GetTemplateUpdate and
 *           GetDeviceFaceLibraryNum return it as a signed byte: -128..127)
 *
 * Buffers returned through void** are allocated with malloc, hold the data plus one
 * zero byte, and are released by the caller with free(). The library never frees a
 * buffer that the caller passes in. Report callbacks run on the library's serial
 * listener thread: they must return quickly and must not block.
 */
#ifndef AI_CAMERA_H
#define AI_CAMERA_H

#if defined(__GNUC__)
#define AI_CAMERA_API __attribute__((visibility("default")))
#else
#define AI_CAMERA_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Log level: a record is written when the configured level is at most its own. */
typedef enum LOG_LEVER {
    LOG_LEVER_TRACE = 0,
    LOG_LEVER_DEBUG = 1,
    LOG_LEVER_INFO = 2,
    LOG_LEVER_WARN = 3,
    LOG_LEVER_ERROR = 4,
    LOG_LEVER_FATAL = 5,
    LOG_LEVER_OFF = 6
} LOG_LEVER;

/* Log target. Files go to Log/YYYYMMDD.log under the working directory. */
typedef enum LOG_TARGET {
    LOG_TARGET_CONSOLE = 0,
    LOG_TARGET_FILE = 1,
    LOG_TARGET_CONSOLE_FILE = 2
} LOG_TARGET;

/* Kinds of device object; all three make the same object. */
typedef enum AI_CAMERA_TYPE {
    AI_CAMERA_TYPE_V1 = 10,
    AI_CAMERA_TYPE_V2 = 20,
    AI_CAMERA_TYPE_V3 = 30
} AI_CAMERA_TYPE;

/* Report callback: the report's bytes and their count, valid only during the call. */
typedef void (*AI_CAMERA_REPORT_FUNC)(char* data, int len);

/* ---- Lifecycle, log configuration and enumeration ---- */

/* New device handle (never null in practice); release it with DeInit. */
AI_CAMERA_API void* Init(void);
/* Same as Init. */
AI_CAMERA_API void* InitDev(void);
/* Disconnects serial link and camera, frees the handle. 0, or -1 for a null dev. */
AI_CAMERA_API int DeInit(void* dev);
/* Same as DeInit. */
AI_CAMERA_API int DeInitDev(void* dev);
/* Level 0..6 (6 = off, the default) and target 0..2. 0, or -4 when refused. */
AI_CAMERA_API int SetLogConfig(LOG_LEVER nLogLever, LOG_TARGET nLogTarget);
/* Current level and target (both pointers required). 0, or -5 when out of range. */
AI_CAMERA_API int GetLogConfig(int* pLogLever, int* pLogTarget);
/* Video and serial node paths, each list joined by '|' and cut to the buffer. 0 or -4. */
AI_CAMERA_API int EnumDevice(char* videoDevBuf, int videoDevSize, char* serialBuf, int serialSize);

/* ---- Connections and the local video stream ---- */

/* Opens the serial link (e.g. "/dev/ttyACM0"). 0; -1, -4; -2 open failed. */
AI_CAMERA_API int ConnectSerial(void* dev, const char* portName);
/* Closes the serial link. 0; -1 when not connected or dev is null. */
AI_CAMERA_API int DisconnectSerial(void* dev);
/* Opens the video node (e.g. "/dev/video0") and starts capturing. Waits at most 5 s
   for the first picture; other threads' camera calls see no camera until then.
   0; -1, -4; -10 cannot be opened or no picture within 5 s. */
AI_CAMERA_API int ConnectCamera(void* dev, const char* mediaName);
/* Stops capturing. 0, or -1 for a null dev. */
AI_CAMERA_API int DisconnectCamera(void* dev);
/* Copies the latest BGRA picture (width*height*4 bytes) and its side text, each once.
   0; -1 no camera; -4 bad buffer or side-text buffer too small; -11 no new picture;
   -10 the camera has gone (unplugged): DisconnectCamera, then ConnectCamera again. */
AI_CAMERA_API int GetFrame(void* dev, char* imageBuf, int imageSize, char* verifyBuf, int verifySize);
/* The local stream's width and height. 0, or -1 with no camera. */
AI_CAMERA_API int GetResolution(void* dev, int* width, int* height);

/* ---- Face library ---- */

/* Enrols the face the module sees now under pID (nIDLength == strlen(pID)). Status as signed byte. */
AI_CAMERA_API int AddFace(void* dev, void const* pID, unsigned int nIDLength);
/* Enrols pID from an image sent by the host. Status 0..255. */
AI_CAMERA_API int AddFaceByImage(void* dev, void const* pID, unsigned int nIDLength, void const* pImage, unsigned int nImageLength);
/* Enrols pID from the live camera and returns the enrolment image (*ppImage: free() it; may be null). */
AI_CAMERA_API int AddFaceReturnImage(void* dev, void const* pID, unsigned int nIDLength, void** ppImage, unsigned int* pImageLength);
/* Enrols pID from an image sent in slices; call once per slice, isLastSlice 1 on the last. */
AI_CAMERA_API int AddFaceSlice(void* dev, void const* pID, unsigned int nIDLength, unsigned int nImageTotalLength, unsigned int nPosition, int isLastSlice, void const* pSliceData, unsigned int nSliceDataLength);
/* nMode 0: delete all faces (pID ignored); 1: delete pID. */
AI_CAMERA_API int DeleteFace(void* dev, int nMode, void const* pID, unsigned int nIDLength);
/* Whether pID is enrolled: the module's status (0 = present). nMode must be 0. */
AI_CAMERA_API int QueryFace(void* dev, void const* pID, unsigned int nIDLength, int nMode);
/* Enrols pID from a 1384-character feature text (nFeatureLength 1384). */
AI_CAMERA_API int AddFeature(void* dev, void const* pID, unsigned int nIDLength, void const* pFeature, unsigned int nFeatureLength);
/* Copies pID's feature text into pFeature (at most nFeatureLength bytes, not terminated when full). */
AI_CAMERA_API int QueryFeature(void* dev, void const* pID, unsigned int nIDLength, void* pFeature, unsigned int nFeatureLength);
/* Gathers the module's identifier list into pIDList (cut and terminated to nIDListLength). */
AI_CAMERA_API int GetDeviceFaceID(void* dev, void* pIDList, unsigned int nIDListLength);
/* Number of enrolled faces. Status as signed byte. */
AI_CAMERA_API int GetDeviceFaceLibraryNum(void* dev, unsigned int* nFaceNum);

/* ---- Recognition and comparison ---- */

/* nRecMode 0 recognise only / 1 with liveness; nMulMode 0 single / 1 multiple faces. */
AI_CAMERA_API int StartOnetoNumRecognize(void* dev, int nRecMode, int nMulMode);
/* One-to-one recognition against a whole image. */
AI_CAMERA_API int StartOnetoOneRecognize(void* dev, int nRecMode, int nMulMode, void const* pImage, unsigned int nImageLength);
/* One-to-one recognition against an image sent in slices. */
AI_CAMERA_API int StartOnetoOneRecognizeSlice(void* dev, int nRecMode, int nMulMode, unsigned int nImageTotalLength, unsigned int nPosition, int isLastSlice, void const* pSliceData, unsigned int nSliceDataLength);
AI_CAMERA_API int ResumeRecognize(void* dev);
AI_CAMERA_API int PauseRecognize(void* dev);
/* The module's recognition state as its status byte. */
AI_CAMERA_API int QueryRecognize(void* dev);
/* One recognition result text into pData (zeroed first; not terminated when full). */
AI_CAMERA_API int GetSingleRecognize(void* dev, void* pData, unsigned int nDataLength);
/* Static comparison with the module's capture; *ppResImage: free() it (may be null). */
AI_CAMERA_API int StaticFaceCompare(void* dev, void** ppResImage, unsigned int* pResImageLength);
/* Static comparison with a host image; *ppResImage: free() it (may be null). */
AI_CAMERA_API int StaticFaceCompareReturnImage(void* dev, void const* pImage, unsigned int nImageLength, void** ppResImage, unsigned int* pResImageLength);
/* Static comparison, image in slices (nMode 0 local capture, 1 remote input). */
AI_CAMERA_API int StaticFaceCompareSlice(void* dev, int nMode, unsigned int nImageTotalLength, unsigned int nPosition, int isLastSlice, void const* pSliceData, unsigned int nSliceDataLength, void** ppResImage, unsigned int* pResImageLength);

/* ---- Recognition settings ---- */

/* Recognition configuration text (nDataLength == strlen(pData)); nConfigType must be 0. */
AI_CAMERA_API int SetRecConfig(void* dev, void const* pData, unsigned int nDataLength, int nConfigType);
/* Configuration text into pData (zeroed first; not terminated when full). */
AI_CAMERA_API int GetRecConfig(void* dev, void* pData, unsigned int nDataLength, int nConfigType);
/* Recognition and liveness counts, each 1..10. */
AI_CAMERA_API int SetRecognizeCount(void* dev, unsigned char nRecCount, unsigned char nLivingCount);
AI_CAMERA_API int GetRecognizeCount(void* dev, unsigned char* pRecCount, unsigned char* pLivingCount);
/* Template updating off (0) or on (1). */
AI_CAMERA_API int SetTemplateUpdate(void* dev, unsigned char isUpdate);
/* Status as signed byte. */
AI_CAMERA_API int GetTemplateUpdate(void* dev, unsigned char* isUpdate);

/* ---- Device information and maintenance ---- */

/* Echo test: 0 when the module echoes pTestData (nTestDataLength == strlen). -7 on a wrong echo. */
AI_CAMERA_API int Ping(void* dev, void const* pTestData, unsigned int nTestDataLength);
/* Texts copied with strncpy rules: not terminated when they fill the buffer. */
AI_CAMERA_API int GetDeviceVersion(void* dev, void* pVersion, unsigned int nLength);
AI_CAMERA_API int GetDevSn(void* dev, char nMode, void* pDevSn, unsigned int nDevsnLength);
AI_CAMERA_API int GetDevModel(void* dev, void* pDevModel, unsigned int nDevModelLength);
AI_CAMERA_API int GetDevModelAppVer(void* dev, void* pModelVersion, unsigned int nModelVersionLength);
AI_CAMERA_API int GetCpuTemperature(void* dev, unsigned int* nTemperature);
AI_CAMERA_API int GetAESensorModel(void* dev, unsigned int* pSensorModel);
/* Reboot in mode 0..4 (0 = Reset, 4 = SetUmodeToEngin). */
AI_CAMERA_API int Reboot(void* dev, int nMode);
AI_CAMERA_API int SetUmodeToEngin(void* dev);
AI_CAMERA_API int Reset(void* dev);
/* Recovery mode 0 or 1. */
AI_CAMERA_API int Recovery(void* dev, int nMode);

/* ---- Firmware upgrade ---- */

/* One slice of the package at nPosition (passed through unchanged). */
AI_CAMERA_API int UploadPackageSlice(void* dev, unsigned int nPosition, void const* pPacketData, unsigned int nPacketDataLength);
/* Checks the uploaded package against the hash text and applies it; the module's error text goes to the log. */
AI_CAMERA_API int ApplyUpgrade(void* dev, void const* pHashData, unsigned int nHashDataLength);

/* ---- Camera and sensor settings ---- */

AI_CAMERA_API int SetUvcSwitch(void* dev, char nMode);
/* Opens (isCloseCamera 0) or closes (1) camera nCameraType (0 or 1). */
AI_CAMERA_API int SetCameraStream(void* dev, char isCloseCamera, char nCameraType);
AI_CAMERA_API int GetCameraStream(void* dev, char nCameraType, unsigned char* isOpenCamera);
AI_CAMERA_API int SwitchCamRgbIr(void* dev, char nMode);
AI_CAMERA_API int SetStreamFormat(void* dev, char nMode);
AI_CAMERA_API int GetLuminousSensitivityThreshold(void* dev, unsigned int* nThreshold);
AI_CAMERA_API int GetDeviceNoFlickerHz(void* dev, char nCameraId, unsigned char* pHz, unsigned char* isEnable);
AI_CAMERA_API int SetDeviceNoFlickerHz(void* dev, char nCameraId, char nHz, char isEnable);
/* Rotation 0..3. */
AI_CAMERA_API int SetRotateAngle(void* dev, char nMode);
AI_CAMERA_API int GetScreenDirection(void* dev, unsigned char* pMode);
/* Screen direction 1..4. */
AI_CAMERA_API int SetScreenDirection(void* dev, char nMode);
/* The module's output resolution, mode 0..4 (720x1280, 360x640, 720x720, 720x640, 720x480);
   on status 0 the local stream expects the new size. */
AI_CAMERA_API int SetResolution(void* dev, char nMode);
AI_CAMERA_API int GetFrameRate(void* dev, unsigned int* pFrameRate);
/* Frame rate 10..25. */
AI_CAMERA_API int SetFrameRate(void* dev, int nFrameRate);
AI_CAMERA_API int GetIRlight(void* dev, unsigned char* pLuminance, unsigned char* pCloseTime);
/* Infrared luminance 0..200 and close time 0..120. */
AI_CAMERA_API int SetIRlight(void* dev, unsigned char nLuminance, unsigned char nCloseTime);

/* ---- Automatic upload and QR-code switches ---- */

/* Upload mode 0, 2, 3 or 4; image mode 0..7. */
AI_CAMERA_API int OpenAutoUploadAiInfo(void* dev, char nUploadMode, char nImageMode);
AI_CAMERA_API int CloseAutoUploadAiInfo(void* dev);
AI_CAMERA_API int OpenAutoUploadFaceInfoInFrame(void* dev);
AI_CAMERA_API int CloseAutoUploadFaceInfoInFrame(void* dev);
/* QR-code detection on (1) or off (0), with the report interval. */
AI_CAMERA_API int SetQRCodeSwitch(void* dev, unsigned char isOpen, unsigned char interval);

/* ---- Report callbacks (null silences that kind of report) ---- */

AI_CAMERA_API void RegisterRecoReportCb(void* dev, AI_CAMERA_REPORT_FUNC handler_func);
AI_CAMERA_API void RegisterTrackReportCb(void* dev, AI_CAMERA_REPORT_FUNC handler_func);
/* The library acknowledges each image report to the module before calling this. */
AI_CAMERA_API void RegisterImageReportCb(void* dev, AI_CAMERA_REPORT_FUNC handler_func);
AI_CAMERA_API void RegisterFeatureReportCb(void* dev, AI_CAMERA_REPORT_FUNC handler_func);
AI_CAMERA_API void RegisterQRCodeReportCb(void* dev, AI_CAMERA_REPORT_FUNC handler_func);

#ifdef __cplusplus
}
#endif

#endif /* AI_CAMERA_H */
