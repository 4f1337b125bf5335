#include "exchange/csvexport.h"

#include <string_view>
#include <vector>

#include <QByteArray>
#include <QStringList>

#include "exchange/csvwriter.h"
#include "hts/datetimetext.h"
#include "hts/htswalk.h"
#include "hts/numbertext.h"
#include "hts/quotedtext.h"

namespace {

class TextValueCounter : public HtsReader::Observer
{
public:
    void oddValueLine(std::size_t, qint64, std::string_view line) override
    {
        count += isNumberLine(line) ? 0 : 1;
    }

    qint64 count = 0;
};

// Gets the runs and slots of a file and writes them as rows.
class Table
{
public:
    virtual ~Table() = default;
    // `runFields` are the fields run and trace of the rows that follow, `times` one field for each
    // timestep; the latter must stay valid until endRun().
    virtual void beginRun(const QByteArray& runFields, const std::vector<QByteArray>& times) = 0;
    virtual void addSlot(const HtsSlot& slot, const HtsColumn& values) = 0;
    virtual Status endRun() = 0;
};

class LongTable : public Table
{
public:
    explicit LongTable(CsvWriter& writer) : m_writer(writer)
    {
        for (const char* name : {"run", "trace", "object", "slot", "units", "time", "value"})
            m_writer.add(QString::fromLatin1(name));
        m_writer.endRow();
    }

    void beginRun(const QByteArray& runFields, const std::vector<QByteArray>& times) override
    {
        m_runFields = runFields;
        m_times = &times;
    }

    void addSlot(const HtsSlot& slot, const HtsColumn& values) override
    {
        const QByteArray fields = m_runFields + ',' + csvField(slot.objectName) + ',' +
                                  csvField(slot.slotName) + ',' + csvField(slot.units.value(0));
        for (std::size_t i = 0; i < values.size(); ++i) {
            m_writer.addFields(fields);
            m_writer.addFields(slot.isSeries() ? (*m_times)[i] : QByteArray());
            m_writer.add(values[i]);
            m_writer.endRow();
        }
    }

    Status endRun() override { return {}; }

private:
    CsvWriter& m_writer;
    QByteArray m_runFields;
    const std::vector<QByteArray>* m_times = nullptr;
};

class WideTable : public Table
{
public:
    explicit WideTable(CsvWriter& writer) : m_writer(writer) {}

    void beginRun(const QByteArray& runFields, const std::vector<QByteArray>& times) override
    {
        m_runFields = runFields;
        m_times = &times;
        m_names.clear();
        m_columns.clear();
    }

    void addSlot(const HtsSlot& slot, const HtsColumn& values) override
    {
        if (!slot.isSeries())
            return;
        m_names.append(fullSlotName(slot.objectName, slot.slotName) + QLatin1String(" [") +
                       slot.units.value(0) + QLatin1Char(']'));
        m_columns.push_back(values);
    }

    Status endRun() override
    {
        if (!m_hasHeader)
            writeHeader();
        else if (m_names != m_header)
            return failure(QStringLiteral("The runs have different slots; export one of them"));
        for (std::size_t i = 0; i < m_times->size(); ++i) {
            m_writer.addFields(m_runFields);
            m_writer.addFields((*m_times)[i]);
            for (const HtsColumn& column : m_columns)
                m_writer.add(column[i]);
            m_writer.endRow();
        }
        return {};
    }

private:
    void writeHeader()
    {
        m_hasHeader = true;
        m_header = m_names;
        for (const QString& name :
             QStringList{QStringLiteral("run"), QStringLiteral("trace"), QStringLiteral("time")} +
                 m_names)
            m_writer.add(name);
        m_writer.endRow();
    }

    CsvWriter& m_writer;
    QByteArray m_runFields;
    const std::vector<QByteArray>* m_times = nullptr;
    bool m_hasHeader = false;
    QStringList m_header;
    QStringList m_names;
    std::vector<HtsColumn> m_columns;
};

// Sets `times` to a field for each timestep. Fails for one like 2001-2-30, which the reader
// accepts.
Status readTimes(const HtsRun& run, std::vector<QByteArray>& times)
{
    times.clear();
    times.reserve(static_cast<std::size_t>(run.timesteps.size()));
    for (const QString& timestep : run.timesteps) {
        const QDateTime time = textToDateTime(timestep);
        if (!time.isValid())
            return failure(
                QStringLiteral("The timestep %1 is not a date-time").arg(quoted(timestep)));
        times.push_back(csvField(time));
    }
    return {};
}

QByteArray runFieldsOf(const HtsRun& run, int runNumber)
{
    return QByteArray::number(runNumber) + ',' +
           (run.trace == -1 ? QByteArray() : QByteArray::number(run.trace));
}

// Adds the section at which the walk is.
Status addSection(HtsWalk& walk, Table& table, std::vector<QByteArray>& times)
{
    if (walk.place() == HtsWalk::Place::Run) {
        Status status = readTimes(walk.run(), times);
        table.beginRun(runFieldsOf(walk.run(), walk.runIndex() + 1), times);
        return status;
    }
    if (walk.place() == HtsWalk::Place::Slot && !walk.slot().isTable())
        table.addSlot(walk.slot(), walk.values());
    return walk.place() == HtsWalk::Place::EndOfRun ? table.endRun() : Status();
}

// `wantedRun` is 0 for all. What follows the wanted run is not read.
Status addRuns(HtsReader& reader, Table& table, int wantedRun)
{
    HtsPackage package;
    // Unlike a conversion, an export stops at the end of the input.
    HtsWalk walk(reader, package,
                 {HtsReader::TableRows::Skip, HtsReader::MissingTableEnd::StopAtEndOfInput});
    std::vector<QByteArray> times;
    Status status;
    bool isDone = false;
    while (status.ok() && !isDone && walk.next()) {
        if (wantedRun > package.numberOfRuns)
            return failure(QStringLiteral("The file has %1 runs").arg(package.numberOfRuns));
        const bool isWanted = wantedRun == 0 || wantedRun == walk.runIndex() + 1;
        if (isWanted)
            status = addSection(walk, table, times);
        isDone = isWanted && wantedRun != 0 && walk.place() == HtsWalk::Place::EndOfRun;
    }
    if (walk.isTableWithoutEnd())
        return failure(QStringLiteral("A table slot has no \"END_SLOT\" after it"));
    return status.ok() ? walk.status() : status;
}

} // namespace

ExportOutcome exportCsv(QIODevice& source, QIODevice& target, const ExportOptions& options)
{
    HtsReader reader(source);
    TextValueCounter textValues;
    reader.addObserver(textValues);
    CsvWriter writer(target);
    ExportOutcome outcome;
    if (options.isWide) {
        WideTable table(writer);
        outcome.status = addRuns(reader, table, options.run);
    } else {
        LongTable table(writer);
        outcome.status = addRuns(reader, table, options.run);
    }
    outcome.textValues = textValues.count;
    return outcome;
}
