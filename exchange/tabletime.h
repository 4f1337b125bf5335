#ifndef EXCHANGE_TABLETIME_H
#define EXCHANGE_TABLETIME_H

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include <QString>
#include <QtGlobal>

// Times of tables. Instants are minutes since Julian day 0, 0:00, and have no zone.

constexpr qint64 kMinutesPerDay = 1440;
// The ends of steps, from 0001-1-1 24:00 to 9999-12-31 24:00.
constexpr qint64 kFirstEnd = qint64(1721427) * kMinutesPerDay;
constexpr qint64 kLastEnd = qint64(5373485) * kMinutesPerDay;

// The text of an instant as in an HTS file: midnight is 24:00 of the day before. The same as
// dateTimeToText(), many times as fast. Years are 1 to 9999. Writes to `out`, which has room for
// kMaxStampLength bytes, and returns the end.
char* writeStamp(char* out, qint64 instant);
constexpr int kMaxStampLength = 32;
QString stampText(qint64 instant);

// How times are written in a table, such as YYYY-MM-DD hh:mm.
class TimePattern
{
public:
    // What a text names at least.
    enum class Precision { Year, Month, Day, Minute };

    // YYYY is a year of four digits; MM and M the month, DD and D the day, hh and h the hour, mm
    // the minute, ss seconds, which must be 0. One digit is enough where no digit follows in the
    // pattern, but for minutes and seconds. T and Z stand for themselves, and so does everything
    // that is no letter; a blank for any number of blanks. None for another letter, for a field
    // twice, and without a year.
    static std::optional<TimePattern> fromText(const QString& text);

    // Those that a time is recognised by without being told. Only the first of them are certain
    // enough to recognise the column of the times, too.
    static const std::vector<TimePattern>& known();
    bool isCertain() const { return m_isCertain; }

    const QString& text() const { return m_text; }
    Precision precision() const { return m_precision; }

    struct Time
    {
        qint64 instant; // the beginning of what the text names
        bool isHour24;  // 24:00 of the day before
    };
    // None for a text of another form, and for a time that does not exist.
    std::optional<Time> read(std::string_view text) const;

private:
    enum Field { Year, Month, Day, Hour, Minute, Second, FieldCount };
    struct Item
    {
        char literal; // 0 for a field
        Field field;
        int minWidth;
        int maxWidth;
    };
    using Values = std::array<int, FieldCount>;

    bool addField(Field field, int width);
    bool isWhole() const;
    bool readPadded(std::string_view text, Values& values) const;
    bool readAny(std::string_view text, Values& values) const;

    QString m_text;
    std::vector<Item> m_items;
    std::size_t m_paddedSize = 0; // of a text with all digits
    Precision m_precision = Precision::Year;
    bool m_isCertain = false;
};

// The time between two instants: a number of units.
class TableStep
{
public:
    TableStep() = default;
    // "day" or "6 hour"; none for another text.
    static std::optional<TableStep> fromText(const QString& text);
    // The time between instants that are sorted and different, of which some may be missing: at
    // least two. Months if all are on the first or last day of a month, or if no days are written.
    static TableStep between(const std::vector<qint64>& instants, TimePattern::Precision precision);

    bool isKnown() const { return m_quantity > 0; }
    // One of the words of an HTS file: minute, hour, day, week, month, year.
    QString unit() const;
    int quantity() const { return m_quantity; }
    // "1 day"
    QString text() const;
    bool isMonths() const { return m_months > 0; }
    // Whether it is one of the unit that a text of this precision names: then the text names a
    // step, and not one end of it.
    bool isNamedBy(TimePattern::Precision precision) const;

    // The instant so many steps later, or earlier.
    qint64 moved(qint64 instant, qint64 count) const;
    // How many steps `instant` is after `origin`; none if it is not a whole number.
    std::optional<qint64> stepsBetween(qint64 origin, qint64 instant) const;

private:
    TableStep(std::size_t unitIndex, qint64 quantity);

    std::size_t m_unitIndex = 0; // in timestepUnits()
    int m_quantity = 0;
    int m_months = 0;     // in all; 0 for a number of minutes
    qint64 m_minutes = 0; // in all; 0 for a number of months
};

#endif // EXCHANGE_TABLETIME_H
