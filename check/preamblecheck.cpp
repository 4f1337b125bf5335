#include "check/preamblecheck.h"

#include <algorithm>

#include "check/findings.h"
#include "check/keyvalues.h"
#include "check/nearwords.h"
#include "check/quotedtext.h"
#include "check/valuecheck.h"
#include "hts/htskeys.h"
#include "hts/htsslot.h"
#include "hts/linetext.h"

namespace {

const std::vector<QLatin1String> kSlotTypes = {
    QLatin1String("SeriesSlot"), QLatin1String("TableSlot"), QLatin1String("ScalarSlot")};

Code codeOf(QLatin1String expected)
{
    if (expected == kEndPackagePreamble)
        return Code::PackagePreamble;
    if (expected == kEndRunPreamble)
        return Code::RunPreamble;
    if (expected == HtsReader::kTimestepFormat)
        return Code::TimestepLine;
    return expected == kEndSlotPreamble ? Code::SlotPreamble : Code::ColumnHeader;
}

} // namespace

PreambleCheck::PreambleCheck(HtsReader& reader, ValueCheck& values, Findings& findings)
    : m_reader(reader), m_values(values), m_findings(findings)
{
    m_reader.setObserver(this);
}

void PreambleCheck::begin(Section section)
{
    m_section = section;
    m_firstLine = m_reader.lineNumber() + 1;
    m_seenCount = 0;
    m_nearKeys.clear();
}

void PreambleCheck::finish(const Status& status)
{
    if (status.ok() || !m_hasFailed)
        return;
    m_findings.add(m_failureCode, m_failureLine,
                   [&]() -> QString { return m_failureText + conversionFails(status.message); });
}

void PreambleCheck::finishSlot(const HtsSlot& slot)
{
    if (m_isInSync) {
        reportMissing(Code::NoObjectType, kSlotKeys[0].key, slot.objectType);
        reportMissing(Code::NoObjectName, kSlotKeys[1].key, slot.objectName);
        reportMissing(Code::NoSlotName, kSlotKeys[3].key, slot.slotName);
    }
    m_isInSync = true;

    const bool isKnown = slot.slotType.isEmpty() ||
                         std::any_of(kSlotTypes.begin(), kSlotTypes.end(),
                                     [&](QLatin1String type) { return slot.slotType == type; });
    if (isKnown)
        return;
    const QLatin1String near = nearestWord(slot.slotType, kSlotTypes);
    const qint64 line = lineOf(kSlotKeys[2].key);
    if (near.isEmpty()) {
        m_findings.add(Code::UnknownSlotType, line, [&]() -> QString {
            return QStringLiteral("slot type %1 is not known; the slot has one value")
                .arg(quoted(slot.slotType));
        });
        return;
    }
    m_findings.add(Code::NearSlotType, line, [&]() -> QString {
        return QStringLiteral("slot type %1 is nearly \"%2\"; the slot is taken for one of a "
                              "single value and left out")
            .arg(quoted(slot.slotType), near);
    });
}

void PreambleCheck::reportMissing(Code code, QLatin1String key, const QString& value)
{
    const bool isNear = std::find(m_nearKeys.begin(), m_nearKeys.end(), key) != m_nearKeys.end();
    if (!value.isEmpty() || isNear)
        return;
    const qint64 emptyLine = lineOf(key);
    m_findings.add(code, emptyLine > 0 ? emptyLine : m_reader.lineNumber(), [&]() -> QString {
        return QStringLiteral("the slot has no \"%1\"").arg(keyName(key));
    });
}

qint64 PreambleCheck::lineOf(QLatin1String key) const
{
    for (std::size_t i = m_seenCount; i > 0; --i) {
        if (m_seen[i - 1].key == key)
            return m_seen[i - 1].line;
    }
    return 0;
}

bool PreambleCheck::takeStrayEndOfRun()
{
    const bool hasStray = m_hasStrayEndOfRun;
    m_hasStrayEndOfRun = false;
    return hasStray;
}

void PreambleCheck::ignoredLine(std::string_view line)
{
    const bool isStray = takeStrayEndOfRun() && line == bytesOf(kEndRun);
    if (isStray || !m_isInSync || noteKeyWithoutValue(line))
        return;
    const qint64 number = m_reader.lineNumber();
    const bool isEndOfRun = m_section == Section::Slot && line == bytesOf(kEndRun);
    // After a slot, it would have ended the run but for what the reader strips from the line.
    if (isEndOfRun && number == m_firstLine) {
        m_findings.add(Code::MisplacedLine, number, []() -> QString {
            return QStringLiteral("\"END_RUN\" does not end the run: no more than one blank may "
                                  "come before it");
        });
        loseSync();
        return;
    }
    if (belongsElsewhere(line, m_section) || isEndOfRun) {
        m_findings.add(Code::MisplacedLine, number, [&]() -> QString {
            return QStringLiteral("%1 does not belong in a preamble and is ignored; is %2 "
                                  "missing before it?")
                .arg(quoted(line), missingBefore(line));
        });
        loseSync();
        return;
    }
    const QLatin1String key = nearestKey(line, knownLinesOf(m_section));
    if (key.isEmpty()) {
        m_findings.add(Code::IgnoredLine, number, [&]() -> QString {
            return QStringLiteral("%1 begins with no key and is ignored").arg(quoted(line));
        });
        return;
    }
    if (std::find(m_nearKeys.begin(), m_nearKeys.end(), key) == m_nearKeys.end())
        m_nearKeys.push_back(key);
    m_findings.add(Code::NearKey, number, [&]() -> QString {
        return QStringLiteral("%1 is ignored; it is nearly \"%2\"").arg(quoted(line), key);
    });
    if (key.startsWith(QLatin1String("END_")))
        loseSync();
}

// What seems to be missing before a misplaced line.
QString PreambleCheck::missingBefore(std::string_view line)
{
    static const QLatin1String kEnds[] = {kEndPackagePreamble, kEndRunPreamble, kEndSlotPreamble};
    if (m_section == Section::Slot && (line == bytesOf(kEndSlot) || line == bytesOf(kEndColumn)))
        return QStringLiteral("a line");
    if (m_section != Section::Slot && line == bytesOf(kEndRun))
        return QStringLiteral("a line");
    return QLatin1Char('"') + kEnds[static_cast<std::size_t>(m_section)] + QLatin1Char('"');
}

// Stripping removes the blank from the key of a slot without a value, so that the reader does not
// recognise the key. Returns false for any other line.
bool PreambleCheck::noteKeyWithoutValue(std::string_view line)
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

void PreambleCheck::keywordLine(QLatin1String key, std::string_view value)
{
    checkKeyValue(key, value, m_reader.lineNumber(), m_findings);
    noteKey(key, value);
}

void PreambleCheck::noteKey(QLatin1String key, std::string_view value)
{
    const qint64 number = m_reader.lineNumber();
    const auto end = m_seen.begin() + static_cast<std::ptrdiff_t>(m_seenCount);
    auto seen =
        std::find_if(m_seen.begin(), end, [&](const SeenKey& other) { return other.key == key; });
    if (seen == end) {
        if (m_seenCount == m_seen.size())
            m_seen.emplace_back();
        seen = m_seen.begin() + static_cast<std::ptrdiff_t>(m_seenCount++);
        seen->key = key;
        seen->count = 0;
    } else if (seen->value != value && m_isInSync) {
        m_findings.add(Code::RepeatedKey, number, [&]() -> QString {
            return QStringLiteral("\"%1\" occurs %2; %3 counts, not %4 of line %5")
                .arg(keyName(key),
                     seen->count == 1 ? QStringLiteral("twice") : QStringLiteral("once more"),
                     quoted(value), quoted(seen->value), QString::number(seen->line));
        });
    }
    seen->value.assign(value);
    seen->line = number;
    ++seen->count;
}

void PreambleCheck::unexpectedLine(QLatin1String expected, std::string_view line)
{
    const qint64 number = m_reader.lineNumber();
    if (expected == kMethodKey) {
        m_findings.add(Code::MethodKey, number, [&]() -> QString {
            return QStringLiteral("%1 is taken for the method line").arg(quoted(line));
        });
        return;
    }
    if (expected == kEndRun) {
        m_hasStrayEndOfRun = line.empty();
        m_findings.add(Code::EndRun, number, [&]() -> QString {
            return line.empty() ? QStringLiteral("empty line before \"END_RUN\"")
                                : QStringLiteral("text after \"END_RUN\": ") + quoted(line);
        });
        return;
    }
    if (m_hasFailed)
        return; // the scale line after a bad units line
    m_hasFailed = true;
    m_failureCode = codeOf(expected);
    const bool isPastEnd = m_reader.linesPastEnd() > 0;
    m_failureLine = std::max<qint64>(number - m_reader.linesPastEnd(), 1);
    const bool isBetweenSlots = m_failureCode == Code::SlotPreamble && m_seenCount == 0;
    const QString wanted = isBetweenSlots ? QStringLiteral("a slot or \"END_RUN\"")
                           : m_failureCode == Code::TimestepLine
                               ? QStringLiteral("a timestep \"%1\"").arg(expected)
                               : QStringLiteral("\"%1\"").arg(expected);
    const QString found = line.empty() ? QStringLiteral("an empty line") : quoted(line);
    m_failureText = isPastEnd ? QStringLiteral("the file ends where %1 is expected").arg(wanted)
                              : QStringLiteral("%1 instead of %2").arg(found, wanted);
    // Stripping has removed the blank that is a part of the key.
    if (m_failureCode == Code::ColumnHeader && line == stripped(bytesOf(expected)))
        m_failureText = expected == kUnitsKey ? QStringLiteral("the units are empty")
                                              : QStringLiteral("the scale is empty");
}

void PreambleCheck::cutLine(std::string_view text)
{
    if (!m_isInSync)
        return;
    m_findings.add(Code::NulByte, m_reader.lineNumber(), [&]() -> QString {
        return QStringLiteral("%1 ends at a NUL byte; the rest of the line is lost")
            .arg(quoted(text));
    });
}

void PreambleCheck::oddValueLine(std::size_t index, qint64 lineNumber, std::string_view line)
{
    if (m_reader.linesPastEnd() > 0)
        m_values.noteEnd();
    else
        m_values.checkOddLine(index, lineNumber, line);
}
