#include "OS_DeviceList.h"

#include <dirent.h>
#include <string.h>

namespace {
// Appends what fits before index size; the logical length counts the rest too.
size_t AppendBounded(char* out, size_t size, size_t length, const char* text)
{
    for (; *text; ++text, ++length) {
        if (length < size)
            out[length] = *text;
    }
    return length;
}
}  // namespace

int OS_ListDeviceNodes(const char* directory, const char* pattern, char* out, int size)
{
    if (!out || size <= 0)
        return -1;
    size_t capacity = static_cast<size_t>(size);
    memset(out, 0, capacity);
    DIR* listing = opendir(directory);
    if (!listing)
        return -2;
    int found = 0;
    size_t length = 0;
    while (struct dirent* entry = readdir(listing)) {
        if (!strstr(entry->d_name, pattern))
            continue;
        length = AppendBounded(out, capacity, length, directory);
        length = AppendBounded(out, capacity, length, entry->d_name);
        length = AppendBounded(out, capacity, length, "|");
        ++found;
    }
    closedir(listing);
    // A list that fits loses its final "|"; a longer one is cut at size - 1.
    if (length > 0)
        out[length + 1 <= capacity ? length - 1 : capacity - 1] = '\0';
    return found;
}
