#include "check/stamps.h"

#include <algorithm>

namespace {

bool isEndOfDay(const QString& text)
{
    return text.endsWith(QLatin1String("24:00"));
}

// Whether the timesteps of a year are as many as it should have, and no other has a place before
// or after them: a timestep that occurs twice may stand for a missing one. Steps of an unknown unit
// have no length and reach no beginning of a year.
bool hasAllSteps(const RunSteps& steps, std::size_t first, std::size_t end)
{
    if (static_cast<qint64>(end - first) < steps.expectedInYearOf(first))
        return false;
    const QDateTime yearEnd = steps.yearEndAfter(steps.at(first));
    return steps.length().moved(steps.at(first), -1) <= yearEnd.addYears(-1) &&
           steps.length().moved(steps.at(end - 1), 1) > yearEnd;
}

} // namespace

bool seemToBeBeginnings(const RunSteps& steps)
{
    const StepLength& length = steps.length();
    if (!steps.isWhole() || steps.count() < 2 || !length.isRegular())
        return false;
    const auto fit = [&steps](const QDateTime& begin, const QDateTime& end) {
        return int(steps.isEndOfYear(begin)) + int(steps.isEndOfYear(end));
    };
    const int beginnings = fit(steps.first(), length.moved(steps.last(), 1));
    if (beginnings <= fit(length.moved(steps.first(), -1), steps.last()))
        return false;
    // A run of months starts or ends with a year by chance, one of quarters still more often.
    constexpr int kMonthsPerYear = 12;
    const bool startsWithJanuary = steps.expectedInYearOf(0) == kMonthsPerYear &&
                                   steps.first() == yearEndIn(steps.first().date().year(), 12);
    const QStringList& texts = steps.run().timesteps;
    return (!length.isMonths() || beginnings == 2 || startsWithJanuary) &&
           std::none_of(texts.begin(), texts.end(), isEndOfDay);
}

WholeYears wholeYearsLeftOutAtStart(const RunSteps& steps)
{
    WholeYears years;
    const ValueMap& map = steps.years().valueMap;
    const auto isOfYear = [](std::int32_t year) { return year != 0; };
    const auto firstYear = std::find_if(map.begin(), map.end(), isOfYear);
    const std::size_t end =
        std::min(steps.count(), static_cast<std::size_t>(firstYear - map.begin()));
    for (std::size_t first = 0, next = 0; first < end; first = next) {
        const QDateTime yearEnd = steps.yearEndAfter(steps.at(first));
        while (next < end && steps.at(next) <= yearEnd)
            ++next;
        if (hasAllSteps(steps, first, next))
            years = {years.count == 0 ? first : years.first, next, years.count + 1};
    }
    return years;
}

WholeYears wholeYearLeftOutAtEnd(const RunSteps& steps)
{
    const ValueMap& map = steps.years().valueMap;
    const std::size_t end = steps.count();
    if (!steps.isWhole() || map.back() <= steps.years().count())
        return {};
    const auto first = static_cast<std::size_t>(
        std::lower_bound(map.begin(), map.end(), map.back()) - map.begin());
    return hasAllSteps(steps, first, end) ? WholeYears{first, end, 1} : WholeYears{};
}
