#ifndef TESTS_SUPPORT_WHOLEFILE_H
#define TESTS_SUPPORT_WHOLEFILE_H

#include <QByteArray>
#include <QString>

// Writes the file, and creates missing folders for it; fails the test if that is not possible.
void writeFile(const QString& path, const QByteArray& content);

// The content of the file; "cannot be opened: " and the path when it can't be read.
QByteArray readFile(const QString& path);

// The content of a file of this project, by its path from the project's folder; ends the test
// program when it can't be read.
QByteArray sourceFile(const QString& path);
QByteArray sourceFile(const char* path);

#endif // TESTS_SUPPORT_WHOLEFILE_H
