// Conversions of files that fail on demand on Unix.

#include <QFile>
#include <QtTest>

#include "annualize/convertfiles.h"
#include "tests/annualize/conversionfolder.h"
#include "tests/support/logcollector.h"
#include "tests/support/testmain.h"

namespace {

// A file that can be opened and whose first page can't be read.
const char kUnreadable[] = "/proc/self/mem";
const char kFull[] = "/dev/full";

} // namespace

class FaultyFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstFaultThatCountsIsTheReason_data()
    {
        addColumns<QByteArray, QByteArray, QString>("inputName", "outputName", "message");
        const char* const unread = "Problem reading the input hts file: Input/output error";
        addRows<QByteArray, QByteArray, const char*>(
            {{"all well", "good.hts", "result.hts", ""},
             {"engine refuses", "bad.hts", "result.hts", kBadRunPreamble},
             {"output full", "good.hts", kFull, "No space left on device"},
             {"engine refuses, output full", "bad.hts", kFull, kBadRunPreamble},
             {"input unread", kUnreadable, "result.hts", unread},
             {"input unread, output full", kUnreadable, kFull, unread}});
    }
    void firstFaultThatCountsIsTheReason()
    {
        QFETCH(QByteArray, inputName);
        QFETCH(QByteArray, outputName);
        const ConversionFolder folder;
        AnnualizeHts engine;
        folder.configure(engine);
        OpenFile input(folder.path(inputName), kReadInput);
        OpenFile output(folder.path(outputName), QIODevice::WriteOnly);
        const Status status = convertFiles(engine, input, output);
        QTEST(status.message, "message");
        QVERIFY(!status.flag);
    }

    void controlFileThatCannotBeRead()
    {
        QFile file(QString::fromLatin1(kUnreadable));
        QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
        const LogCollector log;
        AnnualizeHts engine;
        QCOMPARE(engine.setControlFile(file.fileName()).message, QString());
        HtsSlot slot;
        slot.objectName = QStringLiteral("Res");
        slot.slotName = QStringLiteral("Flow");
        QStringList methods = texts("before");
        const Status status = engine.assignMethods({slot}, methods);
        QCOMPARE(status.message, QStringLiteral("Input/output error"));
        QVERIFY(!status.flag);
        QCOMPARE(methods, texts("before"));
        QCOMPARE(log.lines(), QStringList());
    }
};

HTS_TEST(FaultyFilesTest, QCoreApplication)
#include "tst_convertfiles_unix.moc"
