#ifndef TESTS_SUPPORT_HOSTSYSTEM_H
#define TESTS_SUPPORT_HOSTSYSTEM_H

#include <QByteArray>
#include <QList>
#include <QString>

// What differs between the systems, so that expectations can be right on each.

// The text that became these bytes in a device in text mode: on Unix the same, on Windows with "\n"
// for "\r\n". Bytes that have another line end anywhere are not made so; they come back after a
// line that says this.
QByteArray fromTextMode(const QByteArray& bytes);
// The bytes that a text becomes there.
QByteArray toTextMode(const QByteArray& text);

// The kinds of links to files that the system has for every user.
enum class Link { Symbolic, Hard };
QList<Link> kindsOfLinks();
// Makes the link `path` to the file `target`, both absolute. False if that can't be done.
bool makeLink(Link kind, const QString& target, const QString& path);

// Whether environment variables whose names differ only in letter case are two.
bool environmentHasLetterCase();

// Whether the style of the desktop paints selected rows in the colour of the palette.
bool selectionHasColorOfPalette();

// Whether the C library takes the rules of daylight-saving time from the environment variable TZ,
// in the form that POSIX gives them.
bool timeZoneHasRules();

#endif // TESTS_SUPPORT_HOSTSYSTEM_H
