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

/* Plays a recorded MJPEG stream (a file, or a FIFO fed by the module simulator) at
   its frame rate as the handle's camera, behind the same GetFrame: each picture with
   the side text embedded in its JPEG data. Replaces any open camera; stop it with
   DisconnectCamera. 0; -1 null dev; -4 null or empty path; -10 not playable. */
AI_CAMERA_API int ConnectCameraPlayback(void* dev, const char* path);

#ifdef __cplusplus
}
#endif

#endif /* AI_CAMERA_EXT_H */
