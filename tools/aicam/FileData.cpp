#include "FileData.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>

#include "Arguments.h"
#include "ResultText.h"

namespace {
// Offsets on the wire are 32 bits; nothing the module takes comes near this.
const size_t kMaxInputBytes = size_t(1) << 30;
}  // namespace

int ReadWholeFile(const std::string& command, const std::string& path, ByteVector& data)
{
    FILE* file = fopen(path.c_str(), "rb");
    if (!file)
        return Fail(command, kFileUnreadable, "cannot read " + path + ": " + strerror(errno));
    data.clear();
    unsigned char block[65536];
    size_t got = 0;
    while ((got = fread(block, 1, sizeof block, file)) > 0)
        data.insert(data.end(), block, block + got);
    bool failed = ferror(file) != 0;
    fclose(file);
    if (failed)
        return Fail(command, kFileUnreadable, "cannot read " + path);
    if (data.empty())
        return Fail(command, kUsage, path + " is empty");
    if (data.size() > kMaxInputBytes)
        return Fail(command, kUsage, path + " is larger than 1 GiB");
    return 0;
}

int WriteWholeFile(const std::string& command, const std::string& path, const void* data, size_t size)
{
    FILE* file = fopen(path.c_str(), "wb");
    if (!file)
        return Fail(command, kFileUnwritable, "cannot write " + path + ": " + strerror(errno));
    bool failed = fwrite(data, 1, size, file) != size;
    failed = fclose(file) != 0 || failed;
    if (failed)
        return Fail(command, kFileUnwritable, "cannot write " + path);
    return 0;
}

int FinishWithFile(Arguments& args, const std::string& command, std::string& path, ByteVector& data)
{
    args.Next("FILE", path);
    if (int result = args.Finish(command))
        return result;
    return ReadWholeFile(command, path, data);
}

int SendInSlices(const ByteVector& data, unsigned int sliceSize, const SliceSender& send)
{
    size_t offset = 0;
    do {
        size_t size = data.size() - offset < sliceSize ? data.size() - offset : sliceSize;
        bool isLast = offset + size >= data.size();
        int result =
            send(static_cast<unsigned int>(offset), data.data() + offset, static_cast<unsigned int>(size), isLast);
        if (result != 0)
            return result;
        offset += size;
    } while (offset < data.size());
    return 0;
}
