#ifndef REPORT_ENVELOPE_H
#define REPORT_ENVELOPE_H

#include <cstddef>
#include <vector>

#include <QtGlobal>

#include "hts/htspackage.h"

// The width of all charts, in columns.
constexpr int kChartColumns = 640;

// Which timesteps of a run lie in each column of a chart, by their times.
class ChartColumns
{
public:
    // `places` are those of all timesteps, from 0 at the left to 1 at the right end of the chart. A
    // timestep that is further left than the one before it is put beside that.
    explicit ChartColumns(const std::vector<float>& places);
    ChartColumns() = default;

    // Marks the columns from one place to another: timesteps are missing there.
    void addGap(double from, double to);
    bool hasGap(int column) const { return m_gaps[static_cast<std::size_t>(column)]; }

    // The index of the first timestep of a column, and that after the last.
    std::size_t begin(int column) const { return m_starts[static_cast<std::size_t>(column)]; }
    std::size_t end(int column) const { return m_starts[static_cast<std::size_t>(column) + 1]; }
    std::size_t stepCount() const { return m_starts.back(); }

    // The column of a place, which is 0 to 1.
    static int columnOf(double place);

private:
    std::vector<std::size_t> m_starts = std::vector<std::size_t>(kChartColumns + 1);
    std::vector<bool> m_gaps = std::vector<bool>(kChartColumns);
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
        bool hasMissing = false; // values that are missing, or timesteps
        bool hasSentinel = false;

        bool isEmpty() const { return low > high; }
    };

    // As many values as the columns have timesteps, or fewer. `isSentinel` says of each value
    // whether it is a number that marks missing values.
    template<typename IsSentinel>
    Envelope(const ChartColumns& columns, const HtsColumn& values, IsSentinel isSentinel)
        : m_columns(kChartColumns)
    {
        for (int i = 0; i < kChartColumns; ++i) {
            Column& column = m_columns[static_cast<std::size_t>(i)];
            column.hasMissing = columns.hasGap(i);
            for (std::size_t step = columns.begin(i); step < columns.end(i); ++step) {
                const bool isThere = step < values.size();
                if (isThere && isSentinel(values[step])) {
                    column.hasSentinel = true;
                    ++m_sentinels;
                }
                add(column, isThere ? values[step] : qQNaN());
            }
        }
    }
    Envelope() = default;

    // kChartColumns; none for a slot that has not been read.
    const std::vector<Column>& columns() const { return m_columns; }
    qint64 missingCount() const { return m_missing; }
    qint64 sentinelCount() const { return m_sentinels; }

private:
    void add(Column& column, double value);

    std::vector<Column> m_columns;
    qint64 m_missing = 0;
    qint64 m_sentinels = 0;
};

#endif // REPORT_ENVELOPE_H
