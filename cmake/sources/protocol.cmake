# The serial protocol: frames, commands, the executor, the transceiver and the
# link's owner, with the serial port of the operating-system layer.
set(AICAM_SOURCES
  AICamera/Protocol/Message.cpp
  AICamera/Protocol/Command.cpp
  AICamera/Protocol/SyncCommand.cpp
  AICamera/Protocol/AsyncCommand.cpp
  AICamera/Protocol/CommandExecutor.cpp
  AICamera/Protocol/Transceiver.cpp
  AICamera/Protocol/CommandManager.cpp
  AICamera/Protocol/LinkEvents.cpp
  AICamera/Protocol/LinkStatistics.cpp
  OS/Serial_Linux/OS_Serial.cpp
)
