#include "check/valueextent.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace {

// In these forms a NaN changes nothing, and the compiler needs no branch.
void addTo(double& low, double& high, std::int64_t& usable, double value)
{
    low = value < low ? value : low;
    high = value > high ? value : high;
    usable += std::fabs(value) <= std::numeric_limits<double>::max() ? 1 : 0;
}

} // namespace

ValueExtent extentOf(const HtsColumn& values)
{
    // Side by side, so that none waits for the one before it, and two share a register.
    constexpr std::size_t kLanes = 4;
    std::array<double, kLanes> low;
    std::array<double, kLanes> high;
    std::array<std::int64_t, kLanes> usable{};
    low.fill(ValueExtent().low);
    high.fill(ValueExtent().high);
    std::size_t i = 0;
    for (; i + kLanes <= values.size(); i += kLanes) {
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            addTo(low[lane], high[lane], usable[lane], values[i + lane]);
    }
    for (; i < values.size(); ++i)
        addTo(low[0], high[0], usable[0], values[i]);
    ValueExtent extent;
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        extent.low = std::min(extent.low, low[lane]);
        extent.high = std::max(extent.high, high[lane]);
        extent.usable += static_cast<std::size_t>(usable[lane]);
    }
    return extent;
}
