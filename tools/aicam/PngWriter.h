// A BGRA picture to a PNG file through libavcodec's PNG encoder.
#ifndef AICAM_PNGWRITER_H
#define AICAM_PNGWRITER_H

#include <string>

// 0, or kEncoderFailed / kFileUnwritable after printing the failure line.
int WritePng(const std::string& command, const std::string& path, const unsigned char* bgra, int width,
             int height);

#endif
