// Spaces the pictures of a replayed recording at its frame rate.
#ifndef AICAMERA_PLAYBACKPACER_H
#define AICAMERA_PLAYBACKPACER_H

#include <time.h>

class PlaybackPacer {
public:
    PlaybackPacer();
    // Starts a new schedule whose first slot is now.
    void Start(int framesPerSecond);
    // Sleeps until the next slot. A reader that fell behind by more than one
    // interval starts a new schedule instead of bursting to catch up.
    void WaitNextSlot();

private:
    long long m_nIntervalNs;
    long long m_nNextNs;
};

#endif
