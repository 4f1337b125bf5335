#include "annualize/timestepunit.h"

#include <algorithm>

namespace {

constexpr qint64 kMinutesPerHour = 60;
constexpr qint64 kMinutesPerDay = 24 * kMinutesPerHour;
constexpr qint64 kSecondsPerMinute = 60;

bool endsWithYear(const QDateTime& lastTimestep, const QDateTime& yearEnd)
{
    return lastTimestep == yearEnd;
}

// The last week must end before the year does: one that ends with the year to the minute
// deliberately doesn't complete it, although it counts to that year when more weeks follow.
bool endsInLastWeek(const QDateTime& lastTimestep, const QDateTime& yearEnd)
{
    return lastTimestep < yearEnd && yearEnd.addDays(-7) < lastTimestep;
}

const TimestepUnit kDay = {QLatin1String("day"), 0, kMinutesPerDay, endsWithYear};

} // namespace

QDateTime TimestepUnit::latestEndOfFirst(const QDateTime& yearStart) const
{
    if (months > 0)
        return yearStart.addMonths(months);
    return yearStart.addSecs(std::max(minutes, kMinutesPerDay) * kSecondsPerMinute);
}

QDateTime TimestepUnit::beginOf(const QDateTime& end, int quantity) const
{
    constexpr int kMaxMonths = 12;
    return months > 0
               ? end.addMonths(-std::min(months * std::clamp(quantity, 1, kMaxMonths), kMaxMonths))
               : end.addSecs(-minutes * kSecondsPerMinute * std::max(quantity, 1));
}

const std::vector<TimestepUnit>& timestepUnits()
{
    static const std::vector<TimestepUnit> kUnits = {
        // word, months or minutes, what completes a year
        {QLatin1String("year"), 12, 0, nullptr},
        {QLatin1String("month"), 1, 0, endsWithYear},
        {QLatin1String("week"), 0, 7 * kMinutesPerDay, endsInLastWeek},
        kDay,
        {QLatin1String("hour"), 0, kMinutesPerHour, endsWithYear},
        {QLatin1String("minute"), 0, 1, endsWithYear},
    };
    return kUnits;
}

const TimestepUnit* findTimestepUnit(const QString& word)
{
    const std::vector<TimestepUnit>& units = timestepUnits();
    const auto unit =
        std::find_if(units.begin(), units.end(),
                     [&word](const TimestepUnit& candidate) { return word == candidate.word; });
    return unit == units.end() ? nullptr : &*unit;
}

const TimestepUnit& timestepUnitOrDay(const QString& word)
{
    const TimestepUnit* unit = findTimestepUnit(word);
    return unit == nullptr ? kDay : *unit;
}
