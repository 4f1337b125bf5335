#include "tests/support/wholefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtTest>

void writeFile(const QString& path, const QByteArray& content)
{
    QVERIFY2(QDir().mkpath(QFileInfo(path).path()), qPrintable(path));
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    QCOMPARE(file.write(content), content.size());
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return "cannot be opened: " + QFile::encodeName(path);
    return file.readAll();
}

QByteArray sourceFile(const QString& path)
{
    QFile file(QDir(QStringLiteral(SOURCE_DIR)).filePath(path));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(file.fileName()));
    return file.readAll();
}

QByteArray sourceFile(const char* path)
{
    return sourceFile(QString::fromUtf8(path));
}
