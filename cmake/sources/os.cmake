# The operating-system layer, but for the serial port: threads, locks, time, sockets,
# shared memory, device nodes and sysfs.
set(AICAM_SOURCES
  OS/OS_Mutex.cpp
  OS/OS_Semaphore.cpp
  OS/OS_Thread.cpp
  OS/OS_Time.cpp
  OS/OS_Socket.cpp
  OS/OS_SharedMemory.cpp
  OS/OS_DeviceList.cpp
  OS/OS_Sysfs.cpp
  OS/OS_VideoCaps.cpp
  OS/OS_UsbModules.cpp
)
