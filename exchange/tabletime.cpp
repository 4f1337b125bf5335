#include "exchange/tabletime.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <utility>

#include <QDate>
#include <QLatin1String>
#include <QRegularExpression>
#include <QStringList>

#include "annualize/timestepunit.h"

namespace {

constexpr int kMonthsPerYear = 12;

// Towards minus infinity.
qint64 dayOf(qint64 instant)
{
    return instant / kMinutesPerDay - (instant % kMinutesPerDay < 0 ? 1 : 0);
}

QDate dateOf(qint64 instant)
{
    return QDate::fromJulianDay(dayOf(instant));
}

qint64 minuteOfDay(qint64 instant)
{
    return instant - dayOf(instant) * kMinutesPerDay;
}

qint64 monthIndex(const QDate& date)
{
    return qint64(date.year()) * kMonthsPerYear + date.month() - 1;
}

bool isDate(int year, int month, int day)
{
    constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool isLeap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    return year >= 1 && month >= 1 && month <= kMonthsPerYear && day >= 1 &&
           day <= kDays[static_cast<std::size_t>(month - 1)] + (month == 2 && isLeap ? 1 : 0);
}

// QDate::toJulianDay, which takes many times as long, for each time of a table.
qint64 julianDay(int year, int month, int day)
{
    // Years from March on, from the year -4800, so that the leap day is the last of its year.
    const int isBeforeMarch = month <= 2 ? 1 : 0;
    const qint64 y = year + 4800 - isBeforeMarch;
    const int m = month + kMonthsPerYear * isBeforeMarch - 3;
    return day + (153 * m + 2) / 5 + 365 * y + y / 4 - y / 100 + y / 400 - 32045;
}

char* writeTwoDigits(char* out, qint64 number)
{
    *out++ = static_cast<char>('0' + number / 10);
    *out++ = static_cast<char>('0' + number % 10);
    return out;
}

} // namespace

char* writeStamp(char* out, qint64 instant)
{
    qint64 minute = minuteOfDay(instant);
    qint64 day = dayOf(instant);
    if (minute == 0) {
        --day;
        minute = kMinutesPerDay;
    }
    int year = 0;
    int month = 0;
    int dayOfMonth = 0;
    QDate::fromJulianDay(day).getDate(&year, &month, &dayOfMonth);
    char* const end = out + kMaxStampLength;
    for (int digits = 1000; digits > 1 && year < digits; digits /= 10)
        *out++ = '0';
    out = std::to_chars(out, end, year).ptr;
    *out++ = '-';
    out = std::to_chars(out, end, month).ptr;
    *out++ = '-';
    out = std::to_chars(out, end, dayOfMonth).ptr;
    *out++ = ' ';
    out = std::to_chars(out, end, minute / 60).ptr;
    *out++ = ':';
    return writeTwoDigits(out, minute % 60);
}

QString stampText(qint64 instant)
{
    char text[kMaxStampLength + 1];
    return QString::fromLatin1(text, static_cast<int>(writeStamp(text, instant) - text));
}

bool TimePattern::addField(Field field, int width)
{
    const bool isThere = std::any_of(m_items.begin(), m_items.end(), [field](const Item& item) {
        return item.literal == 0 && item.field == field;
    });
    // Digits before this field must be as many as can be.
    if (!m_items.empty() && m_items.back().literal == 0)
        m_items.back().minWidth = m_items.back().maxWidth;
    const bool isExact = field == Year || field == Minute || field == Second;
    m_items.push_back({0, field, isExact ? width : 1, field == Year ? 4 : 2});
    const auto named = static_cast<Precision>(std::min<int>(field, Hour));
    m_precision = std::max(m_precision, named);
    return !isThere;
}

std::optional<TimePattern> TimePattern::fromText(const QString& text)
{
    using Token = std::pair<QLatin1String, Field>; // letters of the pattern
    static const std::array<Token, 9> kTokens = {{{QLatin1String("YYYY"), Year},
                                                  {QLatin1String("MM"), Month},
                                                  {QLatin1String("M"), Month},
                                                  {QLatin1String("DD"), Day},
                                                  {QLatin1String("D"), Day},
                                                  {QLatin1String("hh"), Hour},
                                                  {QLatin1String("h"), Hour},
                                                  {QLatin1String("mm"), Minute},
                                                  {QLatin1String("ss"), Second}}};
    TimePattern pattern;
    pattern.m_text = text;
    for (decltype(text.size()) i = 0; i < text.size();) {
        const QString rest = text.mid(i);
        const auto* token =
            std::find_if(kTokens.begin(), kTokens.end(),
                         [&rest](const Token& known) { return rest.startsWith(known.first); });
        if (token != kTokens.end()) {
            if (!pattern.addField(token->second, static_cast<int>(token->first.size())))
                return {};
            i += token->first.size();
            continue;
        }
        const QChar c = text.at(i++);
        const bool isLiteral =
            c == QLatin1Char('T') || c == QLatin1Char('Z') || !c.isLetterOrNumber();
        if (!isLiteral || c.unicode() >= 0x80)
            return {};
        pattern.m_items.push_back({c.toLatin1(), Year, 0, 0});
    }
    for (const Item& item : pattern.m_items)
        pattern.m_paddedSize += item.literal != 0 ? 1 : static_cast<std::size_t>(item.maxWidth);
    return pattern.isWhole() ? std::optional<TimePattern>(pattern) : std::nullopt;
}

// Whether there is a year, and with each field the one above it.
bool TimePattern::isWhole() const
{
    const auto has = [this](Field field) {
        return std::any_of(m_items.begin(), m_items.end(), [field](const Item& item) {
            return item.literal == 0 && item.field == field;
        });
    };
    return has(Year) && (has(Month) || !has(Day)) && (has(Day) || !has(Hour)) &&
           (has(Hour) || !has(Minute)) && (has(Minute) || !has(Second));
}

const std::vector<TimePattern>& TimePattern::known()
{
    static const std::vector<TimePattern> kKnown = [] {
        QStringList texts;
        for (const char* date : {"YYYY-MM-DD", "YYYY/MM/DD", "YYYYMMDD"}) {
            for (const char* time : {"", " hh:mm", "Thh:mm", " hh:mm:ss", "Thh:mm:ss", "Thh:mmZ",
                                     "Thh:mm:ssZ", " hhmm", "hhmm"})
                texts.append(QLatin1String(date) + QLatin1String(time));
        }
        texts.append(QStringLiteral("YYYY-MM"));
        const auto certain = static_cast<std::size_t>(texts.size());
        for (const char* text : {"YYYYMM", "YYYY", "YYYY MM DD", "YYYY MM DD hh",
                                 "YYYY MM DD hh:mm", "YYYY MM DD hhmm", "YYYY MM"})
            texts.append(QLatin1String(text));
        std::vector<TimePattern> patterns;
        for (const QString& text : qAsConst(texts)) {
            std::optional<TimePattern> pattern = fromText(text);
            Q_ASSERT(pattern);
            pattern->m_isCertain = patterns.size() < certain;
            patterns.push_back(*pattern);
        }
        return patterns;
    }();
    return kKnown;
}

// Reads a text in which all numbers have all their digits, as nearly all do. Returns whether it is
// one.
bool TimePattern::readPadded(std::string_view text, Values& values) const
{
    if (text.size() != m_paddedSize)
        return false;
    bool isGood = true;
    const char* next = text.data();
    for (const Item& item : m_items) {
        if (item.literal != 0) {
            isGood = isGood && *next++ == item.literal;
            continue;
        }
        int number = 0;
        for (int i = 0; i < item.maxWidth; ++i) {
            const int digit = *next++ - '0';
            isGood = isGood && digit >= 0 && digit <= 9;
            number = number * 10 + digit;
        }
        values[item.field] = number;
    }
    return isGood;
}

bool TimePattern::readAny(std::string_view text, Values& values) const
{
    const char* next = text.data();
    const char* const end = next + text.size();
    for (const Item& item : m_items) {
        if (item.literal != 0) {
            if (next == end || *next != item.literal)
                return false;
            ++next;
            while (item.literal == ' ' && next != end && *next == ' ')
                ++next;
            continue;
        }
        int number = 0;
        int width = 0;
        for (; next != end && width < item.maxWidth && *next >= '0' && *next <= '9';
             ++next, ++width)
            number = number * 10 + (*next - '0');
        if (width < item.minWidth)
            return false;
        values[item.field] = number;
    }
    return next == end;
}

std::optional<TimePattern::Time> TimePattern::read(std::string_view text) const
{
    Values values = {0, 1, 1, 0, 0, 0}; // of fields that the pattern lacks
    if (!readPadded(text, values) && !readAny(text, values))
        return {};
    const auto [year, month, day, hour, minute, second] = values;
    const bool isHour24 = hour == 24 && minute == 0;
    if (!isDate(year, month, day) || (hour > 23 && !isHour24) || minute > 59 || second != 0)
        return {};
    return Time{julianDay(year, month, day) * kMinutesPerDay + qint64(hour) * 60 + minute,
                isHour24};
}

TableStep::TableStep(std::size_t unitIndex, qint64 quantity) : m_unitIndex(unitIndex)
{
    const TimestepUnit& unit = timestepUnits()[static_cast<std::size_t>(unitIndex)];
    constexpr qint64 kMaxQuantity = 1000000;
    m_quantity = static_cast<int>(std::min(quantity, kMaxQuantity));
    m_months = unit.months * m_quantity;
    m_minutes = unit.minutes * m_quantity;
}

std::optional<TableStep> TableStep::fromText(const QString& text)
{
    static const QRegularExpression kForm(QStringLiteral("^(?:([0-9]{1,6}) ?)?([a-z]+)$"));
    const QRegularExpressionMatch match = kForm.match(text);
    const int quantity = match.captured(1).isEmpty() ? 1 : match.captured(1).toInt();
    for (std::size_t i = 0; i < timestepUnits().size(); ++i) {
        if (match.captured(2) == timestepUnits()[i].word && quantity > 0)
            return TableStep(i, quantity);
    }
    return {};
}

TableStep TableStep::between(const std::vector<qint64>& instants, TimePattern::Precision precision)
{
    Q_ASSERT(instants.size() > 1);
    bool areFirst = true;
    bool areLast = true;
    qint64 minutes = std::numeric_limits<qint64>::max();
    qint64 months = std::numeric_limits<qint64>::max();
    QDate previous;
    for (std::size_t i = 0; i < instants.size(); ++i) {
        const QDate date = dateOf(instants[i]);
        areFirst = areFirst && date.day() == 1;
        areLast = areLast && date.day() == date.daysInMonth();
        if (i > 0) {
            Q_ASSERT(instants[i] > instants[i - 1]);
            minutes = std::min(minutes, instants[i] - instants[i - 1]);
            months = std::min(months, monthIndex(date) - monthIndex(previous));
        }
        previous = date;
    }
    constexpr qint64 kShortestMonth = 28 * kMinutesPerDay;
    if (precision < TimePattern::Precision::Day ||
        ((areFirst || areLast) && minutes >= kShortestMonth))
        return months % kMonthsPerYear == 0 ? TableStep(0, months / kMonthsPerYear)
                                            : TableStep(1, months);
    // The longest unit that goes into it; the last one always does.
    std::size_t index = 0;
    while (timestepUnits()[index].months > 0 || minutes % timestepUnits()[index].minutes != 0)
        ++index;
    return {index, minutes / timestepUnits()[index].minutes};
}

QString TableStep::unit() const
{
    return timestepUnits()[static_cast<std::size_t>(m_unitIndex)].word;
}

QString TableStep::text() const
{
    return QString::number(m_quantity) + QLatin1Char(' ') + unit();
}

bool TableStep::isNamedBy(TimePattern::Precision precision) const
{
    switch (precision) {
    case TimePattern::Precision::Year:
        return m_months == kMonthsPerYear;
    case TimePattern::Precision::Month:
        return m_months == 1;
    case TimePattern::Precision::Day:
        return m_minutes == kMinutesPerDay;
    case TimePattern::Precision::Minute:
        break;
    }
    return false;
}

qint64 TableStep::moved(qint64 instant, qint64 count) const
{
    if (!isMonths())
        return instant + m_minutes * count;
    const QDate date = dateOf(instant).addMonths(static_cast<int>(m_months * count));
    return date.toJulianDay() * kMinutesPerDay + minuteOfDay(instant);
}

std::optional<qint64> TableStep::stepsBetween(qint64 origin, qint64 instant) const
{
    if (!isMonths()) {
        const qint64 minutes = instant - origin;
        return minutes % m_minutes == 0 ? std::optional<qint64>(minutes / m_minutes) : std::nullopt;
    }
    const qint64 months = monthIndex(dateOf(instant)) - monthIndex(dateOf(origin));
    if (months % m_months != 0 || dateOf(instant).day() != dateOf(origin).day() ||
        minuteOfDay(instant) != minuteOfDay(origin))
        return {};
    return months / m_months;
}
