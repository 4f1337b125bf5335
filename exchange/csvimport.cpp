#include "exchange/csvimport.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <unordered_map>

#include <QIODevice>

#include "exchange/csvreader.h"
#include "exchange/importedruns.h"
#include "exchange/tablelayout.h"
#include "hts/htskeys.h"
#include "hts/htspackage.h"
#include "hts/linetext.h"
#include "hts/linewriter.h"
#include "hts/numbertext.h"
#include "hts/quotedtext.h"

namespace {

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
constexpr qint64 kStartSize = qint64(1) << 20;

bool isNan(std::string_view text)
{
    constexpr std::string_view kWord = "nan";
    return text.size() == kWord.size() &&
           std::equal(text.begin(), text.end(), kWord.begin(),
                      [](char a, char b) { return (a | 0x20) == b; });
}

// The first bytes of a device, without reading them.
QByteArray startOf(QIODevice& device)
{
    QByteArray start;
    QByteArray more = device.peek(kStartSize);
    // A pipe gives what is available.
    while (more.size() > start.size()) {
        start = more;
        if (start.size() < kStartSize)
            more = device.peek(kStartSize);
    }
    return start;
}

} // namespace

class CsvImport::Private
{
public:
    explicit Private(const ImportOptions& importOptions)
        : options(importOptions), runs(options.temporaryPath, options.isFilled)
    {
        for (const QString& word : options.missingWords)
            m_missingWords.push_back(word.toStdString());
    }

    void setLayout(CsvReader& reader);
    Status readRow(const CsvReader& reader);
    QString layoutText() const;

    const ImportOptions options;
    TableLayout layout;
    ImportedRuns runs;
    bool hasLayout = false;
    bool isRead = false; // to the end
    qint64 commentLines = 0;
    qint64 valueCount = 0;
    qint64 missingCount = 0;

private:
    using Fields = std::vector<std::string_view>;

    // Columns, and what they had in the row before.
    struct KeyFields
    {
        std::vector<int> columns;
        std::vector<std::string> texts;

        void set(const Fields& fields)
        {
            texts.clear();
            for (const int column : columns)
                texts.emplace_back(fields[static_cast<std::size_t>(column)]);
        }
    };

    std::string_view field(const Fields& fields, ColumnRole role) const
    {
        const int column = layout.columnOf(role);
        return column < 0 ? std::string_view() : stripped(fields[static_cast<std::size_t>(column)]);
    }
    Status failAt(int column, const QString& text) const
    {
        return failureAt(m_line, column, layout.names, text);
    }
    Status readLongRow(const CsvReader& reader);
    Status readWideRow(const Fields& fields);
    bool isRepeated(const CsvReader& reader, const KeyFields& key) const;
    Status findRun(const CsvReader& reader);
    Status findSlot(const CsvReader& reader);
    Status addSlot(const Fields& fields);
    Status readScale(const Fields& fields, double& scale) const;
    Status findStep(const Fields& fields, qint64& step);
    Status readValue(std::string_view text, int column, const char* readableEnd, double& value);
    bool readNumber(std::string_view text, double& value);
    bool isMissing(std::string_view text) const;
    void addWideRun();

    std::vector<std::string> m_missingWords;
    qint64 m_line = 0;
    std::string m_buffer;
    // What names the run and the slot of a row; of the row before, and where they are.
    KeyFields m_runFields;
    KeyFields m_slotFields;
    bool m_isSingle = false; // a slot of one value, by its lack of a time
    int m_repeatedCount = 0; // columns before the first that differs in each row
    std::size_t m_run = kNone;
    std::size_t m_slot = kNone;
    std::size_t m_series = kNone; // of a wide table, of its first column
    std::unordered_map<std::string, std::size_t> m_runsByKey;
    std::unordered_map<std::string, std::size_t> m_slotsByKey;
    std::vector<std::vector<std::size_t>> m_seriesOfRuns; // by run and slot
};

// To be called when the layout is known.
void CsvImport::Private::setLayout(CsvReader& reader)
{
    runs.setStep(layout.step);
    const auto add = [this](KeyFields& key, ColumnRole role) {
        if (layout.columnOf(role) >= 0)
            key.columns.push_back(layout.columnOf(role));
    };
    for (const ColumnRole role : {ColumnRole::Run, ColumnRole::Trace})
        add(m_runFields, role);
    for (const ColumnRole role :
         {ColumnRole::Object, ColumnRole::Slot, ColumnRole::ObjectType, ColumnRole::SlotType,
          ColumnRole::Units, ColumnRole::Scale, ColumnRole::Method})
        add(m_slotFields, role);
    m_repeatedCount = *std::min_element(layout.timeColumns.begin(), layout.timeColumns.end());
    if (layout.isLong)
        m_repeatedCount = std::min(m_repeatedCount, layout.columnOf(ColumnRole::Value));
    reader.setRepeatedFields(static_cast<std::size_t>(m_repeatedCount));
}

Status CsvImport::Private::readRow(const CsvReader& reader)
{
    m_line = reader.lineNumber();
    const Fields& fields = reader.fields();
    Status status = checkSize(m_line, fields, layout.names);
    if (status.ok())
        status = findRun(reader);
    if (!status.ok())
        return status;
    return layout.isLong ? readLongRow(reader) : readWideRow(fields);
}

// Whether the row has the same fields as the row before in the columns of the key.
bool CsvImport::Private::isRepeated(const CsvReader& reader, const KeyFields& key) const
{
    if (key.texts.size() != key.columns.size())
        return false; // the first row
    for (std::size_t i = 0; i < key.columns.size(); ++i) {
        const int column = key.columns[i];
        const bool isKnown = reader.isRepeated() && column < m_repeatedCount;
        if (!isKnown && reader.fields()[static_cast<std::size_t>(column)] != key.texts[i])
            return false;
    }
    return true;
}

// Sets m_run to the run of a row.
Status CsvImport::Private::findRun(const CsvReader& reader)
{
    const Fields& fields = reader.fields();
    if (m_run != kNone && isRepeated(reader, m_runFields))
        return {};
    m_runFields.set(fields);
    m_slot = kNone;
    const std::string_view trace = field(fields, ColumnRole::Trace);
    std::string key(field(fields, ColumnRole::Run));
    key += '\0';
    key += trace;
    const auto [known, isNew] = m_runsByKey.try_emplace(key, m_runsByKey.size());
    m_run = known->second;
    if (isNew) {
        bool isNumber = true;
        const int traceNumber = trace.empty() ? -1 : toText(trace).trimmed().toInt(&isNumber);
        if (!isNumber)
            return failAt(layout.columnOf(ColumnRole::Trace),
                          QStringLiteral("the trace %1 is not an integer").arg(quoted(trace)));
        runs.addRun(traceNumber);
        m_seriesOfRuns.emplace_back();
        if (!layout.isLong)
            addWideRun();
    }
    if (!layout.isLong)
        m_series = m_seriesOfRuns[m_run].front();
    return {};
}

void CsvImport::Private::addWideRun()
{
    for (std::size_t i = 0; i < layout.valueColumns.size(); ++i) {
        if (m_run == 0)
            runs.addSlot(layout.valueColumns[i].slot);
        m_seriesOfRuns[m_run].push_back(runs.addSeries(m_run, i));
    }
}

Status CsvImport::Private::findStep(const Fields& fields, qint64& step)
{
    const std::string_view text = joinedFields(fields, layout.timeColumns, m_buffer);
    const auto time = layout.pattern.read(text);
    const int column = layout.timeColumns.front();
    if (!time)
        return failAt(column, layout.badTimeText(text));
    const qint64 end = layout.endOf(time->instant);
    Status status = runs.findStep(m_run, end, step);
    return status.ok() ? status : failAt(column, status.message);
}

Status CsvImport::Private::readWideRow(const Fields& fields)
{
    qint64 step = 0;
    Status status = findStep(fields, step);
    std::size_t series = m_series;
    for (const TableLayout::ValueColumn& valueColumn : layout.valueColumns) {
        if (!status.ok())
            return status;
        double value = 0.0;
        const int column = valueColumn.column;
        const std::string_view text = fields[static_cast<std::size_t>(column)];
        status = readValue(text, column, text.data() + text.size(), value);
        if (!status.ok())
            return status;
        status = runs.addValue(series++, step, value);
        if (!status.ok())
            return failAt(layout.timeColumns.front(), status.message);
    }
    return status;
}

Status CsvImport::Private::readLongRow(const CsvReader& reader)
{
    const Fields& fields = reader.fields();
    Status status = findSlot(reader);
    if (!status.ok())
        return status;
    const int column = layout.columnOf(ColumnRole::Value);
    double value = 0.0;
    status =
        readValue(fields[static_cast<std::size_t>(column)], column, reader.readableEnd(), value);
    if (!status.ok())
        return status;
    if (!runs.slot(m_slot).isSeries()) {
        status = runs.addSingleValue(m_series, value);
    } else {
        qint64 step = 0;
        status = findStep(fields, step);
        if (!status.ok())
            return status;
        status = runs.addValue(m_series, step, value);
    }
    return status.ok() ? status : failAt(layout.timeColumns.front(), status.message);
}

// Sets m_slot and m_series to those of a row.
Status CsvImport::Private::findSlot(const CsvReader& reader)
{
    const Fields& fields = reader.fields();
    // A single value is known by its lack of a time, if nothing else says it.
    const bool isSingle = layout.isExport && layout.columnOf(ColumnRole::SlotType) < 0 &&
                          field(fields, ColumnRole::Time).empty();
    if (m_slot != kNone && isSingle == m_isSingle && isRepeated(reader, m_slotFields))
        return {};
    m_isSingle = isSingle;
    m_slotFields.set(fields);
    std::string key(isSingle ? "1" : "");
    for (const int column : m_slotFields.columns) {
        key += '\0';
        key += stripped(fields[static_cast<std::size_t>(column)]);
    }
    const auto [known, isNew] = m_slotsByKey.try_emplace(key, m_slotsByKey.size());
    m_slot = known->second;
    if (isNew) {
        Status status = addSlot(fields);
        if (!status.ok())
            return status;
    }
    std::vector<std::size_t>& seriesOfRun = m_seriesOfRuns[m_run];
    if (seriesOfRun.size() <= m_slot)
        seriesOfRun.resize(m_slot + 1, kNone);
    if (seriesOfRun[m_slot] == kNone)
        seriesOfRun[m_slot] = runs.addSeries(m_run, m_slot);
    m_series = seriesOfRun[m_slot];
    return {};
}

Status CsvImport::Private::readScale(const Fields& fields, double& scale) const
{
    const std::string_view text = field(fields, ColumnRole::Scale);
    scale = text.empty() ? 1.0 : lineToNumber(text);
    if (!text.empty() && (!isNumberLine(text) || !std::isfinite(scale)))
        return failAt(layout.columnOf(ColumnRole::Scale),
                      QStringLiteral("the scale %1 is not a number").arg(quoted(text)));
    return {};
}

Status CsvImport::Private::addSlot(const Fields& fields)
{
    HtsSlot slot;
    slot.objectName = options.object;
    slot.slotName = options.slot;
    slot.objectType = options.objectType;
    slot.slotType = QStringLiteral("SeriesSlot");
    QString units = options.units;
    QString method;
    const std::pair<ColumnRole, QString*> names[] = {{ColumnRole::Object, &slot.objectName},
                                                     {ColumnRole::Slot, &slot.slotName},
                                                     {ColumnRole::ObjectType, &slot.objectType},
                                                     {ColumnRole::SlotType, &slot.slotType},
                                                     {ColumnRole::Method, &method},
                                                     {ColumnRole::Units, &units}};
    for (const auto& [role, name] : names) {
        const int column = layout.columnOf(role);
        // A slot without a type is a series, and the format can say so.
        const bool mayBeEmpty = role == ColumnRole::SlotType || role == ColumnRole::ObjectType ||
                                role == ColumnRole::Method;
        if (column < 0)
            continue;
        const Status status = readName(field(fields, role), *name);
        if (!status.ok() && (!mayBeEmpty || !field(fields, role).empty()))
            return failAt(column, status.message);
    }
    if (slot.isTable())
        return failAt(layout.columnOf(ColumnRole::SlotType),
                      QStringLiteral("a slot of the type \"TableSlot\" has no values"));
    if (m_isSingle)
        slot.slotType = QStringLiteral("ScalarSlot");
    double scale = 1.0;
    Status status = readScale(fields, scale);
    slot.units = QStringList{units};
    slot.scales = {scale};
    slot.methods = QStringList{method};
    runs.addSlot(slot);
    return status;
}

bool CsvImport::Private::isMissing(std::string_view text) const
{
    return text.empty() || isNan(text) ||
           std::find(m_missingWords.begin(), m_missingWords.end(), text) != m_missingWords.end();
}

// Reads a number as the values of an HTS file are read.
bool CsvImport::Private::readNumber(std::string_view text, double& value)
{
    if (layout.hasDecimalComma) {
        if (text.find('.') != std::string_view::npos)
            return false;
        m_buffer = text;
        const std::size_t comma = m_buffer.find(',');
        if (comma != std::string::npos)
            m_buffer[comma] = '.';
        text = m_buffer;
    }
    const char* const last = text.data() + text.size();
    if (readPlainNumber(text.data(), last, value) == last)
        return true;
    value = lineToNumber(text);
    return isNumberLine(text) && std::isfinite(value);
}

// A number at the end of a line is read faster if what follows it may be read.
Status CsvImport::Private::readValue(std::string_view text, int column, const char* readableEnd,
                                     double& value)
{
    ++valueCount;
    // Most are numbers without blanks around them.
    const char* const last = text.data() + text.size();
    if (m_missingWords.empty() && !layout.hasDecimalComma && !text.empty() &&
        readPlainNumber(text.data(), readableEnd, value) == last)
        return {};
    text = stripped(text);
    if (isMissing(text)) {
        ++missingCount;
        value = std::numeric_limits<double>::quiet_NaN();
        return {};
    }
    if (readNumber(text, value))
        return {};
    const QString decimal = layout.hasDecimalComma ? QStringLiteral("a decimal comma")
                                                   : QStringLiteral("a decimal point");
    return failAt(
        column,
        QStringLiteral("%1 is not a number with %2; --missing says what marks a missing value%3")
            .arg(quoted(text), decimal,
                 layout.isLong ? QString()
                               : QStringLiteral(", --column which columns have values")));
}

QString CsvImport::Private::layoutText() const
{
    const auto namesOf = [this](const std::vector<int>& columns) {
        QStringList names;
        for (const int column : columns)
            names.append(quoted(layout.names.at(column)));
        return names.join(QLatin1String(" and "));
    };
    const char separator = layout.form.separator;
    const QString separatorText = separator == '\t'  ? QStringLiteral("tab")
                                  : separator == ' ' ? QStringLiteral("blanks")
                                                     : quoted(QString(QLatin1Char(separator)));
    const QString stamp = layout.stamp == Stamp::Begin ? QStringLiteral("the beginning of the step")
                          : layout.step.isNamedBy(layout.pattern.precision())
                              ? QStringLiteral("the step that it names")
                              : QStringLiteral("the end of the step");
    return QStringLiteral("%1 table, separator %2, decimal %3, time %4 as %5, %6")
        .arg(layout.isLong ? QStringLiteral("long") : QStringLiteral("wide"), separatorText,
             layout.hasDecimalComma ? QStringLiteral("comma") : QStringLiteral("point"),
             namesOf(layout.timeColumns), layout.pattern.text(), stamp);
}

CsvImport::CsvImport(const ImportOptions& options) : m_data(std::make_unique<Private>(options)) {}

CsvImport::~CsvImport() = default;

Status CsvImport::read(QIODevice& source)
{
    source.setTextModeEnabled(false);
    Status status;
    {
        const QByteArray start = startOf(source);
        status = findLayout(start, start.size() < kStartSize, m_data->options, m_data->layout);
    }
    if (!status.ok())
        return status;
    m_data->hasLayout = true;
    CsvReader reader(source, m_data->layout.form);
    m_data->setLayout(reader);
    for (int i = 0; i < m_data->layout.headerLines; ++i)
        reader.next();
    while (reader.next()) {
        status = m_data->readRow(reader);
        if (!status.ok())
            return status;
    }
    m_data->commentLines = reader.commentLines();
    m_data->isRead = reader.status().ok();
    return reader.status().ok() ? m_data->runs.finish() : reader.status();
}

QStringList CsvImport::summary() const
{
    if (!m_data->hasLayout)
        return {};
    QStringList lines{m_data->layoutText()};
    if (m_data->commentLines > 0)
        lines.append(QStringLiteral("lines of comment: %1").arg(m_data->commentLines));
    lines += m_data->runs.summary();
    if (m_data->isRead)
        lines.append(
            QStringLiteral("values: %1, missing of them: %2")
                .arg(QString::number(m_data->valueCount), QString::number(m_data->missingCount)));
    return lines;
}

QStringList CsvImport::missingSteps() const
{
    return m_data->runs.missingSteps();
}

bool CsvImport::hasFileFailed() const
{
    return m_data->runs.hasFileFailed();
}

Status CsvImport::write(QIODevice& target)
{
    HtsPackage package;
    package.name = m_data->options.packageName;
    package.createDate = m_data->options.createDate;
    package.numberOfRuns = m_data->runs.runCount();
    LineWriter lines(target);
    writeKeywordLines(kPackageKeys, package, lines);
    lines << kEndPackagePreamble << '\n';
    return m_data->runs.write(lines);
}
