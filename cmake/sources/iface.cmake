set(AICAM_SOURCES Interface/ai_camera.cpp)
