#include "tests/plain/plainreader.h"

#include <QBuffer>
#include <QIODevice>
#include <QRegularExpression>

#include "hts/datetimetext.h"
#include "hts/htspackage.h"

namespace plainreader {

namespace {

// A text ends at a NUL.
QString readText(QIODevice& device)
{
    return QString::fromUtf8(device.readLine().trimmed().constData());
}

// Sets `value` to the rest of `line` when the line begins with `key`.
bool hasKey(const QString& line, const char* key, QString& value)
{
    const QLatin1String start(key);
    if (!line.startsWith(start))
        return false;
    value = line.mid(start.size());
    return true;
}

void takePackageLine(const QString& line, HtsPackage& package)
{
    QString value;
    if (hasKey(line, "name:", value))
        package.name = value;
    else if (hasKey(line, "owner:", value))
        package.owner = value;
    else if (hasKey(line, "description:", value))
        package.description = value;
    else if (hasKey(line, "create_date:", value))
        package.createDate = textToDateTime(value);
    else if (hasKey(line, "number_of_runs:", value))
        package.numberOfRuns = value.trimmed().toInt();
}

void takeRunLine(const QString& line, HtsRun& run)
{
    QString value;
    if (hasKey(line, "trace:", value))
        run.trace = value.trimmed().toInt();
    else if (hasKey(line, "start:", value))
        run.start = textToDateTime(value);
    else if (hasKey(line, "end:", value))
        run.end = textToDateTime(value);
    else if (hasKey(line, "time_step_unit:", value))
        run.timeStepUnit = value;
    else if (hasKey(line, "unit_quantity:", value))
        run.unitQuantity = value.trimmed().toInt();
    else if (hasKey(line, "time_steps:", value) || hasKey(line, "timesteps:", value))
        run.timeStepCount = value.trimmed().toInt();
    else if (hasKey(line, "consecutive:", value))
        run.consecutive = value.trimmed().toInt();
    else if (hasKey(line, "slot_set:", value))
        run.slotSet = value;
    else if (hasKey(line, "rule_set:", value))
        run.ruleSet = value;
    else if (hasKey(line, "idx_sequential:", value))
        run.idxSequential = value.trimmed().toInt();
}

void takeSlotLine(const QString& line, HtsSlot& slot)
{
    QString value;
    if (hasKey(line, "object_type: ", value))
        slot.objectType = value;
    else if (hasKey(line, "object_name: ", value))
        slot.objectName = value;
    else if (hasKey(line, "slot_type: ", value))
        slot.slotType = value;
    else if (hasKey(line, "slot_name: ", value))
        slot.slotName = value;
    else if (hasKey(line, "rows: ", value)) {
        slot.rows = value.trimmed().toInt();
        if (slot.slotType.isEmpty())
            slot.slotType = QStringLiteral("TableSlot");
    } else if (hasKey(line, "cols: ", value))
        slot.cols = value.trimmed().toInt();
}

void readTableRows(QIODevice& device, HtsSlot& slot)
{
    int pastTheEnd = 0;
    for (int row = 0; row < slot.rows && pastTheEnd < kMaxRowsPastTheEnd; ++row) {
        const QByteArray line = device.readLine();
        if (line.isEmpty())
            ++pastTheEnd;
        slot.tableRows.append(QString::fromUtf8(line.trimmed().constData()));
    }
}

// Reads up to and including the line "END_SLOT".
Status skipTable(QIODevice& device, LineBudget* budget)
{
    for (;;) {
        if (budget != nullptr && --budget->left < 0) {
            budget->isExhausted = true;
            return failure(QStringLiteral("The table has no END_SLOT within the line budget"));
        }
        if (readText(device) == QLatin1String("END_SLOT"))
            return {};
    }
}

// Reads column header, values and "END_COLUMN" of the one column that a slot without a table has.
Status readColumn(QIODevice& device, int rows, HtsSlot& slot, HtsColumn& column)
{
    QString units;
    double scale = 0.0;
    QString method;
    const Status status = readColumnHeader(device, units, scale, method);
    if (!status.ok())
        return status;
    slot.units.append(units);
    slot.scales.append(scale);
    slot.methods.append(method);
    for (int row = 0; row < rows; ++row)
        column.push_back(readText(device).trimmed().toDouble());
    readText(device); // "END_COLUMN"
    return status;
}

Status readSlot(QIODevice& device, int runIndex, HtsPackage& package, LineBudget* budget)
{
    HtsSlot slot;
    Status status = readSlotPreamble(device, slot);
    if (!status.ok())
        return status;
    auto& slotValues = package.values[static_cast<std::size_t>(runIndex)];
    slotValues.emplace_back();
    if (slot.slotType == QLatin1String("TableSlot")) {
        status = skipTable(device, budget);
    } else {
        const bool isSeries =
            slot.slotType.isEmpty() || slot.slotType == QLatin1String("SeriesSlot");
        const int rows = isSeries ? package.runs.at(runIndex).timeStepCount : 1;
        slotValues.back().emplace_back();
        status = readColumn(device, rows, slot, slotValues.back().front());
        if (status.ok())
            readText(device); // "END_SLOT"
    }
    if (runIndex == 0)
        package.slots.append(slot);
    return status;
}

} // namespace

Status readPackagePreamble(QIODevice& device, HtsPackage& package)
{
    while (!package.preambleRead) {
        const QString line = readText(device);
        if (line.isEmpty())
            return failure(QStringLiteral("Cannot read package preamble"));
        if (line == QLatin1String("END_PACKAGE_PREAMBLE"))
            package.preambleRead = true;
        else
            takePackageLine(line, package);
    }
    return {};
}

Status readRunPreamble(QIODevice& device, HtsRun& run)
{
    while (!run.complete) {
        const QString line = readText(device);
        if (line.isEmpty())
            return failure(QStringLiteral("Cannot read run preamble"));
        if (line == QLatin1String("END_RUN_PREAMBLE"))
            run.complete = true;
        else
            takeRunLine(line, run);
    }
    const QRegularExpression timestep(
        QStringLiteral("^\\d{4}-\\d{1,2}-\\d{1,2} \\d{1,2}:\\d{2}\\z"),
        QRegularExpression::UseUnicodePropertiesOption);
    for (int step = 0; step < run.timeStepCount; ++step) {
        const QString line = readText(device);
        // Digits outside the first plane are none to QRegExp.
        run.complete = timestep.match(line).hasMatch() && line.size() == line.toUcs4().size();
        if (!run.complete)
            return failure(QStringLiteral("Cannot read run preamble"));
        run.timesteps.append(line);
    }
    return {};
}

Status readSlotPreamble(QIODevice& device, HtsSlot& slot)
{
    while (!slot.preambleRead) {
        const QString line = readText(device);
        if (line.isEmpty())
            break;
        if (line == QLatin1String("END_SLOT_PREAMBLE"))
            slot.preambleRead = true;
        else
            takeSlotLine(line, slot);
    }
    if (slot.slotType == QLatin1String("TableSlot"))
        readTableRows(device, slot);
    return slot.preambleRead ? Status() : failure(QStringLiteral("Cannot read slot preamble"));
}

Status readColumnHeader(QIODevice& device, QString& units, double& scale, QString& method)
{
    const QString unitsLine = readText(device);
    const QString scaleLine = readText(device);
    QString unitsText;
    QString scaleText;
    if (!hasKey(unitsLine, "units: ", unitsText) || !hasKey(scaleLine, "scale: ", scaleText))
        return failure(QStringLiteral("Cannot read HTS file: Missing units or scale"));
    units = unitsText;
    scale = scaleText.trimmed().toDouble();
    char next = 0;
    if (device.getChar(&next)) {
        device.ungetChar(next);
        if (next == 'm')
            method = readText(device).mid(8);
    }
    return {};
}

// The runs are added one by one: a file can announce two billion of them and have none.
Status read(QIODevice& device, HtsPackage& package, LineBudget* budget)
{
    Status status = readPackagePreamble(device, package);
    for (int r = 0; status.ok() && r < package.numberOfRuns; ++r) {
        package.runs.append(HtsRun());
        package.values.emplace_back();
        status = readRunPreamble(device, package.runs[r]);
        while (status.ok()) {
            if (device.peek(8).trimmed() == "END_RUN") {
                readText(device);
                break;
            }
            status = readSlot(device, r, package, budget);
        }
    }
    return status;
}

Status readUnlessEndless(QIODevice& device, const QByteArray& text, HtsPackage& package,
                         bool& isEndless)
{
    // One line more than there are line ends, and one to be past the end.
    LineBudget budget{text.count('\n') + 2};
    Status status = read(device, package, &budget);
    isEndless = budget.isExhausted;
    return status;
}

bool isEndless(const QByteArray& text)
{
    QBuffer device;
    device.setData(text);
    device.open(QIODevice::ReadOnly);
    HtsPackage package;
    bool isEndless = false;
    static_cast<void>(readUnlessEndless(device, text, package, isEndless));
    return isEndless;
}

} // namespace plainreader
