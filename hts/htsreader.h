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

// Reads an HTS file section by section, in one pass; the caller's loop is the order of the file and
// decides what is kept. docs/hts-format.md describes the sections.
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
//                 reader.readEndLine();                   // "END_COLUMN"
//                 reader.readEndLine();                   // "END_SLOT"
//             }
//         }
//     }
//
// The device is open for reading, in text mode or not, and may be sequential; it belongs to the
// reader while that lives, and stands after the last line used once it is destroyed. Of a pipe
// nothing is waited for after the "END_RUN" line that was taken. Not safe to use from two threads
// at once.
class HtsReader
{
public:
    explicit HtsReader(QIODevice& device);

    // Looks at the lines of preambles and column headers, and at what the format tolerates without
    // a word, for programs that report it. Value lines that are plain numbers and timestep lines
    // take no time for it. Lines come without white space at both ends; lineNumber() is theirs.
    class Observer : public LineReader::OddLines
    {
    public:
        // A line of a preamble that begins with no key of it.
        virtual void ignoredLine(std::string_view line) = 0;
        // A keyword line of a preamble or a column header; the value is the rest of the line.
        virtual void keywordLine(QLatin1String key, std::string_view value) = 0;
        // A line that stands where the format has `expected`: an end line, a key of a column
        // header, or kTimestepFormat. It ends the reading, unless `expected` is "method: " or
        // "END_RUN": a method line need only begin with the letter m, and an empty line before
        // "END_RUN" ends the run.
        virtual void unexpectedLine(QLatin1String expected, std::string_view line) = 0;
        // A line with a NUL byte, which ends its text: the bytes from there on are lost. Comes
        // before the call for what is left of the line, `text`.
        virtual void cutLine(std::string_view text) = 0;
    };

    // What a timestep line looks like.
    static inline const QLatin1String kTimestepFormat{"yyyy-M-d h:mm"};

    // The observer is not owned and outlives the reader; null for none.
    void setObserver(Observer* observer) { m_observer = observer; }

    // Reads the package preamble. Fails with "Cannot read package preamble".
    Status readPackagePreamble(HtsPackage& package);

    // Reads the run preamble and the timestep lines. Fails with HtsRun::kBadPreamble; the timesteps
    // before a bad one are kept.
    Status readRun(HtsRun& run);

    // Whether the line "END_RUN" comes next; reads it if so.
    bool takeEndOfRun();

    // What becomes of the rows of a table: stored in the slot, read and dropped, or left for the
    // caller to read.
    enum class TableRows { Keep, Skip, Leave };

    // Reads the slot preamble and what belongs to the slot besides its values: the rows of a table,
    // else the column header, as one entry of units, scales and methods. Rows past the end of the
    // input are empty, and there are no more than 4096 of them. Fails with "Cannot read slot
    // preamble" or "Cannot read HTS file: Missing units or scale".
    Status readSlot(HtsSlot& slot, TableRows tableRows);

    // The two halves of readSlot().
    Status readSlotPreamble(HtsSlot& slot, TableRows tableRows);
    // Fails with "Cannot read HTS file: Missing units or scale"; the three results are then
    // unchanged. `method` is changed only if there is a method line.
    Status readColumnHeader(QString& units, double& scale, QString& method);

    // Reads one value line for each element. Text that is no number gives 0, and so does a line
    // past the end of the input.
    void readValues(std::vector<double>& values);
    // Reads `count` value lines, none if it is negative, and drops them.
    void skipValues(int count);

    // Reads a line that only has to be there, such as "END_COLUMN" or the row of a table, and
    // returns it without white space at both ends. The view is valid until the next call.
    std::string_view readEndLine();

    // Reads lines until one is "END_SLOT". Deliberately without a test for the end of the input: a
    // table must end with its line.
    void skipTable();

    // Number of the line that was read last, counted from 1.
    qint64 lineNumber() const { return m_lines.lineNumber(); }
    // How many of the lines are past the end of the input, where every line is empty.
    qint64 linesPastEnd() const { return m_lines.linesPastEnd(); }
    // Whether no byte of the input is left. Waits for one on a pipe.
    bool atEnd() { return m_lines.atEnd(); }

private:
    bool takeHeaderKey(std::string_view& line, QLatin1String key);

    LineReader m_lines;
    std::array<RepeatedText, 6> m_slotTexts; // one for each keyword of a slot
    RepeatedText m_unitsText;
    Observer* m_observer = nullptr;
};

#endif // HTS_HTSREADER_H
