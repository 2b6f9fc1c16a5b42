#include "OS_Sysfs.h"

#include <dirent.h>
#include <limits.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

std::string OS_ReadAttribute(const std::string& path)
{
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

std::string OS_LinkName(const std::string& path)
{
    char target[PATH_MAX];
    ssize_t length = readlink(path.c_str(), target, sizeof target - 1);
    if (length <= 0)
        return "";
    std::string text(target, static_cast<size_t>(length));
    return text.substr(text.rfind('/') + 1);
}

std::string OS_RealPath(const std::string& path)
{
    char* resolved = realpath(path.c_str(), nullptr);
    if (!resolved)
        return "";
    std::string text = resolved;
    free(resolved);
    return text;
}

std::vector<std::string> OS_ListDirectory(const std::string& path)
{
    std::vector<std::string> names;
    DIR* listing = opendir(path.c_str());
    if (!listing)
        return names;
    while (struct dirent* entry = readdir(listing)) {
        std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    closedir(listing);
    std::sort(names.begin(), names.end());
    return names;
}
