#ifndef HTS_HTSREADER_H
#define HTS_HTSREADER_H

#include <array>
#include <string_view>
#include <vector>

#include <QList>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include "hts/linereader.h"
#include "hts/linetext.h"
#include "hts/readerobserver.h"
#include "hts/status.h"
#include "hts/tablereading.h"

class QIODevice;
template<typename Model>
struct HtsKey;
struct HtsPackage;
struct HtsRun;
struct HtsSlot;

// Reads the sections of an HTS file, one at a time and each once; docs/hts-format.md describes
// them. HtsWalk calls it in the order of a file.
//
// The device is open for reading, in text mode or not, and may be sequential; nothing else may use
// it while the reader exists. Once the reader is destroyed, the device's position is after the last
// line used. On a pipe the reader does not wait for anything after the "END_RUN" line that
// takeEndOfRun() read. Not safe to use from two threads at once.
class HtsReader : private LineReader::OddLineObserver
{
public:
    explicit HtsReader(QIODevice& device);

    using Observer = ReaderObserver;
    using Section = ReaderObserver::Section;
    using TableRows = ::TableRows;
    using MissingTableEnd = ::MissingTableEnd;

    // The observer is not owned and outlives the reader. Observers are called in the order in which
    // they were added.
    void addObserver(Observer& observer) { m_observers.push_back(&observer); }

    // Reads the package preamble. Fails with HtsPackage::kBadPreamble.
    Status readPackagePreamble(HtsPackage& package);

    // Reads the run preamble and the timestep lines. Fails with HtsRun::kBadPreamble; the timesteps
    // before a bad one are kept.
    Status readRun(HtsRun& run);

    // Whether the next line is "END_RUN"; if so, reads it.
    bool takeEndOfRun();

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

    // Reads the lines "END_COLUMN" and "END_SLOT", without checking them.
    void readEndLines();

    // Reads the lines after the rows of `table`, to the first that is "END_SLOT". A table must end
    // with that line; deliberately, there is no other end: without it the call returns never, or
    // false, as `missingEnd` says.
    bool skipTable(const HtsSlot& table, MissingTableEnd missingEnd);

    // Reads one line, of any kind, and returns it without white space at both ends. The view is
    // valid until the next call.
    std::string_view readLine();

    // See LineReader.
    LinePlace place() const { return m_lines.place(); }
    void goTo(const LinePlace& place) { m_lines.goTo(place); }

    // Number of the line that was read last, counted from 1; 0 before the first.
    qint64 lineNumber() const { return m_lines.lineNumber(); }
    // How many of the lines read are past the end of the input, where every line is empty.
    qint64 linesPastEnd() const { return m_lines.linesPastEnd(); }
    // Whether no byte of the input is left. On a pipe it waits for a byte or the end.
    bool atEnd() { return m_lines.atEnd(); }

private:
    template<typename... Parameters, typename... Arguments>
    void notify(void (Observer::*function)(Parameters...), const Arguments&... arguments)
    {
        for (Observer* observer : m_observers)
            (observer->*function)(arguments...);
    }
    void oddValueLine(std::size_t index, qint64 lineNumber, std::string_view line) override
    {
        notify(&Observer::oddValueLine, index, lineNumber, line);
    }
    std::string_view readTextLine();
    template<typename Model, std::size_t count>
    bool readKeywordLines(const std::array<HtsKey<Model>, count>& keys, QLatin1String endLine,
                          std::array<RepeatedText, count>& texts, Model& model);
    bool takeHeaderKey(std::string_view& line, const HtsKeyword& keyword);
    void readTableRows(HtsSlot& slot, TableRows tableRows);

    LineReader m_lines;
    QStringList m_timesteps;                 // of the run read last
    std::array<RepeatedText, 6> m_slotTexts; // one for each keyword of a slot
    RepeatedText m_unitsText;
    RepeatedNumber m_scale;
    // The column header of the last slot.
    QStringList m_units;
    QList<double> m_scales;
    QStringList m_methods;
    std::vector<Observer*> m_observers;
};

#endif // HTS_HTSREADER_H
