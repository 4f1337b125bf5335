#ifndef EXCHANGE_IMPORTEDRUNS_H
#define EXCHANGE_IMPORTEDRUNS_H

#include <cstddef>
#include <optional>
#include <vector>

#include <QString>
#include <QStringList>
#include <QtGlobal>

#include "exchange/tabletime.h"
#include "exchange/valuespool.h"
#include "hts/htsslot.h"
#include "hts/status.h"

class LineWriter;

// The runs, slots and values of a table, put in order for an HTS file.
class ImportedRuns
{
public:
    // With `isFilled`, missing steps become missing values.
    ImportedRuns(QString temporaryPath, bool isFilled);

    // All steps are of this length. To be called before anything else.
    void setStep(const TableStep& step) { m_step = step; }
    // Return the index of what is new; -1 is no trace.
    std::size_t addRun(int trace);
    std::size_t addSlot(const HtsSlot& slot);
    const HtsSlot& slot(std::size_t index) const { return m_slots[index]; }
    // A slot in a run gets its place in the run when it is added first.
    std::size_t addSeries(std::size_t run, std::size_t slot);

    // The number of the step of `run` that ends at the instant `end`, counted from the first that
    // was asked for. Fails if that is no whole number of steps away.
    Status findStep(std::size_t run, qint64 end, qint64& step);
    // Adds the value of a step, which is later than the last one of the series. Fails otherwise.
    Status addValue(std::size_t series, qint64 step, double value)
    {
        Series& to = m_series[series];
        if (step != to.next || to.first == to.next) {
            Status status = beginStretch(series, step);
            if (!status.ok())
                return status;
        }
        m_spool.append(series, value);
        ++to.next;
        return {};
    }
    // Adds the value of a slot that is no series. Fails if it has one.
    Status addSingleValue(std::size_t series, double value);

    // Call it after the last value. Fails if steps are missing, and if the temporary file could
    // not be written.
    Status finish();
    // The first places where steps are missing and were not filled, a line each.
    QStringList missingSteps() const;
    // Of the runs, slots and steps, a line each.
    QStringList summary() const;

    // Whether a failure is one of the temporary file.
    bool hasFileFailed() const { return m_spool.hasFailed(); }

    int runCount() const { return static_cast<int>(m_runs.size()); }
    // Writes the runs. Fails if the temporary file cannot be read.
    Status write(LineWriter& lines);

private:
    // Steps are counted from the origin of the run.
    struct Series
    {
        std::size_t run;
        std::size_t slot;
        qint64 first; // step
        qint64 next;  // the step after the last; the same if there are no values
    };
    struct Run
    {
        int trace;
        std::optional<qint64> origin; // the end of step 0
        std::vector<std::size_t> series;
        qint64 first = 0; // steps of the run, known at the end
        qint64 next = 0;
    };

    // Missing steps of one or more series of a run.
    struct Gap
    {
        std::size_t run;
        qint64 first;
        qint64 next;
        std::size_t series; // the first of them
        int seriesCount;
    };

    Status beginStretch(std::size_t series, qint64 step);
    void addMissing(std::size_t series, qint64 first, qint64 next);
    Status findRange(Run& run) const;
    QString nameOf(const Series& series) const;
    QString stamp(const Run& run, qint64 step) const;
    Status writeRun(std::size_t index, LineWriter& lines);
    void writeSteps(const Run& run, LineWriter& lines) const;
    Status writeSeries(std::size_t index, const Run& run, LineWriter& lines);

    TableStep m_step;
    const bool m_isFilled;
    std::vector<Run> m_runs;
    std::vector<HtsSlot> m_slots;
    std::vector<Series> m_series;
    ValueSpool m_spool;
    qint64 m_missingCount = 0; // of values that lack because their step does
    std::vector<Gap> m_gaps;   // the first ones
    bool m_isFinished = false;
};

#endif // EXCHANGE_IMPORTEDRUNS_H
