#include "check/slotendcheck.h"

#include "check/findings.h"
#include "check/knownlines.h"
#include "check/nearwords.h"
#include "check/preamblecheck.h"
#include "check/quotedtext.h"
#include "check/valuecheck.h"
#include "hts/htskeys.h"
#include "hts/htsreader.h"
#include "hts/htsslot.h"
#include "hts/linetext.h"

namespace {

bool isNearEndSlot(std::string_view line)
{
    return !nearestKey(line, {kEndSlot}).isEmpty();
}

} // namespace

SlotEndCheck::SlotEndCheck(HtsReader& reader, PreambleCheck& preamble, const ValueCheck& values,
                           Findings& findings)
    : m_reader(reader), m_preamble(preamble), m_values(values), m_findings(findings)
{
}

SlotEndCheck::EndLine SlotEndCheck::readEndLine(std::string_view expected)
{
    const std::string_view line = m_reader.readLine();
    // The end of the input is reported as a missing slot or "END_RUN".
    if (line == expected || m_reader.linesPastEnd() > 0)
        return {};
    return {false, m_reader.lineNumber(), std::string(line)};
}

void SlotEndCheck::readEndLines(const QString& slotName)
{
    const EndLine column = readEndLine(bytesOf(kEndColumn));
    const EndLine slot = readEndLine(bytesOf(kEndSlot));
    const bool isKnownDefect = m_values.hasForeignLines();
    if (!column.isRight && m_preamble.isInSync() && !isKnownDefect)
        reportEndColumn(column, slotName);
    else if (!slot.isRight && m_preamble.isInSync() && !isKnownDefect)
        reportWrongLine(Code::EndSlot, "END_SLOT", slot);
    if (isKnownDefect || (!slot.isRight && !isNearEndSlot(slot.text)))
        m_preamble.loseSync();
}

void SlotEndCheck::reportEndColumn(const EndLine& line, const QString& slotName)
{
    const bool isValue = !line.text.empty() && isNumberLine(line.text);
    if (!isValue) {
        // An inserted line has moved the last value here, and that may be any text.
        if (!m_values.hasInsertedLines())
            reportWrongLine(Code::EndColumn, "END_COLUMN", line);
        return;
    }
    if (m_values.hasInsertedLines())
        return;
    m_findings.add(Code::TooManyValues, line.number, [&]() -> QString {
        return QStringLiteral("%1 has more values than the run has timesteps: %2 instead of "
                              "\"END_COLUMN\"")
            .arg(slotName, quoted(line.text));
    });
}

void SlotEndCheck::reportWrongLine(Code code, const char* expected, const EndLine& line)
{
    m_findings.add(code, line.number, [&]() -> QString {
        return QStringLiteral("%1 instead of \"%2\"")
            .arg(line.text.empty() ? QStringLiteral("an empty line") : quoted(line.text),
                 QLatin1String(expected));
    });
}

bool SlotEndCheck::readTable(const HtsSlot& slot, const QString& slotName)
{
    const qint64 firstLine = m_preamble.firstLine();
    if (readRows(slot, slotName) && skipToEnd(slotName))
        return true;
    m_findings.add(Code::TableWithoutEnd, firstLine, [&]() -> QString {
        return QStringLiteral("the table %1 has no \"END_SLOT\" after it; a conversion never ends")
            .arg(slotName);
    });
    return false;
}

// Returns false at the end of the input.
bool SlotEndCheck::readRows(const HtsSlot& slot, const QString& slotName)
{
    bool isReported = false;
    for (int row = 0; row < slot.rows; ++row) {
        if (m_reader.atEnd())
            return false;
        const std::string_view line = m_reader.readLine();
        if (isReported || !isSlotLine(line))
            continue;
        isReported = true;
        m_findings.add(Code::TableRows, m_reader.lineNumber(), [&]() -> QString {
            return QStringLiteral("%1 instead of row %2 of %3 of the table %4")
                .arg(quoted(line), QString::number(row + 1), QString::number(slot.rows), slotName);
        });
        m_preamble.loseSync();
    }
    return true;
}

bool SlotEndCheck::skipToEnd(const QString& slotName)
{
    while (!m_reader.atEnd()) {
        const std::string_view line = textBytes(m_reader.readLine());
        if (line == bytesOf(kEndSlot))
            return true;
        reportOverrun(slotName, line);
    }
    return false;
}

// A table may have more lines than rows, but not lines that begin another slot or end a run.
void SlotEndCheck::reportOverrun(const QString& slotName, std::string_view line)
{
    std::string_view rest = line;
    const bool beginsSlot = takeAnyKey(kSlotKeys, rest) != nullptr;
    const bool isForeign =
        beginsSlot || line == bytesOf(kEndSlotPreamble) || line == bytesOf(kEndRun);
    if (!isForeign || !m_preamble.isInSync())
        return;
    m_findings.add(Code::TableOverrun, m_reader.lineNumber(), [&]() -> QString {
        return QStringLiteral("%1 is taken for a part of the table %2, which has no \"END_SLOT\" "
                              "before it")
            .arg(quoted(line), slotName);
    });
    m_preamble.loseSync();
}

void SlotEndCheck::readRest()
{
    bool hasStray = m_preamble.takeStrayEndOfRun();
    qint64 firstLine = 0;
    qint64 runs = 0;
    QString first;
    while (!m_reader.atEnd()) {
        const std::string_view line = m_reader.readLine();
        if (line.empty())
            continue;
        if (hasStray && line == bytesOf(kEndRun)) {
            hasStray = false;
            continue;
        }
        if (firstLine == 0) {
            firstLine = m_reader.lineNumber();
            first = quoted(line);
        }
        runs += line == bytesOf(kEndRunPreamble) ? 1 : 0;
    }
    if (runs > 0) {
        m_findings.add(Code::MoreRuns, firstLine, [&]() -> QString {
            return runs == 1 ? QStringLiteral("a run that is not announced follows; it is not "
                                              "converted")
                             : QStringLiteral("%1 runs that are not announced follow; they are "
                                              "not converted")
                                   .arg(runs);
        });
    } else if (firstLine > 0) {
        m_findings.add(Code::TextAfterLastRun, firstLine, [&]() -> QString {
            return QStringLiteral("%1 follows the last run and is not read").arg(first);
        });
    }
}
