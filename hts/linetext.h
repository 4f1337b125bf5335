#ifndef HTS_LINETEXT_H
#define HTS_LINETEXT_H

#include <string>
#include <string_view>

#include <QString>

// The text of a line of an HTS file, from its bytes: UTF-8, each bad byte replaced by U+FFFD, a
// byte order mark at the start dropped, everything from a NUL byte on left out.
//
// Keys are ASCII, so they are compared as bytes and only what is kept becomes a QString.

// Blank, tab, CR, LF, VT or FF.
inline bool isLineSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// The bytes without white space at both ends. Inline, for every line is stripped.
inline std::string_view stripped(std::string_view bytes)
{
    while (!bytes.empty() && isLineSpace(bytes.front()))
        bytes.remove_prefix(1);
    while (!bytes.empty() && isLineSpace(bytes.back()))
        bytes.remove_suffix(1);
    return bytes;
}

// The bytes of a stripped line that make its text, half a gigabyte at most. Empty exactly when the
// text is.
std::string_view textBytes(std::string_view line);

// The text of bytes from textBytes(), or of the rest of them from any character on.
QString toText(std::string_view bytes);
// Whether all bytes are ASCII; they are then the UTF-8 of toText(bytes).
bool isAscii(std::string_view bytes);

// Converts bytes that are mostly the same as in the call before, such as names and units of slots.
// Equal texts that follow one another share their memory, and take a comparison instead of a
// conversion.
class RepeatedText
{
public:
    // toText(bytes).
    const QString& of(std::string_view bytes);

private:
    std::string m_bytes;
    QString m_text;
};

// The same for the numbers of texts: QString::toDouble after stripping, 0 for a text that is none.
class RepeatedNumber
{
public:
    double of(std::string_view bytes);

private:
    std::string m_bytes;
    double m_number = 0.0;
};

#endif // HTS_LINETEXT_H
