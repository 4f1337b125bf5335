#ifndef CHECK_NEARWORDS_H
#define CHECK_NEARWORDS_H

#include <string_view>
#include <vector>

#include <QLatin1String>
#include <QString>

// Words and lines that are nearly, but not exactly, those of the format.

// Number of characters to insert, remove or replace to turn one text into the other; `limit` + 1 if
// it is more than `limit`.
int editDistance(const QString& a, const QString& b, int limit);

// Whether `word` differs from `known` only in letter case, white space, or one character.
bool isNearly(const QString& word, QLatin1String known);

// The first of `words` that `word` is nearly, see isNearly(); empty if there is none.
QLatin1String nearestWord(const QString& word, const std::vector<QLatin1String>& words);

// The first of `keys` (keys with their colon and blank, or end lines) with which `line` nearly
// begins: with another letter case, blanks or tabs missing or added, one character wrong, missing
// or added, or cut off. Empty if there is none.
QLatin1String nearestKey(std::string_view line, const std::vector<QLatin1String>& keys);

#endif // CHECK_NEARWORDS_H
