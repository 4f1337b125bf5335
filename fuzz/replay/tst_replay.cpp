// Gives every file of a fuzz target's corpus to the target: what the fuzzer once found stays fixed.
// A check that fails aborts with its message; the row is the file.

#include <QDir>
#include <QFile>
#include <QtTest>

#include "fuzz/fuzztarget.h"

class ReplayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void corpusFile_data();
    void corpusFile();
};

void ReplayTest::corpusFile_data()
{
    QTest::addColumn<QString>("path");
    const QDir folder(QStringLiteral(CORPUS_FOLDER));
    const QFileInfoList files = folder.entryInfoList(QDir::Files | QDir::Hidden, QDir::Name);
    QVERIFY2(!files.isEmpty(), qPrintable(folder.path()));
    for (const QFileInfo& file : files)
        QTest::newRow(qPrintable(file.fileName())) << file.filePath();
}

void ReplayTest::corpusFile()
{
    QFETCH(QString, path);
    QFile file(path);
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    const QByteArray input = file.readAll();
    QCOMPARE(LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.constData()),
                                    static_cast<std::size_t>(input.size())),
             0);
}

QTEST_APPLESS_MAIN(ReplayTest)
#include "tst_replay.moc"
