// Lists the device nodes of a directory whose names contain a pattern.
#ifndef OS_DEVICE_LIST_H
#define OS_DEVICE_LIST_H

// Writes directory + name for each match, joined by "|" in reading order, into
// out; a list that does not fit is cut at size - 1. Never writes past size bytes.
// Returns the number of matches, -1 for a null or empty buffer, -2 when the
// directory cannot be read (out is then empty).
int OS_ListDeviceNodes(const char* directory, const char* pattern, char* out, int size);

#endif
