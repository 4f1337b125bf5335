#include "annualize/aggmethods.h"

#include <algorithm>
#include <iterator>

namespace {

const AggMethod kMethods[] = {
    {QStringLiteral("Sum"), &AggValues::sum, true},
    {QStringLiteral("SumNaN"), &AggValues::sumNan, true},
    {QStringLiteral("Average"), &AggValues::average, false},
    {QStringLiteral("AverageNaN"), &AggValues::averageNan, false},
    {QStringLiteral("Max"), &AggValues::max, false},
    {QStringLiteral("MaxNaN"), &AggValues::maxNan, false},
    {QStringLiteral("Min"), &AggValues::min, false},
    {QStringLiteral("MinNaN"), &AggValues::minNan, false},
    {QStringLiteral("End"), &AggValues::end, false},
    {QStringLiteral("EndNaN"), &AggValues::endNan, false},
    {QStringLiteral("Begin"), &AggValues::begin, false},
    {QStringLiteral("BeginNaN"), &AggValues::beginNan, false},
    {QStringLiteral("Salinity"), nullptr, false},
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

const AggMethod* findMethodIgnoringCase(std::string_view word)
{
    // Letters outside ASCII are never taken for one of a word, as the long s would be for an s.
    const auto isSameLetter = [](char given, QChar letter) {
        const auto lower = [](ushort c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; };
        return lower(static_cast<uchar>(given)) == lower(letter.unicode());
    };
    return findIf([&](const AggMethod& method) {
        return word.size() == static_cast<std::size_t>(method.word.size()) &&
               std::equal(word.begin(), word.end(), method.word.begin(), isSameLetter);
    });
}
