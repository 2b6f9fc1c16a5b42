// Reading and writing unsigned integers of 1 to 4 bytes in either byte order.
// Frame fields on the serial link are big-endian, TLV fields little-endian.
#ifndef OS_BYTEORDER_H
#define OS_BYTEORDER_H

#include <stdint.h>

inline uint32_t OS_ReadOrdered(const unsigned char* p, unsigned int size, bool bigEndian)
{
    uint32_t v = 0;
    for (unsigned int i = 0; i < size; ++i)
        v |= static_cast<uint32_t>(p[i]) << (8 * (bigEndian ? size - 1 - i : i));
    return v;
}

inline void OS_WriteOrdered(unsigned char* p, uint32_t v, unsigned int size, bool bigEndian)
{
    for (unsigned int i = 0; i < size; ++i)
        p[i] = static_cast<unsigned char>(v >> (8 * (bigEndian ? size - 1 - i : i)));
}

inline uint32_t OS_ReadBigEndian32(const unsigned char* p) { return OS_ReadOrdered(p, 4, true); }
inline uint32_t OS_ReadLittleEndian16(const unsigned char* p) { return OS_ReadOrdered(p, 2, false); }
inline uint32_t OS_ReadLittleEndian32(const unsigned char* p) { return OS_ReadOrdered(p, 4, false); }

#endif
