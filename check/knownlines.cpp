#include "check/knownlines.h"

#include <iterator>

#include "hts/htskeys.h"
#include "hts/numbertext.h"

using Section = ReaderObserver::Section;

namespace {

template<typename Keys>
std::vector<QLatin1String> linesOf(const Keys& keys, std::initializer_list<QLatin1String> endLines)
{
    std::vector<QLatin1String> lines;
    lines.reserve(std::size(keys) + endLines.size());
    for (const auto& key : keys)
        lines.push_back(key.key);
    lines.insert(lines.end(), endLines);
    return lines;
}

const std::vector<QLatin1String>& columnLines()
{
    static const std::vector<QLatin1String> kLines = {kUnitsLine.key, kScaleLine.key,
                                                      kMethodLine.key, kEndColumn, kEndSlot};
    return kLines;
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

bool isEndLine(QLatin1String known)
{
    return known.startsWith(QLatin1String("END_"));
}

const std::vector<QLatin1String>& knownLinesOf(Section section)
{
    static const std::vector<QLatin1String> kLines[] = {
        linesOf(kPackageKeys, {kEndPackagePreamble}),
        linesOf(kRunKeys, {kEndRunPreamble}),
        linesOf(kSlotKeys, {kEndSlotPreamble, kEndRun}),
    };
    return kLines[static_cast<std::size_t>(section)];
}

QString keyName(QLatin1String key)
{
    return QString(key).trimmed();
}

bool isKnownLine(std::string_view line)
{
    return isSlotLine(line) || isAnyOf(line, knownLinesOf(Section::PackagePreamble)) ||
           isAnyOf(line, knownLinesOf(Section::Run));
}

bool isSlotLine(std::string_view line)
{
    return isAnyOf(line, columnLines()) || isAnyOf(line, knownLinesOf(Section::Slot)) ||
           line == bytesOf(kEndRunPreamble) || line == bytesOf(kEndPackagePreamble);
}

bool belongsElsewhere(std::string_view line, Section section)
{
    if (isNumberLine(line) || isDateTimeLine(line) || isAnyOf(line, columnLines()))
        return true;
    for (const Section other : {Section::PackagePreamble, Section::Run, Section::Slot}) {
        if (other != section && isAnyOf(line, knownLinesOf(other)))
            return true;
    }
    return false;
}
