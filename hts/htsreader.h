#ifndef HTS_HTSREADER_H
#define HTS_HTSREADER_H

#include <array>
#include <string_view>
#include <vector>

#include <QString>
#include <QtGlobal>

#include "hts/linereader.h"
#include "hts/linetext.h"
#include "hts/status.h"

class QIODevice;
struct HtsPackage;
struct HtsRun;
struct HtsSlot;

// Reads an HTS file section by section, in one pass; the caller's loop follows the order of the
// file and decides what is kept. docs/hts-format.md describes the sections.
//
//     HtsReader reader(device);
//     Status status = reader.readPackagePreamble(package);
//     for (int r = 0; status.ok() && r < package.numberOfRuns; ++r) {
//         HtsRun run;
//         status = reader.readRun(run);                   // preamble and timesteps
//         while (status.ok() && !reader.takeEndOfRun()) {
//             HtsSlot slot;
//             status = reader.readSlot(slot, HtsReader::TableRows::Skip);
//             if (status.ok() && slot.isTable()) {
//                 reader.skipTable();
//             } else if (status.ok()) {
//                 values.resize(slot.valueCount(run));    // a buffer for all slots
//                 reader.readValues(values);
//                 reader.readLine();                      // "END_COLUMN"
//                 reader.readLine();                      // "END_SLOT"
//             }
//         }
//     }
//
// The device is open for reading, in text mode or not, and may be sequential; nothing else may use
// it while the reader exists. Once the reader is destroyed, the device's position is after the last
// line used. On a pipe the reader does not wait for anything after the "END_RUN" line that
// takeEndOfRun() read. Not safe to use from two threads at once.
class HtsReader
{
public:
    explicit HtsReader(QIODevice& device);

    // Sees the lines of preambles and column headers, and what the format tolerates silently, for
    // programs that report it. It is not called for value lines that are plain numbers and for
    // timestep lines, which it therefore does not slow down. Lines come without white space at both
    // ends; during a call, lineNumber() is the number of the line.
    class Observer : public LineReader::OddLineObserver
    {
    public:
        // A line of a preamble that begins with none of its keys.
        virtual void ignoredLine(std::string_view line) = 0;
        // A keyword line of a preamble or a column header; the value is the rest of the line.
        virtual void keywordLine(QLatin1String key, std::string_view value) = 0;
        // A line in the place of `expected`: of an end line, a key of a column header, or
        // kTimestepFormat. Reading then fails, unless `expected` is "method: " or "END_RUN": a
        // method line need only begin with the letter m, and an empty line before "END_RUN" ends
        // the run.
        virtual void unexpectedLine(QLatin1String expected, std::string_view line) = 0;
        // A line with a NUL byte, which ends its text: the bytes from there on are lost. Comes
        // before the call for what is left of the line, `text`.
        virtual void cutLine(std::string_view text) = 0;
    };

    // The form of a timestep line.
    static inline const QLatin1String kTimestepFormat{"yyyy-M-d h:mm"};

    // The observer is not owned and outlives the reader; null for none.
    void setObserver(Observer* observer) { m_observer = observer; }

    // Reads the package preamble. Fails with "Cannot read package preamble".
    Status readPackagePreamble(HtsPackage& package);

    // Reads the run preamble and the timestep lines. Fails with HtsRun::kBadPreamble; the timesteps
    // before a bad one are kept.
    Status readRun(HtsRun& run);

    // Whether the next line is "END_RUN"; if so, reads it.
    bool takeEndOfRun();

    // What happens to the rows of a table: they are stored in the slot, read and dropped, or left
    // for the caller to read.
    enum class TableRows { Keep, Skip, Leave };

    // Reads the slot preamble and all else of the slot up to its values: the rows of a table; for
    // other slots the column header, as one entry each of units, scales and methods. Past the end
    // of the input up to 4096 empty rows are read. Fails with "Cannot read slot preamble" or
    // "Cannot read HTS file: Missing units or scale".
    Status readSlot(HtsSlot& slot, TableRows tableRows);

    // The two halves of readSlot().
    Status readSlotPreamble(HtsSlot& slot, TableRows tableRows);
    // Fails with "Cannot read HTS file: Missing units or scale"; the three results are then
    // unchanged. `method` is changed only if there is a method line.
    Status readColumnHeader(QString& units, double& scale, QString& method);

    // Reads one value line for each element. Text that is not a number gives 0, and so does a line
    // past the end of the input.
    void readValues(std::vector<double>& values);
    // Reads `count` value lines, none if it is negative, and drops them.
    void skipValues(int count);

    // Reads one line without checking it, such as "END_COLUMN" or the row of a table, and returns
    // it without white space at both ends. The view is valid until the next call.
    std::string_view readLine();

    // Reads lines until one is "END_SLOT". Deliberately without a test for the end of the input: a
    // table must end with that line, and without it the call never returns.
    void skipTable();

    // Number of the line that was read last, counted from 1; 0 before the first.
    qint64 lineNumber() const { return m_lines.lineNumber(); }
    // How many of the lines read are past the end of the input, where every line is empty.
    qint64 linesPastEnd() const { return m_lines.linesPastEnd(); }
    // Whether no byte of the input is left. On a pipe it waits for a byte or the end.
    bool atEnd() { return m_lines.atEnd(); }

private:
    bool takeHeaderKey(std::string_view& line, QLatin1String key);

    LineReader m_lines;
    std::array<RepeatedText, 6> m_slotTexts; // one for each keyword of a slot
    RepeatedText m_unitsText;
    Observer* m_observer = nullptr;
};

#endif // HTS_HTSREADER_H
