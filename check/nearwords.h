#ifndef CHECK_NEARWORDS_H
#define CHECK_NEARWORDS_H

#include <string_view>
#include <vector>

#include <QLatin1String>
#include <QString>

// Words and lines that are nearly what the format knows.

// Number of characters to insert, take out or replace to turn one text into the other; `limit` + 1
// where it is more than `limit`.
int editDistance(const QString& a, const QString& b, int limit);

// Whether `word` is `known` but for letter case, white space, or one character.
bool isNearly(const QString& word, QLatin1String known);

// The one of `words` that `word` nearly is, or an empty one.
QLatin1String nearestWord(const QString& word, const std::vector<QLatin1String>& words);

// The one of `keys` (keys with their colon and blank, or end lines) which `line` nearly begins
// with, or nearly is: another letter case, blanks or tabs lost or added, one character wrong, lost
// or too many, or cut. Empty if there is none.
QLatin1String nearestKey(std::string_view line, const std::vector<QLatin1String>& keys);

#endif // CHECK_NEARWORDS_H
