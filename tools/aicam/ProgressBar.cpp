#include "ProgressBar.h"

#include <unistd.h>

#include "MonotonicClock.h"

namespace {
const int kWidth = 30;
const long long kRedrawNs = 100000000;

std::string Rate(double bytesPerSecond)
{
    char text[32];
    if (bytesPerSecond >= 1024.0 * 1024.0)
        snprintf(text, sizeof text, "%.1f MiB/s", bytesPerSecond / (1024.0 * 1024.0));
    else
        snprintf(text, sizeof text, "%.1f KiB/s", bytesPerSecond / 1024.0);
    return text;
}
}  // namespace

ProgressBar::ProgressBar(FILE* out, uint64_t total, bool quiet)
    : m_out(out), m_total(total), m_quiet(quiet), m_drawing(!quiet && isatty(fileno(out))), m_startNs(MonotonicNs())
{
}

void ProgressBar::Note(const std::string& line)
{
    if (m_quiet)
        return;
    Finish();
    fprintf(m_out, "%s\n", line.c_str());
    fflush(m_out);
}

double ProgressBar::Seconds() const { return (MonotonicNs() - m_startNs) / 1e9; }

void ProgressBar::Update(uint64_t done)
{
    if (!m_drawing)
        return;
    long long now = MonotonicNs();
    if (m_drawn && done < m_total && now - m_drawnNs < kRedrawNs)
        return;
    m_drawnNs = now;
    m_drawn = true;
    Draw(done);
}

void ProgressBar::Draw(uint64_t done)
{
    const double fraction = m_total ? static_cast<double>(done) / static_cast<double>(m_total) : 1.0;
    const int filled = static_cast<int>(fraction * kWidth);
    const std::string bar = std::string(filled, '#') + std::string(kWidth - filled, '-');
    const double seconds = Seconds();
    const double rate = seconds > 0 ? done / seconds : 0;
    const long left = rate > 0 ? static_cast<long>((m_total - done) / rate + 0.5) : 0;
    fprintf(m_out, "\r[%s] %3d%% %llu/%llu bytes  %s  %ld:%02ld left ", bar.c_str(),
            static_cast<int>(fraction * 100), static_cast<unsigned long long>(done),
            static_cast<unsigned long long>(m_total), Rate(rate).c_str(), left / 60, left % 60);
    fflush(m_out);
}

void ProgressBar::Finish()
{
    if (m_drawn)
        fprintf(m_out, "\n");
    m_drawn = false;
}
