#include "compare/valuecompare.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// At most the largest number: that of numbers with different signs may be out of range.
double absoluteDifference(double a, double b)
{
    return std::min(std::abs(a - b), std::numeric_limits<double>::max());
}

double relativeDifference(double a, double b)
{
    const double larger = std::max(std::abs(a), std::abs(b));
    return std::abs(a / larger - b / larger);
}

} // namespace

bool Tolerance::areEqual(double a, double b) const
{
    if (a == b || (std::isnan(a) && std::isnan(b)))
        return true;
    const double larger = std::max(std::abs(a), std::abs(b));
    return std::isfinite(a) && std::isfinite(b) &&
           absoluteDifference(a, b) <= std::max(absolute, relative * larger);
}

void ValueCompare::addUnequal(std::size_t first, std::size_t second)
{
    const double a = (*m_values[0])[first];
    const double b = (*m_values[1])[second];
    if (m_tolerance.areEqual(a, b))
        return;
    const Both<std::size_t> place = {first, second};
    if (m_differing++ == 0)
        m_first = place;
    m_missingInOne += std::isfinite(a) != std::isfinite(b) ? 1 : 0;
    if (!std::isfinite(a) || !std::isfinite(b))
        return;
    if (const double size = absoluteDifference(a, b); size > m_absolute.size)
        m_absolute = {size, place};
    if (const double size = relativeDifference(a, b); size > m_relative.size)
        m_relative = {size, place};
}

NumberPair ValueCompare::pairAt(const Both<std::size_t>& place, double size,
                                const QStringList& steps) const
{
    return {steps.value(static_cast<int>(place[0])),
            {(*m_values[0])[place[0]], (*m_values[1])[place[1]]},
            size};
}

ValueDifferences ValueCompare::differences(const QStringList& timesteps) const
{
    ValueDifferences found;
    found.compared = m_compared;
    found.differing = m_differing;
    found.missingInOne = m_missingInOne;
    if (m_differing == 0)
        return found;
    found.first = pairAt(m_first, 0, timesteps);
    if (m_absolute.size > 0) {
        found.largestAbsolute = pairAt(m_absolute.place, m_absolute.size, timesteps);
        found.largestRelative = pairAt(m_relative.place, m_relative.size, timesteps);
    }
    return found;
}

bool areRowsEqual(const QString& first, const QString& second, const Tolerance& tolerance)
{
    if (first == second)
        return true;
    const QStringList a = first.simplified().split(QLatin1Char(' '));
    const QStringList b = second.simplified().split(QLatin1Char(' '));
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&tolerance](const QString& cell, const QString& other) {
                          bool isNumber = false;
                          bool isOther = false;
                          const double x = cell.toDouble(&isNumber);
                          const double y = other.toDouble(&isOther);
                          return cell == other || (isNumber && isOther && tolerance.areEqual(x, y));
                      });
}
