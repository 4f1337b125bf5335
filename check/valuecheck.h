#ifndef CHECK_VALUECHECK_H
#define CHECK_VALUECHECK_H

#include <string_view>
#include <vector>

#include <QString>
#include <QtGlobal>

class Findings;

// Checks the values of one slot after another: while they are read, the lines that are not plain
// numbers; afterwards the numbers.
class ValueCheck
{
public:
    explicit ValueCheck(Findings& findings) : m_findings(findings) {}

    // To be called before the `count` values of a slot are read; `slotName` is its name in reports.
    void begin(const QString& slotName, std::size_t count);
    // Checks a value line that is not a plain number; see LineReader::OddLineObserver.
    void checkOddLine(std::size_t index, qint64 lineNumber, std::string_view line);
    // To be called when the input ends before the last value. That is not reported here, but as a
    // missing slot.
    void noteEnd() { ++m_foreignLines; }
    // To be called after the values have been read, of which the first is on `firstLine`. Reports
    // values that are missing or look like it, unless lines of another section were read.
    void finish(const std::vector<double>& values, qint64 firstLine);

    // Whether lines of another section, or lines past the end of the input, were read as values:
    // the slot has too few.
    bool hasForeignLines() const { return m_foreignLines > 0; }
    // Whether lines that are not values were read as values: the last values were then not read.
    bool hasInsertedLines() const { return m_insertedLines > 0; }

private:
    void checkNumber(qint64 lineNumber, std::string_view line);
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
