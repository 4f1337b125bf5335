#include "annualize/aggvalues.h"

#include <algorithm>

YearStretches::YearStretches(const std::vector<std::int32_t>& valueMap, std::int32_t newValueCount)
    : valueCount(valueMap.size())
{
    std::int32_t yearNumber = 0; // of the current year
    std::size_t yearCount = 0;
    for (std::size_t i = 0; i < valueMap.size();) {
        const std::size_t first = i;
        const std::int32_t number = valueMap[first];
        while (i < valueMap.size() && valueMap[i] == number)
            ++i;
        if (number < 1 || number > newValueCount)
            continue; // without ending the current year
        yearCount += number != yearNumber ? 1U : 0U;
        yearNumber = number;
        list.push_back({first, i, yearCount - 1});
    }
}

AggValues::~AggValues() = default;

bool AggValues::aggregate(const std::vector<double>& values,
                          const std::vector<std::int32_t>& valueMap, std::int32_t newValueCount,
                          QString& errorMessage)
{
    if (values.size() == valueMap.size() && newValueCount < 0) {
        m_years.clear();
        errorMessage = QStringLiteral("Number of new values cannot be negative");
        return false;
    }
    return aggregate(values, YearStretches(valueMap, newValueCount), errorMessage);
}

bool AggValues::aggregate(const std::vector<double>& values, const YearStretches& stretches,
                          QString& errorMessage)
{
    m_years.clear();
    if (values.size() != stretches.valueCount) {
        errorMessage = kSizesDiffer;
        return false;
    }
    for (const YearStretches::Stretch& stretch : stretches.list) {
        if (stretch.year == m_years.size())
            m_years.emplace_back(values[stretch.first]);
    }
    const auto valuesOf = [&values](const YearStretches::Stretch& stretch) {
        return YearValues::Range{values.data() + stretch.first, values.data() + stretch.end};
    };
    const auto end = stretches.list.end();
    for (auto next = stretches.list.begin(); next != end;) {
        const auto stretch = next++;
        YearValues& year = m_years[stretch->year];
        if (next == end || next->year == stretch->year) {
            year.add(valuesOf(*stretch));
            continue;
        }
        const auto other = next++;
        YearValues::addBoth(year, valuesOf(*stretch), m_years[other->year], valuesOf(*other));
    }
    return true;
}

std::vector<double> AggValues::results(const AggMethod& method) const
{
    Q_ASSERT(method.isSupported());
    std::vector<double> results(m_years.size());
    std::transform(m_years.begin(), m_years.end(), results.begin(),
                   [&method](const YearValues& year) { return method.resultFor(year); });
    return results;
}
