#ifndef TESTS_HELP_MESSAGETEXTS_H
#define TESTS_HELP_MESSAGETEXTS_H

#include <QByteArray>
#include <QStringList>

// String literals of C++ source text that read like a message: three words or more. Literals that
// stand beside each other count as one. Texts with places for values ("%1") come in pieces, those
// of two words or more. White space is simplified.
QStringList messageTexts(const QByteArray& source);

// All string literals of C++ source text, joined and simplified in the same way, uncut.
QStringList stringLiterals(const QByteArray& source);

#endif // TESTS_HELP_MESSAGETEXTS_H
