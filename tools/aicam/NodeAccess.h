// Why a device node cannot be used, in words a user can act on: the error of
// opening it, the other programs that hold it, and what udev says of it.
#ifndef AICAM_NODEACCESS_H
#define AICAM_NODEACCESS_H

#include <string>
#include <vector>

// The group that gives access to a node of this kind without the udev rule.
extern const char* const kSerialGroup;  // dialout
extern const char* const kVideoGroup;   // video

// "" when the node opens for reading and writing; else what to do about it
// (permission denied, in use, no such device, or the system's own text).
std::string OpenProblem(const std::string& node, const char* group);

// Other processes holding the node open, as "1234 (minicom)"; from /proc, so
// only those this user may look into.
std::vector<std::string> NodeHolders(const std::string& node);

// Whether another program holds the node's lock (the library locks its port,
// which keeps even root out).
bool LockedByOther(const std::string& node);

// Why connecting to the node failed with the library's `result`: OpenProblem,
// else the programs holding it or its lock, else the result's own text.
std::string ConnectProblem(const std::string& node, const char* group, int result);

// A property that udev recorded for the node ("" when udev has no record).
std::string UdevProperty(const std::string& node, const std::string& key);

// Whether a process of this name (as /proc/PID/comm gives it) runs.
bool ProcessRunning(const std::string& name);

// The path with its links resolved; the path itself when it does not resolve.
std::string ResolvedPath(const std::string& path);

std::string JoinWords(const std::vector<std::string>& words, const std::string& separator);

#endif
