#include <QFile>

#include <unistd.h>

#include "tests/support/hostsystem.h"

QByteArray fromTextMode(const QByteArray& bytes)
{
    return bytes;
}

QByteArray toTextMode(const QByteArray& text)
{
    return text;
}

QList<Link> kindsOfLinks()
{
    return {Link::Symbolic, Link::Hard};
}

bool makeLink(Link kind, const QString& target, const QString& path)
{
    const QByteArray from = QFile::encodeName(target);
    const QByteArray to = QFile::encodeName(path);
    return (kind == Link::Symbolic ? ::symlink(from.constData(), to.constData())
                                   : ::link(from.constData(), to.constData())) == 0;
}

bool environmentHasLetterCase()
{
    return true;
}

bool selectionHasColorOfPalette()
{
    return true;
}

bool timeZoneHasRules()
{
    return true;
}
