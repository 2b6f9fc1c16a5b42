// Summaries of repeated measurements.
#ifndef BENCH_REALDEVICE_STATISTICS_H
#define BENCH_REALDEVICE_STATISTICS_H

#include <string>
#include <vector>

// "median M, p90 P, min A, max B (n N)" of the samples, with their unit.
std::string Summary(std::vector<double> samples, const char* unit);
double Median(std::vector<double> samples);
// Prints the summaries of a measurement and of its baseline, then the ratio of their medians.
void PrintBeside(const char* what, const std::vector<double>& samples, const char* baselineWhat,
                 const std::vector<double>& baseline, const char* unit);
double SecondsNow();

#endif
