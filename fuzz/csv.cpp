// The exports of any HTS file, from under any file name: both forms are RFC 4180, and have the
// names and values that the plain reader reads.
//
// Input: see fuzz/toolcase.h; the control file is not used.

#include <cmath>

#include <QBuffer>
#include <QFile>
#include <QVector>

#include "fuzz/fuzzsupport.h"
#include "fuzz/fuzztarget.h"
#include "fuzz/toolcase.h"
#include "hts/datetimetext.h"
#include "hts/htspackage.h"
#include "tests/plain/plainreader.h"

namespace {

// A carriage return decides nothing in a line that begins with one of these keys; elsewhere devices
// differ about it. Line ends are only line feeds.
QByteArray withCarriageReturnsInNamesOnly(const QByteArray& input)
{
    QByteArray result;
    for (QByteArray line : input.split('\n')) {
        const bool isName = line.startsWith("object_name: ") || line.startsWith("slot_name: ") ||
                            line.startsWith("units: ");
        if (isName)
            line = line.trimmed();
        else
            line.replace("\r", "");
        result += line + '\n';
    }
    result.chop(1);
    return result;
}

// A table, read by the rules of RFC 4180 alone.
class CsvReader
{
public:
    explicit CsvReader(const QByteArray& text) : m_text(text) {}

    QVector<QStringList> rows()
    {
        QVector<QStringList> rows;
        while (m_next < m_text.size()) {
            QStringList row{field()};
            while (take(","))
                row.append(field());
            fuzz::require(take("\r\n"), QStringLiteral("a row without its end"));
            rows.append(row);
        }
        return rows;
    }

private:
    bool take(const char* text)
    {
        const bool isNext = m_text.mid(m_next, static_cast<int>(qstrlen(text))) == text;
        m_next += isNext ? static_cast<int>(qstrlen(text)) : 0;
        return isNext;
    }

    QString field()
    {
        const bool isQuoted = take("\"");
        QByteArray bytes;
        for (; m_next < m_text.size(); ++m_next) {
            const char c = m_text.at(m_next);
            if (isQuoted && c == '"' && m_text.mid(m_next++, 2) != "\"\"") {
                --m_next;
                break;
            }
            if (!isQuoted && (c == ',' || c == '"' || c == '\r' || c == '\n'))
                break;
            bytes += c;
        }
        fuzz::require(!isQuoted || take("\""), QStringLiteral("a field without its end"));
        return QString::fromUtf8(bytes);
    }

    const QByteArray m_text;
    int m_next = 0;
};

QString timeOf(const QString& timestep)
{
    const QDateTime time = textToDateTime(timestep);
    if (!time.isValid())
        return {};
    return time.date().toString(Qt::ISODate) + QLatin1Char('T') + time.time().toString(Qt::ISODate);
}

void requireValue(const QString& field, double value)
{
    bool isNumber = false;
    const double read = field.toDouble(&isNumber);
    const bool isSame = std::isfinite(value)
                            ? isNumber && read == value && std::signbit(read) == std::signbit(value)
                            : field.isEmpty();
    fuzz::require(isSame,
                  QStringLiteral("value \"%1\" instead of %2").arg(field, QString::number(value)));
}

QString traceOf(const HtsRun& run)
{
    return run.trace == -1 ? QString() : QString::number(run.trace);
}

// The rows of the long form. The names of later runs are not in the model.
void checkLong(const QVector<QStringList>& rows, const HtsPackage& package)
{
    int next = 1;
    for (int r = 0; r < package.runs.size(); ++r) {
        const HtsRun& run = package.run(r);
        const auto& slotValues = package.values[static_cast<std::size_t>(r)];
        for (std::size_t s = 0; s < slotValues.size(); ++s) {
            for (std::size_t i = 0; !slotValues[s].empty() && i < slotValues[s].front().size();
                 ++i) {
                fuzz::require(next < rows.size(), QStringLiteral("rows are missing"));
                const QStringList& row = rows.at(next++);
                fuzz::require(row.size() == 7, QStringLiteral("a row of other fields"));
                fuzz::requireEqual(QStringLiteral("run"), row.mid(0, 2).join(QLatin1Char('|')),
                                   QString::number(r + 1) + QLatin1Char('|') + traceOf(run));
                requireValue(row.at(6), slotValues[s].front()[i]);
                if (r > 0)
                    continue;
                const HtsSlot& slot = package.slots.at(static_cast<int>(s));
                const QString time =
                    slot.isSeries() ? timeOf(run.timesteps.at(static_cast<int>(i))) : QString();
                fuzz::requireEqual(
                    QStringLiteral("names"), row.mid(2, 4).join(QLatin1Char('|')),
                    QStringList{slot.objectName, slot.slotName, slot.units.value(0), time}.join(
                        QLatin1Char('|')));
            }
        }
    }
    fuzz::require(next == rows.size(), QStringLiteral("rows too many"));
}

// The first run in the wide form.
void checkWide(const QVector<QStringList>& rows, const HtsPackage& package)
{
    const HtsRun& run = package.run(0);
    QStringList header{QStringLiteral("run"), QStringLiteral("trace"), QStringLiteral("time")};
    QVector<const HtsColumn*> columns;
    for (int s = 0; s < package.slots.size(); ++s) {
        const HtsSlot& slot = package.slots.at(s);
        if (!slot.isSeries())
            continue;
        header.append(slot.objectName + QLatin1Char('.') + slot.slotName + QLatin1String(" [") +
                      slot.units.value(0) + QLatin1Char(']'));
        columns.append(&package.values[0][static_cast<std::size_t>(s)].front());
    }
    fuzz::require(rows.value(0) == header, QStringLiteral("another header"));
    fuzz::require(rows.size() == 1 + run.timesteps.size(),
                  QStringLiteral("another number of rows"));
    for (int i = 0; i < run.timesteps.size(); ++i) {
        const QStringList& row = rows.at(1 + i);
        fuzz::require(row.size() == header.size(), QStringLiteral("a row of other fields"));
        fuzz::requireEqual(QStringLiteral("time"), row.at(2), timeOf(run.timesteps.at(i)));
        for (int c = 0; c < columns.size(); ++c)
            requireValue(row.at(3 + c), (*columns.at(c))[static_cast<std::size_t>(i)]);
    }
}

// The rows that an export writes; none if it fails.
QVector<QStringList> exportedRows(const fuzz::ToolCase& files, const QStringList& options)
{
    const fuzz::ToolOutcome outcome =
        fuzz::runHtstool(QStringList{QStringLiteral("export"), QStringLiteral("--output"),
                                     files.resultPath(), files.htsPath()} +
                         options);
    fuzz::require(outcome.exitCode >= 0 && outcome.exitCode <= 2 && outcome.output.isEmpty(),
                  QStringLiteral("exit code %1").arg(outcome.exitCode));
    fuzz::require((outcome.exitCode == 0) == outcome.errors.isEmpty(),
                  QStringLiteral("no reason, or one without a fault"));
    if (outcome.exitCode == 2)
        return {};
    QFile result(files.resultPath());
    fuzz::require(result.open(QIODevice::ReadOnly), QStringLiteral("no result"));
    return CsvReader(result.readAll()).rows();
}

// Columns that are asked for leave the others as they are.
void checkAdded(const QVector<QStringList>& rows, const QVector<QStringList>& longerRows)
{
    constexpr int kColumns = 7;
    constexpr int kAdded = 4;
    fuzz::require(rows.size() == longerRows.size(), QStringLiteral("other rows with more columns"));
    for (int i = 0; i < rows.size(); ++i)
        fuzz::require(longerRows.at(i).mid(0, kColumns) == rows.at(i) &&
                          longerRows.at(i).size() == kColumns + kAdded,
                      QStringLiteral("another row with more columns"));
}

// No text begins as a formula does, unless it is a number.
void requireNoFormula(const QVector<QStringList>& rows)
{
    for (const QStringList& row : rows) {
        for (const QString& cell : row) {
            bool isNumber = false;
            static_cast<void>(cell.toDouble(&isNumber));
            const bool isFormula = !cell.isEmpty() && QStringLiteral("=+-@").contains(cell.at(0));
            fuzz::require(isNumber || !isFormula, QStringLiteral("a formula: ") + cell);
        }
    }
}

} // namespace

FUZZ_TARGET(csv)
{
    const fuzz::ToolCase files(withCarriageReturnsInNamesOnly(input));
    const QVector<QStringList> rows = exportedRows(files, {});
    const QVector<QStringList> wideRows =
        exportedRows(files, {QStringLiteral("--wide"), QStringLiteral("--run=1")});
    exportedRows(files, {QStringLiteral("--tables")});
    checkAdded(rows, exportedRows(files, {QStringLiteral("--columns"),
                                          QStringLiteral("scale,method,begin,year")}));
    requireNoFormula(exportedRows(files, {QStringLiteral("--safe")}));

    QBuffer device;
    device.setData(files.hts());
    fuzz::require(device.open(QIODevice::ReadOnly), QStringLiteral("cannot open the buffer"));
    HtsPackage package;
    bool isEndless = false;
    const Status status = plainreader::readUnlessEndless(device, files.hts(), package, isEndless);
    if (!status.ok()) {
        fuzz::require(rows.isEmpty(), QStringLiteral("exported in spite of: ") + status.message);
        return;
    }
    if (!rows.isEmpty())
        checkLong(rows, package);
    if (!wideRows.isEmpty() && !package.runs.isEmpty())
        checkWide(wideRows, package);
}
