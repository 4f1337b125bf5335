// Reading an HTS file: one function for each section of the file, in the order of
// docs/hts-format.md.

#include "hts/htsreader.h"

#include "hts/datetimetext.h"
#include "hts/htskeys.h"
#include "hts/htspackage.h"
#include "hts/linetext.h"
#include "hts/shareifequal.h"

namespace {

const QLatin1String kBadSlotPreamble("Cannot read slot preamble");
const QLatin1String kBadColumnHeader("Cannot read HTS file: Missing units or scale");

bool isSame(double a, double b)
{
    return isSameNumber(a, b);
}

bool isSame(const QString& a, const QString& b)
{
    return a == b;
}

QLatin1String latin1(std::string_view bytes)
{
    return QLatin1String(bytes.data(), static_cast<int>(bytes.size()));
}

// A list of `value` alone. Slots mostly have the same as the slot before, `last`, and share it.
template<typename List, typename Value>
List repeatedList(List& last, const Value& value)
{
    if (last.isEmpty() || !isSame(last.constFirst(), value))
        last = List{value};
    return last;
}

} // namespace

HtsReader::HtsReader(QIODevice& device) : m_lines(device) {}

// Reads a line and returns its text, which is valid until the next call.
std::string_view HtsReader::readTextLine()
{
    const std::string_view line = m_lines.line();
    const std::string_view text = textBytes(line);
    if (text.size() < line.size() && line.find('\0') != std::string_view::npos)
        notify(&Observer::cutLine, text);
    return text;
}

// Reads keyword lines until `endLine`. Returns false when an empty line, or the end of the input,
// comes first. `texts` has one element for each key.
template<typename Model, std::size_t count>
bool HtsReader::readKeywordLines(const std::array<HtsKey<Model>, count>& keys,
                                 QLatin1String endLine, std::array<RepeatedText, count>& texts,
                                 Model& model)
{
    for (;;) {
        const std::string_view line = readTextLine();
        if (line.empty()) {
            notify(&Observer::unexpectedLine, endLine, line);
            return false;
        }
        if (line == bytesOf(endLine))
            return true;
        std::string_view value = line;
        const HtsKey<Model>* key = takeAnyKey(keys, value);
        if (key == nullptr) {
            notify(&Observer::ignoredLine, line);
            continue;
        }
        key->read(model, texts[static_cast<std::size_t>(key - keys.data())].of(value));
        notify(&Observer::keywordLine, *key, value);
    }
}

Status HtsReader::readPackagePreamble(HtsPackage& package)
{
    notify(&Observer::sectionBegins, Section::PackagePreamble);
    std::array<RepeatedText, kPackageKeys.size()> texts;
    if (!package.preambleRead)
        package.preambleRead = readKeywordLines(kPackageKeys, kEndPackagePreamble, texts, package);
    return package.preambleRead ? Status() : failure(HtsPackage::kBadPreamble);
}

Status HtsReader::readRun(HtsRun& run)
{
    notify(&Observer::sectionBegins, Section::Run);
    std::array<RepeatedText, kRunKeys.size()> texts;
    if (!run.complete)
        run.complete = readKeywordLines(kRunKeys, kEndRunPreamble, texts, run);
    if (!run.complete)
        return failure(HtsRun::kBadPreamble);
    for (int step = 0; step < run.timeStepCount; ++step) {
        const std::string_view line = readTextLine();
        // Mostly that of the run before. As bytes: beyond ASCII no letter of Latin-1 is in one.
        const bool isRepeated = step < m_timesteps.size() && m_timesteps.at(step) == latin1(line);
        const QString timestep = isRepeated ? m_timesteps.at(step) : toText(line);
        run.complete = isRepeated || isTimestepText(timestep);
        if (!run.complete) {
            notify(&Observer::unexpectedLine, Observer::kTimestepFormat, line);
            return failure(HtsRun::kBadPreamble);
        }
        run.timesteps.append(timestep);
    }
    shareIfEqual(run.timesteps, m_timesteps);
    m_timesteps = run.timesteps;
    return {};
}

bool HtsReader::takeEndOfRun()
{
    if (!m_lines.nextIs(bytesOf(kEndRun)))
        return false;
    const std::string_view line = m_lines.line();
    if (line != bytesOf(kEndRun))
        notify(&Observer::unexpectedLine, kEndRun, line);
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
        slot.units = repeatedList(m_units, units);
        slot.scales = repeatedList(m_scales, scale);
        slot.methods = repeatedList(m_methods, method);
    }
    return status;
}

Status HtsReader::readSlotPreamble(HtsSlot& slot, TableRows tableRows)
{
    notify(&Observer::sectionBegins, Section::Slot);
    if (!slot.preambleRead)
        slot.preambleRead = readKeywordLines(kSlotKeys, kEndSlotPreamble, m_slotTexts, slot);
    if (slot.preambleRead)
        notify(&Observer::slotPreambleRead, slot);
    // Also those of a table whose preamble is cut off.
    if (slot.isTable())
        readTableRows(slot, tableRows);
    return slot.preambleRead ? Status() : failure(kBadSlotPreamble);
}

// One line can announce two billion rows. Past the end of the input only a few are read: a table
// that is cut off cannot be converted anyway.
void HtsReader::readTableRows(HtsSlot& slot, TableRows tableRows)
{
    constexpr int kMaxRowsPastTheEnd = 4096;
    int rowsPastTheEnd = 0;
    for (int row = 0; row < slot.rows && rowsPastTheEnd < kMaxRowsPastTheEnd; ++row) {
        if (m_lines.atEnd())
            ++rowsPastTheEnd;
        const std::string_view line = m_lines.line();
        notify(&Observer::tableRow, slot, row, line);
        if (tableRows == TableRows::Keep)
            slot.tableRows.append(toText(textBytes(line)));
    }
}

Status HtsReader::readColumnHeader(QString& units, double& scale, QString& method)
{
    std::string_view line = readTextLine();
    const bool hasUnits = takeHeaderKey(line, kUnitsLine);
    const QString unitsText = hasUnits ? m_unitsText.of(line) : QString();
    line = readTextLine(); // read even if the first line is wrong
    if (!takeHeaderKey(line, kScaleLine) || !hasUnits)
        return failure(kBadColumnHeader);
    units = unitsText;
    scale = m_scale.of(line);
    // Any line that begins with this letter is taken for the method line, even a value line. The
    // key is not checked: as many characters as it has are removed from the line.
    if (m_lines.nextByteIs('m')) {
        line = readTextLine();
        method = toText(line).mid(kMethodLine.key.size());
        takeHeaderKey(line, kMethodLine);
    }
    return {};
}

// Removes the key from a line of a column header, and reports the line to the observer.
bool HtsReader::takeHeaderKey(std::string_view& line, const HtsKeyword& keyword)
{
    const bool hasKey = takeKey(line, keyword.key);
    if (hasKey)
        notify(&Observer::keywordLine, keyword, line);
    else
        notify(&Observer::unexpectedLine, keyword.key, line);
    return hasKey;
}

void HtsReader::readValues(std::vector<double>& values)
{
    m_lines.readNumbers(values, m_observers.empty() ? nullptr : this);
}

void HtsReader::skipValues(int count)
{
    m_lines.skipLines(count);
}

void HtsReader::readEndLines()
{
    for (const QLatin1String expected : {kEndColumn, kEndSlot}) {
        const std::string_view line = m_lines.line();
        notify(&Observer::endLine, expected, line);
    }
}

bool HtsReader::skipTable(const HtsSlot& table, MissingTableEnd missingEnd)
{
    for (;;) {
        if (missingEnd == MissingTableEnd::StopAtEndOfInput && m_lines.atEnd())
            return false;
        const std::string_view line = textBytes(m_lines.line());
        if (line == bytesOf(kEndSlot))
            return true;
        notify(&Observer::lineAfterTable, table, line);
    }
}

std::string_view HtsReader::readLine()
{
    return m_lines.line();
}
