#include "report/envelope.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

int columnOf(double place)
{
    return static_cast<int>(std::lround(std::clamp(place, 0.0, 1.0) * (kChartColumns - 1)));
}

} // namespace

ChartColumns::ChartColumns(const std::vector<float>& places, const std::vector<ChartRange>& gaps)
    : m_stepCount(places.size())
{
    std::vector<bool> hasGap(kChartColumns);
    for (const ChartRange& gap : gaps)
        std::fill(hasGap.begin() + columnOf(gap.from), hasGap.begin() + columnOf(gap.to) + 1, true);
    std::size_t step = 0;
    for (int x = 0; x < kChartColumns; ++x) {
        const std::size_t begin = step;
        while (step < places.size() && columnOf(static_cast<double>(places[step])) <= x)
            ++step;
        const bool isInGap = hasGap[static_cast<std::size_t>(x)];
        if (step > begin || isInGap)
            m_list.push_back({x, begin, step, isInGap});
    }
    Q_ASSERT(step == places.size());
}

std::size_t ChartColumns::indexOf(std::size_t step) const
{
    Q_ASSERT(step < stepCount());
    const auto column =
        std::upper_bound(m_list.begin(), m_list.end(), step,
                         [](std::size_t wanted, const Column& each) { return wanted < each.end; });
    return static_cast<std::size_t>(column - m_list.begin());
}

namespace {

struct Range
{
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    bool isEmpty() const { return low > high; }
    void add(double value)
    {
        // In this form they need no branch.
        low = value < low ? value : low;
        high = value > high ? value : high;
    }
    // In turn: a comparison waits for the one before it.
    void add(const double* value, const double* end)
    {
        Range other = *this;
        Range range = *this;
        for (; end - value >= 2; value += 2) {
            range.add(value[0]);
            other.add(value[1]);
        }
        if (value < end)
            range.add(*value);
        low = std::min(range.low, other.low);
        high = std::max(range.high, other.high);
    }
};

float drawn(double value)
{
    constexpr double kMax = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value, -kMax, kMax));
}

} // namespace

Envelope::Envelope(const ChartColumns& columns, const HtsColumn& values,
                   const std::vector<std::size_t>& missing)
    : m_missing(static_cast<qint64>(columns.stepCount() - values.size() + missing.size()))
{
    Q_ASSERT(values.size() <= columns.stepCount());
    m_columns.reserve(columns.list().size());
    auto nextMissing = missing.begin();
    for (const ChartColumns::Column& steps : columns.list()) {
        Column& column = m_columns.emplace_back();
        column.x = static_cast<qint16>(steps.x);
        column.hasMissing = steps.hasGap || steps.end > values.size();
        Range range;
        const std::size_t end = std::min(steps.end, values.size());
        for (std::size_t step = steps.begin; step < end;) {
            const std::size_t stop =
                nextMissing == missing.end() ? end : std::min(*nextMissing, end);
            range.add(values.data() + step, values.data() + stop);
            column.hasMissing = column.hasMissing || stop < end;
            nextMissing += stop < end ? 1 : 0;
            step = stop + 1;
        }
        if (range.isEmpty())
            continue;
        column.low = drawn(range.low);
        column.high = drawn(range.high);
        m_low = std::min(m_low, column.low);
        m_high = std::max(m_high, column.high);
    }
}

std::size_t Envelope::indexOf(double value, const ChartColumns& columns, const HtsColumn& values,
                              std::size_t first, std::size_t end, std::size_t column) const
{
    Q_ASSERT(m_columns.size() == columns.list().size() && column == columns.indexOf(first));
    const float wanted = drawn(value);
    for (;; ++column) {
        Q_ASSERT(column < m_columns.size());
        const Column& range = m_columns[column];
        if (wanted < range.low || wanted > range.high)
            continue;
        const ChartColumns::Column& steps = columns.list()[column];
        const std::size_t last = std::min(steps.end, end);
        for (std::size_t step = std::max(steps.begin, first); step < last; ++step) {
            if (values[step] == value)
                return step;
        }
    }
}
