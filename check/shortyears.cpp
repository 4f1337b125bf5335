#include "check/shortyears.h"

#include <algorithm>
#include <utility>

#include <QStringList>

#include "check/findinglist.h"

ShortYears::ShortYears(const RunSteps& steps, std::vector<std::size_t> gaps)
    : m_steps(steps), m_gaps(std::move(gaps))
{
    ShortYear year;
    for (; year.first < steps.count(); year.first = year.end) {
        year.end = steps.endOfYearAt(year.first);
        year.expected = steps.expectedInYearOf(year.end - 1);
        const bool isShort = static_cast<qint64>(year.count()) < year.expected;
        if (!isShort || !steps.isInCompleteYear(year.first))
            continue;
        year.isCut = isCut(year);
        m_years.push_back(year);
    }
    for (const std::size_t gap : m_gaps) {
        const Range range = yearsOf(gap);
        for (std::size_t i = range.begin; i < range.end; ++i)
            m_years[i].isExplained = true;
    }
}

// Whether a timestep is the next after the one before it, and in the same year.
bool ShortYears::isConsecutive(std::size_t index) const
{
    if (index == 0 || index >= m_steps.count())
        return false;
    const QDateTime& step = m_steps.at(index);
    const QDateTime& previous = m_steps.at(index - 1);
    return m_steps.yearEndAfter(previous) == m_steps.yearEndAfter(step) &&
           m_steps.length().stepsBetween(previous, step) == 1;
}

bool ShortYears::isCut(const ShortYear& year) const
{
    return isConsecutive(year.first) || isConsecutive(year.end);
}

bool ShortYears::comesFrom(const ShortYear& year, std::size_t gap) const
{
    if (gap == 0)
        return year.first == 0;
    const StepLength& length = m_steps.length();
    const QDateTime& before = m_steps.at(gap - 1);
    const QDateTime& after = m_steps.at(gap);
    const QDateTime yearStart = m_steps.yearEndAfter(after).addYears(-1);
    if (gap == year.end) { // the year lacks its end, unless it has one timestep anyway
        const bool isOfOtherGap = year.isCut && year.count() == 1;
        return !isOfOtherGap && length.moved(before, 1) <= m_steps.yearEndAfter(before);
    }
    if (gap == year.first) // the year lacks its beginning, or the rest of it
        return year.isCut || yearStart < length.moved(after, -1);
    return year.first < gap; // and ends after it
}

ShortYears::Range ShortYears::yearsOf(std::size_t gap) const
{
    const auto endsBefore = [](const ShortYear& year, std::size_t index) {
        return year.end < index;
    };
    auto year = std::lower_bound(m_years.begin(), m_years.end(), gap, endsBefore);
    while (year != m_years.end() && year->first <= gap && !comesFrom(*year, gap))
        ++year;
    const auto begin = year;
    while (year != m_years.end() && comesFrom(*year, gap))
        ++year;
    // The years that catch up, unless there is another gap before they have.
    const auto nextGap = std::upper_bound(m_gaps.begin(), m_gaps.end(), gap);
    while (year != m_years.end() && year != begin && year->isCut &&
           year->first == std::prev(year)->end &&
           (nextGap == m_gaps.end() || year->first < *nextGap))
        ++year;
    return {static_cast<std::size_t>(begin - m_years.begin()),
            static_cast<std::size_t>(year - m_years.begin())};
}

QString ShortYears::textOf(Range range) const
{
    QStringList texts;
    for (std::size_t i = range.begin; i < range.end;) {
        std::size_t next = i;
        while (next < range.end && m_years[next].count() == 1)
            ++next;
        if (next > i + 1) {
            texts.append(worded("%1 years of 1 timestep each count as complete", next - i));
            i = next;
            continue;
        }
        texts.append(textOf(m_years[i]));
        ++i;
    }
    return texts.join(QLatin1String("; "));
}

QString ShortYears::textOf(const ShortYear& year) const
{
    return worded("the year that ends %1 counts as complete with %2 of %3 timesteps",
                  m_steps.text(year.end - 1), year.count(), year.expected);
}
