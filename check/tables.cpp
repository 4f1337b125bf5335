#include "check/knownlines.h"
#include "check/topiccheck.h"
#include "hts/htskeys.h"
#include "hts/quotedtext.h"

namespace {

constexpr FindingKind kTableRows = {
    Severity::Warning, "table-rows",
    "A table has fewer rows than `rows: ` announces: `END_SLOT` is read as a row, and what "
    "follows is lost up to the next one.",
    "Correct the number of rows."};
constexpr FindingKind kTableOverrun = {
    Severity::Warning, "table-overrun",
    "Lines of another slot or run are between a table's rows and the next `END_SLOT`; they are "
    "lost.",
    "Add the table's own `END_SLOT`."};

// Checks the rows of table slots, and the lines after them up to the end of the slot.
class TableCheck : public LineCheck
{
public:
    using LineCheck::LineCheck;

    void tableRow(const HtsSlot& table, int row, std::string_view line) override;
    void lineAfterTable(const HtsSlot& table, std::string_view line) override;

private:
    bool m_isRowReported = false; // of this table
};

void TableCheck::tableRow(const HtsSlot& table, int row, std::string_view line)
{
    if (row == 0)
        m_isRowReported = false;
    // The rows of a table whose preamble is cut off are no rows.
    const bool isRow = table.preambleRead && m_context.linesPastEnd() == 0;
    if (!isRow || m_isRowReported || !isSlotLine(line))
        return;
    m_isRowReported = true;
    add(kTableRows, m_context.lineNumber(), "%1 instead of row %2 of %3 of the table %4",
        quoted(line), row + 1, table.rows, fullSlotName(table.objectName, table.slotName));
    m_context.recovery.loseSync();
}

// A table may have more lines than rows, but not lines that begin another slot or end a run.
void TableCheck::lineAfterTable(const HtsSlot& table, std::string_view line)
{
    std::string_view rest = line;
    const bool isForeign = takeAnyKey(kSlotKeys, rest) != nullptr ||
                           line == bytesOf(kEndSlotPreamble) || line == bytesOf(kEndRun);
    if (!isForeign || !m_context.recovery.isInSync())
        return;
    add(kTableOverrun, m_context.lineNumber(),
        "%1 is taken for a part of the table %2, which has no \"END_SLOT\" "
        "before it",
        quoted(line), fullSlotName(table.objectName, table.slotName));
    m_context.recovery.loseSync();
}

} // namespace

const Topic& tableTopic()
{
    static const Topic kTopic = {"Tables", {&kTableRows, &kTableOverrun}, makeCheck<TableCheck>};
    return kTopic;
}
