#ifndef REPORT_YEARBAND_H
#define REPORT_YEARBAND_H

#include <vector>

struct PageSlot;

// The annual values of one year in several runs; NaN if no run has one.
struct YearBand
{
    double minimum;
    double median;
    double maximum;
};

// Those of the other runs, one for each year of the slot; none if there are no other runs.
std::vector<YearBand> bandOf(const PageSlot& slot);

#endif // REPORT_YEARBAND_H
