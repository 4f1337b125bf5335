#include "exchange/tablelayout.h"

#include <algorithm>
#include <string>
#include <utility>

#include <QBuffer>
#include <QDate>
#include <QRegularExpression>

#include "hts/linetext.h"
#include "hts/quotedtext.h"

QLatin1String columnName(ColumnRole role)
{
    static const std::array<QLatin1String, kColumnRoles> kNames = {
        QLatin1String("run"),   QLatin1String("trace"),       QLatin1String("object"),
        QLatin1String("slot"),  QLatin1String("object_type"), QLatin1String("slot_type"),
        QLatin1String("units"), QLatin1String("scale"),       QLatin1String("method"),
        QLatin1String("time"),  QLatin1String("begin"),       QLatin1String("year"),
        QLatin1String("value")};
    return kNames[static_cast<std::size_t>(role)];
}

qint64 TableLayout::endOf(qint64 instant) const
{
    if (stamp == Stamp::Begin)
        return step.moved(instant, 1);
    switch (pattern.precision()) {
    case TimePattern::Precision::Minute:
        break;
    case TimePattern::Precision::Day: {
        const QDate date = QDate::fromJulianDay(instant / kMinutesPerDay);
        // No month ends with its first day: the date is the midnight.
        return step.isMonths() && date.day() == 1 ? instant : instant + kMinutesPerDay;
    }
    case TimePattern::Precision::Month:
        return TableStep::fromText(QStringLiteral("month"))->moved(instant, 1);
    case TimePattern::Precision::Year:
        return TableStep::fromText(QStringLiteral("year"))->moved(instant, 1);
    }
    return instant;
}

Status readName(std::string_view field, QString& name)
{
    const std::string_view bytes = stripped(field);
    name = toText(bytes);
    if (bytes.empty())
        return failure(QStringLiteral("a name is empty"));
    if (bytes.find('\n') != std::string_view::npos || bytes.find('\0') != std::string_view::npos)
        return failure(QStringLiteral("the name %1 has a line end or a NUL byte, which no name in "
                                      "an HTS file can have")
                           .arg(quoted(bytes)));
    if (!isAscii(bytes)) {
        const QByteArray again = name.toUtf8();
        if (bytes != std::string_view(again.constData(), static_cast<std::size_t>(again.size())))
            return failure(QStringLiteral("the name %1 is not in UTF-8; convert the table, for "
                                          "example with iconv -f latin1 -t utf-8")
                               .arg(quoted(bytes)));
    }
    return {};
}

Status checkSize(qint64 line, const std::vector<std::string_view>& fields, const QStringList& names)
{
    const auto size = static_cast<std::size_t>(names.size());
    if (fields.size() == size)
        return {};
    return failure(
        QStringLiteral("line %1: the row has %2 columns, and the header %3")
            .arg(QString::number(line), QString::number(fields.size()), QString::number(size)));
}

QString TableLayout::badTimeText(std::string_view text) const
{
    return QStringLiteral("%1 is not a time as %2").arg(quoted(text), pattern.text());
}

Status failureAt(qint64 line, int column, const QStringList& names, const QString& text)
{
    const QString name = names.value(column);
    const QString number = QString::number(column + 1);
    return failure(QStringLiteral("line %1, column %2%3: %4")
                       .arg(QString::number(line), number,
                            name.isEmpty() || name == number
                                ? QString()
                                : QStringLiteral(" (%1)").arg(quoted(name)),
                            text));
}

std::string_view joinedFields(const std::vector<std::string_view>& fields,
                              const std::vector<int>& columns, std::string& buffer)
{
    const auto field = [&fields](int column) {
        return stripped(fields[static_cast<std::size_t>(column)]);
    };
    if (columns.size() == 1)
        return field(columns.front());
    buffer.clear();
    for (const int column : columns) {
        if (!buffer.empty())
            buffer += ' ';
        buffer += field(column);
    }
    return buffer;
}

namespace {

using Row = std::vector<std::string>;

std::vector<std::string_view> viewsOf(const Row& row)
{
    return {row.begin(), row.end()};
}

// The two parts of "name [units]"; the units may have brackets in pairs.
std::pair<QString, QString> nameAndUnits(const QString& text)
{
    if (!text.endsWith(QLatin1Char(']')))
        return {text, {}};
    int depth = 0;
    auto begin = text.size();
    do {
        const QChar c = text.at(--begin);
        depth += c == QLatin1Char(']') ? 1 : c == QLatin1Char('[') ? -1 : 0;
    } while (depth > 0 && begin > 0);
    if (depth > 0)
        return {text, {}};
    return {text.left(begin).trimmed(), text.mid(begin + 1).chopped(1).trimmed()};
}

class LayoutFinder
{
public:
    LayoutFinder(const QByteArray& start, bool isWhole, const ImportOptions& options,
                 TableLayout& layout)
        : m_start(start), m_isWhole(isWhole), m_options(options), m_layout(layout)
    {
    }

    Status find();

private:
    Status findSeparator();
    Status readRows(std::size_t maxRows);
    Status readHeader();
    Status findRoles();
    Status findColumn(const QString& name, int& column) const;
    Status findTime();
    Status findTimeColumn();
    bool isTimeColumn(int column) const;
    const TimePattern* patternOf(const std::vector<int>& columns, bool isCertain) const;
    Status checkRows();
    Status findValueColumns();
    Status addValueColumn(int column, const QString& name);
    Status findDecimal();
    Status findStep();
    Status findStamp();
    std::vector<qint64> instantsOf(const std::vector<int>& columns) const;
    bool has(ColumnRole role) const { return m_layout.columnOf(role) >= 0; }
    int& columnOf(ColumnRole role) { return m_layout.columns[static_cast<std::size_t>(role)]; }
    bool isRoleOrTime(int column) const;

    const QByteArray& m_start;
    const bool m_isWhole;
    const ImportOptions& m_options;
    TableLayout& m_layout;
    std::vector<Row> m_rows; // the rows of values
    std::vector<qint64> m_lines;
    std::vector<Row> m_header;
    QStringList m_objects;
    QStringList m_units;
};

Status LayoutFinder::find()
{
    m_layout.columns.fill(-1);
    m_layout.form.comment = m_options.comment.toStdString();
    m_layout.headerLines = static_cast<int>(m_options.header.size());
    if (m_start.contains('\0'))
        return failure(
            QStringLiteral("the table is not text in UTF-8: it has NUL bytes, as UTF-16 "
                           "and workbooks of spreadsheets have; save it as CSV in UTF-8"));
    using Step = Status (LayoutFinder::*)();
    for (const Step step :
         {&LayoutFinder::findSeparator, &LayoutFinder::readHeader, &LayoutFinder::findRoles,
          &LayoutFinder::findTime, &LayoutFinder::checkRows, &LayoutFinder::findValueColumns,
          &LayoutFinder::findDecimal, &LayoutFinder::findStep, &LayoutFinder::findStamp}) {
        Status status = (this->*step)();
        if (!status.ok())
            return status;
    }
    return {};
}

// Reads the header and so many rows at most.
Status LayoutFinder::readRows(std::size_t maxRows)
{
    QBuffer device;
    device.setData(m_start);
    device.open(QIODevice::ReadOnly);
    CsvReader reader(device, m_layout.form);
    m_header.clear();
    m_rows.clear();
    m_lines.clear();
    while (m_rows.size() < maxRows && reader.next()) {
        Row row(reader.fields().begin(), reader.fields().end());
        if (static_cast<int>(m_header.size()) < m_layout.headerLines) {
            m_header.push_back(std::move(row));
        } else {
            m_rows.push_back(std::move(row));
            m_lines.push_back(reader.lineNumber());
        }
    }
    // The last row may be cut off, which may leave a quote without its end.
    if (!m_isWhole && m_rows.size() < maxRows) {
        if (reader.status().ok() && m_rows.size() > 1) {
            m_rows.pop_back();
            m_lines.pop_back();
        }
        return {};
    }
    return reader.status();
}

// The first separator that makes equal rows of two columns at least; or else the one that makes
// most columns in the header, so that the row that differs is reported.
Status LayoutFinder::findSeparator()
{
    constexpr std::size_t kMaxRows = 50;
    constexpr std::size_t kAllRows = std::size_t(1) << 30;
    char best = m_options.separator;
    std::size_t mostColumns = 1;
    for (const char separator : {'\t', ';', '|', ','}) {
        if (m_options.separator != 0)
            break;
        m_layout.form.separator = separator;
        // A failure is reported when the separator is known.
        static_cast<void>(readRows(kMaxRows));
        if (m_rows.empty())
            continue;
        const std::size_t size = m_rows.front().size();
        const bool isTable =
            size > 1 && std::all_of(m_rows.begin(), m_rows.end(),
                                    [size](const Row& row) { return row.size() == size; });
        if (size > mostColumns || isTable) {
            mostColumns = size;
            best = separator;
        }
        if (isTable)
            break;
    }
    if (best == 0)
        return failure(QStringLiteral("no tab, semicolon, bar or comma separates columns; is there "
                                      "a table? --separator says what does"));
    m_layout.form.separator = best;
    return readRows(kAllRows);
}

Status LayoutFinder::readHeader()
{
    if (m_rows.empty())
        return failure(QStringLiteral("the table has no row of values after its header lines: %1")
                           .arg(m_layout.headerLines));
    const std::size_t size = m_rows.front().size();
    for (std::size_t i = 1; i <= size; ++i)
        m_layout.names.append(QString::number(i));
    for (std::size_t line = 0; line < m_header.size(); ++line) {
        const HeaderLine kind = m_options.header.at(static_cast<int>(line));
        QStringList texts;
        for (const std::string& field : m_header[line]) {
            QString text;
            const Status status = readName(field, text);
            if (!status.ok() && !stripped(field).empty() && kind != HeaderLine::Skip)
                return failureAt(static_cast<qint64>(line) + 1, static_cast<int>(texts.size()), {},
                                 status.message);
            texts.append(text);
        }
        if (kind != HeaderLine::Skip && m_header[line].size() != size)
            return failure(
                QStringLiteral("line %1: the row has %2 columns, and the header %3; --header says "
                               "what the first lines hold")
                    .arg(QString::number(m_lines.front()), QString::number(size),
                         QString::number(m_header[line].size())));
        if (kind == HeaderLine::Names)
            m_layout.names = texts;
        else if (kind == HeaderLine::Objects)
            m_objects = texts;
        else if (kind == HeaderLine::Units)
            m_units = texts;
    }
    return {};
}

// Fails if no column, or more than one, has the name.
Status LayoutFinder::findColumn(const QString& name, int& column) const
{
    column = static_cast<int>(m_layout.names.indexOf(name));
    if (column < 0) {
        QStringList all;
        for (const QString& known : m_layout.names.mid(0, 20))
            all.append(quoted(known));
        return failure(
            QStringLiteral("no column has the name %1; there are %2%3")
                .arg(quoted(name), all.join(QLatin1String(", ")),
                     m_layout.names.size() > all.size() ? QStringLiteral(", ...") : QString()));
    }
    if (m_layout.names.indexOf(name, column + 1) >= 0)
        return failure(QStringLiteral("more than one column has the name %1").arg(quoted(name)));
    return {};
}

Status LayoutFinder::findRoles()
{
    const auto isNamed = [this](ColumnRole role) {
        return m_layout.names.contains(columnName(role));
    };
    const auto isTold = [this](ColumnRole role) {
        return !m_options.roleColumns[static_cast<std::size_t>(role)].isEmpty();
    };
    const auto isThere = [&](ColumnRole role) { return isNamed(role) || isTold(role); };
    m_layout.isLong =
        isThere(ColumnRole::Value) && (isThere(ColumnRole::Object) || isThere(ColumnRole::Slot));
    for (std::size_t i = 0; i < kColumnRoles; ++i) {
        const auto role = static_cast<ColumnRole>(i);
        const bool isOfWide = role == ColumnRole::Run || role == ColumnRole::Trace ||
                              role == ColumnRole::Time || role == ColumnRole::Begin ||
                              role == ColumnRole::Year;
        if (isTold(role) || (isNamed(role) && (m_layout.isLong || isOfWide))) {
            const QString name =
                isTold(role) ? m_options.roleColumns[i] : QString(columnName(role));
            Status status = findColumn(name, columnOf(role));
            if (!status.ok())
                return status;
            if (!m_layout.isLong && !isOfWide)
                return failure(QStringLiteral("--as %1 is for a table with a column of values and "
                                              "one of their objects or slots")
                                   .arg(columnName(role)));
        }
    }
    const bool isUntold = std::all_of(m_options.roleColumns.begin(), m_options.roleColumns.end(),
                                      [](const QString& name) { return name.isEmpty(); }) &&
                          m_options.timeColumns.isEmpty();
    m_layout.isExport =
        isUntold && has(ColumnRole::Run) && has(ColumnRole::Trace) && has(ColumnRole::Time) &&
        (!m_layout.isLong ||
         (has(ColumnRole::Object) && has(ColumnRole::Slot) && has(ColumnRole::Units)));
    return {};
}

bool LayoutFinder::isRoleOrTime(int column) const
{
    const auto contains = [column](const auto& list) {
        return std::find(list.begin(), list.end(), column) != list.end();
    };
    return contains(m_layout.columns) || contains(m_layout.timeColumns);
}

// A pattern that reads all times of the columns; or else one that reads the first, so that the time
// that differs is reported. Null if there is none.
const TimePattern* LayoutFinder::patternOf(const std::vector<int>& columns, bool isCertain) const
{
    const TimePattern* readsFirst = nullptr;
    for (const TimePattern& pattern : TimePattern::known()) {
        if (isCertain && !pattern.isCertain())
            continue;
        std::size_t good = 0;
        std::size_t count = 0;
        std::string buffer;
        for (const Row& row : m_rows) {
            if (static_cast<int>(row.size()) != m_layout.names.size())
                break; // reported with its line when it is read
            const std::vector<std::string_view> fields = viewsOf(row);
            const std::string_view text = joinedFields(fields, columns, buffer);
            if (text.empty() && m_layout.isLong)
                continue;
            ++count;
            if (!pattern.read(text))
                break;
            ++good;
        }
        if (good > 0 && good == count)
            return &pattern;
        if (good > 0 && readsFirst == nullptr)
            readsFirst = &pattern;
    }
    return readsFirst;
}

bool LayoutFinder::isTimeColumn(int column) const
{
    if (m_options.timePattern) {
        const std::string& first = m_rows.front()[static_cast<std::size_t>(column)];
        return m_options.timePattern->read(stripped(first)).has_value();
    }
    return patternOf({column}, true) != nullptr;
}

Status LayoutFinder::findTimeColumn()
{
    QStringList names;
    for (int column = 0; column < m_layout.names.size(); ++column) {
        if (!isRoleOrTime(column) && isTimeColumn(column)) {
            names.append(quoted(m_layout.names.at(column)));
            m_layout.timeColumns = {column};
        }
    }
    if (names.size() == 1)
        return {};
    m_layout.timeColumns.clear();
    return failure(names.isEmpty()
                       ? QStringLiteral("no column has times of a known form; --time names the "
                                        "column, and --date-format, such as D/M/YYYY, the form")
                       : QStringLiteral("the columns %1 have times; --time says which is the time "
                                        "of the values")
                             .arg(names.join(QLatin1String(", "))));
}

Status LayoutFinder::findTime()
{
    for (const QString& name : m_options.timeColumns) {
        int column = -1;
        Status status = findColumn(name, column);
        if (!status.ok())
            return status;
        m_layout.timeColumns.push_back(column);
    }
    if (m_layout.timeColumns.empty() && has(ColumnRole::Time))
        m_layout.timeColumns = {m_layout.columnOf(ColumnRole::Time)};
    if (m_layout.timeColumns.empty()) {
        Status status = findTimeColumn();
        if (!status.ok())
            return status;
    }
    const TimePattern* found = patternOf(m_layout.timeColumns, false);
    if (m_options.timePattern)
        found = &*m_options.timePattern;
    if (found == nullptr) {
        std::string buffer;
        const std::vector<std::string_view> fields = viewsOf(m_rows.front());
        return failureAt(m_lines.front(), m_layout.timeColumns.front(), m_layout.names,
                         QStringLiteral("%1 is not a time of a known form; --date-format says what "
                                        "is year, month and day, such as D/M/YYYY or M/D/YYYY")
                             .arg(quoted(joinedFields(fields, m_layout.timeColumns, buffer))));
    }
    m_layout.pattern = *found;
    return {};
}

// What is not found because a row is wrong would be misleading.
Status LayoutFinder::checkRows()
{
    std::string buffer;
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const std::vector<std::string_view> fields = viewsOf(m_rows[i]);
        Status status = checkSize(m_lines[i], fields, m_layout.names);
        if (!status.ok())
            return status;
        const std::string_view text = joinedFields(fields, m_layout.timeColumns, buffer);
        const bool mayLack = text.empty() && m_layout.isLong;
        if (!mayLack && !m_layout.pattern.read(text))
            return failureAt(m_lines[i], m_layout.timeColumns.front(), m_layout.names,
                             m_layout.badTimeText(text));
    }
    return {};
}

Status LayoutFinder::findValueColumns()
{
    if (m_layout.isLong) {
        if (!m_options.valueColumns.isEmpty())
            return failure(QStringLiteral("--column is for a table with a column for each slot; "
                                          "this one has a column of values"));
        const auto isKnown = [this](ColumnRole role, const QString& told) {
            return has(role) || !told.isEmpty();
        };
        if (!isKnown(ColumnRole::Object, m_options.object))
            return failure(QStringLiteral("no column has the objects; name it with --as "
                                          "object=COLUMN, or the only object with --object"));
        if (!isKnown(ColumnRole::Slot, m_options.slot))
            return failure(QStringLiteral("no column has the slots; name it with --as slot=COLUMN, "
                                          "or the only slot with --slot"));
        if (!isKnown(ColumnRole::Units, m_options.units))
            return failure(QStringLiteral("no column has the units; name it with --as "
                                          "units=COLUMN, or the only units with --units"));
        return {};
    }
    for (const QString& text : m_options.valueColumns) {
        const bool isName = m_layout.names.contains(text);
        const auto sign = isName ? decltype(text.size())(-1) : text.indexOf(QLatin1Char('='));
        int column = -1;
        Status status = findColumn(sign < 0 ? text : text.left(sign), column);
        if (status.ok())
            status = addValueColumn(column, sign < 0 ? text : text.mid(sign + 1));
        if (!status.ok())
            return status;
    }
    for (int column = 0; m_options.valueColumns.isEmpty() && column < m_layout.names.size();
         ++column) {
        if (isRoleOrTime(column))
            continue;
        Status status = addValueColumn(column, m_layout.names.at(column));
        if (!status.ok())
            return status;
    }
    return m_layout.valueColumns.empty() ? failure(QStringLiteral("no column has values"))
                                         : Status();
}

// `name` is "Object.Slot [units]", or less where options and header lines have the rest.
Status LayoutFinder::addValueColumn(int column, const QString& name)
{
    const auto [fullName, namedUnits] = nameAndUnits(name);
    HtsSlot slot;
    slot.objectType = m_options.objectType;
    slot.slotType = QStringLiteral("SeriesSlot");
    slot.objectName = m_objects.value(column);
    slot.slotName = fullName;
    const auto dot = fullName.indexOf(QLatin1Char('.'));
    if (slot.objectName.isEmpty() && dot >= 0) {
        slot.objectName = fullName.left(dot);
        slot.slotName = fullName.mid(dot + 1);
    } else if (slot.objectName.isEmpty()) {
        slot.objectName = m_options.object;
    }
    if (!m_options.slot.isEmpty() && dot < 0)
        slot.slotName = m_options.slot;
    QString units = namedUnits;
    for (const QString& other : {m_units.value(column), m_options.units}) {
        if (units.isEmpty())
            units = other;
    }
    const QString shownName = quoted(m_layout.names.at(column));
    if (slot.objectName.isEmpty() || slot.slotName.isEmpty())
        return failure(
            QStringLiteral(
                "column %1 (%2): the object is not known; --object names it, or --column "
                "%2 with = and Object.Slot [units]; --column also chooses columns")
                .arg(QString::number(column + 1), shownName));
    if (units.isEmpty())
        return failure(
            QStringLiteral(
                "column %1 (%2): the units are not known; --units names them, or --column "
                "%2 with = and Object.Slot [units]; --column also chooses columns")
                .arg(QString::number(column + 1), shownName));
    slot.units = QStringList{units};
    slot.scales = {1.0};
    slot.methods = QStringList{QString()};
    m_layout.valueColumns.push_back({column, slot});
    return {};
}

// A comma is a decimal comma if values have it, one each, and no value has a point.
Status LayoutFinder::findDecimal()
{
    if (m_options.hasDecimalComma) {
        m_layout.hasDecimalComma = *m_options.hasDecimalComma;
        return {};
    }
    std::vector<int> columns;
    if (m_layout.isLong)
        columns.push_back(m_layout.columnOf(ColumnRole::Value));
    for (const TableLayout::ValueColumn& value : m_layout.valueColumns)
        columns.push_back(value.column);
    static const QRegularExpression kCommaNumber(QStringLiteral("^[-+]?[0-9]*,[0-9]+$"));
    static const QRegularExpression kThousands(QStringLiteral("^[-+]?[0-9]{1,3},[0-9]{3}$"));
    bool hasComma = false;
    bool isCertain = false;
    for (const Row& row : m_rows) {
        for (const int column : columns) {
            if (static_cast<std::size_t>(column) >= row.size())
                continue;
            const std::string& field = row[static_cast<std::size_t>(column)];
            if (field.find('.') != std::string::npos)
                return {};
            if (field.find(',') == std::string::npos)
                continue;
            const QString text = toText(stripped(field));
            hasComma = true;
            isCertain = isCertain ||
                        (kCommaNumber.match(text).hasMatch() && !kThousands.match(text).hasMatch());
        }
    }
    if (hasComma && !isCertain)
        return failure(QStringLiteral("commas in values may be decimal commas or may group "
                                      "thousands; --decimal says comma or point"));
    m_layout.hasDecimalComma = hasComma;
    return {};
}

// The times of the first run, sorted and different.
std::vector<qint64> LayoutFinder::instantsOf(const std::vector<int>& columns) const
{
    std::vector<qint64> instants;
    std::string buffer;
    const int run = m_layout.columnOf(ColumnRole::Run);
    for (const Row& row : m_rows) {
        if (row.size() != m_rows.front().size() ||
            (run >= 0 &&
             row[static_cast<std::size_t>(run)] != m_rows.front()[static_cast<std::size_t>(run)]))
            break;
        const auto time = m_layout.pattern.read(joinedFields(viewsOf(row), columns, buffer));
        if (time)
            instants.push_back(time->instant);
    }
    std::sort(instants.begin(), instants.end());
    instants.erase(std::unique(instants.begin(), instants.end()), instants.end());
    return instants;
}

Status LayoutFinder::findStep()
{
    m_layout.step = m_options.step;
    if (m_layout.step.isKnown())
        return {};
    std::vector<qint64> instants = instantsOf(m_layout.timeColumns);
    // A single step has a beginning and an end.
    if (instants.size() == 1 && m_layout.isExport && has(ColumnRole::Begin)) {
        const std::vector<qint64> begins = instantsOf({m_layout.columnOf(ColumnRole::Begin)});
        if (begins.size() == 1 && begins.front() < instants.front())
            instants.insert(instants.begin(), begins.front());
    }
    if (instants.size() < 2)
        return failure(QStringLiteral("the step cannot be found, as the first rows have only one "
                                      "time; --step says it, such as \"1 day\""));
    m_layout.step = TableStep::between(instants, m_layout.pattern.precision());
    return {};
}

Status LayoutFinder::findStamp()
{
    const std::vector<qint64> instants = instantsOf(m_layout.timeColumns);
    std::string buffer;
    const bool hasHour24 = std::any_of(m_rows.begin(), m_rows.end(), [&](const Row& row) {
        if (row.size() != m_rows.front().size())
            return false;
        const auto time =
            m_layout.pattern.read(joinedFields(viewsOf(row), m_layout.timeColumns, buffer));
        return time && time->isHour24;
    });
    const bool areLastDays = m_layout.step.isMonths() &&
                             m_layout.pattern.precision() == TimePattern::Precision::Day &&
                             std::all_of(instants.begin(), instants.end(), [](qint64 instant) {
                                 const QDate date = QDate::fromJulianDay(instant / kMinutesPerDay);
                                 return date.day() == date.daysInMonth();
                             });
    if (m_options.stamp)
        m_layout.stamp = *m_options.stamp;
    else if (m_layout.isExport || hasHour24 || areLastDays ||
             m_layout.step.isNamedBy(m_layout.pattern.precision()))
        m_layout.stamp = Stamp::End;
    else
        return failure(
            QStringLiteral("the times, as %1 in line %2, may be the beginning or the end of steps "
                           "of %3; --stamp says begin or end")
                .arg(quoted(joinedFields(viewsOf(m_rows.front()), m_layout.timeColumns, buffer)),
                     QString::number(m_lines.front()), m_layout.step.text()));
    return {};
}

} // namespace

Status findLayout(const QByteArray& start, bool isWhole, const ImportOptions& options,
                  TableLayout& layout)
{
    return LayoutFinder(start, isWhole, options, layout).find();
}
