/*
 * ai_camera_ext.h - extensions of libai_camera beyond its standard C interface.
 *
 * These functions are not part of the module's standard interface; they exist so
 * that applications can be developed and tested without the hardware.
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

#ifdef __cplusplus
}
#endif

#endif /* AI_CAMERA_EXT_H */
