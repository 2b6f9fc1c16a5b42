/*
 * ai_camera_ext.h - extensions of libai_camera beyond its standard C interface.
 *
 * These functions are not part of the module's standard interface: they find
 * the attached modules, tell the library's version, and let applications be
 * developed and tested without the hardware.
 */
#ifndef AI_CAMERA_EXT_H
#define AI_CAMERA_EXT_H

#include "ai_camera.h"
#include "ai_camera_version.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Plays an MJPEG stream as the handle's camera, behind the same GetFrame: each
   picture with the side text embedded in its JPEG data. A recorded file is replayed
   at 25 pictures a second; a FIFO that a live writer feeds (such as the module
   simulator) is handed on picture by picture as each one's end arrives. Waits at
   most 5 s for the first picture to decode. Replaces any open camera; stop it with
   DisconnectCamera. 0; -1 null dev; -4 null or empty path; -10 not playable (no such
   file, a directory, nothing in it decodes as MJPEG, or no picture within 5 s). */
AI_CAMERA_API int ConnectCameraPlayback(void* dev, const char* path);

/* Waiting for a frame. */

/* GetFrame that waits: copies a picture newer than the last one that GetFrame or
   WaitFrame handed out, waiting up to timeoutMs milliseconds for it to be decoded,
   and returns as soon as it is (woken by the capture thread, without polling).
   timeoutMs 0 does not wait and behaves as GetFrame. The buffers follow GetFrame's
   rules: imageSize bytes of BGRA are copied (make it width x height x 4, from
   GetResolution), and the side text into verifyBuf, which must hold it.
   0; -1 null dev or no camera connected; -4 null buffer, zero size, a verifySize
   smaller than the side text, or timeoutMs below 0; -10 the stream is gone: the
   camera was unplugged, or DisconnectCamera, DeInit or another ConnectCamera on any
   thread stopped it during the wait, which then ends at once; -11 no new picture
   within timeoutMs. After a DeInit has woken it, the call touches nothing of the
   freed handle. */
AI_CAMERA_API int WaitFrame(void* dev, char* imageBuf, int imageSize, char* verifyBuf, int verifySize,
                            int timeoutMs);

/* One attached module: a USB device with both a CDC-ACM serial node and a UVC
   video capture node. Every text is zero-terminated; one too long for its field
   is cut. */
typedef struct AI_CAMERA_MODULE {
    char serialNode[256]; /* "/dev/ttyACM0": give it to ConnectSerial */
    char videoNode[256];  /* "/dev/video0": give it to ConnectCamera; never the
                             metadata node that uvcvideo adds beside it */
    int vendorId;         /* USB idVendor, 0x0000..0xFFFF */
    int productId;        /* USB idProduct */
    char usbSerial[384];  /* the USB serial number; "" when the device has none */
    char usbPath[64];     /* bus and port chain, "1-1.2": the same socket gives
                             the same path after every boot */
} AI_CAMERA_MODULE;

/* EnumModules flag: also list USB devices that have only one of the two nodes
   (a modem, a webcam, a module whose other function is missing), the missing
   node as "". */
#define AI_CAMERA_MODULES_PARTIAL 1

/* Lists the attached modules, read from sysfs, sorted by USB path. vendorId and
   productId narrow the list to those ids; 0 takes any. Fills at most `capacity`
   entries of `modules` and returns how many modules there are, which may be more
   (modules may be null when capacity is 0, to count them). -4: capacity below 0,
   null modules with a capacity, an id outside 0..0xFFFF or an unknown flag. */
AI_CAMERA_API int EnumModules(AI_CAMERA_MODULE* modules, int capacity, int vendorId, int productId, int flags);

/* Copies the library's version text, AI_CAMERA_VERSION_TEXT of the library that
   runs ("V4.2.0.2", as the log's version record says; the package version is the
   same without the "V"), cut to versionSize - 1 characters. Compare it with the
   macros of ai_camera_version.h to find a library older than the headers.
   0; -4 null buffer or size below 1. */
AI_CAMERA_API int GetSdkVersion(char* versionBuf, int versionSize);

/* Result codes of the extensions, beside those of ai_camera.h (0 success, -1 no
   handle or no link, -2 port not opened, -4 invalid argument, -5 bad log
   configuration, -6 request failed (link down or no answer in time), -7 answer
   unusable, -8 answer of the wrong length, -9 handler exists, -10 video stream
   not opened or gone, -11 no new picture, 1..255 the module's own status). */
#define AI_CAMERA_LOG_DIRECTORY_UNUSABLE (-12) /* SetLogDirectory */
#define AI_CAMERA_UPGRADE_CANCELLED (-13)      /* UpgradeFirmware: its progress callback said stop */
#define AI_CAMERA_FILE_UNREADABLE (-14)        /* UpgradeFirmwareFromFile: the package file cannot be
                                                  read whole (missing, not a regular file,
                                                  unreadable, empty, or 4 GiB or more) */

/* A short, static English text for a result code: "success" for 0, a sentence
   for each negative code above, "module status N" for the module's own statuses
   1..255, "unknown result code" otherwise. Never null; never freed. */
AI_CAMERA_API const char* GetResultText(int code);

/* Sets the directory of the daily log files ("Log" under the working directory
   until this is called), created with its parents if missing. Takes effect at
   once when logging to files is on, and for every later SetLogConfig. 0; -4 null,
   empty or longer than 4095 characters; AI_CAMERA_LOG_DIRECTORY_UNUSABLE when it
   cannot be created or written (it is still used: records are lost until it can). */
AI_CAMERA_API int SetLogDirectory(const char* dir);

/* Report callbacks with a context pointer. The same five slots as the
   Register...ReportCb functions: registering either form replaces the other, and
   a null function silences that kind. `user` is handed back unchanged on every
   call, on the serial listener thread. 0; -1 null dev. */
typedef void (*AI_CAMERA_REPORT_USER_FUNC)(char* data, int len, void* user);
AI_CAMERA_API int RegisterRecoReportCbEx(void* dev, AI_CAMERA_REPORT_USER_FUNC handler_func, void* user);
AI_CAMERA_API int RegisterTrackReportCbEx(void* dev, AI_CAMERA_REPORT_USER_FUNC handler_func, void* user);
AI_CAMERA_API int RegisterImageReportCbEx(void* dev, AI_CAMERA_REPORT_USER_FUNC handler_func, void* user);
AI_CAMERA_API int RegisterFeatureReportCbEx(void* dev, AI_CAMERA_REPORT_USER_FUNC handler_func, void* user);
AI_CAMERA_API int RegisterQRCodeReportCbEx(void* dev, AI_CAMERA_REPORT_USER_FUNC handler_func, void* user);

/* Link states handed to the link-state callback. For each ConnectSerial that
   succeeds: UP once the link runs; LOST when the module goes away (the port hangs
   up, a read or a write fails: requests then fail at once with -6); CLOSED when the
   application disconnects (DisconnectSerial, DeInit, or a ConnectSerial that
   replaces the link). Each at most once, in this order, never two at a time. UP and
   LOST come on the serial listener thread, CLOSED on the thread that closed the
   link, after the link is closed: it may connect again from the callback. */
#define AI_CAMERA_LINK_UP 1
#define AI_CAMERA_LINK_LOST 2
#define AI_CAMERA_LINK_CLOSED 3
typedef void (*AI_CAMERA_LINK_STATE_FUNC)(int state, void* user);

/* Registers the handle's link-state callback (null removes it); it hears the links
   that this handle's ConnectSerial starts. 0; -1 null dev. */
AI_CAMERA_API int RegisterLinkStateCb(void* dev, AI_CAMERA_LINK_STATE_FUNC handler_func, void* user);

/* Indexes of AI_CAMERA_LINK_STATS.reports. */
#define AI_CAMERA_REPORT_RECO 0
#define AI_CAMERA_REPORT_TRACK 1
#define AI_CAMERA_REPORT_IMAGE 2
#define AI_CAMERA_REPORT_FEATURE 3
#define AI_CAMERA_REPORT_QRCODE 4

/* Counters of the serial link since its last ConnectSerial (all handles share one
   link); kept after it closes or is lost. */
typedef struct AI_CAMERA_LINK_STATS {
    unsigned long long framesSent;       /* whole frames written to the module */
    unsigned long long bytesSent;
    unsigned long long framesReceived;   /* frames cut from the input, good or bad */
    unsigned long long bytesReceived;
    unsigned long long checksumErrors;   /* frames dropped for a bad checksum */
    unsigned long long resyncs;          /* input dropped after garbage or an impossible length */
    unsigned long long requestsTimedOut; /* requests that got no answer (or no turn) in time */
    unsigned long long lateAnswers;      /* answers that no request waited for: dropped */
    unsigned long long reports[5];       /* reports handed to a callback, by AI_CAMERA_REPORT_... */
    unsigned long long imageAcks;        /* image-report acknowledgements sent */
} AI_CAMERA_LINK_STATS;

/* Fills *stats. 0; -1 null dev; -4 null stats. */
AI_CAMERA_API int GetLinkStats(void* dev, AI_CAMERA_LINK_STATS* stats);

/* Firmware upgrade in one call. */

/* Told, on the calling thread, the bytes of the package the module has taken so
   far, the package's size, and how many slices were sent again so far: once
   with sent 0 before the first slice, then after each slice. `user` is the
   pointer given to the upgrade call. Returning non-zero cancels the upgrade:
   nothing more is sent. Never called once the upgrade call has returned. */
typedef int (*AI_CAMERA_UPGRADE_PROGRESS)(unsigned int sent, unsigned int total, unsigned int retries, void* user);

/* Upgrades the module's firmware with the package of packageLength bytes:
   sends it with UploadPackageSlice in slices of sliceSize bytes (the last one
   shorter), each at its byte offset, sending a failed slice again up to three
   times; then hands the module the package's MD5 hash text with ApplyUpgrade,
   on which the module checks and applies the package. md5 is the hash published
   with the package (32 hexadecimal characters, either case), so that the module
   checks what it received against it; null or "" has it computed from the
   package. progress may be null. On return, unless an argument was refused:
   *moduleStatus (when moduleStatus is not null) is the status byte the module
   answered the apply request with (0 to 255), or -1 when that request was
   never sent or got no usable answer; errorText receives the module's
   explanation of a refusal ("" when it gave none), cut to errorTextSize - 1
   characters and always zero-terminated (errorText may be null when
   errorTextSize is 0).
   Returns 0 when the module applied the package;
   -1 null dev;
   -4 null package, packageLength 0, sliceSize 0, md5 neither null, "" nor 32
      hexadecimal characters, errorTextSize below 0, or null errorText with
      errorTextSize above 0;
   AI_CAMERA_UPGRADE_CANCELLED (-13) when progress returned non-zero;
   the code of the last try of a slice that failed four times (-6, -7, -8, or
   the module's status 1 to 255 as UploadPackageSlice returns them); the
   progress callback's last `sent` is then that slice's offset;
   otherwise the code of the apply request: -6, -7, -8, or the module's status
   1 to 255 when it refused the package. Each slice and the apply request take
   up to 10 s; a slice must be small enough for the module to store it in that
   time. */
AI_CAMERA_API int UpgradeFirmware(void* dev, const void* package, unsigned int packageLength, unsigned int sliceSize, const char* md5, AI_CAMERA_UPGRADE_PROGRESS progress, void* user, int* moduleStatus, char* errorText, int errorTextSize);

/* The same with the package read whole from the file at path, which is read
   only once every other argument has been accepted. -4 also for a null or empty
   path; AI_CAMERA_FILE_UNREADABLE (-14) when the file cannot be read whole. */
AI_CAMERA_API int UpgradeFirmwareFromFile(void* dev, const char* path, unsigned int sliceSize, const char* md5, AI_CAMERA_UPGRADE_PROGRESS progress, void* user, int* moduleStatus, char* errorText, int errorTextSize);

#ifdef __cplusplus
}
#endif

#endif /* AI_CAMERA_EXT_H */
