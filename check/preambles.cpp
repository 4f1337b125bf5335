#include <algorithm>
#include <cmath>

#include "check/knownlines.h"
#include "check/nearwords.h"
#include "check/topiccheck.h"
#include "hts/datetimetext.h"
#include "hts/htskeys.h"
#include "hts/linetext.h"
#include "hts/numbertext.h"
#include "hts/quotedtext.h"

using Section = ReaderObserver::Section;

namespace {

constexpr FindingKind kNearKey = {
    Severity::Warning, "near-key",
    "A line of a preamble is nearly a key or an end line, and is ignored.",
    "Write the key as the format has it: letter case, no blank before the colon, a blank after it "
    "in slot preambles."};
constexpr FindingKind kMisplacedLine = {
    Severity::Warning, "misplaced-line",
    "A line does not belong in the preamble, and is ignored: the line before it, mostly an end "
    "line, is missing or in another place.",
    "Look at the lines before it; indent no `END_RUN`."};
constexpr FindingKind kIgnoredLine = {Severity::Note, "ignored-line",
                                      "A line of a preamble begins with no key, and is ignored.",
                                      "Nothing, if it is a comment."};
constexpr FindingKind kRepeatedKey = {
    Severity::Warning, "repeated-key",
    "A preamble has a key twice, with different values; the last one counts.",
    "Remove one of them."};
constexpr FindingKind kBadInteger = {
    Severity::Warning, "bad-integer",
    "A value that should be an integer is not one, and counts as 0.", "Write digits only."};
constexpr FindingKind kBadDate = {Severity::Warning, "bad-date",
                                  "A value that should be a date-time is not one.",
                                  "Write it as `yyyy-M-d h:mm`."};
constexpr FindingKind kBadScale = {
    Severity::Warning, "bad-scale",
    "The scale is not a number, and counts as 0; or it is 0 or not finite.",
    "Write a number, with a decimal point."};
constexpr FindingKind kOddCharacter = {
    Severity::Warning, "odd-character",
    "A name or unit contains a tab, a control character or bytes that are not UTF-8.",
    "Remove them; a rule of a control file would have to contain them too."};
constexpr FindingKind kNulByte = {
    Severity::Warning, "nul-byte",
    "A line contains a NUL byte; the rest of the line is lost, also of a number.",
    "Write the text without it; many NUL bytes mean that the file was damaged by a disk or a "
    "copy."};

// Bytes that are plain ASCII text need no decoding.
bool hasOddCharacter(std::string_view value)
{
    const auto isPlain = [](char c) { return c >= ' ' && c < '\x7f'; };
    if (std::all_of(value.begin(), value.end(), isPlain))
        return false;
    const QString text = toText(value);
    return text.contains(QChar::ReplacementCharacter) || shown(text) != text;
}

bool isInteger(const QString& text)
{
    bool isInteger = false;
    static_cast<void>(text.trimmed().toInt(&isInteger));
    return isInteger;
}

// Checks the lines of preambles and column headers, whichever the section is: keys, their values,
// and the lines between them.
class PreambleCheck : public LineCheck
{
public:
    using LineCheck::LineCheck;

    void sectionBegins(Section section) override;
    void ignoredLine(std::string_view line) override;
    void keywordLine(const HtsKeyword& keyword, std::string_view value) override;
    void cutLine(std::string_view text) override;
    void oddValueLine(std::size_t index, qint64 lineNumber, std::string_view line) override;

private:
    bool isKeyWithoutValue(std::string_view line);
    bool isEndOfRun(std::string_view line) const;
    bool isSurplusStep(std::string_view line) const;
    void noteKey(QLatin1String key, std::string_view value);
    void checkValue(const HtsKeyword& keyword, std::string_view value);
    void reportMisplaced(std::string_view line);
    QString missingBefore(std::string_view line) const;

    Section m_section = Section::PackagePreamble;
    RepeatedNumber m_scale;
};

void PreambleCheck::sectionBegins(Section section)
{
    m_section = section;
    m_context.lines.begin(m_context.lineNumber() + 1);
}

void PreambleCheck::ignoredLine(std::string_view line)
{
    const bool isStray = m_context.recovery.takeStrayEndOfRun() && line == bytesOf(kEndRun);
    if (isSurplusStep(line)) {
        m_context.recovery.noteSurplusStep();
        return;
    }
    if (isStray || !m_context.recovery.isInSync() || isKeyWithoutValue(line))
        return;
    if (belongsElsewhere(line, m_section) || isEndOfRun(line)) {
        reportMisplaced(line);
        return;
    }
    const qint64 number = m_context.lineNumber();
    const QLatin1String key = nearestKey(line, knownLinesOf(m_section));
    if (key.isEmpty()) {
        add(kIgnoredLine, number, "%1 begins with no key and is ignored", quoted(line));
        return;
    }
    m_context.lines.noteNear(key);
    add(kNearKey, number, "%1 is ignored; it is nearly \"%2\"", quoted(line), key);
    if (isEndLine(key))
        m_context.recovery.loseSync();
}

// Whether timestep lines, and no others, are between it and the run's own.
bool PreambleCheck::isSurplusStep(std::string_view line) const
{
    const qint64 next = m_context.lines.firstLine() + m_context.recovery.surplusSteps();
    return m_section == Section::Slot && m_context.walk.slotCount() == 0 &&
           m_context.lineNumber() == next && isTimestepText(toText(line));
}

// In a slot preamble.
bool PreambleCheck::isEndOfRun(std::string_view line) const
{
    return m_section == Section::Slot && line == bytesOf(kEndRun);
}

void PreambleCheck::reportMisplaced(std::string_view line)
{
    const qint64 number = m_context.lineNumber();
    // After a slot, it would have ended the run but for what the reader strips from the line.
    if (isEndOfRun(line) && number == m_context.lines.firstLine())
        add(kMisplacedLine, number,
            "\"END_RUN\" does not end the run: no more than one blank may come "
            "before it");
    else
        add(kMisplacedLine, number,
            "%1 does not belong in a preamble and is ignored; is %2 missing "
            "before it?",
            quoted(line), missingBefore(line));
    m_context.recovery.loseSync();
}

QString PreambleCheck::missingBefore(std::string_view line) const
{
    static const QLatin1String kEnds[] = {kEndPackagePreamble, kEndRunPreamble, kEndSlotPreamble};
    const bool isLostLine = m_section == Section::Slot
                                ? line == bytesOf(kEndSlot) || line == bytesOf(kEndColumn)
                                : line == bytesOf(kEndRun);
    return isLostLine ? QStringLiteral("a line")
                      : quoted(kEnds[static_cast<std::size_t>(m_section)]);
}

// Stripping removes the blank from the key of a slot without a value, so that the reader does not
// recognise the key.
bool PreambleCheck::isKeyWithoutValue(std::string_view line)
{
    if (m_section != Section::Slot)
        return false;
    for (const auto& key : kSlotKeys) {
        if (line == stripped(bytesOf(key.key))) {
            noteKey(key.key, {});
            return true;
        }
    }
    return false;
}

void PreambleCheck::noteKey(QLatin1String key, std::string_view value)
{
    const qint64 number = m_context.lineNumber();
    const PreambleLines::Line* before = m_context.lines.note(key, value, number);
    if (before != nullptr && before->value != value && m_context.recovery.isInSync())
        add(kRepeatedKey, number, "\"%1\" occurs %2; %3 counts, not %4 of line %5", keyName(key),
            before->isRepeated ? "once more" : "twice", quoted(value),
            quoted(std::string_view(before->value)), before->number);
}

void PreambleCheck::keywordLine(const HtsKeyword& keyword, std::string_view value)
{
    checkValue(keyword, value);
    noteKey(keyword.key, value);
}

void PreambleCheck::checkValue(const HtsKeyword& keyword, std::string_view value)
{
    const qint64 number = m_context.lineNumber();
    switch (keyword.kind) {
    case ValueKind::Text:
        return;
    case ValueKind::Name:
        if (hasOddCharacter(value))
            add(kOddCharacter, number,
                "%1 %2 contains a tab, a control character or bytes that are not UTF-8",
                keyName(keyword.key), quoted(value));
        return;
    case ValueKind::Integer:
        if (!isInteger(toText(value)))
            add(kBadInteger, number, "%1 %2 is not an integer and counts as 0",
                keyName(keyword.key), quoted(value));
        return;
    case ValueKind::DateTime:
        if (!textToDateTime(toText(value)).isValid())
            add(kBadDate, number, "%1 %2 is not a date-time", keyName(keyword.key), quoted(value));
        return;
    case ValueKind::Real:
        break;
    }
    const double scale = m_scale.of(value);
    if (scale == 0.0 || !std::isfinite(scale))
        add(kBadScale, number, "%1 %2 is %3", keyName(keyword.key), quoted(value),
            isNumberLine(value) ? "not a usable scale" : "not a number and counts as 0");
}

void PreambleCheck::cutLine(std::string_view text)
{
    if (m_context.recovery.isInSync())
        add(kNulByte, m_context.lineNumber(), "%1 ends at a NUL byte; the rest of the line is lost",
            quoted(text));
}

// What is left of a value may be a number; else it is reported as text.
void PreambleCheck::oddValueLine(std::size_t, qint64, std::string_view line)
{
    const bool isCut = line.find('\0') != std::string_view::npos && isNumberLine(line);
    if (isCut && !m_context.recovery.hasForeignLines())
        cutLine(textBytes(line));
}

} // namespace

const Topic& preambleTopic()
{
    static const Topic kTopic = {"Lines of preambles",
                                 {&kNearKey, &kMisplacedLine, &kIgnoredLine, &kRepeatedKey,
                                  &kBadInteger, &kBadDate, &kBadScale, &kOddCharacter, &kNulByte},
                                 makeCheck<PreambleCheck>};
    return kTopic;
}
