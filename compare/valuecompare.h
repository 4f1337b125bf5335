#ifndef COMPARE_VALUECOMPARE_H
#define COMPARE_VALUECOMPARE_H

#include <cstddef>

#include <QString>
#include <QStringList>

#include "compare/difference.h"
#include "hts/htspackage.h"

// By how much two finite numbers may differ and count as equal: by `absolute`, or by `relative`
// times the larger of the two without signs. Both are finite, and 0 or more.
struct Tolerance
{
    double absolute = 0;
    double relative = 0;

    // NaN equals NaN, and an infinite number only itself.
    bool areEqual(double a, double b) const;
};

// Compares pairs of values of a slot, in any order, and remembers what differs.
class ValueCompare
{
public:
    ValueCompare(const Tolerance& tolerance, const Both<const HtsColumn*>& values)
        : m_tolerance(tolerance), m_values(values)
    {
    }

    // The value at `first` of the first file with that at `second` of the second one.
    void add(std::size_t first, std::size_t second)
    {
        ++m_compared;
        const double a = (*m_values[0])[first];
        const double b = (*m_values[1])[second];
        if (!(a == b)) // faster
            addUnequal(first, second);
    }

    bool isAnyDifferent() const { return m_differing > 0; }
    // Where the first value that differs is, in both files; only if one does.
    const Both<std::size_t>& firstPlace() const { return m_first; }
    // `timesteps` are those of the first file; empty for a slot that is not a series.
    ValueDifferences differences(const QStringList& timesteps) const;

private:
    struct Largest
    {
        double size = 0;
        Both<std::size_t> place = {};
    };

    void addUnequal(std::size_t first, std::size_t second);
    NumberPair pairAt(const Both<std::size_t>& place, double size, const QStringList& steps) const;

    const Tolerance m_tolerance;
    const Both<const HtsColumn*> m_values;
    qint64 m_compared = 0;
    qint64 m_differing = 0;
    qint64 m_missingInOne = 0;
    Both<std::size_t> m_first = {};
    Largest m_absolute;
    Largest m_relative;
};

// Whether two rows of tables have the same cells, which blanks separate: numbers within the
// tolerance, or the same text.
bool areRowsEqual(const QString& first, const QString& second, const Tolerance& tolerance);

#endif // COMPARE_VALUECOMPARE_H
