#include "annualize/aggmethods.h"

#include <algorithm>
#include <cstdint>

#include "hts/doublebits.h"

namespace {

// The NaN of this program's own results; the toolkit's differs in the lowest bit.
double resultNan()
{
    return doubleOf(0x7ff8000000000001);
}

double sum(const YearValues& year)
{
    return year.sum;
}

// The divisor deliberately counts the missing values too.
double average(const YearValues& year)
{
    return year.sum / static_cast<double>(year.count);
}

double max(const YearValues& year)
{
    return year.max();
}

double min(const YearValues& year)
{
    return year.min();
}

double end(const YearValues& year)
{
    return year.end;
}

double begin(const YearValues& year)
{
    return year.begin;
}

template<typename Predicate>
const AggMethod* findIf(Predicate predicate)
{
    const std::vector<AggMethod>& methods = aggMethods();
    const auto found = std::find_if(methods.begin(), methods.end(), predicate);
    return found == methods.end() ? nullptr : &*found;
}

} // namespace

double AggMethod::resultFor(const YearValues& year) const
{
    Q_ASSERT(isSupported() && year.count > 0);
    const bool isNan = year.missing > 0 && missingValues == MissingValues::MakeNaN;
    return isNan ? resultNan() : formula(year);
}

const std::vector<AggMethod>& aggMethods()
{
    constexpr auto kMakeNaN = AggMethod::MissingValues::MakeNaN;
    constexpr auto kIgnored = AggMethod::MissingValues::Ignored;
    static const std::vector<AggMethod> kMethods = {
        // word, formula, missing values, is a total
        {QStringLiteral("Sum"), sum, kMakeNaN, true},
        {QStringLiteral("SumNaN"), sum, kIgnored, true},
        {QStringLiteral("Average"), average, kMakeNaN, false},
        {QStringLiteral("AverageNaN"), average, kIgnored, false},
        {QStringLiteral("Max"), max, kMakeNaN, false},
        {QStringLiteral("MaxNaN"), max, kIgnored, false},
        {QStringLiteral("Min"), min, kMakeNaN, false},
        {QStringLiteral("MinNaN"), min, kIgnored, false},
        {QStringLiteral("End"), end, kMakeNaN, false},
        {QStringLiteral("EndNaN"), end, kIgnored, false},
        {QStringLiteral("Begin"), begin, kMakeNaN, false},
        {QStringLiteral("BeginNaN"), begin, kIgnored, false},
        {QStringLiteral("Salinity"), nullptr, kMakeNaN, false},
    };
    return kMethods;
}

const AggMethod* findMethod(const QString& word)
{
    return findIf([&](const AggMethod& method) { return word == method.word; });
}

const AggMethod* findMethodIgnoringCase(std::string_view word)
{
    // Words are ASCII letters, whose cases differ in one bit. For the toolkit a long s would equal
    // an s.
    const auto isSameLetter = [](char given, QChar letter) {
        constexpr int kCase = 'a' ^ 'A';
        Q_ASSERT(letter.unicode() < 0x80 && letter.isLetter());
        return (static_cast<uchar>(given) | kCase) == (letter.unicode() | kCase);
    };
    return findIf([&](const AggMethod& method) {
        return word.size() == static_cast<std::size_t>(method.word.size()) &&
               std::equal(word.begin(), word.end(), method.word.begin(), isSameLetter);
    });
}
