# The process-wide logger and the trace records built on it.
set(AICAM_SOURCES
  AICamera/Log/Log.cpp
  AICamera/Log/Trace.cpp
)
