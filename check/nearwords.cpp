#include "check/nearwords.h"

#include <algorithm>

#include "hts/linetext.h"

namespace {

// Without white space, in lower case.
QString plain(const QString& text)
{
    QString result;
    for (const QChar character : text) {
        if (!character.isSpace())
            result += character.toLower();
    }
    return result;
}

QString withoutColon(const QString& key)
{
    return key.left(key.indexOf(QLatin1Char(':')));
}

// Compares the text before the first colon of the line; without a colon the whole line.
bool isNearlyKey(const QString& line, const QString& key)
{
    const QString word = withoutColon(key);
    const bool isKey = word.size() < key.size();
    const int colon = line.indexOf(QLatin1Char(':'));
    const QString given = isKey && colon >= 0 ? line.left(colon) : line;
    if (editDistance(plain(given), word.toLower(), 1) <= 1)
        return true;
    // Cut off, or with another character in the place of the colon.
    constexpr int kMinLetters = 2;
    if (given.size() >= kMinLetters && word.startsWith(given))
        return true;
    return isKey && given.size() > word.size() && given.startsWith(word) &&
           !given.at(word.size()).isLetterOrNumber() && given.at(word.size()) != QLatin1Char('_');
}

} // namespace

int editDistance(const QString& a, const QString& b, int limit)
{
    if (std::abs(a.size() - b.size()) > limit)
        return limit + 1;
    // One row of the usual table: distances between the first i characters of `a` and each
    // beginning of `b`.
    std::vector<int> row(static_cast<std::size_t>(b.size()) + 1);
    for (std::size_t j = 0; j < row.size(); ++j)
        row[j] = static_cast<int>(j);
    for (int i = 1; i <= a.size(); ++i) {
        int diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j < row.size(); ++j) {
            const bool isSame = a.at(i - 1) == b.at(static_cast<int>(j) - 1);
            const int replaced = diagonal + (isSame ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
        if (*std::min_element(row.begin(), row.end()) > limit)
            return limit + 1;
    }
    return std::min(row.back(), limit + 1);
}

bool isNearly(const QString& word, QLatin1String known)
{
    const QString plainKnown = QString(known).toLower();
    return editDistance(plain(word), plainKnown, 1) <= 1;
}

QLatin1String nearestWord(const QString& word, const std::vector<QLatin1String>& words)
{
    for (const QLatin1String known : words) {
        if (isNearly(word, known))
            return known;
    }
    return {};
}

QLatin1String nearestKey(std::string_view line, const std::vector<QLatin1String>& keys)
{
    constexpr std::size_t kMaxBytes = 200; // longer than any key
    const QString text = toText(textBytes(stripped(line.substr(0, kMaxBytes))));
    for (const QLatin1String key : keys) {
        if (isNearlyKey(text, key))
            return key;
    }
    return {};
}
