#include <QDir>

#include "tests/support/hostsystem.h"

#include <windows.h>

QByteArray fromTextMode(const QByteArray& bytes)
{
    if (bytes.count('\n') != bytes.count("\r\n"))
        return "not written in text mode:\n" + bytes;
    return QByteArray(bytes).replace("\r\n", "\n");
}

QByteArray toTextMode(const QByteArray& text)
{
    return QByteArray(text).replace("\n", "\r\n");
}

// A symbolic link needs a privilege.
QList<Link> kindsOfLinks()
{
    return {Link::Hard};
}

bool makeLink(Link kind, const QString& target, const QString& path)
{
    const QString from = QDir::toNativeSeparators(path);
    const QString to = QDir::toNativeSeparators(target);
    return kind == Link::Hard && ::CreateHardLinkW(from.toStdWString().c_str(),
                                                   to.toStdWString().c_str(), nullptr) != FALSE;
}

bool environmentHasLetterCase()
{
    return false;
}

bool selectionHasColorOfPalette()
{
    return false;
}

bool timeZoneHasRules()
{
    return false;
}
