// Wall-clock time stamp.
#ifndef OS_TIME_H
#define OS_TIME_H

#include <stdint.h>

struct OS_TimeVal {
    uint32_t tv_sec;  // low 32 bits of the seconds since the epoch
    uint32_t tv_usec;
};

class OS_Time {
public:
    static int GetLocalTime(OS_TimeVal* out);
};

#endif
