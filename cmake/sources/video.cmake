# The camera: FFmpeg capture, playback of recordings, side text, the camera's owner.
set(AICAM_SOURCES
  AICamera/Video/Camera.cpp
  AICamera/Video/CameraManager.cpp
  AICamera/Video/Deadline.cpp
  AICamera/Video/FFCamera.cpp
  AICamera/Video/FFCameraOpen.cpp
  AICamera/Video/JpegSegments.cpp
  AICamera/Video/MjpegCutter.cpp
  AICamera/Video/PlaybackInput.cpp
  AICamera/Video/PlaybackPacer.cpp
  AICamera/Video/SideText.cpp
)
