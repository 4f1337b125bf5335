#ifndef CHECK_SHORTYEARS_H
#define CHECK_SHORTYEARS_H

#include <cstddef>
#include <vector>

#include <QString>
#include <QtGlobal>

#include "check/runsteps.h"

// A complete year with fewer timesteps than it should have.
struct ShortYear
{
    std::size_t first = 0; // index of its first timestep
    std::size_t end = 0;   // index after its last timestep
    qint64 expected = 0;
    // It begins or ends inside a year, although no timestep is missing there: a conversion ends one
    // year at each timestep until it has caught up with a gap.
    bool isCut = false;
    bool isExplained = false;

    std::size_t count() const { return end - first; }
};

// The short years of a run, and which gap they come from. A gap is named by the timestep after it;
// gap 0 is the one between `start:` and the first timestep.
class ShortYears
{
public:
    // `gaps` are those that explain short years, in ascending order. The steps outlive the object.
    ShortYears(const RunSteps& steps, std::vector<std::size_t> gaps);

    // Years as a range of list().
    struct Range
    {
        std::size_t begin = 0;
        std::size_t end = 0;

        bool isEmpty() const { return begin == end; }
    };
    // Those that come from a gap, one of those given.
    Range yearsOf(std::size_t gap) const;
    // "the year that ends 2000-12-31 24:00 counts as complete with 11 of 12 timesteps; 9 years of 1
    // timestep each count as complete"
    QString textOf(Range range) const;
    QString textOf(const ShortYear& year) const;

    const std::vector<ShortYear>& list() const { return m_years; }
    const std::vector<std::size_t>& gaps() const { return m_gaps; }

private:
    bool isConsecutive(std::size_t index) const;
    bool isCut(const ShortYear& year) const;
    bool comesFrom(const ShortYear& year, std::size_t gap) const;

    const RunSteps& m_steps;
    const std::vector<std::size_t> m_gaps;
    std::vector<ShortYear> m_years;
};

#endif // CHECK_SHORTYEARS_H
