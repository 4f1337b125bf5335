// Reading an HTS file: one function for each section of the file, in the order of
// docs/hts-format.md.

#include "hts/htsreader.h"

#include "hts/datetimetext.h"
#include "hts/htskeys.h"
#include "hts/htspackage.h"
#include "hts/linetext.h"

namespace {

const QLatin1String kBadPackagePreamble("Cannot read package preamble");
const QLatin1String kBadSlotPreamble("Cannot read slot preamble");
const QLatin1String kBadColumnHeader("Cannot read HTS file: Missing units or scale");

// Reads a line and returns its text, which is valid until the next call.
std::string_view readTextLine(LineReader& lines, HtsReader::Observer* observer)
{
    const std::string_view line = lines.line();
    const std::string_view text = textBytes(line);
    if (observer != nullptr && line.find('\0') != std::string_view::npos)
        observer->cutLine(text);
    return text;
}

// Reads keyword lines until `endLine`. Returns false when an empty line, or the end of the input,
// comes first. `texts` has one element for each key.
template<typename Model, std::size_t count>
bool readKeywordLines(LineReader& lines, HtsReader::Observer* observer,
                      const std::array<HtsKey<Model>, count>& keys, QLatin1String endLine,
                      std::array<RepeatedText, count>& texts, Model& model)
{
    for (;;) {
        const std::string_view line = readTextLine(lines, observer);
        if (line.empty()) {
            if (observer != nullptr)
                observer->unexpectedLine(endLine, line);
            return false;
        }
        if (line == bytesOf(endLine))
            return true;
        std::string_view value = line;
        const HtsKey<Model>* key = takeAnyKey(keys, value);
        if (key != nullptr)
            key->read(model, texts[static_cast<std::size_t>(key - keys.data())].of(value));
        if (observer == nullptr)
            continue;
        if (key != nullptr)
            observer->keywordLine(key->key, value);
        else
            observer->ignoredLine(line);
    }
}

// Reads the rows of a table. One line can announce two billion of them. Past the end of the input
// only a few are read: a table that is cut off cannot be converted anyway.
void readTableRows(LineReader& lines, HtsSlot& slot, HtsReader::TableRows tableRows)
{
    constexpr int kMaxRowsPastTheEnd = 4096;
    int rowsPastTheEnd = 0;
    for (int row = 0; row < slot.rows && rowsPastTheEnd < kMaxRowsPastTheEnd; ++row) {
        if (lines.atEnd())
            ++rowsPastTheEnd;
        const std::string_view line = lines.line();
        if (tableRows == HtsReader::TableRows::Keep)
            slot.tableRows.append(toText(textBytes(line)));
    }
}

} // namespace

HtsReader::HtsReader(QIODevice& device) : m_lines(device) {}

Status HtsReader::readPackagePreamble(HtsPackage& package)
{
    std::array<RepeatedText, kPackageKeys.size()> texts;
    if (!package.preambleRead)
        package.preambleRead = readKeywordLines(m_lines, m_observer, kPackageKeys,
                                                kEndPackagePreamble, texts, package);
    return package.preambleRead ? Status() : failure(kBadPackagePreamble);
}

Status HtsReader::readRun(HtsRun& run)
{
    std::array<RepeatedText, kRunKeys.size()> texts;
    if (!run.complete)
        run.complete = readKeywordLines(m_lines, m_observer, kRunKeys, kEndRunPreamble, texts, run);
    if (!run.complete)
        return failure(HtsRun::kBadPreamble);
    for (int step = 0; step < run.timeStepCount; ++step) {
        const std::string_view line = readTextLine(m_lines, m_observer);
        const QString timestep = toText(line);
        run.complete = isTimestepText(timestep);
        if (!run.complete) {
            if (m_observer != nullptr)
                m_observer->unexpectedLine(kTimestepFormat, line);
            return failure(HtsRun::kBadPreamble);
        }
        run.timesteps.append(timestep);
    }
    return {};
}

bool HtsReader::takeEndOfRun()
{
    if (!m_lines.nextIs(bytesOf(kEndRun)))
        return false;
    const std::string_view line = m_lines.line();
    if (m_observer != nullptr && line != bytesOf(kEndRun))
        m_observer->unexpectedLine(kEndRun, line);
    return true;
}

Status HtsReader::readSlot(HtsSlot& slot, TableRows tableRows)
{
    Status status = readSlotPreamble(slot, tableRows);
    if (!status.ok() || slot.isTable())
        return status;
    QString units;
    double scale = 0.0;
    QString method;
    status = readColumnHeader(units, scale, method);
    if (status.ok()) {
        slot.units.append(units);
        slot.scales.append(scale);
        slot.methods.append(method);
    }
    return status;
}

Status HtsReader::readSlotPreamble(HtsSlot& slot, TableRows tableRows)
{
    if (!slot.preambleRead)
        slot.preambleRead =
            readKeywordLines(m_lines, m_observer, kSlotKeys, kEndSlotPreamble, m_slotTexts, slot);
    // Also the rows of a table whose preamble is cut off.
    if (slot.isTable() && tableRows != TableRows::Leave)
        readTableRows(m_lines, slot, tableRows);
    return slot.preambleRead ? Status() : failure(kBadSlotPreamble);
}

Status HtsReader::readColumnHeader(QString& units, double& scale, QString& method)
{
    std::string_view line = readTextLine(m_lines, m_observer);
    const bool hasUnits = takeHeaderKey(line, kUnitsKey);
    const QString unitsText = hasUnits ? m_unitsText.of(line) : QString();
    line = readTextLine(m_lines, m_observer); // read even if the first line is wrong
    if (!takeHeaderKey(line, kScaleKey) || !hasUnits)
        return failure(kBadColumnHeader);
    units = unitsText;
    scale = toText(line).toDouble();
    // Any line that begins with this letter is taken for the method line, even a value line. The
    // key is not checked: as many characters as it has are removed from the line.
    if (m_lines.nextByteIs('m')) {
        line = readTextLine(m_lines, m_observer);
        method = toText(line).mid(kMethodKey.size());
        takeHeaderKey(line, kMethodKey);
    }
    return {};
}

// Removes the key from a line of a column header, and reports the line to the observer.
bool HtsReader::takeHeaderKey(std::string_view& line, QLatin1String key)
{
    const bool hasKey = takeKey(line, key);
    if (m_observer == nullptr)
        return hasKey;
    if (hasKey)
        m_observer->keywordLine(key, line);
    else
        m_observer->unexpectedLine(key, line);
    return hasKey;
}

void HtsReader::readValues(std::vector<double>& values)
{
    m_lines.readNumbers(values, m_observer);
}

void HtsReader::skipValues(int count)
{
    m_lines.skipLines(count);
}

std::string_view HtsReader::readLine()
{
    return m_lines.line();
}

void HtsReader::skipTable()
{
    while (textBytes(m_lines.line()) != bytesOf(kEndSlot)) {
    }
}
