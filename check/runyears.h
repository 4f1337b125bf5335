#ifndef CHECK_RUNYEARS_H
#define CHECK_RUNYEARS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <QDateTime>
#include <QtGlobal>

#include "annualize/aggvalues.h"
#include "annualize/yearvalues.h"
#include "check/steplength.h"
#include "hts/htspackage.h"

class Conversion;
struct HtsRun;

// The end of the year, one that ends with the month `endMonth`, that a timestep belongs to.
QDateTime yearEndAfter(const QDateTime& step, int endMonth);

// The start of the first block of kValuesOfBlock of values[first, end) with one for which `is`
// holds; if there is none, of the rest after whole blocks. The values of a block are looked at at
// once, without a branch for each.
constexpr std::size_t kValuesOfBlock = 16;
template<typename Predicate>
std::size_t blockWith(const HtsColumn& values, std::size_t first, std::size_t end, Predicate is)
{
    const auto isIn = [&](std::size_t block) {
        std::int64_t count = 0;
        for (std::size_t i = block; i < block + kValuesOfBlock; ++i)
            count += is(values[i]) ? 1 : 0;
        return count > 0;
    };
    while (end - first >= kValuesOfBlock && !isIn(first))
        first += kValuesOfBlock;
    return first;
}

// A complete year of a run, beside what the calendar has.
struct RunYear
{
    QDateTime start;
    int name;          // the calendar year that it ends in
    std::size_t first; // index of its first timestep
    std::size_t end;   // index after its last timestep
    qint64 expected;   // timesteps of a full year; as many as there are for an unknown unit
    // For each timestep, how many of a full year end before it; empty if there are as many as
    // expected.
    std::vector<qint64> places;

    // How many usable values the year has, and lacks: the values of timesteps that the file leaves
    // out too.
    static qint64 presentOf(const YearValues& year) { return year.count - year.missing; }
    qint64 lackingOf(const YearValues& year) const
    {
        return std::max<qint64>(year.missing, expected - presentOf(year));
    }

    // The indexes of a slot's values that are not finite, in ascending order.
    using Missing = std::vector<std::size_t>;

    // The longest of the stretches that forEachGap() finds.
    qint64 longestGap(const Missing& missing) const;
    // The index of the first timestep with that value, one of the year's.
    std::size_t indexOf(double value, const HtsColumn& values) const;
    // Calls take(place, count) for each stretch of timesteps of the full year without a usable
    // value, of those of a slot.
    template<typename Take>
    void forEachGap(const Missing& missing, Take take) const
    {
        auto index = std::lower_bound(missing.begin(), missing.end(), first);
        if (places.empty()) {
            forEachGapOfValues(index, missing.end(), take);
            return;
        }
        qint64 next = 0;
        for (std::size_t i = first; i < end; ++i) {
            if (index != missing.end() && *index == i) {
                ++index;
                continue;
            }
            const qint64 place = places[i - first];
            if (place > next)
                take(next, place - next);
            next = std::max(next, place + 1);
        }
        if (next < expected)
            take(next, expected - next);
    }

private:
    // The same for a year without missing timesteps, which nearly all are.
    template<typename Take>
    void forEachGapOfValues(Missing::const_iterator index, Missing::const_iterator last,
                            Take take) const
    {
        while (index != last && *index < end) {
            const std::size_t begin = *index;
            std::size_t next = begin;
            while (index != last && *index == next && next < end) {
                ++index;
                ++next;
            }
            take(static_cast<qint64>(begin - first), static_cast<qint64>(next - begin));
        }
    }
};

// The complete years of the run at hand, which are those of the first run unless it has another
// timing.
class RunYears
{
public:
    // To be called with each run that the conversion has taken.
    void beginRun(const HtsRun& run, const Conversion& conversion, int endMonth);

    // As many as YearValues of each slot that is aggregated, in their order.
    const std::vector<RunYear>& years() const { return m_years; }
    // Where their values are among those of a slot.
    const YearStretches& stretches() const { return m_stretches; }
    const StepLength& stepLength() const { return m_length; }

private:
    void addYear(const HtsRun& run, std::size_t first, std::size_t end, int endMonth);

    std::vector<RunYear> m_years;
    YearStretches m_stretches;
    StepLength m_length{{}, 0};
    bool m_isOfFirstRun = false;
};

#endif // CHECK_RUNYEARS_H
