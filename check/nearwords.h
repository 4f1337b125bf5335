#ifndef CHECK_NEARWORDS_H
#define CHECK_NEARWORDS_H

#include <string_view>
#include <vector>

#include <QLatin1String>
#include <QString>

// Words and lines that are nearly, but not exactly, those of the format.

// Number of characters to insert, remove or replace, and of neighbours to swap, to turn one text
// into the other; `limit` + 1 if it is more than `limit`. Takes time for the length of the texts,
// times the limit.
int editDistance(const QString& a, const QString& b, int limit);

// The first of `words` from which `word` differs only in letter case, in white space, and by an
// edit distance of at most 1; empty if there is none.
QLatin1String nearestWord(const QString& word, const std::vector<QLatin1String>& words);

// The first of `keys` (keys with their colon and blank, or end lines) with which `line` nearly
// begins: with another letter case, blanks or tabs missing or added, and at an edit distance of at
// most 1. If there is none, the first that is cut off, or has another character than the colon.
// Empty if there is none of these either.
QLatin1String nearestKey(std::string_view line, const std::vector<QLatin1String>& keys);

#endif // CHECK_NEARWORDS_H
