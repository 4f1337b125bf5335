#include "tests/help/messagetexts.h"

#include <QRegularExpression>

namespace {

// The meaning of a backslash and the character; white space, which is most of them, is simplified.
QChar unescaped(QChar c)
{
    return c == QLatin1Char('n') || c == QLatin1Char('t') ? QLatin1Char(' ') : c;
}

int wordCount(const QString& text)
{
    return text.split(QLatin1Char(' '), Qt::SkipEmptyParts).size();
}

} // namespace

QStringList stringLiterals(const QByteArray& source)
{
    // A comment, a character, an #include line, or a string; else what may come between strings.
    static const QRegularExpression token(
        QStringLiteral("(?<skip>//[^\\n]*|/\\*.*?\\*/|#include[^\\n]*|'(?:\\\\.|[^'\\\\\\n])+')"
                       "|\"(?<text>(?:\\\\.|[^\"\\\\])*)\"|(?<other>[^\\s])"),
        QRegularExpression::DotMatchesEverythingOption);
    QStringList literals;
    bool joins = false; // with the literal before
    auto matches = token.globalMatch(QString::fromUtf8(source));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        if (match.capturedStart(QStringLiteral("text")) < 0) {
            joins = joins && match.capturedStart(QStringLiteral("other")) < 0;
            continue;
        }
        QString text = match.captured(QStringLiteral("text"));
        for (int i = text.indexOf(QLatin1Char('\\')); i >= 0;
             i = text.indexOf(QLatin1Char('\\'), i + 1))
            text.replace(i, 2, unescaped(text.at(i + 1)));
        if (joins)
            literals.last() += text;
        else
            literals.append(text);
        joins = true;
    }
    for (QString& literal : literals)
        literal = literal.simplified();
    return literals;
}

QStringList messageTexts(const QByteArray& source)
{
    QStringList texts;
    for (const QString& literal : stringLiterals(source)) {
        if (wordCount(literal) < 3)
            continue;
        static const QRegularExpression place(QStringLiteral("%\\d"));
        const QStringList pieces = literal.split(place);
        for (const QString& piece : pieces) {
            if (pieces.size() == 1 || wordCount(piece) >= 2)
                texts.append(piece.simplified());
        }
    }
    return texts;
}
