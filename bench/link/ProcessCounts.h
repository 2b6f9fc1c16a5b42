// What the process holds: its threads and its open descriptors.
#ifndef BENCH_LINK_PROCESS_COUNTS_H
#define BENCH_LINK_PROCESS_COUNTS_H

#include <stddef.h>

size_t ThreadCount();
size_t DescriptorCount();

#endif
