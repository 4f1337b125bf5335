// The examples of the man pages, typed as they are in a folder that has the examples where an
// installation has them.

#include <QtTest>

#include "tests/help/examplerun.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

// The blocks of unfilled lines below the heading EXAMPLES or EXAMPLE of a man page, as they are
// shown.
QStringList examples(const char* page)
{
    QString text = QString::fromUtf8(
        sourceFile(QStringLiteral("packaging/linux/man/%1.in").arg(QLatin1String(page))));
    text = text.section(QStringLiteral("\n.SH EXAMPLE"), 1).section(QStringLiteral("\n.SH "), 0, 0);
    text.replace(QLatin1String("\\-"), QLatin1String("-"));
    QStringList blocks;
    for (const QString& part : text.split(QStringLiteral("\n.nf\n")).mid(1))
        blocks.append(part.section(QStringLiteral("\n.fi"), 0, 0) + QLatin1Char('\n'));
    return blocks;
}

// The commands with the folders of the test in place of those of an installation.
QString typed(const AnnualizerRun& run, QString commands)
{
    commands.replace(QLatin1String("/tmp/"), run.path("tmp/"));
    commands.replace(QLatin1String("@CMAKE_INSTALL_FULL_DOCDIR@"), run.path("."));
    return QStringLiteral("set -e\n") + commands;
}

} // namespace

class TestManExamples : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void programConvertsTheExample()
    {
        CommandRun run;
        run.startShell(typed(run, examples("HtsAnnualizer.1").value(0)));
        QCOMPARE(run.ended(), QByteArray("exit 0"));
        QCOMPARE(run.read("tmp/annual.hts"), golden("rivers_september.expected"));
    }

    void programReadsACompressedFile()
    {
        QCOMPARE(examples("HtsAnnualizer.1").size(), 2);
        CommandRun run;
        run.startShell("gzip -c examples/basins_monthly.hts >big.hts.gz; "
                       "cp examples/basins_monthly_methods.txt methods.txt");
        run.startShell(typed(run, examples("HtsAnnualizer.1").value(1)));
        QCOMPARE(run.ended(), QByteArray("exit 0"));
        QCOMPARE(run.read("annual.hts"), golden("basins_december.expected"));
    }

    void toolChecksAndExportsTheExample()
    {
        QCOMPARE(examples("htstool.1").size(), 1);
        CommandRun run;
        run.startShell(typed(run, examples("htstool.1").value(0)));
        QVERIFY(run.output.contains(": plan: Choptank.Flow: Average, rule of line 4\n"));
        QCOMPARE(run.exitCode, 0);
        QVERIFY(run.read("tmp/rivers.csv").startsWith("run,trace,time,"));
        QVERIFY(run.read("tmp/rivers.hts").startsWith("name:rivers\n"));
    }

    void formatExampleIsReadAsItSays()
    {
        QCOMPARE(examples("hts.5").size(), 1);
        CommandRun run;
        run.write("a.hts", examples("hts.5").value(0).toUtf8());
        // Three months are no year, and one value is missing; nothing else is wrong.
        run.startShell("htstool check a.hts | grep -o '[[][a-z-]*[]]$'");
        QCOMPARE(run.output, QByteArray("[no-complete-year]\n[missing-values]\n"));
        run.startShell("htstool export --wide -o - a.hts");
        QCOMPARE(run.output.replace('\r', ""), QByteArray("run,trace,time,Lake A.Outflow [cms]\n"
                                                          "1,,2000-02-01T00:00:00,12.5\n"
                                                          "1,,2000-03-01T00:00:00,\n"
                                                          "1,,2000-04-01T00:00:00,14\n"));
    }
};

HTS_TEST(TestManExamples, QCoreApplication)

#include "tst_manexamples.moc"
