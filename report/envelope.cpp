#include "report/envelope.h"

#include <algorithm>
#include <cmath>
#include <limits>

ChartColumns::ChartColumns(const std::vector<float>& places)
{
    int column = 0;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const int next = std::max(column, columnOf(static_cast<double>(places[i])));
        std::fill(m_starts.begin() + column + 1, m_starts.begin() + next + 1, i);
        column = next;
    }
    std::fill(m_starts.begin() + column + 1, m_starts.end(), places.size());
}

void ChartColumns::addGap(double from, double to)
{
    std::fill(m_gaps.begin() + columnOf(from), m_gaps.begin() + columnOf(to) + 1, true);
}

int ChartColumns::columnOf(double place)
{
    return static_cast<int>(std::clamp(place, 0.0, 1.0) * (kChartColumns - 1) + 0.5);
}

void Envelope::add(Column& column, double value)
{
    if (!std::isfinite(value)) {
        column.hasMissing = true;
        ++m_missing;
        return;
    }
    constexpr double kMax = std::numeric_limits<float>::max();
    const auto drawn = static_cast<float>(std::clamp(value, -kMax, kMax));
    const bool isFirst = column.isEmpty();
    column.low = isFirst ? drawn : std::min(column.low, drawn);
    column.high = isFirst ? drawn : std::max(column.high, drawn);
}
