// Time since an arbitrary start that never jumps, for rates and deadlines.
#ifndef AICAM_MONOTONICCLOCK_H
#define AICAM_MONOTONICCLOCK_H

long long MonotonicNs();
inline long long MonotonicMs() { return MonotonicNs() / 1000000; }

#endif
