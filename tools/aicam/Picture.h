// One picture taken from the handle's camera, with its side text.
#ifndef AICAM_PICTURE_H
#define AICAM_PICTURE_H

#include <vector>

struct Picture {
    int width = 0, height = 0;
    std::vector<unsigned char> bgra;
    std::vector<char> sideText;
    Picture();
};

// Asks for a picture every few milliseconds for up to timeoutS seconds: the
// library hands each picture out once and has no way to wait for the next.
// 0, -11 when none arrived, or the library's failure.
int TakePicture(void* dev, long timeoutS, Picture& picture);

#endif
