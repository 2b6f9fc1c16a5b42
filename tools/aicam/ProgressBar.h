// A one-line progress bar on a terminal stream: bytes done of the total, the
// rate so far and the time left.
#ifndef AICAM_PROGRESSBAR_H
#define AICAM_PROGRESSBAR_H

#include <stdint.h>
#include <stdio.h>

class ProgressBar {
public:
    ProgressBar(FILE* out, uint64_t total);
    // Redraws at most every 100 ms, and always when `done` reaches the total.
    void Update(uint64_t done);
    // Ends the line.
    void Finish();
    double Seconds() const;

private:
    void Draw(uint64_t done);

    FILE* m_out;
    uint64_t m_total;
    long long m_startNs;
    long long m_drawnNs = 0;
    bool m_drawn = false;
};

#endif
