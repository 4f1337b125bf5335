#include "annualize/aggmethods.h"

#include <algorithm>
#include <iterator>

namespace {

const AggMethod kMethods[] = {
    {QLatin1String("Sum"), &AggValues::sum, true},
    {QLatin1String("SumNaN"), &AggValues::sumNan, true},
    {QLatin1String("Average"), &AggValues::average, false},
    {QLatin1String("AverageNaN"), &AggValues::averageNan, false},
    {QLatin1String("Max"), &AggValues::max, false},
    {QLatin1String("MaxNaN"), &AggValues::maxNan, false},
    {QLatin1String("Min"), &AggValues::min, false},
    {QLatin1String("MinNaN"), &AggValues::minNan, false},
    {QLatin1String("End"), &AggValues::end, false},
    {QLatin1String("EndNaN"), &AggValues::endNan, false},
    {QLatin1String("Begin"), &AggValues::begin, false},
    {QLatin1String("BeginNaN"), &AggValues::beginNan, false},
    {QLatin1String("Salinity"), nullptr, false},
};

template<typename Predicate>
const AggMethod* findIf(Predicate predicate)
{
    const auto found = std::find_if(std::begin(kMethods), std::end(kMethods), predicate);
    return found == std::end(kMethods) ? nullptr : found;
}

} // namespace

const AggMethod* findMethod(const QString& word)
{
    return findIf([&](const AggMethod& method) { return word == method.word; });
}

const AggMethod* findMethodIgnoringCase(QStringView word)
{
    // Letters outside ASCII are never taken for one of a word, as the long s would be for an s.
    const auto isSameLetter = [](QChar given, char letter) {
        const auto lower = [](ushort c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; };
        return lower(given.unicode()) == lower(static_cast<uchar>(letter));
    };
    return findIf([&](const AggMethod& method) {
        return word.size() == method.word.size() &&
               std::equal(word.begin(), word.end(), method.word.begin(), isSameLetter);
    });
}
