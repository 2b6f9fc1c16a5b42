// Whole files in and out, with the tool's failure line on error.
#ifndef AICAM_FILEDATA_H
#define AICAM_FILEDATA_H

#include <stddef.h>

#include <functional>
#include <string>
#include <vector>

using ByteVector = std::vector<unsigned char>;

// 0, or kFileUnreadable / kFileUnwritable after printing "aicam: <command>: ...".
// A file to send must hold 1 byte to 1 GiB (-4 otherwise).
int ReadWholeFile(const std::string& command, const std::string& path, ByteVector& data);
int WriteWholeFile(const std::string& command, const std::string& path, const void* data, size_t size);

class Arguments;
// Takes the last positional argument, FILE, finishes the command line and
// reads FILE whole; 0 or the failure's code (its line printed).
int FinishWithFile(Arguments& args, const std::string& command, std::string& path, ByteVector& data);

// Slices of images and packages: every slice is one request that the module
// must store and answer within the library's 10 s.
const long kMaxSliceBytes = 1 << 20;
const long kDefaultSliceBytes = 4096;

// Calls send(offset, bytes, size, isLast) for each slice of `data` in order
// and stops at the first non-zero result, which it returns.
using SliceSender = std::function<int(unsigned int offset, const unsigned char* bytes, unsigned int size, bool isLast)>;
int SendInSlices(const ByteVector& data, unsigned int sliceSize, const SliceSender& send);

#endif
