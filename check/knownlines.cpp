#include "check/knownlines.h"

#include <charconv>

#include "hts/htskeys.h"
#include "hts/linetext.h"

namespace {

template<typename Keys>
void addKeys(std::vector<QLatin1String>& lines, const Keys& keys)
{
    for (const auto& key : keys)
        lines.push_back(key.key);
}

std::vector<QLatin1String> packageLines()
{
    std::vector<QLatin1String> lines;
    addKeys(lines, kPackageKeys);
    lines.push_back(kEndPackagePreamble);
    return lines;
}

std::vector<QLatin1String> runLines()
{
    std::vector<QLatin1String> lines;
    addKeys(lines, kRunKeys);
    lines.push_back(kEndRunPreamble);
    return lines;
}

std::vector<QLatin1String> slotLines()
{
    std::vector<QLatin1String> lines;
    addKeys(lines, kSlotKeys);
    lines.insert(lines.end(), {kEndSlotPreamble, kEndRun});
    return lines;
}

const std::vector<QLatin1String> kColumnLines = {kUnitsKey, kScaleKey, kMethodKey, kEndColumn,
                                                 kEndSlot};

bool isEndLine(QLatin1String known)
{
    return known.startsWith(QLatin1String("END_"));
}

bool isAnyOf(std::string_view line, const std::vector<QLatin1String>& knownLines)
{
    for (const QLatin1String known : knownLines) {
        std::string_view rest = line;
        if (isEndLine(known) ? line == bytesOf(known) : takeKey(rest, known))
            return true;
    }
    return false;
}

// A line that begins with a digit may be a timestep.
bool isDateTimeLine(std::string_view line)
{
    constexpr std::size_t kDigitsOfTheYear = 4;
    return line.size() > kDigitsOfTheYear && line[kDigitsOfTheYear] == '-' &&
           line.find(':') != std::string_view::npos && line[0] >= '0' && line[0] <= '9';
}

} // namespace

const std::vector<QLatin1String>& knownLinesOf(Section section)
{
    static const std::vector<QLatin1String> kPackageLines = packageLines();
    static const std::vector<QLatin1String> kRunLines = runLines();
    static const std::vector<QLatin1String> kSlotLines = slotLines();
    switch (section) {
    case Section::Package:
        return kPackageLines;
    case Section::Run:
        return kRunLines;
    case Section::Slot:
        break;
    }
    return kSlotLines;
}

QString keyName(QLatin1String key)
{
    return QString(key).trimmed();
}

bool isSlotLine(std::string_view line)
{
    return isAnyOf(line, kColumnLines) || isAnyOf(line, knownLinesOf(Section::Slot)) ||
           line == bytesOf(kEndRunPreamble) || line == bytesOf(kEndPackagePreamble);
}

bool belongsElsewhere(std::string_view line, Section section)
{
    if (isNumberLine(line) || isDateTimeLine(line) || isAnyOf(line, kColumnLines))
        return true;
    for (const Section other : {Section::Package, Section::Run, Section::Slot}) {
        if (other != section && isAnyOf(line, knownLinesOf(other)))
            return true;
    }
    return false;
}

bool isNumberLine(std::string_view line)
{
    bool isNumber = false;
    const double value = toText(textBytes(stripped(line))).toDouble(&isNumber);
    if (isNumber || value != 0.0) // out of range is infinite, and not "a number"
        return true;
    // Too small for a double: 0 is what it is meant to be.
    double ignored = 0.0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), ignored);
    return error == std::errc::result_out_of_range && end == line.data() + line.size();
}
