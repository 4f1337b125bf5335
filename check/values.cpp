#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "check/knownlines.h"
#include "check/nearwords.h"
#include "check/numberhint.h"
#include "check/topic.h"
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
    "A number that often marks a missing value occurs repeatedly; it counts as a number.",
    "Write `NaN` if it marks missing values."};
constexpr FindingKind kMissingValues = {
    Severity::Note, "missing-values", "Values of a slot are missing.",
    "Choose its method accordingly; `--counts` has the numbers for each year."};

// Magnitudes that mark missing values in files of other programs. A float can hold each of them
// exactly.
constexpr std::array<double, 8> kSentinels = {
    99.0,     999.0,     9999.0,  99999.0,
    999999.0, 9999999.0, 32768.0, double(std::numeric_limits<float>::max())};

bool isNan(std::string_view line)
{
    constexpr std::size_t kLength = 3;
    return line.size() == kLength && (line[0] | ' ') == 'n' && (line[1] | ' ') == 'a' &&
           (line[2] | ' ') == 'n';
}

// Whether the number has no bits that only a double can hold. True for hardly any number with
// decimals, so that this fast test is the only one for nearly all values of a file.
bool fitsFloat(double value)
{
    constexpr std::uint64_t kBitsOfDoublesOnly = 0x1fffffff;
    std::uint64_t bits = 0;
    static_assert(sizeof bits == sizeof value);
    std::memcpy(&bits, &value, sizeof bits);
    return (bits & kBitsOfDoublesOnly) == 0;
}

// But not 99 without a sign, which is often a real value.
bool isSentinel(double value)
{
    const bool isKnown = fitsFloat(value) && std::find(kSentinels.begin(), kSentinels.end(),
                                                       std::fabs(value)) != kSentinels.end();
    return isKnown && value != kSentinels.front();
}

// Number of values that are missing: NaN or infinite.
std::size_t missingCount(const HtsColumn& values)
{
    std::size_t usable = 0;
    for (const double value : values)
        usable += std::fabs(value) <= std::numeric_limits<double>::max() ? 1U : 0U;
    return values.size() - usable;
}

// Checks the values of one slot after another: while they are read, the lines that are not plain
// numbers; then the numbers; then the two lines that end the slot.
class ValueCheck : public TopicCheck
{
public:
    using TopicCheck::TopicCheck;

    void beforeValues() override;
    void oddValueLine(std::size_t index, qint64 lineNumber, std::string_view line) override;
    void endLine(QLatin1String expected, std::string_view line) override;

private:
    void checkNumber(qint64 lineNumber, std::string_view line);
    void reportMissing(const HtsColumn& values, qint64 firstLine);
    void reportSentinels(const HtsColumn& values, qint64 firstLine);
    void reportEndColumn(std::string_view line);
    void reportEndLine(const FindingKind& kind, QLatin1String expected, std::string_view line);

    // The slot at hand.
    QString m_slotName;
    int m_count = 0; // of its values
    std::size_t m_infiniteValues = 0;
    bool m_isColumnReported = false;
};

void ValueCheck::beforeValues()
{
    HtsWalk& walk = m_context.walk;
    m_slotName = fullSlotName(walk.slot().objectName, walk.slot().slotName);
    m_count = walk.slot().valueCount(walk.run());
    m_infiniteValues = 0;
    m_context.recovery.beginValues();
    const qint64 firstLine = m_context.reader.lineNumber() + 1;
    const HtsColumn& values = walk.values(); // oddValueLine() sees their lines
    if (m_context.recovery.hasForeignLines())
        return;
    reportMissing(values, firstLine);
    reportSentinels(values, firstLine);
}

void ValueCheck::oddValueLine(std::size_t index, qint64 lineNumber, std::string_view line)
{
    Recovery& recovery = m_context.recovery;
    if (m_context.reader.linesPastEnd() > 0) {
        recovery.noteForeignLine(); // reported as a missing slot
        return;
    }
    if (isNan(line) || recovery.hasForeignLines())
        return;
    std::string_view rest = line;
    const bool isFirst = static_cast<qint64>(index) == recovery.insertedLines();
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
        checkNumber(lineNumber, line);
    }
}

void ValueCheck::checkNumber(qint64 lineNumber, std::string_view line)
{
    if (!isNumberLine(line)) {
        add(kTextValue, lineNumber, [&]() -> QString {
            const QString hint = numberHint(line);
            return worded("%1 is not a number and counts as 0%2", quoted(line),
                          hint.isEmpty() ? hint : QLatin1String("; it may be ") + hint);
        });
    } else if (std::isinf(lineToNumber(line))) {
        ++m_infiniteValues;
        add(kInfiniteValue, lineNumber, "%1 is infinite and counts as missing", quoted(line));
    }
}

void ValueCheck::reportMissing(const HtsColumn& values, qint64 firstLine)
{
    const std::size_t missing = missingCount(values) - m_infiniteValues;
    if (missing == 0)
        return;
    add(kMissingValues, firstLine, [&]() -> QString {
        const double percent = 100.0 * static_cast<double>(missing) / m_count;
        return worded("%1 of %2 values of %3 are missing (%4 %)", missing, m_count, m_slotName,
                      QString::number(percent, 'f', 1));
    });
}

// Only the first sentinel that occurs twice.
void ValueCheck::reportSentinels(const HtsColumn& values, qint64 firstLine)
{
    for (auto value = values.begin(); value != values.end(); ++value) {
        if (!isSentinel(*value) || std::find(values.begin(), value, *value) != value)
            continue;
        const auto count = std::count(value, values.end(), *value);
        if (count < 2)
            continue;
        constexpr int kDigits = 7; // all that a sentinel has
        add(kSentinel, firstLine + (value - values.begin()),
            "%1 occurs %2 times among the values of %3 and counts as a number; "
            "does it mark missing values?",
            QString::number(*value, 'g', kDigits), count, m_slotName);
        return;
    }
}

void ValueCheck::endLine(QLatin1String expected, std::string_view line)
{
    Recovery& recovery = m_context.recovery;
    // The end of the input is reported as a missing slot or "END_RUN".
    const bool isRight = line == bytesOf(expected) || m_context.reader.linesPastEnd() > 0;
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
    if (line.empty() || !isNumberLine(line))
        reportEndLine(kEndColumnLine, kEndColumn, line);
    else
        add(kTooManyValues, m_context.reader.lineNumber(),
            "%1 has more values than the run has timesteps: %2 instead of "
            "\"END_COLUMN\"",
            m_slotName, quoted(line));
}

void ValueCheck::reportEndLine(const FindingKind& kind, QLatin1String expected,
                               std::string_view line)
{
    add(kind, m_context.reader.lineNumber(), "%1 instead of \"%2\"",
        line.empty() ? QStringLiteral("an empty line") : quoted(line), expected);
}

} // namespace

const Topic& valueTopic()
{
    static const Topic kTopic = {"Values",
                                 {&kEndColumnLine, &kEndSlotLine, &kTooFewValues, &kTooManyValues,
                                  &kBlankValue, &kMethodLineAsValue, &kTextValue, &kInfiniteValue,
                                  &kSentinel, &kMissingValues},
                                 makeCheck<ValueCheck>};
    return kTopic;
}
