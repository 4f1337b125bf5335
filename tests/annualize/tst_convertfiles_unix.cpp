// Conversions of files that fail on demand on Unix.

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "annualize/annualizehts.h"
#include "annualize/convertfiles.h"
#include "tests/annualize/convertfilesinput.h"
#include "tests/support/logcollector.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "utils/checkedfile.h"

using UtilsNS::CheckedFile;

namespace {

// A file that can be opened and whose first page can't be read.
const char kUnreadable[] = "/proc/self/mem";
const char kFull[] = "/dev/full";

} // namespace

class FaultyFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        writeFile(path("good.hts"), inputText(12));
        writeFile(path("bad.hts"), inputText(13));
        writeFile(path("methods.txt"), "*.*: Sum\n");
    }
    void cleanup() { m_folder.reset(); }

    void firstFaultThatCountsIsTheReason_data()
    {
        addColumns<QString, QString, QString>("inputName", "outputName", "message");
        const auto row = [](const char* name, const char* input, const char* output,
                            const char* message) {
            QTest::newRow(name) << QString::fromLatin1(input) << QString::fromLatin1(output)
                                << QString::fromLatin1(message);
        };
        const char* const unread = "Problem reading the input hts file: Input/output error";
        const char* const refused = "Cannot read run preamble";
        row("all well", "good.hts", "result.hts", "");
        row("engine refuses", "bad.hts", "result.hts", refused);
        row("output full", "good.hts", kFull, "No space left on device");
        row("engine refuses, output full", "bad.hts", kFull, refused);
        row("input unread", kUnreadable, "result.hts", unread);
        row("input unread, output full", kUnreadable, kFull, unread);
    }
    void firstFaultThatCountsIsTheReason()
    {
        QFETCH(QString, inputName);
        QFETCH(QString, outputName);
        QFETCH(QString, message);
        AnnualizeHts engine;
        configure(engine);
        const QDir folder(m_folder->path());
        CheckedFile input(folder.filePath(inputName)); // an absolute path stays as it is
        QVERIFY(input.open(QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered));
        CheckedFile output(folder.filePath(outputName));
        QVERIFY(output.open(QIODevice::WriteOnly | QIODevice::Text));
        const Status status = convertFiles(engine, input, output);
        QCOMPARE(status.message, message);
        QCOMPARE(status.flag, false);
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
        QStringList methods{QStringLiteral("before")};
        const Status status = engine.assignMethods({slot}, methods);
        QCOMPARE(status.message, QStringLiteral("Input/output error"));
        QVERIFY(!status.flag);
        QCOMPARE(methods, QStringList{QStringLiteral("before")});
        QCOMPARE(log.lines(), QStringList());
    }

private:
    QString path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }
    void configure(AnnualizeHts& engine) const
    {
        QVERIFY(engine.setControlFile(path("methods.txt")).ok());
        QVERIFY(engine.setEndMonth(12).ok());
    }

    QScopedPointer<QTemporaryDir> m_folder;
};

HTS_TEST(FaultyFilesTest, QCoreApplication)
#include "tst_convertfiles_unix.moc"
