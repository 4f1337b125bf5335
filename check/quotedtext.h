#ifndef CHECK_QUOTEDTEXT_H
#define CHECK_QUOTEDTEXT_H

#include <string_view>

#include <QString>

// A text of a file as reports show it: in double quotes, on one line, and cut after 60 characters.
// Characters that are invisible or would break the line are shown as \t or \u0007.
QString quoted(const QString& text);
QString quoted(std::string_view bytes);

// The end of a finding's text that says how a conversion of the file fails: "; a conversion fails:
// "Cannot read run preamble"".
QString conversionFails(const QString& message);

#endif // CHECK_QUOTEDTEXT_H
