#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include "annualize/annualizehts.h"
#include "annualize/convertfiles.h"
#include "tests/annualize/convertfilesinput.h"
#include "tests/support/hostsystem.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "utils/checkedfile.h"

using UtilsNS::CheckedFile;

class ConversionTest : public QObject
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
    void resultIsOnlyFinishedAfterASuccess()
    {
        for (const char* inputName : {"good.hts", "bad.hts"}) {
            AnnualizeHts engine;
            configure(engine);
            CheckedFile input(path(inputName));
            QVERIFY(input.open(QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered));
            CheckedFile output(path("result.hts"));
            QVERIFY(output.open(QIODevice::WriteOnly | QIODevice::Text));
            const bool isSuccess = convertFiles(engine, input, output).ok();
            QCOMPARE(isSuccess, qstrcmp(inputName, "good.hts") == 0);
            // While the file is still there to be closed by its owner.
            QCOMPARE(output.isOpen(), !isSuccess);
            QCOMPARE(fromTextMode(readFile(path("result.hts")))
                         .endsWith("12.000000000000\nEND_COLUMN\nEND_SLOT\n"
                                   "END_RUN\n"),
                     isSuccess);
        }
    }

    void settingsThatAreMissingAreTheReason()
    {
        AnnualizeHts engine;
        CheckedFile input(path("good.hts"));
        QVERIFY(input.open(QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered));
        CheckedFile output(path("result.hts"));
        QVERIFY(output.open(QIODevice::WriteOnly | QIODevice::Text));
        QCOMPARE(
            convertFiles(engine, input, output).message,
            QStringLiteral("Input HTS file device, output annual file device, control file path, "
                           "or end year month not set"));
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

HTS_TEST(ConversionTest, QCoreApplication)
#include "tst_convertfiles.moc"
