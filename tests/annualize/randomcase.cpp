#include "tests/annualize/randomcase.h"

#include <cstddef>
#include <limits>
#include <numeric>
#include <random>
#include <utility>

#include "annualize/aggmethods.h"

namespace {

constexpr int kFirstYear = 1880;

bool isLeapYear(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysOfMonth(int year, int month)
{
    static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return kDays[month - 1] + (month == 2 && isLeapYear(year) ? 1 : 0);
}

int daysOfYear(int year)
{
    return isLeapYear(year) ? 366 : 365;
}

int daysBefore(int year)
{
    static std::vector<int> days{0};
    while (days.size() <= static_cast<std::size_t>(year - kFirstYear))
        days.push_back(days.back() + daysOfYear(kFirstYear + static_cast<int>(days.size()) - 1));
    return days[static_cast<std::size_t>(year - kFirstYear)];
}

class Chance
{
public:
    explicit Chance(quint32 seed) : m_random(seed) {}

    // 0 to limit - 1.
    int below(qint64 limit) { return static_cast<int>(m_random() % static_cast<quint32>(limit)); }
    bool oneIn(int chances) { return below(chances) == 0; }

private:
    std::mt19937 m_random; // whose numbers are the same everywhere
};

struct Span
{
    qint64 first;
    qint64 last;
};

// Some complete years, and what may lie before and after them. `unit` only decides how many.
Span randomSpan(Chance& chance, const QByteArray& unit, int endMonth)
{
    // Leap years and centuries without a leap day among them.
    static const int kStarts[] = {1896, 1996, 2094};
    const int year = kStarts[chance.below(3)] + chance.below(8);
    const int years = 1 + chance.below(unit == "hour" ? 2 : 4);
    Span span{instantOf(year, endMonth + 1, 1), instantOf(year + years, endMonth + 1, 1)};
    // A few steps decide whether the first and the last year are complete.
    const int days = unit == "month" ? 31 : unit == "week" ? 7 : 1;
    if (chance.oneIn(2))
        span.first += (chance.below(5) - 2) * days * kMinutesPerDay;
    else if (chance.oneIn(3))
        span.first += (chance.below(200) - 100) * kMinutesPerDay;
    else if (chance.oneIn(4))
        span.first -= chance.below(400) * kMinutesPerDay;
    if (chance.oneIn(3))
        span.last += (chance.below(5) - 2) * days * kMinutesPerDay;
    return span;
}

// The steps that end after `first` and not after `last`, one at least.
std::vector<qint64> monthEnds(const Span& span)
{
    std::vector<qint64> instants;
    int year = yearOf(span.first);
    int month = 1;
    while (instants.empty() || instants.back() < span.last) {
        const qint64 instant = instantOf(year, month, 1);
        if (instant > span.first)
            instants.push_back(instant);
        year += month / 12;
        month = month % 12 + 1;
    }
    if (instants.size() > 1 && instants.back() > span.last)
        instants.pop_back();
    return instants;
}

std::vector<qint64> equalSteps(const Span& span, qint64 step)
{
    std::vector<qint64> instants{span.first + step};
    while (instants.back() + step <= span.last)
        instants.push_back(instants.back() + step);
    return instants;
}

// What the numbers of a slot are like.
enum class Style { Plain, Wide, Whole, Cancelling, Constant, Count };

std::pair<QByteArray, double> randomNumber(Chance& chance, Style style)
{
    // Digits and a point, so that the number is correctly rounded from the text.
    const auto decimal = [&](int wholeLimit, int digits) {
        QByteArray text = QByteArray(chance.oneIn(2) ? "-" : "") +
                          QByteArray::number(chance.below(wholeLimit)) + '.';
        for (int i = 0; i < digits; ++i)
            text += static_cast<char>('0' + chance.below(10));
        return text;
    };
    QByteArray text;
    if (style == Style::Plain)
        text = decimal(1000, 12);
    else if (style == Style::Wide)
        text = chance.oneIn(3) ? "0.00000000" + QByteArray::number(1 + chance.below(9999))
                               : decimal(2000000000, 3);
    else if (style == Style::Whole)
        text = QByteArray::number(chance.below(7) - 3);
    else if (style == Style::Cancelling)
        text = (chance.oneIn(2) ? "-" : "") + QByteArray::number(chance.below(4)) + ".1";
    else
        text = "0.1";
    return {text, text.toDouble()};
}

std::pair<QByteArray, double> missingNumber(Chance& chance)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const std::pair<QByteArray, double> kMissing[] = {
        {"NaN", kNan}, {"nan", kNan}, {"inf", kInfinity}, {"-inf", -kInfinity}};
    return kMissing[chance.below(4)];
}

void addNumbers(RandomSlot& slot, Chance& chance, int count)
{
    const auto style = static_cast<Style>(chance.below(static_cast<int>(Style::Count)));
    // One in so many; the first hardly occurs.
    static const int kRarity[] = {1000000, 200, 20, 2, 1};
    const int rarity = kRarity[chance.below(5)];
    slot.texts.emplace_back();
    slot.numbers.emplace_back();
    for (int row = 0; row < count; ++row) {
        const auto [text, number] =
            chance.oneIn(rarity) ? missingNumber(chance) : randomNumber(chance, style);
        slot.texts.back().append(text);
        slot.numbers.back().push_back(number);
    }
}

QByteArrayList methodWords()
{
    QByteArrayList words;
    for (const AggMethod& method : aggMethods()) {
        if (method.isSupported())
            words.append(method.word.toLatin1());
    }
    return words;
}

RandomSlot randomSlot(Chance& chance, int index, int runCount, int steps)
{
    RandomSlot slot;
    slot.objectName = "Basin " + QByteArray::number(index / 2);
    slot.slotName = "Flow." + QByteArray::number(index);
    slot.units = chance.oneIn(2) ? "cms" : "acre-ft";
    const QByteArrayList words = methodWords();
    if (!chance.oneIn(10))
        slot.method = words.at(chance.below(words.size()));
    slot.kind = chance.oneIn(4) ? "" : "SeriesSlot";
    if (chance.oneIn(8))
        slot.kind = chance.oneIn(2) ? "ScalarSlot" : "TableSlot";
    for (int run = 0; run < runCount; ++run)
        addNumbers(slot, chance, slot.isSeries() ? steps : 1);
    return slot;
}

QByteArray slotText(const RandomSlot& slot, int run)
{
    QByteArray text = "object_type: Reservoir\nobject_name: " + slot.objectName + '\n';
    if (!slot.kind.isEmpty())
        text += "slot_type: " + slot.kind + '\n';
    text += "slot_name: " + slot.slotName + '\n';
    const QByteArray values = slot.texts[static_cast<std::size_t>(run)].join('\n') + '\n';
    if (slot.kind == "TableSlot")
        text += "rows: 1\ncols: 1\nEND_SLOT_PREAMBLE\n" + values;
    else
        text +=
            "END_SLOT_PREAMBLE\nunits: " + slot.units + "\nscale: 0.5\n" + values + "END_COLUMN\n";
    return text + "END_SLOT\n";
}

} // namespace

qint64 instantOf(int year, int month, int day)
{
    const int calendarYear = year + (month - 1) / 12;
    qint64 days = daysBefore(calendarYear) + day - 1;
    for (int m = 1; m <= (month - 1) % 12; ++m)
        days += daysOfMonth(calendarYear, m);
    return days * kMinutesPerDay;
}

int yearOf(qint64 instant)
{
    int year = kFirstYear;
    while (instantOf(year + 1, 1, 1) <= instant)
        ++year;
    return year;
}

QByteArray textOf(qint64 instant)
{
    // A midnight is the last minute of the day before.
    const qint64 dayIndex = (instant - 1) / kMinutesPerDay;
    const int minute = static_cast<int>(instant - dayIndex * kMinutesPerDay);
    int year = kFirstYear;
    int day = static_cast<int>(dayIndex);
    for (; day >= daysOfYear(year); ++year)
        day -= daysOfYear(year);
    int month = 1;
    for (; day >= daysOfMonth(year, month); ++month)
        day -= daysOfMonth(year, month);
    return QByteArray::number(year) + '-' + QByteArray::number(month) + '-' +
           QByteArray::number(day + 1) + ' ' + QByteArray::number(minute / 60) + ':' +
           QByteArray::number(minute % 60).rightJustified(2, '0');
}

RandomTiming::RandomTiming(quint32 timingSeed) : seed(timingSeed)
{
    Chance chance(seed);
    static const char* const kUnits[] = {"month", "week", "day", "hour"};
    unit = kUnits[chance.below(4)];
    endMonth = 1 + chance.below(12);

    Span span = randomSpan(chance, unit, endMonth);
    if (unit == "month") {
        instants = monthEnds(span);
    } else if (unit == "week") {
        span.first += (chance.below(7) - 6) * kMinutesPerDay;
        instants = equalSteps(span, 7 * kMinutesPerDay);
    } else if (unit == "day") {
        instants = equalSteps(span, kMinutesPerDay);
    } else {
        static const int kHours[] = {1, 3, 6, 12};
        instants = equalSteps(span, kHours[chance.below(4)] * 60);
    }

    for (const qint64 instant : instants)
        stepTexts.append(textOf(instant));
}

QString RandomTiming::description() const
{
    return QStringLiteral("seed %1 (%2 steps of unit %3 from %4 to %5, end month %6)")
        .arg(seed)
        .arg(instants.size())
        .arg(QString::fromLatin1(unit), QString::fromLatin1(stepTexts.first()),
             QString::fromLatin1(stepTexts.last()))
        .arg(endMonth);
}

RandomCase::RandomCase(quint32 caseSeed) : RandomTiming(caseSeed)
{
    Chance chance(seed);
    runCount = 1 + chance.below(3);
    const int slotCount = 1 + chance.below(instants.size() > 3000 ? 2 : 8);
    for (int slot = 0; slot < slotCount; ++slot) {
        series.push_back(randomSlot(chance, slot, runCount, static_cast<int>(instants.size())));
        const int place = chance.below(slot + 1);
        shuffledSlots.insert(shuffledSlots.begin() + place, slot);
    }
}

QByteArray RandomCase::controlText() const
{
    QByteArray text;
    for (const RandomSlot& slot : series) {
        if (!slot.method.isEmpty())
            text += slot.objectName + '.' + slot.slotName + ": " + slot.method + '\n';
    }
    return text;
}

QByteArray RandomCase::fileText(const std::vector<int>& runs,
                                const std::vector<int>& slotOrder) const
{
    QByteArray text = "name:by chance\nowner:tests\ndescription:a:b\ncreate_date:2015-3-31 24:00\n"
                      "number_of_runs:" +
                      QByteArray::number(static_cast<int>(runs.size())) +
                      "\nEND_PACKAGE_PREAMBLE\n";
    for (const int run : runs) {
        text += "trace:" + QByteArray::number(run) + "\nstart:" + stepTexts.first() +
                "\nend:" + stepTexts.last() + "\ntime_step_unit:" + unit +
                "\nunit_quantity:1\ntime_steps:" + QByteArray::number(stepTexts.size()) +
                "\nconsecutive:1\nslot_set:all\nidx_sequential:4\nEND_RUN_PREAMBLE\n" +
                stepTexts.join('\n') + '\n';
        for (const int slot : slotOrder)
            text += slotText(series[static_cast<std::size_t>(slot)], run);
        text += "END_RUN\n";
    }
    return text;
}

QByteArray RandomCase::fileText() const
{
    return fileText(allRuns(), allSlots());
}

std::vector<int> RandomCase::allRuns() const
{
    std::vector<int> runs(static_cast<std::size_t>(runCount));
    std::iota(runs.begin(), runs.end(), 0);
    return runs;
}

std::vector<int> RandomCase::allSlots() const
{
    std::vector<int> slotOrder(series.size());
    std::iota(slotOrder.begin(), slotOrder.end(), 0);
    return slotOrder;
}
