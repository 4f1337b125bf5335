#include "exchange/importedruns.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <QLatin1String>

#include "hts/datetimetext.h"
#include "hts/htskeys.h"
#include "hts/htsrun.h"
#include "hts/linewriter.h"
#include "hts/quotedtext.h"
#include "hts/shortestnumber.h"

namespace {

constexpr int kMaxShown = 10; // of runs, slots and gaps

const double kMissing = std::numeric_limits<double>::quiet_NaN();

// A line with the shortest text that reads back as the same number.
void writeValue(LineWriter& lines, double value)
{
    char text[kShortestNumberRoom];
    char* end = text;
    if (std::isfinite(value)) {
        end = writeShortestNumber(text, value);
    } else {
        for (const char c : {'N', 'a', 'N'})
            *end++ = c;
    }
    *end++ = '\n';
    lines << QLatin1String(text, static_cast<int>(end - text));
}

void writeMissing(LineWriter& lines, qint64 count)
{
    for (qint64 i = 0; i < count; ++i)
        writeValue(lines, kMissing);
}

} // namespace

ImportedRuns::ImportedRuns(QString temporaryPath, bool isFilled)
    : m_isFilled(isFilled), m_spool(std::move(temporaryPath))
{
}

std::size_t ImportedRuns::addRun(int trace)
{
    m_runs.push_back({trace, {}, {}});
    return m_runs.size() - 1;
}

std::size_t ImportedRuns::addSlot(const HtsSlot& slot)
{
    m_slots.push_back(slot);
    if (m_slots.size() > 1)
        m_slots.back().shareTexts(m_slots[m_slots.size() - 2]);
    return m_slots.size() - 1;
}

std::size_t ImportedRuns::addSeries(std::size_t run, std::size_t slot)
{
    const std::size_t index = m_spool.addSeries();
    Q_ASSERT(index == m_series.size());
    m_series.push_back({run, slot, 0, 0});
    m_runs[run].series.push_back(index);
    return index;
}

Status ImportedRuns::findStep(std::size_t run, qint64 end, qint64& step)
{
    Q_ASSERT(m_step.isKnown());
    if (end < kFirstEnd || end > kLastEnd)
        return failure(QStringLiteral("the step ends before the year 1 or after 9999"));
    std::optional<qint64>& origin = m_runs[run].origin;
    if (!origin) {
        if (m_step.isMonths() && m_step.moved(m_step.moved(end, 1), -1) != end)
            return failure(
                QStringLiteral("a step of %1 cannot end at %2").arg(m_step.text(), stampText(end)));
        origin = end;
    }
    const std::optional<qint64> steps = m_step.stepsBetween(*origin, end);
    if (!steps)
        return failure(
            QStringLiteral("the step ends at %1, which is no whole number of steps of %2 "
                           "from %3; --step says how long steps are")
                .arg(stampText(end), m_step.text(), stampText(*origin)));
    step = *steps;
    return {};
}

// A series begins, or steps are missing, or the step is not later than the last one.
Status ImportedRuns::beginStretch(std::size_t series, qint64 step)
{
    constexpr qint64 kMaxMissing = 10000000;
    Series& to = m_series[series];
    if (to.first == to.next) {
        to.first = step;
        to.next = step;
        return {};
    }
    const Run& run = m_runs[to.run];
    if (step < to.next)
        return failure((step == to.next - 1
                            ? QStringLiteral("the step that ends at %1 is there twice for %2")
                            : QStringLiteral("the step that ends at %1 is earlier than the one "
                                             "before it for %2; sort the rows by time"))
                           .arg(stamp(run, step), nameOf(to)));
    if (step - to.next > kMaxMissing)
        return failure(
            QStringLiteral("%1 steps are missing between %2 and %3")
                .arg(QString::number(step - to.next), stamp(run, to.next - 1), stamp(run, step)));
    addMissing(series, to.next, step);
    if (m_isFilled) // else finish() fails
        m_spool.append(series, kMissing, step - to.next);
    to.next = step;
    return {};
}

void ImportedRuns::addMissing(std::size_t series, qint64 first, qint64 next)
{
    const std::size_t run = m_series[series].run;
    m_missingCount += next - first;
    const auto known = std::find_if(m_gaps.begin(), m_gaps.end(), [&](const Gap& gap) {
        return gap.run == run && gap.first == first && gap.next == next;
    });
    if (known != m_gaps.end())
        ++known->seriesCount;
    else if (m_gaps.size() <= kMaxShown)
        m_gaps.push_back({run, first, next, series, 1});
}

QStringList ImportedRuns::missingSteps() const
{
    QStringList lines;
    for (const Gap& gap : m_gaps) {
        const Run& run = m_runs[gap.run];
        if (m_isFilled || lines.size() == kMaxShown) {
            lines.append(m_isFilled ? QStringList() : QStringList{QStringLiteral("...")});
            break;
        }
        const QString range = gap.next - gap.first == 1
                                  ? stamp(run, gap.first)
                                  : QStringLiteral("%1 to %2, steps: %3")
                                        .arg(stamp(run, gap.first), stamp(run, gap.next - 1),
                                             QString::number(gap.next - gap.first));
        lines.append(QStringLiteral("missing for %1%2: %3")
                         .arg(nameOf(m_series[gap.series]),
                              gap.seriesCount == 1
                                  ? QString()
                                  : QStringLiteral(" and %1 more").arg(gap.seriesCount - 1),
                              range));
    }
    return lines;
}

Status ImportedRuns::addSingleValue(std::size_t series, double value)
{
    Series& to = m_series[series];
    if (to.next != to.first)
        return failure(QStringLiteral("%1 has more than one value without a time").arg(nameOf(to)));
    m_spool.append(series, value);
    ++to.next;
    return {};
}

QString ImportedRuns::nameOf(const Series& series) const
{
    const HtsSlot& slot = m_slots[series.slot];
    const QString run = QStringLiteral(" of run %1").arg(series.run + 1);
    return shown(fullSlotName(slot.objectName, slot.slotName)) +
           (m_runs.size() > 1 ? run : QString());
}

QString ImportedRuns::stamp(const Run& run, qint64 step) const
{
    return stampText(m_step.moved(*run.origin, step));
}

// Sets the steps of a run: from the first to the last of all its series.
Status ImportedRuns::findRange(Run& run) const
{
    bool isFirst = true;
    for (const std::size_t index : run.series) {
        const Series& series = m_series[index];
        if (!m_slots[series.slot].isSeries())
            continue;
        run.first = isFirst ? series.first : std::min(run.first, series.first);
        run.next = isFirst ? series.next : std::max(run.next, series.next);
        isFirst = false;
    }
    if (run.next - run.first > std::numeric_limits<int>::max())
        return failure(QStringLiteral("a run has %1 steps, more than an HTS file can have")
                           .arg(run.next - run.first));
    return isFirst ? failure(QStringLiteral("a run has no series of values")) : Status();
}

Status ImportedRuns::finish()
{
    for (Run& run : m_runs) {
        Status status = findRange(run);
        if (!status.ok())
            return status;
        for (const std::size_t index : run.series) {
            const Series& series = m_series[index];
            if (!m_slots[series.slot].isSeries())
                continue;
            if (series.first > run.first)
                addMissing(index, run.first, series.first);
            if (series.next < run.next)
                addMissing(index, series.next, run.next);
        }
    }
    m_isFinished = true;
    if (m_missingCount > 0 && !m_isFilled)
        return failure(QStringLiteral("steps are missing, and with them values: %1; --fill makes "
                                      "them missing values")
                           .arg(m_missingCount));
    return m_spool.finish();
}

QStringList ImportedRuns::summary() const
{
    QStringList lines;
    for (std::size_t i = 0; m_isFinished && i < m_runs.size() && i < kMaxShown; ++i) {
        const Run& run = m_runs[i];
        lines.append(
            QStringLiteral("run %1%2: steps of %3: %4, which end %5 to %6")
                .arg(QString::number(i + 1),
                     run.trace == -1 ? QString() : QStringLiteral(", trace %1").arg(run.trace),
                     m_step.text(), QString::number(run.next - run.first), stamp(run, run.first),
                     stamp(run, run.next - 1)));
    }
    for (std::size_t i = 0; i < m_slots.size() && i < kMaxShown; ++i)
        lines.append(QStringLiteral("slot %1 [%2]")
                         .arg(shown(fullSlotName(m_slots[i].objectName, m_slots[i].slotName)),
                              shown(m_slots[i].units.value(0))));
    if (m_runs.size() > kMaxShown)
        lines.append(QStringLiteral("runs in all: %1").arg(m_runs.size()));
    if (m_slots.size() > kMaxShown)
        lines.append(QStringLiteral("slots in all: %1").arg(m_slots.size()));
    if (m_isFilled && m_missingCount > 0)
        lines.append(QStringLiteral("values filled in as missing: %1").arg(m_missingCount));
    return lines;
}

Status ImportedRuns::write(LineWriter& lines)
{
    for (std::size_t i = 0; i < m_runs.size(); ++i) {
        Status status = writeRun(i, lines);
        if (!status.ok())
            return status;
    }
    return {};
}

Status ImportedRuns::writeRun(std::size_t index, LineWriter& lines)
{
    const Run& run = m_runs[index];
    HtsRun preamble;
    preamble.trace = run.trace;
    preamble.start = textToDateTime(stamp(run, run.first));
    preamble.end = textToDateTime(stamp(run, run.next - 1));
    preamble.timeStepUnit = m_step.unit();
    preamble.unitQuantity = m_step.quantity();
    preamble.timeStepCount = static_cast<int>(run.next - run.first);
    writeKeywordLines(kRunKeys, preamble, lines);
    lines << kEndRunPreamble << '\n';
    writeSteps(run, lines);
    for (const std::size_t series : run.series) {
        Status status = writeSeries(series, run, lines);
        if (!status.ok())
            return status;
    }
    lines << kEndRun << '\n';
    return {};
}

void ImportedRuns::writeSteps(const Run& run, LineWriter& lines) const
{
    char text[kMaxStampLength + 1];
    for (qint64 step = run.first; step < run.next; ++step) {
        char* end = writeStamp(text, m_step.moved(*run.origin, step));
        *end++ = '\n';
        lines << QLatin1String(text, static_cast<int>(end - text));
    }
}

Status ImportedRuns::writeSeries(std::size_t index, const Run& run, LineWriter& lines)
{
    const Series& series = m_series[index];
    const HtsSlot& slot = m_slots[series.slot];
    writeKeywordLines(kSlotKeys, slot, lines);
    lines << kEndSlotPreamble << '\n';
    lines << kUnitsLine.key << slot.units.value(0) << '\n' << kScaleLine.key;
    writeValue(lines, slot.scales.value(0));
    if (!slot.methods.value(0).isEmpty())
        lines << kMethodLine.key << slot.methods.value(0) << '\n';
    if (slot.isSeries())
        writeMissing(lines, series.first - run.first);
    Status status = m_spool.read(index, [&lines](const double* first, const double* last) {
        std::for_each(first, last, [&lines](double value) { writeValue(lines, value); });
    });
    if (slot.isSeries())
        writeMissing(lines, run.next - series.next);
    lines << kEndColumn << '\n' << kEndSlot << '\n';
    return status;
}
