#include "check/runyears.h"

#include "annualize/conversion.h"
#include "hts/datetimetext.h"
#include "hts/htsrun.h"

QDateTime yearEndAfter(const QDateTime& step, int endMonth)
{
    const QDateTime end = yearEndIn(step.date().year(), endMonth);
    return end < step ? end.addYears(1) : end;
}

qint64 RunYear::longestGap(const Missing& missing) const
{
    qint64 longest = 0;
    forEachGap(missing, [&longest](qint64, qint64 count) { longest = std::max(longest, count); });
    return longest;
}

std::size_t RunYear::indexOf(double value, const HtsColumn& values) const
{
    const std::size_t block =
        blockWith(values, first, end, [value](double other) { return other == value; });
    std::size_t index = end;
    // To the start of the block, and not only to the value: where that is the processor cannot
    // predict.
    for (std::size_t i = std::min(block + kValuesOfBlock, end); i-- > block;)
        index = values[i] == value ? i : index;
    Q_ASSERT(index < end);
    return index;
}

void RunYears::beginRun(const HtsRun& run, const Conversion& conversion, int endMonth)
{
    if (m_isOfFirstRun && conversion.hasFirstTiming())
        return;
    m_isOfFirstRun = conversion.hasFirstTiming();
    m_years.clear();
    m_length = StepLength(run.timeStepUnit, run.unitQuantity);
    const CompleteYears& years = conversion.runYears();
    m_stretches = YearStretches(years.valueMap, years.count());
    for (const YearStretches::Stretch& stretch : m_stretches.list) // one for each year
        addYear(run, stretch.first, stretch.end, endMonth);
}

void RunYears::addYear(const HtsRun& run, std::size_t first, std::size_t end, int endMonth)
{
    const auto stepAt = [&run](std::size_t index) {
        return textToDateTime(run.timesteps.at(static_cast<int>(index)));
    };
    const auto count = static_cast<qint64>(end - first);
    const QDateTime last = stepAt(end - 1);
    const QDateTime yearEnd = yearEndAfter(last, endMonth);
    RunYear year;
    year.start = yearEnd.addYears(-1);
    year.name = yearEnd.addDays(-1).date().year();
    year.first = first;
    year.end = end;
    year.expected = m_length.isKnown() ? m_length.stepsOfYear(year.start, yearEnd, last) : count;
    for (std::size_t i = first; i < end && count != year.expected; ++i)
        year.places.push_back(m_length.stepsBefore(year.start, stepAt(i)));
    m_years.push_back(std::move(year));
}
