#include "tests/help/examplefolder.h"

#include <QDir>
#include <QFile>
#include <QtTest>

#include "tests/app/annualizerrun.h"

void makeExampleFolder(AnnualizerRun& run)
{
    for (const char* folder : {"bin", "tmp"})
        QVERIFY(QDir(run.path(QStringLiteral("."))).mkdir(QLatin1String(folder)));
    QVERIFY(
        QFile::link(QStringLiteral(SOURCE_DIR "/examples"), run.path(QStringLiteral("examples"))));
    QVERIFY(
        QFile::link(QStringLiteral(HTS_ANNUALIZER), run.path(QStringLiteral("bin/HtsAnnualizer"))));
    QVERIFY(QFile::link(QStringLiteral(HTSTOOL), run.path(QStringLiteral("bin/htstool"))));
    run.environment.insert(QStringLiteral("PATH"),
                           run.path(QStringLiteral("bin")) + QLatin1Char(':') +
                               run.environment.value(QStringLiteral("PATH")));
}
