// Fixed-width aliases used across the operating-system layer and the protocol.
#ifndef OS_TYPES_H
#define OS_TYPES_H

#include <stdint.h>

typedef char OS_INT8;
typedef unsigned char OS_UINT8;
typedef int16_t OS_INT16;
typedef uint16_t OS_UINT16;
typedef int32_t OS_INT32;
typedef uint32_t OS_UINT32;

#endif
