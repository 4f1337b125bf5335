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

QString withoutColon(const QString& text)
{
    return text.left(text.indexOf(QLatin1Char(':')));
}

bool isNearly(const QString& word, const QString& known)
{
    return editDistance(plain(word), known.toLower(), 1) <= 1;
}

// Whether the word is only a beginning of the key, or has another character in the place of the
// colon.
bool isCutOrWithoutColon(const QString& word, const QString& key)
{
    constexpr int kMinLetters = 2;
    const QString name = withoutColon(key);
    if (word.size() >= kMinLetters && name.startsWith(word))
        return true;
    const bool isEndLine = name.size() == key.size();
    return !isEndLine && word.size() > name.size() && word.startsWith(name) &&
           !word.at(name.size()).isLetterOrNumber() && word.at(name.size()) != QLatin1Char('_');
}

} // namespace

int editDistance(const QString& a, const QString& b, int limit)
{
    const int over = limit + 1;
    const auto size = b.size();
    if (std::abs(a.size() - size) > limit)
        return over;
    // Three rows of the usual table: distances between the first i characters of `a` and each
    // beginning of `b`, and those of the two rows before. Only the cells that are at most `limit`
    // beside the diagonal can be within the limit; the next one on either side counts as over it.
    std::vector<int> row(static_cast<std::size_t>(size) + 1, over);
    for (int j = 0; j <= std::min<qint64>(size, limit); ++j)
        row[static_cast<std::size_t>(j)] = j;
    std::vector<int> before = row;
    std::vector<int> twoBefore = row;
    for (int i = 1; i <= a.size(); ++i) {
        twoBefore.swap(before);
        before.swap(row);
        const auto first = static_cast<std::size_t>(std::max(i - limit, 1));
        const auto last = static_cast<std::size_t>(std::min<qint64>(i + limit, size));
        row[first - 1] = i <= limit ? i : over;
        int least = row[first - 1];
        for (std::size_t j = first; j <= last; ++j) {
            const QChar fromA = a.at(i - 1);
            const QChar fromB = b.at(static_cast<int>(j) - 1);
            row[j] =
                std::min({before[j - 1] + (fromA == fromB ? 0 : 1), before[j] + 1, row[j - 1] + 1});
            const bool isSwapped =
                i > 1 && j > 1 && fromA == b.at(static_cast<int>(j) - 2) && fromB == a.at(i - 2);
            if (isSwapped)
                row[j] = std::min(row[j], twoBefore[j - 2] + 1);
            least = std::min(least, row[j]);
        }
        if (last < row.size() - 1)
            row[last + 1] = over;
        if (least > limit)
            return over;
    }
    return std::min(row.back(), over);
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
    const QString name = withoutColon(text);
    // End lines have no colon.
    const auto wordFor = [&](QLatin1String key) {
        return key.contains(QLatin1Char(':')) ? name : text;
    };
    for (const QLatin1String key : keys) {
        if (isNearly(wordFor(key), withoutColon(key)))
            return key;
    }
    for (const QLatin1String key : keys) {
        if (isCutOrWithoutColon(wordFor(key), key))
            return key;
    }
    return {};
}
