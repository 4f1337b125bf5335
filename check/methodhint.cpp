#include "check/methodhint.h"

#include <vector>

#include <QLatin1String>
#include <QStringList>

#include "annualize/aggmethods.h"
#include "check/findinglist.h"
#include "check/nearwords.h"

namespace {

// Words of other programs, in lower case, for the methods that do not ignore missing values.
struct Synonym
{
    QLatin1String word;
    const char* method;
};

const std::vector<Synonym>& synonyms()
{
    static const std::vector<Synonym> kSynonyms = {
        {QLatin1String("total"), "Sum"},       {QLatin1String("cumulative"), "Sum"},
        {QLatin1String("accumulated"), "Sum"}, {QLatin1String("mean"), "Average"},
        {QLatin1String("avg"), "Average"},     {QLatin1String("ave"), "Average"},
        {QLatin1String("maximum"), "Max"},     {QLatin1String("highest"), "Max"},
        {QLatin1String("largest"), "Max"},     {QLatin1String("peak"), "Max"},
        {QLatin1String("minimum"), "Min"},     {QLatin1String("lowest"), "Min"},
        {QLatin1String("smallest"), "Min"},    {QLatin1String("last"), "End"},
        {QLatin1String("final"), "End"},       {QLatin1String("endofyear"), "End"},
        {QLatin1String("first"), "Begin"},     {QLatin1String("start"), "Begin"},
        {QLatin1String("initial"), "Begin"},   {QLatin1String("beginning"), "Begin"},
    };
    return kSynonyms;
}

// The letters of the text, in lower case, up to the first character that is not in a name: a
// comment may follow it.
QString lettersOf(const QString& text)
{
    QString letters;
    for (const QChar character : text) {
        if (character.isLetter())
            letters += character.toLower();
        else if (!character.isSpace() && character != QLatin1Char('_') &&
                 character != QLatin1Char('-'))
            break;
    }
    return letters;
}

// The method that the letters are, or nearly are, or null.
const AggMethod* nearestMethod(const QString& letters)
{
    for (const int distance : {0, 1}) {
        for (const AggMethod& method : aggMethods()) {
            if (editDistance(letters, method.word.toLower(), 1) == distance)
                return &method;
        }
    }
    return nullptr;
}

const AggMethod* methodMeant(const QString& text)
{
    QString letters = lettersOf(text);
    if (const AggMethod* method = nearestMethod(letters); method != nullptr)
        return method;
    const auto size = letters.size();
    letters.remove(QLatin1String("nan"));
    for (const Synonym& synonym : synonyms()) {
        const bool isLong = synonym.word.size() > 4;
        if (editDistance(letters, synonym.word, 1) <= (isLong ? 1 : 0))
            return findMethod(QLatin1String(synonym.method) +
                              QLatin1String(letters.size() < size ? "NaN" : ""));
    }
    return letters.size() < size ? nearestMethod(letters + QLatin1String("nan")) : nullptr;
}

QString methodList()
{
    QStringList words;
    for (const AggMethod& method : aggMethods()) {
        if (method.isSupported())
            words.append(method.word);
    }
    const QString last = words.takeLast();
    return words.join(QLatin1String(", ")) + QLatin1String(" and ") + last;
}

} // namespace

QString methodHint(const QString& text, bool hasList)
{
    const AggMethod* meant = methodMeant(text);
    QString question = meant == nullptr ? QString() : worded("; is %1 meant?", meant->word);
    if (!hasList)
        return question;
    return question +
           worded(meant == nullptr ? "; the methods are %1" : " The methods are %1", methodList());
}
