# The exported C functions.
set(AICAM_SOURCES
  Interface/ai_camera.cpp
  Interface/ai_camera_modules.cpp
  Interface/ai_camera_results.cpp
  Interface/ai_camera_log_directory.cpp
  Interface/ai_camera_link.cpp
  Interface/ai_camera_upgrade.cpp
)
