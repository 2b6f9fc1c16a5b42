#include "Statistics.h"

#include <stdio.h>

#include <algorithm>
#include <chrono>

namespace {
double At(const std::vector<double>& sorted, double fraction)
{
    return sorted[static_cast<size_t>(fraction * static_cast<double>(sorted.size() - 1) + 0.5)];
}
}  // namespace

double Median(std::vector<double> samples)
{
    if (samples.empty())
        return 0;
    std::sort(samples.begin(), samples.end());
    return At(samples, 0.5);
}

std::string Summary(std::vector<double> samples, const char* unit)
{
    if (samples.empty())
        return "no samples";
    std::sort(samples.begin(), samples.end());
    char text[160];
    snprintf(text, sizeof text, "median %.2f %s, p90 %.2f, min %.2f, max %.2f (n %zu)", At(samples, 0.5), unit,
             At(samples, 0.9), samples.front(), samples.back(), samples.size());
    return text;
}

double SecondsNow() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

void PrintBeside(const char* what, const std::vector<double>& samples, const char* baselineWhat,
                 const std::vector<double>& baseline, const char* unit)
{
    printf("%s: %s\n", what, Summary(samples, unit).c_str());
    printf("%s: %s\n", baselineWhat, Summary(baseline, unit).c_str());
    if (!samples.empty() && !baseline.empty())
        printf("  ratio of the medians: %.2f\n", Median(samples) / Median(baseline));
}
