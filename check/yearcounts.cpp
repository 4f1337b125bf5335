#include "check/yearcounts.h"

#include "check/checkcontext.h"
#include "exchange/csvwriter.h"
#include "hts/datetimetext.h"
#include "hts/numbertext.h"

void YearCounts::writeHeader(CsvWriter& writer)
{
    for (const char* name :
         {"file", "run", "trace", "object", "slot", "year_end", "timesteps", "missing", "year",
          "method", "expected", "present", "longest_gap", "result", "max_time", "min_time"})
        writer.add(QString::fromLatin1(name));
    writer.endRow();
}

YearCounts::YearCounts(CsvWriter& writer, const QString& file)
    : m_writer(writer), m_file(csvField(file))
{
}

void YearCounts::runRead(const CheckContext& context)
{
    m_context = &context;
    const HtsWalk& walk = context.walk;
    m_run = m_file + ',' + QByteArray::number(walk.runIndex() + 1) + ',';
    if (walk.run().trace != -1)
        m_run += QByteArray::number(walk.run().trace);
    if (walk.run().timesteps != m_steps) {
        m_steps = walk.run().timesteps;
        m_stepFields.assign(static_cast<std::size_t>(m_steps.size()), {});
    }
    const bool hasFirstTiming = context.conversion.hasFirstTiming();
    if (m_isOfFirstRun && hasFirstTiming)
        return; // the years of the run before
    m_isOfFirstRun = hasFirstTiming;
    m_years.clear();
    const CompleteYears& years = context.conversion.runYears();
    Q_ASSERT(context.years.years().size() == static_cast<std::size_t>(years.count()));
    for (const RunYear& year : context.years.years()) {
        const QString& lastStep = years.timesteps.at(static_cast<int>(m_years.size()));
        const QByteArray end = csvField(textToDateTime(lastStep));
        const QByteArray name = QByteArray::number(year.name);
        const QByteArray expected = QByteArray::number(year.expected);
        m_years.push_back(
            {end, name, end + ',' + expected + ",0," + name, expected + ',' + expected + ",0"});
    }
}

void YearCounts::slotRead(const CheckContext& context)
{
    Q_ASSERT(m_context == &context);
    HtsWalk& walk = context.walk;
    const HtsSlot& slot = walk.slot();
    const CompleteYears& years = context.conversion.runYears();
    if (!slot.isSeries() || !years.status.ok())
        return;
    const Conversion::SlotOutcome& outcome = context.conversion.outcome();
    const std::vector<YearValues>* counts = outcome.years;
    const bool isConverted = counts != nullptr && outcome.status.ok();
    if (!isConverted) {
        QString message;
        m_aggValues.aggregate(walk.values(), context.years.stretches(), message);
        counts = &m_aggValues.years();
    }
    Q_ASSERT(counts->size() == m_years.size());
    const bool hasMethod = isConverted && context.options.control != nullptr;
    const AggMethod* method =
        hasMethod ? context.conversion.plans().at(outcome.slot).method : nullptr;
    m_method = method == nullptr ? QByteArray() : csvField(method->word);
    const QByteArray fields =
        m_run + ',' + csvField(slot.objectName) + ',' + csvField(slot.slotName);
    for (std::size_t i = 0; i < counts->size(); ++i) {
        m_writer.addFields(fields);
        addYear(i, (*counts)[i], method);
    }
}

// The fields of a row after the slot.
void YearCounts::addYear(std::size_t index, const YearValues& counts, const AggMethod* method)
{
    const RunYear& year = m_context->years.years()[index];
    const YearFields& fields = m_years[index];
    if (counts.count == year.expected && counts.missing == 0) { // faster
        m_writer.addFields(fields.wholeStart);
        m_writer.addFields(m_method);
        m_writer.addFields(fields.wholeRest);
    } else {
        m_writer.addFields(fields.end);
        m_writer.add(qint64(counts.count));
        m_writer.add(qint64(counts.missing));
        m_writer.addFields(fields.name);
        m_writer.addFields(m_method);
        m_writer.add(year.expected);
        m_writer.add(RunYear::presentOf(counts));
        m_writer.add(year.longestGap(m_context->missing));
    }
    if (method == nullptr)
        m_writer.addFields({});
    else
        m_writer.add(asWritten(method->resultFor(counts))); // as in the annual file
    addExtremes(year, counts);
    m_writer.endRow();
}

// The times of the first values that are the maximum and the minimum of the year; empty if all are
// missing.
void YearCounts::addExtremes(const RunYear& year, const YearValues& counts)
{
    if (RunYear::presentOf(counts) == 0) {
        m_writer.addFields({});
        m_writer.addFields({});
        return;
    }
    const HtsColumn& values = m_context->walk.values();
    m_writer.addFields(fieldOfStep(year.indexOf(counts.max(), values)));
    m_writer.addFields(fieldOfStep(year.indexOf(counts.min(), values)));
}

const QByteArray& YearCounts::fieldOfStep(std::size_t index)
{
    QByteArray& field = m_stepFields[index];
    if (field.isEmpty())
        field = csvField(textToDateTime(m_steps.at(static_cast<int>(index))));
    return field;
}
