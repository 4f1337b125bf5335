#include "check/valuecheck.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "check/findings.h"
#include "check/knownlines.h"
#include "check/numberhint.h"
#include "check/quotedtext.h"
#include "hts/htskeys.h"
#include "hts/numbertext.h"

namespace {

// Magnitudes that mark missing values in files of other programs. A float can hold each of them
// exactly.
constexpr std::array<double, 8> kSentinels = {
    99.0,     999.0,     9999.0,  99999.0,
    999999.0, 9999999.0, 32768.0, double(std::numeric_limits<float>::max())};

bool isNan(std::string_view line)
{
    constexpr std::size_t kLength = 3;
    return line.size() == kLength && (line[0] | ' ') == 'n' && (line[1] | ' ') == 'a' &&
           (line[2] | ' ') == 'n';
}

// Whether the number has no bits that only a double can hold. True for hardly any number with
// decimals, so that this fast test is the only one for nearly all values of a file.
bool fitsFloat(double value)
{
    constexpr std::uint64_t kBitsOfDoublesOnly = 0x1fffffff;
    std::uint64_t bits = 0;
    static_assert(sizeof bits == sizeof value);
    std::memcpy(&bits, &value, sizeof bits);
    return (bits & kBitsOfDoublesOnly) == 0;
}

// But not 99 without a sign, which is often a real value.
bool isSentinel(double value)
{
    const bool isKnown = fitsFloat(value) && std::find(kSentinels.begin(), kSentinels.end(),
                                                       std::fabs(value)) != kSentinels.end();
    return isKnown && value != kSentinels.front();
}

} // namespace

std::size_t missingCount(const std::vector<double>& values)
{
    std::size_t usable = 0;
    for (const double value : values)
        usable += std::fabs(value) <= std::numeric_limits<double>::max() ? 1U : 0U;
    return values.size() - usable;
}

void ValueCheck::begin(const QString& slotName, std::size_t count)
{
    m_slotName = slotName;
    m_count = count;
    m_foreignLines = 0;
    m_insertedLines = 0;
    m_infiniteValues = 0;
}

void ValueCheck::checkOddLine(std::size_t index, qint64 lineNumber, std::string_view line)
{
    if (isNan(line) || m_foreignLines > 0)
        return;
    std::string_view rest = line;
    const bool isFirst = index == m_insertedLines; // apart from empty lines
    if (isFirst && takeKey(rest, kMethodKey)) {
        ++m_insertedLines;
        m_findings.add(Code::MethodLine, lineNumber, [&]() -> QString {
            return QStringLiteral("%1 is read as a value: nothing may come before it")
                .arg(quoted(line));
        });
        return;
    }
    if (isSlotLine(line)) {
        ++m_foreignLines;
        m_findings.add(Code::TooFewValues, lineNumber, [&]() -> QString {
            return QStringLiteral("%1 instead of value %2 of %3 of %4")
                .arg(quoted(line), QString::number(index + 1), QString::number(m_count),
                     m_slotName);
        });
        return;
    }
    if (line.empty()) {
        ++m_insertedLines;
        m_findings.add(Code::BlankValue, lineNumber, [&]() -> QString {
            return QStringLiteral("an empty line among the values of %1 counts as 0")
                .arg(m_slotName);
        });
        return;
    }
    checkNumber(lineNumber, line);
}

void ValueCheck::checkNumber(qint64 lineNumber, std::string_view line)
{
    if (!isNumberLine(line)) {
        m_findings.add(Code::TextValue, lineNumber, [&]() -> QString {
            const QString hint = numberHint(line);
            return QStringLiteral("%1 is not a number and counts as 0%2")
                .arg(quoted(line), hint.isEmpty() ? hint : QStringLiteral("; it may be ") + hint);
        });
    } else if (std::isinf(lineToNumber(line))) {
        ++m_infiniteValues;
        m_findings.add(Code::InfiniteValue, lineNumber, [&]() -> QString {
            return QStringLiteral("%1 is infinite and counts as missing").arg(quoted(line));
        });
    }
}

void ValueCheck::finish(const std::vector<double>& values, qint64 firstLine)
{
    if (hasForeignLines())
        return;
    reportMissing(values, firstLine);
    reportSentinels(values, firstLine);
}

void ValueCheck::reportMissing(const std::vector<double>& values, qint64 firstLine)
{
    const std::size_t missing = missingCount(values) - m_infiniteValues;
    if (missing == 0)
        return;
    m_findings.add(Code::MissingValues, firstLine, [&]() -> QString {
        const double percent = 100.0 * static_cast<double>(missing) / static_cast<double>(m_count);
        return QStringLiteral("%1 of %2 values of %3 are missing (%4 %)")
            .arg(QString::number(missing), QString::number(m_count), m_slotName,
                 QString::number(percent, 'f', 1));
    });
}

// Only the first sentinel that occurs twice.
void ValueCheck::reportSentinels(const std::vector<double>& values, qint64 firstLine)
{
    for (auto value = values.begin(); value != values.end(); ++value) {
        if (!isSentinel(*value) || std::find(values.begin(), value, *value) != value)
            continue;
        const auto count = std::count(value, values.end(), *value);
        if (count < 2)
            continue;
        constexpr int kDigits = 7; // all that a sentinel has
        m_findings.add(Code::Sentinel, firstLine + (value - values.begin()), [&]() -> QString {
            return QStringLiteral("%1 occurs %2 times among the values of %3 and counts as a "
                                  "number; does it mark missing values?")
                .arg(QString::number(*value, 'g', kDigits), QString::number(count), m_slotName);
        });
        return;
    }
}
