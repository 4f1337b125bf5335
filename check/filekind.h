#ifndef CHECK_FILEKIND_H
#define CHECK_FILEKIND_H

#include <QByteArray>
#include <QString>

class FindingList;
class QIODevice;

// The first block of a device that is open for reading, whose position stays as it is. Shorter
// than a block only if the device ends there.
QByteArray firstBlockOf(QIODevice& device);

// What a file is whose package preamble cannot be read, and what to do with it, by its first block:
// "the file is compressed by gzip; unpack it, for example with gunzip". Empty if a line in it is
// one of an HTS file.
QString otherFileText(const QByteArray& firstBlock);

// Makes the error `not-hts` with that text the only finding: the others are consequences.
void reportOtherFile(const QString& text, const QString& conversionMessage, FindingList& findings);

#endif // CHECK_FILEKIND_H
