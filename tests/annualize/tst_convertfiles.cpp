#include <QtTest>

#include "annualize/convertfiles.h"
#include "tests/annualize/conversionfolder.h"
#include "tests/support/hostsystem.h"
#include "tests/support/testmain.h"

class ConversionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void resultIsOnlyFinishedAfterASuccess()
    {
        const ConversionFolder folder;
        for (const char* inputName : {"good.hts", "bad.hts"}) {
            AnnualizeHts engine;
            folder.configure(engine);
            OpenFile input(folder.path(inputName), kReadInput);
            OpenFile output(folder.path("result.hts"), QIODevice::WriteOnly);
            const bool isSuccess = convertFiles(engine, input, output).ok();
            QCOMPARE(isSuccess, qstrcmp(inputName, "good.hts") == 0);
            // While the file is still there to be closed by its owner.
            QCOMPARE(output.isOpen(), !isSuccess);
            QCOMPARE(fromTextMode(readFile(output.fileName()))
                         .endsWith("12.000000000000\nEND_COLUMN\nEND_SLOT\nEND_RUN\n"),
                     isSuccess);
        }
    }

    void settingsThatAreMissingAreTheReason()
    {
        const ConversionFolder folder;
        AnnualizeHts engine;
        OpenFile input(folder.path("good.hts"), kReadInput);
        OpenFile output(folder.path("result.hts"), QIODevice::WriteOnly);
        QCOMPARE(convertFiles(engine, input, output).message,
                 QStringLiteral("Input HTS file device, output annual file device, control file "
                                "path, or end year month not set"));
    }
};

HTS_TEST(ConversionTest, QCoreApplication)
#include "tst_convertfiles.moc"
