// htstool diff as a process: files/diff.txt has commands with what they print and their exit codes.

#include <QtTest>

#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "tests/tool/toolrun.h"

namespace {

QByteArray testFile(const char* name)
{
    return sourceFile(QStringLiteral("tests/tool/files/") + QLatin1String(name));
}

// Makes the files of the comparison by editing the same one.
const QString kEdit = QStringLiteral(
    "edit() { sed \"$1\" base.hts > new.hts; sed \"$2\" base.hts > old.hts; shift 2; "
    "$PROGRAM diff old.hts new.hts \"$@\"; }\n");

} // namespace

class DiffTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comparesFiles_data();
    void comparesFiles();
};

void DiffTest::comparesFiles_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QByteArray>("printed"); // with the exit code in brackets

    QString command;
    QByteArray printed;
    for (const QByteArray& line : testFile("diff.txt").split('\n')) {
        if (line.startsWith("$ "))
            command = QString::fromUtf8(line.mid(2));
        else if (line.startsWith("> ") && printed.isEmpty())
            command += QLatin1Char('\n') + QString::fromUtf8(line.mid(2));
        else
            printed += line + '\n';
        if (line.startsWith('[')) {
            QTest::newRow(command.toUtf8().constData()) << command << printed;
            printed.clear();
        }
    }
}

void DiffTest::comparesFiles()
{
    QFETCH(QString, command);
    ToolRun run;
    for (const char* name : {"base.hts", "old.hts", "new.hts"})
        run.write(QLatin1String(name), testFile("diff.hts"));
    run.startShell(kEdit + command);
    const QByteArray printed =
        run.output + run.errors + '[' + QByteArray::number(run.exitCode) + "]\n";
    QTEST(printed, "printed");
}

HTS_TEST(DiffTest, QCoreApplication)

#include "tst_diff.moc"
