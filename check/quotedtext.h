#ifndef CHECK_QUOTEDTEXT_H
#define CHECK_QUOTEDTEXT_H

#include <string_view>

#include <QString>

// Texts of a file, as reports show them: in double quotes, on one line, and not too long.
// Characters that would not be seen, or would break the line, stand as \t or \u0007.
QString quoted(const QString& text);
QString quoted(std::string_view bytes);

// What a report says about a conversion of the file, to follow a text: "; a conversion fails:
// "Cannot read run preamble"".
QString conversionFails(const QString& message);

#endif // CHECK_QUOTEDTEXT_H
