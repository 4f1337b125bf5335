// Reading an HTS file into the model: one function for each section of the file, in the order of
// docs/hts-format.md. A section's public step on a device wraps the device in a LineReader, which
// leaves it behind the last line used.

#include <algorithm>
#include <utility>

#include "hts/htskeys.h"
#include "hts/htspackage.h"
#include "hts/linereader.h"
#include "hts/linetext.h"
#include "hts/numbertext.h"

namespace {

const QLatin1String kBadPackagePreamble("Cannot read package preamble");
const QLatin1String kBadSlotPreamble("Cannot read slot preamble");
const QLatin1String kBadColumnHeader("Cannot read HTS file: Missing units or scale");

// Reads keyword lines until `endLine`. Returns false when an empty line, or the end of the input,
// comes first.
template<typename Model, std::size_t count>
bool readKeywordLines(LineReader& reader, const std::array<HtsKey<Model>, count>& keys,
                      QLatin1String endLine, Model& model)
{
    for (;;) {
        const std::string_view line = textBytes(reader.line());
        if (line.empty())
            return false;
        if (line == bytesOf(endLine))
            return true;
        readKeywordLine(keys, line, model);
    }
}

// Counts the digits of `text` from `position` on, up to `most`. Digits of any script count, as in
// the regular expression class \d.
int countDigits(const QString& text, int position, int most)
{
    int count = 0;
    while (count < most && position + count < text.size() && text.at(position + count).isDigit())
        ++count;
    return count;
}

// Whether `line` is "yyyy-M-d h:mm" in digits and separators; whether such a date exists is not
// looked at.
bool isTimestepText(const QString& line)
{
    struct Field
    {
        int fewestDigits;
        int mostDigits;
        char separator; // that follows; 0 for the end of the line
    };
    constexpr Field kFields[] = {{4, 4, '-'}, {1, 2, '-'}, {1, 2, ' '}, {1, 2, ':'}, {2, 2, 0}};
    int position = 0;
    for (const Field& field : kFields) {
        const int digits = countDigits(line, position, field.mostDigits);
        position += digits;
        if (digits < field.fewestDigits)
            return false;
        if (field.separator == 0)
            break;
        if (position >= line.size() || line.at(position) != QLatin1Char(field.separator))
            return false;
        ++position;
    }
    return position == line.size();
}

// Reads `count` rows of a table. Rows behind the end of the input are empty, and there are no more
// than a few of them: a file can announce two billion rows in one line, and nothing that follows
// such a table can be read.
void readTableRows(LineReader& reader, int count, QStringList& rows)
{
    constexpr int kMostRowsBehindTheEnd = 4096;
    int behindTheEnd = 0;
    for (int row = 0; row < count && behindTheEnd < kMostRowsBehindTheEnd; ++row) {
        if (reader.atEnd())
            ++behindTheEnd;
        rows.append(reader.text());
    }
}

} // namespace

Status HtsPackage::read(QIODevice& device)
{
    LineReader reader(device);
    Status status = readPreamble(reader);
    // One run at a time: the announced number is not to be trusted with memory.
    for (int runIndex = 0; status.ok() && runIndex < numberOfRuns; ++runIndex) {
        runs.append(HtsRun());
        values.emplace_back();
        status = readRun(reader, runIndex);
    }
    return status;
}

Status HtsPackage::readPreamble(QIODevice& device)
{
    LineReader reader(device);
    return readPreamble(reader);
}

Status HtsPackage::readPreamble(LineReader& reader)
{
    if (!preambleRead)
        preambleRead = readKeywordLines(reader, kPackageKeys, kEndPackagePreamble, *this);
    return preambleRead ? Status() : failure(kBadPackagePreamble);
}

Status HtsPackage::readRun(LineReader& reader, int runIndex)
{
    HtsRun& run = runs[runIndex];
    Status status = run.readPreamble(reader);
    // Runs mostly have the timesteps of the run before and may share their memory.
    if (runIndex > 0 && run.timesteps == runs.at(runIndex - 1).timesteps)
        run.timesteps = runs.at(runIndex - 1).timesteps;
    while (status.ok()) {
        if (reader.nextIs(bytesOf(kEndRun))) {
            reader.line();
            break;
        }
        status = readSlot(reader, runIndex);
    }
    return status;
}

// The slots and their column headers are those of the first run; in later runs they only tell how
// many values follow, and the values go to the slot at the same place.
Status HtsPackage::readSlot(LineReader& reader, int runIndex)
{
    const bool isFirstRun = runIndex == 0;
    auto& slotValues = values[static_cast<std::size_t>(runIndex)];

    HtsSlot slot;
    Status status = slot.readPreamble(reader);
    if (!status.ok())
        return status;

    if (slot.isTable()) {
        if (isFirstRun)
            slots.append(slot);
        slotValues.emplace_back();
        // Deliberately without a test for the end of the input: a table must end with its line.
        while (textBytes(reader.line()) != bytesOf(kEndSlot)) {
        }
        return status;
    }

    const int rows = slot.isSeries() ? runs.at(runIndex).timeStepCount : slot.numRows();
    slotValues.emplace_back(static_cast<std::size_t>(slot.numColumns()));
    for (HtsColumn& column : slotValues.back()) {
        QString units;
        double scale = 0.0;
        QString method;
        status = readColumnHeader(reader, units, scale, method);
        if (!status.ok())
            break;
        if (isFirstRun) {
            slot.units.append(units);
            slot.scales.append(scale);
            slot.methods.append(method);
        }
        column.resize(static_cast<std::size_t>(std::max(rows, 0)));
        reader.readNumbers(column);
        reader.line(); // "END_COLUMN", not looked at
    }
    if (status.ok())
        reader.line(); // "END_SLOT", not looked at
    if (isFirstRun) {
        if (!slots.isEmpty())
            slot.shareTexts(slots.constLast());
        slots.append(std::move(slot));
    }
    return status;
}

Status HtsRun::readPreamble(QIODevice& device)
{
    LineReader reader(device);
    return readPreamble(reader);
}

Status HtsRun::readPreamble(LineReader& reader)
{
    if (!complete)
        complete = readKeywordLines(reader, kRunKeys, kEndRunPreamble, *this);
    if (!complete)
        return failure(HtsRun::kBadPreamble);
    for (int step = 0; step < timeStepCount; ++step) {
        const QString line = reader.text();
        complete = isTimestepText(line);
        if (!complete)
            return failure(HtsRun::kBadPreamble);
        timesteps.append(line);
    }
    return {};
}

Status HtsSlot::readPreamble(QIODevice& device)
{
    LineReader reader(device);
    return readPreamble(reader);
}

Status HtsSlot::readPreamble(LineReader& reader)
{
    if (!preambleRead)
        preambleRead = readKeywordLines(reader, kSlotKeys, kEndSlotPreamble, *this);
    if (isTable())
        readTableRows(reader, rows, tableRows);
    return preambleRead ? Status() : failure(kBadSlotPreamble);
}

Status HtsPackage::readColumnHeader(QIODevice& device, QString& units, double& scale,
                                    QString& method)
{
    LineReader reader(device);
    return readColumnHeader(reader, units, scale, method);
}

Status HtsPackage::readColumnHeader(LineReader& reader, QString& units, double& scale,
                                    QString& method)
{
    std::string_view line = textBytes(reader.line());
    const bool hasUnits = takeKey(line, kUnitsKey);
    const QString unitsText = hasUnits ? toText(line) : QString();
    line = textBytes(reader.line());
    if (!takeKey(line, kScaleKey) || !hasUnits)
        return failure(kBadColumnHeader);
    units = unitsText;
    scale = toText(line).toDouble();
    // A value line can't begin with this letter. Nor is the key itself checked: the line loses as
    // many characters as the key has, whatever they are.
    if (reader.nextByteIs('m'))
        method = reader.text().mid(kMethodKey.size());
    return {};
}
