#ifndef REPORT_ENVELOPE_H
#define REPORT_ENVELOPE_H

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include <QtGlobal>

#include "hts/htspackage.h"

// The width of all charts, in columns.
constexpr int kChartColumns = 640;

// A stretch of a chart, from 0 at its left to 1 at its right end.
struct ChartRange
{
    double from;
    double to;
};

// Which timesteps of a run lie in each column of a chart, by their times.
class ChartColumns
{
public:
    // A column with timesteps, or where timesteps are missing.
    struct Column
    {
        int x;
        std::size_t begin; // index of its first timestep
        std::size_t end;   // that after its last
        bool hasGap;
    };

    // `places` are those of all timesteps, from 0 to 1. A timestep that is further left than the
    // one before it is put beside that. Timesteps are missing in the `gaps`.
    explicit ChartColumns(const std::vector<float>& places,
                          const std::vector<ChartRange>& gaps = {});
    ChartColumns() = default;

    // From left to right.
    const std::vector<Column>& list() const { return m_list; }
    std::size_t stepCount() const { return m_stepCount; }
    // The index in the list for a timestep, of which there are stepCount().
    std::size_t indexOf(std::size_t step) const;

private:
    std::vector<Column> m_list;
    std::size_t m_stepCount = 0;
};

// A slot's values as a chart of fixed width draws them: the smallest and the largest of each
// column, so that no peak is lost, however many values there are.
class Envelope
{
public:
    struct Column
    {
        float low = 1.0F; // above `high` if there is no value
        float high = 0.0F;
        qint16 x = 0;
        bool hasMissing = false; // values that are missing, or timesteps
        bool hasSentinel = false;

        bool isEmpty() const { return low > high; }
    };

    // As many values as the columns have timesteps, or fewer; `missing` are the indexes of those
    // that are not finite, in ascending order.
    Envelope(const ChartColumns& columns, const HtsColumn& values,
             const std::vector<std::size_t>& missing);
    Envelope() = default;

    // Marks the columns of the same values for which isSentinel(value) is true: the numbers that
    // may mark missing values.
    template<typename IsSentinel>
    void markSentinels(const ChartColumns& columns, const HtsColumn& values, IsSentinel isSentinel)
    {
        Q_ASSERT(m_columns.size() == columns.list().size());
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            const ChartColumns::Column& steps = columns.list()[i];
            const std::size_t end = std::min(steps.end, values.size());
            for (std::size_t step = steps.begin; step < end && !m_columns[i].hasSentinel; ++step)
                m_columns[i].hasSentinel = isSentinel(values[step]);
        }
    }

    // The index of the first of the same values that is equal to `value`, from `first` to before
    // `end`; there is one. Only columns that may have it are looked through, from that of `first`
    // on, which is `column` in the list.
    std::size_t indexOf(double value, const ChartColumns& columns, const HtsColumn& values,
                        std::size_t first, std::size_t end, std::size_t column) const;

    // Of all columns; not finite if there is no value.
    float low() const { return m_low; }
    float high() const { return m_high; }
    // As many as the chart's; none for a slot that has not been read.
    const std::vector<Column>& columns() const { return m_columns; }
    qint64 missingCount() const { return m_missing; }

private:
    std::vector<Column> m_columns;
    float m_low = std::numeric_limits<float>::infinity();
    float m_high = -std::numeric_limits<float>::infinity();
    qint64 m_missing = 0;
};

#endif // REPORT_ENVELOPE_H
