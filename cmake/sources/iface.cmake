set(AICAM_SOURCES
  Interface/ai_camera.cpp
  Interface/ai_camera_modules.cpp
  Interface/ai_camera_upgrade.cpp
)
