#include "check/maxmissing.h"

#include <array>

namespace {

// The World Meteorological Organization's rule for a month of days, which lacks too many with
// either; a year lacks too many with one such month.
constexpr qint64 kMaxDays = 10;
constexpr qint64 kMaxDaysInARow = 4;

bool isDigits(const QString& text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar c) {
        return c >= QLatin1Char('0') && c <= QLatin1Char('9');
    });
}

bool lacksMonth(const RunYear& year, const RunYear::Missing& missing)
{
    std::array<qint64, 12> lacking{};
    bool hasLongGap = false;
    year.forEachGap(missing, [&](qint64 place, qint64 count) {
        while (count > 0) {
            const QDate day = year.start.date().addDays(place);
            const qint64 inMonth = std::min<qint64>(count, day.daysInMonth() - day.day() + 1);
            lacking[static_cast<std::size_t>(day.month() - 1)] += inMonth;
            hasLongGap = hasLongGap || inMonth > kMaxDaysInARow;
            place += inMonth;
            count -= inMonth;
        }
    });
    return hasLongGap || *std::max_element(lacking.begin(), lacking.end()) > kMaxDays;
}

} // namespace

std::optional<MaxMissing> MaxMissing::fromText(const QString& text)
{
    constexpr double kAll = 100.0; // per cent
    MaxMissing result;
    result.m_text = text;
    bool isNumber = true;
    if (text == QLatin1String("wmo")) {
        result.m_rule = Rule::Wmo;
    } else if (isDigits(text)) {
        result.m_rule = Rule::Count;
        result.m_amount = text.toDouble(&isNumber);
    } else if (text.endsWith(QLatin1Char('%'))) {
        const QString number = text.chopped(1);
        result.m_rule = Rule::Percent;
        result.m_amount = number.toDouble(&isNumber);
        isNumber = isNumber && isDigits(QString(number).remove(QLatin1Char('.'))) &&
                   result.m_amount <= kAll;
    } else {
        isNumber = false;
    }
    return isNumber ? std::optional(result) : std::nullopt;
}

bool MaxMissing::isFor(const StepLength& length) const
{
    return !isWmo() || length.isDay() || length.isMonths();
}

bool MaxMissing::isExceeded(const RunYear& year, qint64 lacking, const RunYear::Missing& missing,
                            const StepLength& length) const
{
    Q_ASSERT(isFor(length));
    const auto share = static_cast<double>(lacking);
    switch (m_rule) {
    case Rule::Count:
        return share > m_amount;
    case Rule::Percent:
        return 100.0 * share > m_amount * static_cast<double>(year.expected);
    case Rule::Wmo:
        return lacking > 0 && (length.isMonths() || lacksMonth(year, missing));
    case Rule::None:
        break;
    }
    return false;
}
