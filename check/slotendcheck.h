#ifndef CHECK_SLOTENDCHECK_H
#define CHECK_SLOTENDCHECK_H

#include <string>
#include <string_view>

#include <QString>
#include <QtGlobal>

#include "check/finding.h"

class Findings;
class HtsReader;
class PreambleCheck;
class ValueCheck;
struct HtsSlot;

// Reads and checks the lines that a conversion drops without a check: the end lines of slots,
// tables, and what follows the last run.
class SlotEndCheck
{
public:
    // All arguments outlive the object.
    SlotEndCheck(HtsReader& reader, PreambleCheck& preamble, const ValueCheck& values,
                 Findings& findings);

    // Reads the two lines after the values of a slot.
    void readEndLines(const QString& slotName);

    // Reads the rows of a table, whose preamble has been read, up to and including its "END_SLOT".
    // Returns false if the input ends before that line: a conversion would never end.
    bool readTable(const HtsSlot& slot, const QString& slotName);

    // Reads what follows the last run, to the end of the input.
    void readRest();

private:
    // A line in the place of an end line. `number` and `text` are only set if it is not the right
    // one.
    struct EndLine
    {
        bool isRight = true;
        qint64 number = 0;
        std::string text;
    };

    EndLine readEndLine(std::string_view expected);
    void reportEndColumn(const EndLine& line, const QString& slotName);
    void reportWrongLine(Code code, const char* expected, const EndLine& line);
    bool readRows(const HtsSlot& slot, const QString& slotName);
    bool skipToEnd(const QString& slotName);
    void reportOverrun(const QString& slotName, std::string_view line);

    HtsReader& m_reader;
    PreambleCheck& m_preamble;
    const ValueCheck& m_values;
    Findings& m_findings;
};

#endif // CHECK_SLOTENDCHECK_H
