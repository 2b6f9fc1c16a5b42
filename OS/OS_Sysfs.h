// Reading sysfs: attributes, links and directory listings, under whatever root
// the caller names (tests build trees of their own).
#ifndef OS_SYSFS_H
#define OS_SYSFS_H

#include <string>
#include <vector>

// The attribute's first line without its line break; "" when unreadable.
std::string OS_ReadAttribute(const std::string& path);
// The last part of a symbolic link's target ("cdc_acm" for a driver link); "" for no link.
std::string OS_LinkName(const std::string& path);
// The path with every link resolved; "" when it does not resolve.
std::string OS_RealPath(const std::string& path);
// The names in a directory except "." and "..", sorted; empty when unreadable.
std::vector<std::string> OS_ListDirectory(const std::string& path);

#endif
