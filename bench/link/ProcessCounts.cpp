#include "ProcessCounts.h"

#include <dirent.h>

namespace {
size_t EntriesIn(const char* dir)
{
    size_t count = 0;
    if (DIR* listing = opendir(dir)) {
        while (struct dirent* entry = readdir(listing))
            count += entry->d_name[0] != '.';
        closedir(listing);
    }
    return count;
}
}  // namespace

size_t ThreadCount() { return EntriesIn("/proc/self/task"); }
// The listing's own descriptor is not counted.
size_t DescriptorCount() { return EntriesIn("/proc/self/fd") - 1; }
