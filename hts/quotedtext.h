#ifndef HTS_QUOTEDTEXT_H
#define HTS_QUOTEDTEXT_H

#include <string_view>

#include <QString>

// A text of a file as reports show it, on one line: characters that are invisible, would break the
// line or control a terminal are shown as \t or \u0007.
QString shown(const QString& text);
// The same in double quotes, cut after 60 characters.
QString quoted(const QString& text);
QString quoted(std::string_view bytes);

#endif // HTS_QUOTEDTEXT_H
