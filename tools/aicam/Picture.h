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

// Waits up to timeoutS seconds for a picture newer than the last one handed
// out. 0, -11 when none arrived, or the library's failure.
int TakePicture(void* dev, long timeoutS, Picture& picture);

#endif
