#ifndef CHECK_VALUECHECK_H
#define CHECK_VALUECHECK_H

#include <string_view>
#include <vector>

#include <QString>
#include <QtGlobal>

class Findings;

// Looks at the values of one slot after another: the lines that are no plain numbers while they are
// read, and the numbers afterwards.
class ValueCheck
{
public:
    explicit ValueCheck(Findings& findings) : m_findings(findings) {}

    // Before the values of a slot are read; `slotName` as reports show it, `count` values follow.
    void begin(const QString& slotName, std::size_t count);
    // A value line that is not a plain number; see LineReader::OddLines.
    void look(std::size_t index, qint64 lineNumber, std::string_view line);
    // The input ends before the last value. The slot that should follow is what is reported then.
    void noteEnd() { ++m_foreignLines; }
    // After the values have been read; the first is on `firstLine`. Reports what is missing or
    // looks like it, of a slot whose lines are its own.
    void finish(const std::vector<double>& values, qint64 firstLine);

    // Whether lines of another section were read as values, or none, so that the slot has too few.
    bool hasForeignLines() const { return m_foreignLines > 0; }
    // Whether lines that are no values were read as values: the last values are left out then.
    bool hasInsertedLines() const { return m_insertedLines > 0; }

private:
    void reportMissing(const std::vector<double>& values, qint64 firstLine);
    void reportSentinels(const std::vector<double>& values, qint64 firstLine);

    Findings& m_findings;
    QString m_slotName;
    std::size_t m_count = 0;
    std::size_t m_foreignLines = 0;
    std::size_t m_insertedLines = 0;
    std::size_t m_infiniteValues = 0;
};

// Number of values that are missing: NaN or infinite.
std::size_t missingCount(const std::vector<double>& values);

#endif // CHECK_VALUECHECK_H
