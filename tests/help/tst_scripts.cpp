// The scripts of the tree: each says with --help what it is for, refuses an option that it does not
// have before it does anything, and is named in CONTRIBUTING.md.

#include <QDir>
#include <QRegularExpression>
#include <QtTest>

#include "tests/support/processrun.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

// By their paths from the project's folder. Files "*.sh" are run by CTest, those of debian/ by
// Debian's tools; what the others that are left out take is tested with what they do.
QStringList scripts()
{
    static const QRegularExpression leftOut(QStringLiteral(
        R"(^(build|debian|examples/(batch|plot|exchange/(import-folder|to-netcdf\.py))|bench/peers/annual_.*)$|\.sh$)"));
    QStringList found;
    QStringList folders = {QString()};
    while (!folders.isEmpty()) {
        const QString folder = folders.takeFirst();
        const QDir entries(QStringLiteral(SOURCE_DIR "/") + folder);
        for (const QFileInfo& entry : entries.entryInfoList(QDir::Dirs | QDir::Files |
                                                            QDir::Hidden | QDir::NoDotAndDotDot)) {
            const QString path = folder + entry.fileName();
            if (leftOut.match(path).hasMatch() || path == QLatin1String(".git"))
                continue;
            if (entry.isDir())
                folders.append(path + QLatin1Char('/'));
            else if (entry.isExecutable() && sourceFile(path).startsWith("#!"))
                found.append(path);
        }
    }
    return found;
}

} // namespace

class TestScripts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesNoOtherOption_data()
    {
        QTest::addColumn<QString>("script");
        for (const QString& script : scripts())
            QTest::newRow(qPrintable(script)) << script;
    }

    // Where there is no command but those that reading the arguments takes: one more would be seen
    // on the error stream.
    void takesNoOtherOption()
    {
        QFETCH(QString, script);
        const QString name = QFileInfo(script).fileName();
        ProcessRun run(QStringLiteral(SOURCE_DIR "/") + script);
        QVERIFY(QDir(run.path({})).mkdir(QStringLiteral("bin")));
        for (const char* command : {"bash", "dirname", "env", "grep", "python3", "realpath", "sed"})
            QVERIFY(QFile::link(QStringLiteral("/usr/bin/") + QLatin1String(command),
                                run.path(QStringLiteral("bin/") + QLatin1String(command))));
        run.environment.insert(QStringLiteral("PATH"), run.path("bin"));
        run.environment.insert(QStringLiteral("PYTHONDONTWRITEBYTECODE"), QStringLiteral("1"));

        run.start({QStringLiteral("--no-such-option")});
        QCOMPARE(run.output, QByteArray());
        QCOMPARE(run.exitCode, 2);
        const QByteArray line = run.errors.trimmed().split('\n').last();
        QVERIFY2(line.startsWith(name.toUtf8() + ": "), run.errors.constData());
        if (sourceFile(script).startsWith("#!/usr/bin/env bash"))
            QCOMPARE(run.errors, name.toUtf8() + ": no option --no-such-option; see --help\n");

        // The module that reads the arguments of Python's scripts takes both for the same.
        const bool isPython = sourceFile(script).startsWith("#!/usr/bin/env python3");
        for (const char* option :
             isPython ? QVector<const char*>{"--help"} : QVector<const char*>{"--help", "-h"}) {
            run.start({QLatin1String(option)});
            QCOMPARE(run.errors, QByteArray());
            QCOMPARE(run.exitCode, 0);
            static const QRegularExpression usage(QStringLiteral("(?:^|\n)usage: (\\S+)"));
            const QString used = usage.match(QString::fromUtf8(run.output)).captured(1);
            QVERIFY2(used == script || used == name, run.output.constData());
            QVERIFY2(run.output.count('\n') > 2, run.output.constData());
        }
        QCOMPARE(run.files(), QStringList{QStringLiteral("bin")});
    }

    void isInTheListOfThem()
    {
        const QByteArray list = sourceFile("CONTRIBUTING.md");
        int count = 0;
        for (const QString& script : scripts()) {
            if (script.startsWith(QLatin1String("bench/")) && script.endsWith(QLatin1String(".py")))
                continue; // parts of scripts
            ++count;
            QVERIFY2(list.contains(script.toUtf8()) || script.endsWith(QLatin1String("make-pngs")),
                     qPrintable(script));
        }
        QVERIFY(count > 20);
    }

    // Every file of these folders that a document names is there.
    void areWhereDocumentsSay()
    {
        static const QRegularExpression path(QStringLiteral(
            R"((?<![\w/.-])(scripts|Help|bench|packaging|tests|\.ci)(/[\w-]+)*/[\w.-]*\w)"));
        int count = 0;
        for (const char* folder : {"", "docs/", "examples/"}) {
            const QDir documents(QStringLiteral(SOURCE_DIR "/") + QLatin1String(folder));
            for (const QString& name : documents.entryList({QStringLiteral("*.md")})) {
                const QString text = QString::fromUtf8(readFile(documents.filePath(name)));
                for (auto match = path.globalMatch(text); match.hasNext(); ++count) {
                    const QString file = match.next().captured();
                    QVERIFY2(QFile::exists(QStringLiteral(SOURCE_DIR "/") + file),
                             qPrintable(name + QLatin1String(": ") + file));
                }
            }
        }
        QVERIFY(count > 50);
    }
};

HTS_TEST(TestScripts, QCoreApplication)

#include "tst_scripts.moc"
