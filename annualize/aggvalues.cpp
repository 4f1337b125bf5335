#include "annualize/aggvalues.h"

#include <algorithm>

AggValues::~AggValues() = default;

bool AggValues::aggregate(const std::vector<double>& values,
                          const std::vector<std::int32_t>& valueMap, std::int32_t newValueCount,
                          QString& errorMessage)
{
    m_years.clear();
    if (values.size() != valueMap.size()) {
        errorMessage = kSizesDiffer;
        return false;
    }
    if (newValueCount < 0) {
        errorMessage = QStringLiteral("Number of new values cannot be negative");
        return false;
    }

    std::int32_t yearNumber = 0; // of the current year
    for (std::size_t i = 0; i < values.size();) {
        const std::size_t first = i;
        const std::int32_t number = valueMap[first];
        while (i < values.size() && valueMap[i] == number)
            ++i;
        if (number < 1 || number > newValueCount)
            continue; // without ending the current year
        if (number != yearNumber)
            m_years.emplace_back(values[first]);
        yearNumber = number;
        m_years.back().add(values.data() + first, values.data() + i);
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
