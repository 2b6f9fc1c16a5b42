set(AICAM_SOURCES
  AICamera/Camera.cpp
  AICamera/CameraManager.cpp
  AICamera/FFCamera.cpp
  AICamera/PlaybackInput.cpp
  AICamera/PlaybackPacer.cpp
  AICamera/SideText.cpp
)
