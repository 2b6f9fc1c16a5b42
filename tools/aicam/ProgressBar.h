// Progress of a long command on stderr: at a terminal a one-line bar (bytes
// done of the total, the rate so far and the time left) redrawn in place;
// elsewhere only the lines that tell the start and the end; nothing at all
// when quiet.
#ifndef AICAM_PROGRESSBAR_H
#define AICAM_PROGRESSBAR_H

#include <stdint.h>
#include <stdio.h>

#include <string>

class ProgressBar {
public:
    // Draws the bar only when `out` is a terminal and not quiet.
    ProgressBar(FILE* out, uint64_t total, bool quiet);
    // Redraws at most every 100 ms, and always when `done` reaches the total.
    void Update(uint64_t done);
    // Ends the bar's line, so that what follows starts on a fresh one.
    void Finish();
    // A line of its own (the start, the end), unless quiet.
    void Note(const std::string& line);
    double Seconds() const;
    bool Drawing() const { return m_drawing; }

private:
    void Draw(uint64_t done);

    FILE* m_out;
    uint64_t m_total;
    bool m_quiet;
    bool m_drawing;
    long long m_startNs;
    long long m_drawnNs = 0;
    bool m_drawn = false;
};

#endif
