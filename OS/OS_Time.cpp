#include "OS_Time.h"

#include <sys/time.h>

int OS_Time::GetLocalTime(OS_TimeVal* out)
{
    if (!out)
        return -1;
    struct timeval now;
    gettimeofday(&now, nullptr);
    out->tv_sec = static_cast<uint32_t>(now.tv_sec);
    out->tv_usec = static_cast<uint32_t>(now.tv_usec);
    return 0;
}
