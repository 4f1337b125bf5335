#include "exchange/csvexport.h"

#include <algorithm>
#include <string_view>

#include <QByteArray>
#include <QStringList>

#include "annualize/timestepunit.h"
#include "exchange/csvwriter.h"
#include "hts/datetimetext.h"
#include "hts/htsreader.h"
#include "hts/htswalk.h"
#include "hts/numbertext.h"
#include "hts/quotedtext.h"

namespace {

class TextValueCounter : public ReaderObserver
{
public:
    void oddValueLine(std::size_t, qint64, std::string_view line) override
    {
        count += isNumberLine(line) ? 0 : 1;
    }

    qint64 count = 0;
};

// The fields of a run's timesteps, one for each.
struct StepFields
{
    std::vector<QByteArray> times;
    // Empty unless they are asked for.
    std::vector<QByteArray> begins;
    std::vector<QByteArray> years;

    const std::vector<QByteArray>& of(ExportColumn column) const
    {
        return column == ExportColumn::Begin ? begins : years;
    }
};

// Gets the runs and slots of a file and writes them as rows.
class Table
{
public:
    Table(CsvWriter& writer, const ExportOptions& options) : m_writer(writer), m_options(options) {}
    virtual ~Table() = default;
    Q_DISABLE_COPY(Table)

    // `runFields` are the fields run and trace of the rows that follow; the steps must stay valid
    // until endRun().
    void beginRun(const QByteArray& runFields, const StepFields& steps)
    {
        m_runFields = runFields;
        m_steps = &steps;
        runBegun();
    }
    // The slot at which the walk is.
    virtual void addSlot(HtsWalk& walk) = 0;
    virtual Status endRun() { return {}; }

protected:
    virtual void runBegun() {}

    QByteArray field(const QString& text) const
    {
        return csvField(m_options.isSafe ? harmless(text) : text);
    }
    QByteArray namesOf(const HtsSlot& slot) const
    {
        return m_runFields + ',' + field(slot.objectName) + ',' + field(slot.slotName);
    }
    void writeHeader(const QStringList& names)
    {
        for (const QString& name : names)
            m_writer.addFields(field(name));
        m_writer.endRow();
    }
    QStringList columnWords() const
    {
        QStringList words;
        for (const ExportColumnName* column : m_options.columns)
            words.append(column->word);
        return words;
    }
    CsvWriter& writer() { return m_writer; }
    const ExportOptions& options() const { return m_options; }
    const QByteArray& runFields() const { return m_runFields; }
    const StepFields& steps() const { return *m_steps; }

private:
    CsvWriter& m_writer;
    const ExportOptions& m_options;
    QByteArray m_runFields;
    const StepFields* m_steps = nullptr;
};

class LongTable : public Table
{
public:
    using Table::Table;

    void begin()
    {
        writeHeader(
            QString::fromLatin1("run,trace,object,slot,units,time,value").split(QLatin1Char(',')) +
            columnWords());
    }

    void addSlot(HtsWalk& walk) override
    {
        const HtsSlot& slot = walk.slot();
        if (slot.isTable())
            return;
        const HtsColumn& values = walk.values();
        const QByteArray fields = namesOf(slot) + ',' + field(slot.units.value(0));
        takeColumns(slot);
        const QByteArray noTime;
        const bool isSeries = slot.isSeries();
        for (std::size_t i = 0; i < values.size(); ++i) {
            writer().addFields(fields);
            writer().addFields(isSeries ? steps().times[i] : noTime);
            writer().add(values[i]);
            for (const Column& column : m_columns)
                writer().addFields(column.steps == nullptr ? column.ofSlot : (*column.steps)[i]);
            writer().endRow();
        }
    }

private:
    // What a column that was asked for has for the slot at hand: a field for each timestep, or one.
    struct Column
    {
        const std::vector<QByteArray>* steps;
        QByteArray ofSlot;
    };

    void takeColumns(const HtsSlot& slot)
    {
        m_columns.clear();
        for (const ExportColumnName* name : options().columns) {
            const bool hasSteps = name->isOfStep && slot.isSeries();
            m_columns.push_back({hasSteps ? &steps().of(name->column) : nullptr,
                                 name->isOfStep ? QByteArray() : fieldOf(slot, name->column)});
        }
    }

    QByteArray fieldOf(const HtsSlot& slot, ExportColumn column) const
    {
        switch (column) {
        case ExportColumn::ObjectType:
            return field(slot.objectType);
        case ExportColumn::SlotType:
            return field(slot.slotType);
        case ExportColumn::Scale:
            return csvField(slot.scales.value(0));
        default:
            return field(slot.methods.value(0));
        }
    }

    std::vector<Column> m_columns;
};

class WideTable : public Table
{
public:
    using Table::Table;

    void addSlot(HtsWalk& walk) override
    {
        const HtsSlot& slot = walk.slot();
        if (!slot.isSeries())
            return;
        m_names.append(fullSlotName(slot.objectName, slot.slotName) + QLatin1String(" [") +
                       slot.units.value(0) + QLatin1Char(']'));
        m_columns.push_back(walk.takeValues());
    }

    Status endRun() override
    {
        if (!m_hasHeader)
            beginTable();
        else if (m_names != m_header)
            return failure(QStringLiteral("The runs have different slots; export one of them"));
        const std::size_t count = steps().times.size();
        for (std::size_t first = 0; first < count; first += kRowsAtOnce)
            writeRows(first, std::min(first + kRowsAtOnce, count));
        return {};
    }

protected:
    void runBegun() override
    {
        m_names.clear();
        m_columns.clear();
    }

private:
    // Columns are far apart in memory: of each, the values of one line of the processor's cache are
    // taken at once.
    static constexpr std::size_t kRowsAtOnce = 8;

    void writeRows(std::size_t first, std::size_t end)
    {
        m_values.resize((end - first) * m_columns.size());
        for (std::size_t c = 0; c < m_columns.size(); ++c) {
            for (std::size_t i = first; i < end; ++i)
                m_values[(i - first) * m_columns.size() + c] = m_columns[c][i];
        }
        const double* value = m_values.data();
        for (std::size_t i = first; i < end; ++i) {
            writer().addFields(runFields());
            writer().addFields(steps().times[i]);
            for (const ExportColumnName* column : options().columns)
                writer().addFields(steps().of(column->column)[i]);
            for (const double* const rowEnd = value + m_columns.size(); value != rowEnd; ++value)
                writer().add(*value);
            writer().endRow();
        }
    }

    void beginTable()
    {
        m_hasHeader = true;
        m_header = m_names;
        writeHeader(
            QStringList{QStringLiteral("run"), QStringLiteral("trace"), QStringLiteral("time")} +
            columnWords() + m_names);
    }

    bool m_hasHeader = false;
    QStringList m_header;
    QStringList m_names;
    std::vector<HtsColumn> m_columns;
    std::vector<double> m_values; // of the rows at hand
};

// The slots that are no series.
class OtherSlotsTable : public Table
{
public:
    using Table::Table;

    void begin()
    {
        writeHeader(
            QString::fromLatin1("run,trace,object,slot,object_type,slot_type,units,scale,row,value")
                .split(QLatin1Char(',')));
    }

    void addSlot(HtsWalk& walk) override
    {
        const HtsSlot& slot = walk.slot();
        if (slot.isSeries())
            return;
        const QByteArray fields =
            namesOf(slot) + ',' + field(slot.objectType) + ',' + field(slot.slotType) + ',';
        if (slot.isTable())
            addRows(slot, fields + ",,");
        else
            addValue(fields + field(slot.units.value(0)) + ',' + csvField(slot.scales.value(0)) +
                         ',',
                     walk.values().at(0));
    }

private:
    void addRows(const HtsSlot& slot, const QByteArray& fields)
    {
        for (int i = 0; i < slot.tableRows.size(); ++i) {
            writer().addFields(fields + QByteArray::number(i + 1));
            writer().addFields(field(slot.tableRows.at(i)));
            writer().endRow();
        }
    }

    void addValue(const QByteArray& fields, double value)
    {
        writer().addFields(fields);
        writer().add(value);
        writer().endRow();
    }
};

// Where the timestep `end` begins; `before` is the one before it, if there is one. Invalid for one
// before the year 1.
QDateTime beginOfStep(const QDateTime& end, const QDateTime& before, const TimestepUnit& unit,
                      int quantity)
{
    const QDateTime begin = unit.beginOf(end, quantity);
    if (before.isValid() && before < end && begin < before)
        return before;
    return begin.date().year() >= 1 ? begin : QDateTime();
}

// Sets `steps` to the fields of the run's timesteps. Fails for one like 2001-2-30, which the reader
// accepts.
Status readSteps(const HtsRun& run, const ExportOptions& options, StepFields& steps)
{
    steps = StepFields();
    steps.times.reserve(static_cast<std::size_t>(run.timesteps.size()));
    const auto isWanted = [&options](ExportColumn column) {
        return std::any_of(
            options.columns.begin(), options.columns.end(),
            [column](const ExportColumnName* name) { return name->column == column; });
    };
    const bool hasBegins = isWanted(ExportColumn::Begin);
    const bool hasYears = isWanted(ExportColumn::Year);
    const TimestepUnit& unit = timestepUnitOrDay(run.timeStepUnit);
    QDateTime before;
    for (const QString& timestep : run.timesteps) {
        const QDateTime time = textToDateTime(timestep);
        if (!time.isValid())
            return failure(
                QStringLiteral("The timestep %1 is not a date-time").arg(quoted(timestep)));
        steps.times.push_back(csvField(time));
        if (hasBegins)
            steps.begins.push_back(csvField(beginOfStep(time, before, unit, run.unitQuantity)));
        if (hasYears)
            steps.years.push_back(QByteArray::number(time.addSecs(-1).date().year()));
        before = time;
    }
    return {};
}

QByteArray runFieldsOf(const HtsRun& run, int runNumber)
{
    return QByteArray::number(runNumber) + ',' +
           (run.trace == -1 ? QByteArray() : QByteArray::number(run.trace));
}

// Adds the section at which the walk is.
Status addSection(HtsWalk& walk, Table& table, const ExportOptions& options, StepFields& steps)
{
    if (walk.place() == HtsWalk::Place::Run) {
        Status status = readSteps(walk.run(), options, steps);
        table.beginRun(runFieldsOf(walk.run(), walk.runIndex() + 1), steps);
        return status;
    }
    if (walk.place() == HtsWalk::Place::Slot)
        table.addSlot(walk);
    return walk.place() == HtsWalk::Place::EndOfRun ? table.endRun() : Status();
}

// What follows the wanted run is not read.
Status addRuns(HtsReader& reader, Table& table, const ExportOptions& options)
{
    HtsPackage package;
    const auto rows =
        options.form == ExportOptions::Form::Tables ? TableRows::Keep : TableRows::Skip;
    // Unlike a conversion, an export stops at the end of the input.
    HtsWalk walk(reader, package, {rows, MissingTableEnd::StopAtEndOfInput});
    StepFields steps;
    Status status;
    bool isDone = false;
    while (status.ok() && !isDone && walk.next()) {
        if (options.run > package.numberOfRuns)
            return failure(QStringLiteral("The file has %1 runs").arg(package.numberOfRuns));
        const bool isWanted = options.run == 0 || options.run == walk.runIndex() + 1;
        if (isWanted)
            status = addSection(walk, table, options, steps);
        isDone = isWanted && options.run != 0 && walk.place() == HtsWalk::Place::EndOfRun;
    }
    if (walk.isTableWithoutEnd())
        return failure(QStringLiteral("A table slot has no \"END_SLOT\" after it"));
    return status.ok() ? walk.status() : status;
}

Status addTable(HtsReader& reader, CsvWriter& writer, const ExportOptions& options)
{
    if (options.form == ExportOptions::Form::Wide) {
        WideTable table(writer, options);
        return addRuns(reader, table, options);
    }
    if (options.form == ExportOptions::Form::Tables) {
        OtherSlotsTable table(writer, options);
        table.begin();
        return addRuns(reader, table, options);
    }
    LongTable table(writer, options);
    table.begin();
    return addRuns(reader, table, options);
}

} // namespace

const std::array<ExportColumnName, 6> kExportColumns = {{
    {QLatin1String("object_type"), ExportColumn::ObjectType, false},
    {QLatin1String("slot_type"), ExportColumn::SlotType, false},
    {QLatin1String("scale"), ExportColumn::Scale, false},
    {QLatin1String("method"), ExportColumn::Method, false},
    {QLatin1String("begin"), ExportColumn::Begin, true},
    {QLatin1String("year"), ExportColumn::Year, true},
}};

ExportOutcome exportCsv(QIODevice& source, QIODevice& target, const ExportOptions& options)
{
    HtsReader reader(source);
    TextValueCounter textValues;
    reader.addObserver(textValues);
    CsvWriter writer(target);
    ExportOutcome outcome;
    outcome.status = addTable(reader, writer, options);
    outcome.textValues = textValues.count;
    return outcome;
}
