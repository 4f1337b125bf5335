#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "check/knownlines.h"
#include "check/nearwords.h"
#include "check/numberhint.h"
#include "check/sentinels.h"
#include "check/topiccheck.h"
#include "hts/htskeys.h"
#include "hts/numbertext.h"
#include "hts/quotedtext.h"

namespace {

constexpr FindingKind kTooFewValues = {
    Severity::Warning, "too-few-values",
    "A slot has fewer values than its run has timesteps: end lines are read as values of 0, and "
    "the next slot loses lines.",
    "Find the missing value; every later one belongs to the timestep after it."};
constexpr FindingKind kTooManyValues = {
    Severity::Warning, "too-many-values",
    "A slot has more values than its run has timesteps; the last ones are left out.",
    "Find the additional value; every later one belongs to the timestep before it."};
constexpr FindingKind kEndColumnLine = {
    Severity::Warning, "end-column",
    "There is another line instead of `END_COLUMN`; it is dropped.",
    "Check whether the line is missing, in another place or misspelt; the next slot may have lost "
    "a line."};
constexpr FindingKind kEndSlotLine = {
    Severity::Warning, "end-slot", "There is another line instead of `END_SLOT`; it is dropped.",
    "Check whether the line is missing, in another place or misspelt; the next slot may have lost "
    "a line."};
constexpr FindingKind kBlankValue = {Severity::Warning, "blank-value",
                                     "There is an empty line among the values; it counts as 0.",
                                     "Write `NaN` for a missing value, or remove the line."};
constexpr FindingKind kMethodLineAsValue = {
    Severity::Warning, "method-line",
    "The method line does not follow the scale line directly, from its first byte on; it is read "
    "as a value.",
    "Remove the blank or the line before it."};
constexpr FindingKind kTextValue = {
    Severity::Warning, "text-value", "There is text instead of a number; it counts as 0.",
    "Write a number with a decimal point and nothing else, or `NaN` for a missing value."};
constexpr FindingKind kInfiniteValue = {Severity::Note, "infinite-value",
                                        "A value is infinite, and counts as missing.",
                                        "Write `NaN`, or the number that is meant."};
constexpr FindingKind kSentinel = {
    Severity::Note, "sentinel",
    "A number that often marks a missing value occurs outside the range of the slot's other "
    "values, or repeatedly; it counts as a number, and may be one. Between the other values it is "
    "reported if it occurs twice, and more often than any value within 1 % of it; or if "
    "`--sentinel` gives it.",
    "Write `NaN` if it marks missing values."};
constexpr FindingKind kFarSentinel = {
    Severity::Warning, "far-sentinel",
    "A number that often marks a missing value lies far outside the slot's other values, and "
    "counts "
    "as a number. Far means: it is negative and they are not, or further from their range than the "
    "range is wide, three times that if it occurs once.",
    "Write `NaN` for missing values."};
constexpr FindingKind kMissingValues = {
    Severity::Note, "missing-values", "Values of a slot are missing.",
    "Choose its method accordingly; `--counts` has the numbers for each year."};

bool isNan(std::string_view line)
{
    constexpr std::size_t kLength = 3;
    return line.size() == kLength && (line[0] | ' ') == 'n' && (line[1] | ' ') == 'a' &&
           (line[2] | ' ') == 'n';
}

// Checks the values of one slot after another: while they are read, the lines that are not plain
// numbers; then the numbers; then the two lines that end the slot.
class ValueCheck : public LineCheck
{
public:
    using LineCheck::LineCheck;

    void beforeValues() override;
    void oddValueLine(std::size_t index, qint64 lineNumber, std::string_view line) override;
    void endLine(QLatin1String expected, std::string_view line) override;

private:
    void checkOddLine(std::size_t index, qint64 lineNumber, std::string_view line);
    void checkNumber(qint64 lineNumber, std::string_view line);
    void reportText(qint64 lineNumber, std::string_view line);
    void reportMissing(std::size_t missing, qint64 firstLine);
    void reportSentinels(const HtsColumn& values, qint64 firstLine);
    void reportEndColumn(std::string_view line);
    void reportEndLine(const FindingKind& kind, QLatin1String expected, std::string_view line);

    // The slot at hand.
    QString m_slotName;
    int m_count = 0; // of its values
    std::size_t m_infiniteValues = 0;
    std::vector<std::size_t> m_noNumbers; // indexes of lines that are none, and count as 0
    std::size_t m_ownValues = 0;          // before the first line that is not the slot's
    bool m_isColumnReported = false;
};

void ValueCheck::beforeValues()
{
    HtsWalk& walk = m_context.walk;
    m_slotName = fullSlotName(walk.slot().objectName, walk.slot().slotName);
    m_count = walk.slot().valueCount(walk.run());
    m_infiniteValues = 0;
    m_noNumbers.clear();
    m_context.missing.clear();
    m_ownValues = std::numeric_limits<std::size_t>::max();
    m_context.recovery.beginValues();
    const qint64 firstLine = m_context.lineNumber() + 1;
    const HtsColumn& values = walk.values(); // oddValueLine() sees their lines
    // A plain number is finite.
    auto& missing = m_context.missing;
    missing.erase(
        std::remove_if(missing.begin(), missing.end(),
                       [&values](std::size_t index) { return std::isfinite(values[index]); }),
        missing.end());
    if (!m_context.recovery.hasForeignLines())
        reportMissing(missing.size() - m_infiniteValues, firstLine);
    reportSentinels(values, firstLine);
}

void ValueCheck::oddValueLine(std::size_t index, qint64 lineNumber, std::string_view line)
{
    Recovery& recovery = m_context.recovery;
    const bool wasForeign = recovery.hasForeignLines();
    m_context.missing.push_back(index); // perhaps
    if (m_context.linesPastEnd() > 0)
        recovery.noteForeignLine(); // reported as a missing slot
    else if (!isNan(line) && !wasForeign)
        checkOddLine(index, lineNumber, line);
    if (recovery.hasForeignLines() && !wasForeign)
        m_ownValues = index;
}

void ValueCheck::checkOddLine(std::size_t index, qint64 lineNumber, std::string_view line)
{
    Recovery& recovery = m_context.recovery;
    std::string_view rest = line;
    const bool isFirst = static_cast<qint64>(index) == recovery.insertedLines();
    if (isNumberLine(line)) {
        checkNumber(lineNumber, line);
        return;
    }
    m_noNumbers.push_back(index);
    if (isFirst && takeKey(rest, kMethodLine.key)) {
        recovery.noteInsertedLine();
        add(kMethodLineAsValue, lineNumber, "%1 is read as a value: nothing may come before it",
            quoted(line));
    } else if (isSlotLine(line)) {
        recovery.noteForeignLine();
        add(kTooFewValues, lineNumber, "%1 instead of value %2 of %3 of %4", quoted(line),
            index + 1, m_count, m_slotName);
    } else if (line.empty()) {
        recovery.noteInsertedLine();
        add(kBlankValue, lineNumber, "an empty line among the values of %1 counts as 0",
            m_slotName);
    } else {
        reportText(lineNumber, line);
    }
}

void ValueCheck::checkNumber(qint64 lineNumber, std::string_view line)
{
    if (!std::isinf(lineToNumber(line)))
        return;
    ++m_infiniteValues;
    add(kInfiniteValue, lineNumber, "%1 is infinite and counts as missing", quoted(line));
}

void ValueCheck::reportText(qint64 lineNumber, std::string_view line)
{
    add(kTextValue, lineNumber, [&]() -> QString {
        const QString hint = numberHint(line);
        return worded("%1 is not a number and counts as 0%2", quoted(line),
                      hint.isEmpty() ? hint : QLatin1String("; it may be ") + hint);
    });
}

void ValueCheck::reportMissing(std::size_t missing, qint64 firstLine)
{
    if (missing == 0)
        return;
    add(kMissingValues, firstLine, [&]() -> QString {
        const double percent = 100.0 * static_cast<double>(missing) / m_count;
        return worded("%1 of %2 values of %3 are missing (%4 %)", missing, m_count, m_slotName,
                      QString::number(percent, 'f', 1));
    });
}

void ValueCheck::reportSentinels(const HtsColumn& values, qint64 firstLine)
{
    const std::size_t count = std::min(m_ownValues, values.size());
    m_context.foundSentinels = m_context.sentinels.findIn({values, count, m_noNumbers});
    for (const Sentinels::Occurrence& found : m_context.foundSentinels) {
        const qint64 line = firstLine + static_cast<qint64>(found.first);
        const QString number = sentinelText(found.number);
        const QString times =
            found.count == 1 ? QStringLiteral("once") : worded("%1 times", found.count);
        if (found.isFar)
            add(kFarSentinel, line,
                "%1 occurs %2 among the values of %3 and counts as a number; all others are from "
                "%4 to %5",
                number, times, m_slotName, QString::number(found.low), QString::number(found.high));
        else
            add(kSentinel, line,
                "%1 occurs %2 among the values of %3 and counts as a number; "
                "does it mark missing values?",
                number, times, m_slotName);
    }
}

void ValueCheck::endLine(QLatin1String expected, std::string_view line)
{
    Recovery& recovery = m_context.recovery;
    // The end of the input is reported as a missing slot or "END_RUN".
    const bool isRight = line == bytesOf(expected) || m_context.linesPastEnd() > 0;
    if (isRight && expected == kEndColumn && m_context.walk.slot().isSeries())
        recovery.noteExactValues();
    const bool isReported = !isRight && recovery.isInSync() && !recovery.hasForeignLines();
    if (expected == kEndColumn) {
        m_isColumnReported = isReported;
        if (isReported)
            reportEndColumn(line);
        return;
    }
    if (isReported && !m_isColumnReported)
        reportEndLine(kEndSlotLine, expected, line);
    recovery.endValues(isRight || !nearestKey(line, {kEndSlot}).isEmpty());
}

// An inserted line has moved the last value to this place, and that may be any text.
void ValueCheck::reportEndColumn(std::string_view line)
{
    if (m_context.recovery.insertedLines() > 0)
        return;
    if (!isNumberLine(line))
        reportEndLine(kEndColumnLine, kEndColumn, line);
    else
        add(kTooManyValues, m_context.lineNumber(),
            "%1 has more values than the run has timesteps: %2 instead of "
            "\"END_COLUMN\"",
            m_slotName, quoted(line));
}

void ValueCheck::reportEndLine(const FindingKind& kind, QLatin1String expected,
                               std::string_view line)
{
    add(kind, m_context.lineNumber(), "%1 instead of \"%2\"",
        line.empty() ? QStringLiteral("an empty line") : quoted(line), expected);
}

} // namespace

const Topic& valueTopic()
{
    static const Topic kTopic = {"Values",
                                 {&kEndColumnLine, &kEndSlotLine, &kTooFewValues, &kTooManyValues,
                                  &kBlankValue, &kMethodLineAsValue, &kTextValue, &kInfiniteValue,
                                  &kSentinel, &kFarSentinel, &kMissingValues},
                                 makeCheck<ValueCheck>};
    return kTopic;
}
