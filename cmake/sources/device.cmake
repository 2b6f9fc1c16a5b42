# The device object and its commands.
set(AICAM_SOURCES
  AICamera/Device/AICamera.cpp
  AICamera/Device/ReportCommand.cpp
  AICamera/Device/DeviceRequest.cpp
  AICamera/Device/DeviceCommand.cpp
  AICamera/Device/FaceLibraryCommands.cpp
  AICamera/Device/RecognitionCommands.cpp
  AICamera/Device/RecognitionSettingsCommands.cpp
  AICamera/Device/DeviceInfoCommands.cpp
  AICamera/Device/FirmwareCommands.cpp
  AICamera/Device/FirmwareUpgrade.cpp
  AICamera/Device/CameraSettingsCommands.cpp
  AICamera/Device/UploadSwitchCommands.cpp
)
