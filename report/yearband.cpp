#include "report/yearband.h"

#include <algorithm>
#include <cmath>

#include "report/pagemodel.h"

namespace {

YearBand bandOf(std::vector<double>& values)
{
    if (values.empty())
        return {qQNaN(), qQNaN(), qQNaN()};
    std::sort(values.begin(), values.end());
    const std::size_t half = values.size() / 2;
    // The sum of two numbers may be out of range.
    const double median =
        values.size() % 2 == 1 ? values[half] : values[half - 1] / 2.0 + values[half] / 2.0;
    return {values.front(), median, values.back()};
}

} // namespace

std::vector<YearBand> bandOf(const PageSlot& slot)
{
    std::vector<YearBand> bands;
    const std::size_t years = slot.years.size();
    std::vector<double> values;
    for (std::size_t year = 0; year < years && !slot.others.empty(); ++year) {
        values.clear();
        for (std::size_t i = year; i < slot.others.size(); i += years) {
            if (std::isfinite(slot.others[i]))
                values.push_back(slot.others[i]);
        }
        bands.push_back(bandOf(values));
    }
    return bands;
}
