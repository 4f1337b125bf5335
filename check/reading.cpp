#include "check/topiccheck.h"
#include "hts/htskeys.h"
#include "hts/linetext.h"
#include "hts/quotedtext.h"

namespace {

constexpr FindingKind kPackagePreamble = {
    Severity::Error, "package-preamble",
    "The file ends, or has an empty line, before `END_PACKAGE_PREAMBLE`.",
    "Remove the empty line, or get the whole file."};
constexpr FindingKind kRunPreamble = {
    Severity::Error, "run-preamble",
    "The file ends, or has an empty line, before `END_RUN_PREAMBLE`.",
    "Remove the empty line, or get the whole file."};
constexpr FindingKind kTimestepLine = {
    Severity::Error, "timestep-line",
    "A line among the timesteps is not a date-time `yyyy-M-d h:mm`.",
    "Compare the number of timestep lines with `time_steps:`; write the date-time as the format "
    "has it."};
constexpr FindingKind kSlotPreamble = {
    Severity::Error, "slot-preamble",
    "The file ends, or has an empty line, before `END_SLOT_PREAMBLE` or `END_RUN`.",
    "Look for a missing or additional line in the slots before it; remove an empty line."};
constexpr FindingKind kColumnHeader = {
    Severity::Error, "column-header",
    "The lines `units: ` and `scale: ` do not follow the slot preamble.",
    "Write both, in this order, each with a blank after the colon and a value."};
constexpr FindingKind kTableWithoutEnd = {
    Severity::Error, "table-without-end",
    "A table slot has no line `END_SLOT` after it: a conversion searches for it without end.",
    "Add the line after the rows of the table."};
constexpr FindingKind kFewerRuns = {Severity::Error, "fewer-runs",
                                    "The file has fewer runs than `number_of_runs:` announces.",
                                    "Get the whole file, or correct the number."};

const FindingKind& kindOf(QLatin1String expected)
{
    if (expected == kEndPackagePreamble)
        return kPackagePreamble;
    if (expected == kEndRunPreamble)
        return kRunPreamble;
    if (expected == ReaderObserver::kTimestepFormat)
        return kTimestepLine;
    return expected == kEndSlotPreamble ? kSlotPreamble : kColumnHeader;
}

// Reports why reading ends before the end of the last run.
class ReadingCheck : public LineCheck
{
public:
    using LineCheck::LineCheck;

    void unexpectedLine(QLatin1String expected, std::string_view line) override;
    void finish() override;

private:
    bool isMissingRun(QLatin1String expected) const;
    QString textFor(QLatin1String expected, std::string_view line) const;

    const FindingKind* m_kind = nullptr; // of the first line with which reading fails
    qint64 m_line = 0;
    QString m_text;
};

void ReadingCheck::unexpectedLine(QLatin1String expected, std::string_view line)
{
    const bool isTolerated = expected == kMethodLine.key || expected == kEndRun;
    if (isTolerated || m_kind != nullptr)
        return; // the latter for the scale line after a bad units line
    m_kind = isMissingRun(expected) ? &kFewerRuns : &kindOf(expected);
    m_line = m_context.lastLine();
    if (m_kind != &kFewerRuns)
        m_text = textFor(expected, line);
}

// Whether the file ends before the first line of a run.
bool ReadingCheck::isMissingRun(QLatin1String expected) const
{
    return expected == kEndRunPreamble && m_context.linesPastEnd() > 0 &&
           m_context.lineNumber() == m_context.lines.firstLine();
}

QString ReadingCheck::textFor(QLatin1String expected, std::string_view line) const
{
    // Stripping has removed the blank that is a part of the key.
    if (m_kind == &kColumnHeader && line == stripped(bytesOf(expected)))
        return expected == kUnitsLine.key ? QStringLiteral("the units are empty")
                                          : QStringLiteral("the scale is empty");
    const bool isBetweenSlots = m_kind == &kSlotPreamble && m_context.lines.isEmpty();
    const QString wanted = isBetweenSlots             ? QStringLiteral("a slot or \"END_RUN\"")
                           : m_kind == &kTimestepLine ? worded("a timestep \"%1\"", expected)
                                                      : worded("\"%1\"", expected);
    if (m_context.linesPastEnd() > 0)
        return worded("the file ends where %1 is expected", wanted);
    return worded("%1 instead of %2", line.empty() ? QStringLiteral("an empty line") : quoted(line),
                  wanted);
}

void ReadingCheck::finish()
{
    const HtsWalk& walk = m_context.walk;
    if (walk.isTableWithoutEnd()) {
        add(kTableWithoutEnd, m_context.lines.firstLine(),
            "the table %1 has no \"END_SLOT\" after it; a conversion never ends",
            fullSlotName(walk.slot().objectName, walk.slot().slotName));
        return;
    }
    if (walk.status().ok())
        return;
    Q_ASSERT(m_kind != nullptr);
    if (m_kind == &kFewerRuns)
        m_text = worded("the file ends after %1 of %2 runs", walk.runIndex(),
                        m_context.package.numberOfRuns);
    add(*m_kind, m_line, "%1%2", m_text, conversionFails(walk.status().message));
}

} // namespace

const Topic& readingTopic()
{
    static const Topic kTopic = {"Where reading ends",
                                 {&kPackagePreamble, &kRunPreamble, &kTimestepLine, &kSlotPreamble,
                                  &kColumnHeader, &kTableWithoutEnd, &kFewerRuns},
                                 makeCheck<ReadingCheck>};
    return kTopic;
}
