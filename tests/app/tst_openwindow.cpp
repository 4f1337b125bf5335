// HtsAnnualizer without arguments: it becomes the window's program, which is beside it.

#include <csignal>

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

#include "tests/app/annualizerrun.h"
#include "tests/support/testmain.h"

namespace {

// The libraries that a program loads when it starts, of those that show something.
QStringList graphicalLibraries(const QString& program)
{
    QProcess ldd;
    ldd.start(QStringLiteral("ldd"), {program});
    if (!ldd.waitForFinished() || ldd.exitCode() != 0)
        qFatal("ldd failed: %s", ldd.readAllStandardError().constData());
    static const QRegularExpression lines(QStringLiteral("\n\\s*"));
    return QString::fromLocal8Bit(ldd.readAllStandardOutput())
        .split(lines)
        .filter(QRegularExpression(QStringLiteral("^lib(Qt\\d(Gui|Widgets)|X|xcb|.*GL)")));
}

} // namespace

class TestOpenWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandLineLoadsNoGraphicalLibrary()
    {
        QCOMPARE(graphicalLibraries(QStringLiteral(HTS_ANNUALIZER)), QStringList());
        QVERIFY(graphicalLibraries(QStringLiteral(WINDOW_PROGRAM)).size() > 2);
    }

    void windowIsStartedByALink_data()
    {
        addTable<const char*, const char*>(
            {"before", "expected"},
            {{"installed", "chmod +x HtsAnnualizerWindow", "0 HtsAnnualizerWindow\nexit 7"},
             {"missing", "rm HtsAnnualizerWindow",
              "HtsAnnualizer Error: The window is not installed: install "
              "htsannualizer-gui\nexit 1"},
             {"no program", ":",
              "HtsAnnualizer Error: The window could not be started: Permission denied\nexit 1"}});
    }

    // The link is found by PATH, in a folder without the window's program.
    void windowIsStartedByALink()
    {
        QFETCH(QString, before);
        QFETCH(QString, expected);
        AnnualizerRun run;
        QVERIFY(QFile::copy(QStringLiteral(HTS_ANNUALIZER), run.path("program")));
        run.write("HtsAnnualizerWindow", "#!/bin/sh\necho $# ${0##*/}\nexit 7\n");
        run.startShell(before + QStringLiteral("; mkdir bin && ln -s ../program bin/HtsAnnualizer "
                                               "&& PATH=bin:$PATH && exec HtsAnnualizer"));
        QCOMPARE(QString::fromUtf8(run.ended()), expected);
    }

    void windowNeedsAPlatform()
    {
        AnnualizerRun run;
        run.set("QT_QPA_PLATFORM", QStringLiteral("none"));
        run.startShell("ulimit -c 0; exec \"$PROGRAM\"");
        QVERIFY(run.errors.contains("no Qt platform plugin could be initialized"));
        QCOMPARE(run.exitCode, -1);
    }

    // It ends by itself only when it is closed; its process is the one that was started.
    void windowTakesThePlaceOfTheProgram()
    {
        AnnualizerRun run;
        run.set("QT_QPA_PLATFORM", QStringLiteral("offscreen"));
        run.startShell(QStringLiteral(
            "\"$PROGRAM\" & until grep -q HtsAnnualizerWindow /proc/$!/maps; do sleep 0.02; done; "
            "kill $!; wait $!"));
        QCOMPARE(run.exitCode, 128 + SIGTERM);
    }

    void windowRefusesArguments()
    {
        ProcessRun run(QStringLiteral(WINDOW_PROGRAM));
        run.start("-v");
        QCOMPARE(run.ended(), QByteArray("HtsAnnualizerWindow Error: Takes no arguments; "
                                         "HtsAnnualizer does\nexit 1"));
    }
};

HTS_TEST(TestOpenWindow, QCoreApplication)

#include "tst_openwindow.moc"
