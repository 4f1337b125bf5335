#include "report/yearband.h"

#include <algorithm>
#include <cmath>

#include "report/pagemodel.h"

namespace {

YearBand bandOf(std::vector<double>& values)
{
    if (values.empty())
        return {qQNaN(), qQNaN(), qQNaN()};
    const auto half = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), half, values.end());
    const double minimum = *std::min_element(values.begin(), half + 1);
    const double maximum = *std::max_element(half, values.end());
    if (values.size() % 2 == 1)
        return {minimum, *half, maximum};
    // The sum of two numbers may be out of range.
    return {minimum, *std::max_element(values.begin(), half) / 2.0 + *half / 2.0, maximum};
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
