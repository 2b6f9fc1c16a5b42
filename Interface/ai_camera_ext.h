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

/* Copies the library's version text ("V4.2.0.2", as the log's version record
   says), cut to versionSize - 1 characters. 0; -4 null buffer or size below 1. */
AI_CAMERA_API int GetSdkVersion(char* versionBuf, int versionSize);

#ifdef __cplusplus
}
#endif

#endif /* AI_CAMERA_EXT_H */
