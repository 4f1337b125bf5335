#ifndef TESTS_HELP_MESSAGETEXTS_H
#define TESTS_HELP_MESSAGETEXTS_H

#include <QByteArray>
#include <QStringList>

// String literals of C++ source text that read like a message: three words or more. Adjacent
// literals count as one. Texts with placeholders ("%1") are split into pieces, of which those of
// two words or more are returned. White space is simplified.
QStringList messageTexts(const QByteArray& source);

// All string literals of C++ source text, joined and simplified in the same way, uncut.
QStringList stringLiterals(const QByteArray& source);

#endif // TESTS_HELP_MESSAGETEXTS_H
