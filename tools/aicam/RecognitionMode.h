// The recognition mode a report belongs to. The module writes it into each
// recognition report ("mode":"1:N" or "mode":"1:1"); a report of another mode
// than the one just started is a leftover of an earlier recognition that was
// still on its way when that one was paused.
#ifndef AICAM_RECOGNITIONMODE_H
#define AICAM_RECOGNITIONMODE_H

#include <string>

enum class RecognitionMode { Unnamed, OneToMany, OneToOne };

// The mode named in the report's text (up to its first zero byte, so an image
// report's JPEG is not searched); Unnamed for reports that name none.
RecognitionMode ModeOfReport(const std::string& bytes);

// True when the report names a mode and it is not `started`.
bool IsOfOtherMode(const std::string& bytes, RecognitionMode started);

#endif
