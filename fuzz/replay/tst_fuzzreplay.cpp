// Gives every file of each fuzz target's corpus to the target: what the fuzzer once found stays
// fixed. A check that fails aborts with its message; the row is the file.

#include <QDir>
#include <QFile>
#include <QtTest>

#include "fuzz/fuzztarget.h"
#include "tests/support/testmain.h"

class ReplayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void corpusFile_data()
    {
        QTest::addColumn<int>("target"); // index in fuzzTargets()
        QTest::addColumn<QString>("path");
        for (std::size_t i = 0; i < fuzzTargets().size(); ++i) {
            const QDir folder(QStringLiteral(CORPUS_FOLDER "/") +
                              QLatin1String(fuzzTargets()[i].name));
            const QFileInfoList files =
                folder.entryInfoList(QDir::Files | QDir::Hidden, QDir::Name);
            QVERIFY2(!files.isEmpty(), qPrintable(folder.path()));
            for (const QFileInfo& file : files)
                QTest::addRow("%s/%s", fuzzTargets()[i].name, qPrintable(file.fileName()))
                    << static_cast<int>(i) << file.filePath();
        }
    }

    void corpusFile()
    {
        QFETCH(int, target);
        QFETCH(QString, path);
        QFile file(path);
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
        fuzzTargets()[static_cast<std::size_t>(target)].checkInput(file.readAll());
    }
};

HTS_TEST(ReplayTest, NoApplication)
#include "tst_fuzzreplay.moc"
