set(AICAM_SOURCES
  OS/OS_Mutex.cpp
  OS/OS_Semaphore.cpp
  OS/OS_Thread.cpp
  OS/OS_Time.cpp
  AICamera/Log.cpp
  AICamera/Trace.cpp
)
