// htstool with less memory than it needs: it says so, with the exit code of a file that cannot be
// read, and what it found in other files is not lost.

#include <QCryptographicHash>
#include <QtTest>

#include "report/backgroundsha256.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "tests/tool/toolrun.h"

class ToolMemoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fileWithoutEnd_data();
    void fileWithoutEnd();
    void lineWithoutEnd_data();
    void lineWithoutEnd();
    void manyLines_data();
    void manyLines();
    void manyRules();
    void manyPages_data();
    void manyPages();
    void manyValuesAndSlots();
    void pageWithoutAThread();
    void manyImportedValues();
};

void ToolMemoryTest::fileWithoutEnd_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QByteArray>("errors");

    QTest::newRow("check")
        << "check a.hts /dev/zero b.hts"
        << QByteArray("a.hts:68: warning: \"the end\" follows the last run and is not read "
                      "[text-after-last-run]\n")
        << QByteArray("a.hts: 0 errors, 1 warning, 0 notes\n"
                      "htstool: /dev/zero: not enough memory\n"
                      "b.hts: 0 errors, 0 warnings, 0 notes\n");
    QTest::newRow("control file") << "check b.hts -c /dev/zero" << QByteArray()
                                  << QByteArray("htstool: /dev/zero: not enough memory\n");
    QTest::newRow("export") << "export /dev/zero -o -" << QByteArray()
                            << QByteArray("htstool: not enough memory\n");
}

void ToolMemoryTest::fileWithoutEnd()
{
    QFETCH(QString, arguments);
    ToolRun run;
    run.write("a.hts", sourceFile("tests/check/files/text-after-last-run.hts"));
    run.write("b.hts", sourceFile("tests/check/files/slot-without-rule.hts"));
    // Different calls are the first to have too little memory.
    for (const int limit : {100000, 120000, 150000, 200000}) {
        run.startShell(QStringLiteral("ulimit -c 0; ulimit -v %1; exec \"$PROGRAM\" ").arg(limit) +
                       arguments);
        QTEST(run.output, "output");
        QTEST(run.errors, "errors");
        QCOMPARE(run.exitCode, 3);
    }
}

void ToolMemoryTest::lineWithoutEnd_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QByteArray>("output"); // the first line
    QTest::addColumn<QByteArray>("errors");

    const auto row = [](const char* name, const char* command, const QByteArray& output,
                        const QByteArray& errors) {
        QTest::newRow(name) << QString::fromLatin1(command) << output << errors;
    };
    const QByteArray text = "a line is longer than 64 MiB\n";
    row("check", "$PROGRAM check /dev/zero b.hts", "",
        "htstool: /dev/zero: " + text + "b.hts: 0 errors, 0 warnings, 0 notes\n");
    row("after other lines", "{ cat b.hts; tr '\\000' x < /dev/zero; } | $PROGRAM check -", "",
        "htstool: -: " + text);
    row("JSON", "$PROGRAM check -f json /dev/zero > a; e=$?; grep -o '\"problem.*runs' a; exit $e",
        R"("problem":"a line is longer than 64 MiB","exitCode":2,"runs)",
        "htstool: /dev/zero: " + text);
    row("control file", "$PROGRAM check b.hts -c /dev/zero",
        "/dev/zero:1: error: the control file cannot be read: a line is longer than 64 MiB; a "
        "conversion fails: \"No series slots with valid methods found in input HTS file\" "
        "[control-unreadable]",
        "b.hts: 1 error, 0 warnings, 0 notes; a conversion fails: \"No series slots with valid "
        "methods found in input HTS file\"\n");
    row("export", "$PROGRAM export /dev/zero -o b.csv", "", "htstool: /dev/zero: " + text);
}

void ToolMemoryTest::lineWithoutEnd()
{
    QFETCH(QString, command);
    ToolRun run;
    run.write("b.hts", sourceFile("tests/check/files/slot-without-rule.hts"));
    run.startShell(QStringLiteral("ulimit -c 0; ulimit -v 400000; ") + command);
    QTEST(run.output.split('\n').first(), "output");
    QTEST(run.errors, "errors");
    QCOMPARE(run.exitCode, 2);
    QVERIFY(!run.exists("b.csv"));
}

void ToolMemoryTest::manyLines_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("check");
    QTest::addColumn<QByteArray>("output");

    const auto row = [](const char* line, const char* check, const char* output) {
        QTest::addRow("%s, %s", line, check) << line << check << QByteArray(output);
    };
    row("name:a\nname:b", "| tail -1", "-: warning: 249990 more [repeated-key]\n");
    row("Name: a", "| tail -1", "-: warning: 249990 more [near-key]\n");
    for (const char* check :
         {"--all | grep -c '\\[near-key]'", "-af json | grep -c '\"near-key\",'",
          "-af sarif | grep -c '\"near-key\",\"ruleI'", "-af github | grep -c =near-key"})
        row("Name: a", check, "250000\n");
}

// More findings of a file take no more memory.
void ToolMemoryTest::manyLines()
{
    QFETCH(QString, line);
    QFETCH(QString, check);
    ToolRun run;
    run.write("b.hts", sourceFile("tests/check/files/slot-without-rule.hts"));
    run.startShell(QStringLiteral("{ yes '%1' | head -250000; cat b.hts; } | "
                                  "{ ulimit -c 0; ulimit -v 70000; \"$PROGRAM\" check - %2; }")
                       .arg(line, check));
    QTEST(run.output, "output");
    QCOMPARE(run.errors.count('\n'), 1);
    QVERIFY2(run.errors.startsWith("-: 0 errors, "), run.errors.constData());
}

// Each rule has a name of its own, and every tenth has a slot.
void ToolMemoryTest::manyRules()
{
    ToolRun run;
    const QByteArray file = sourceFile("tests/check/files/slot-without-rule.hts");
    const int first = file.indexOf("object_type: ");
    const int end = file.indexOf("END_SLOT\n") + 9;
    const QByteArray slot = file.mid(first, end - first);
    QByteArray slotList;
    QByteArray rules;
    for (int i = 0; i < 250000; ++i) {
        const QByteArray name = "Flow" + QByteArray::number(i);
        rules += "Lake." + name + ": Sum\n";
        if (i % 10 == 0)
            slotList += QByteArray(slot).replace("Outflow", name);
    }
    run.write("a.hts", file.left(first) + slotList + "END_RUN\n");
    run.write("c.txt", rules);
    // A short text takes 24 bytes more with Qt 6.
    const int limit = QT_VERSION < QT_VERSION_CHECK(6, 0, 0) ? 90000 : 110000;
    run.startShell(QStringLiteral("ulimit -c 0; ulimit -v %1; "
                                  "exec \"$PROGRAM\" check a.hts -c c.txt | tail -1")
                       .arg(limit));
    QCOMPARE(run.output, QByteArray("a.hts: plan: Lake.Flow249990: Sum, rule of line 249991\n"));
    QCOMPARE(run.errors, QByteArray("a.hts: 0 errors, 225000 warnings, 0 notes\n"));
}

// Values of other slots and runs take no more memory; names only where their order is another.
void ToolMemoryTest::manyValuesAndSlots()
{
    ToolRun run;
    const QByteArray file = sourceFile("tests/check/files/slot-without-rule.hts");
    const int first = file.indexOf("object_type: ");
    const int end = file.indexOf("END_SLOT\n") + 9;
    const QByteArray slot = file.mid(first, end - first);
    QByteArrayList slotList;
    for (int i = 0; i < 100000; ++i)
        slotList.append(QByteArray(slot).replace("Outflow", "Flow" + QByteArray::number(i)));
    const auto write = [&](const char* name) {
        run.write(QLatin1String(name), file.left(first) + slotList.join() + "END_RUN\n");
    };
    write("a.hts");
    slotList[5].replace("12", "13");
    write("b.hts");
    const QByteArray change = "run 1: Lake.Flow5: 1 of 12 values differ";
    const QByteArray summary = "; 1 of 1200000 values differ, in 1 of 100000 slots\n";
    const auto compare = [&run](const char* files, int limit) {
        run.startShell(
            QStringLiteral("ulimit -c 0; ulimit -v %1; exec \"$PROGRAM\" diff ").arg(limit) +
            QLatin1String(files));
    };
    compare("a.hts b.hts", 65000);
    QVERIFY2(run.output.contains(change) && run.errors.endsWith(summary), run.errors.constData());
    std::swap(slotList[0], slotList[99999]);
    write("b.hts");
    compare("- b.hts < a.hts", 90000);
    QVERIFY2(run.output.contains(change) && run.errors.endsWith(summary), run.errors.constData());
}

void ToolMemoryTest::manyPages_data()
{
    addColumns<const char*, int, int>("arguments", "slotCount", "shown");
    addRows<const char*, int, int>({{"first 200", "", 2000, 200},
                                    {"all", "--all-slots", 1000, 1000},
                                    {"one", "--slots *.Flow1", 1000, 1}});
}

// A page takes 24 MiB and 30 KB for each slot that it shows, beside what the program maps anyway.
void ToolMemoryTest::manyPages()
{
    constexpr int kMapped = 48000; // KiB of the program and its libraries, of which little is used
    QFETCH(QString, arguments);
    QFETCH(int, slotCount);
    QFETCH(int, shown);
    ToolRun run;
    const QByteArray file = sourceFile("tests/check/files/slot-without-rule.hts");
    const int first = file.indexOf("object_type: ");
    const int end = file.indexOf("END_SLOT\n") + 9;
    QByteArray slotList;
    for (int i = 0; i < slotCount; ++i)
        slotList += file.mid(first, end - first).replace("Outflow", "Flow" + QByteArray::number(i));
    run.write("a.hts", file.left(first) + slotList + "END_RUN\n");
    run.write("c.txt", "*.*: Sum\n");
    run.startShell(QStringLiteral("set -f; ulimit -c 0; ulimit -v %1; "
                                  "exec \"$PROGRAM\" report a.hts -c c.txt -o a.html %2")
                       .arg(QString::number(kMapped + 24 * 1024 + 30 * shown), arguments));
    QCOMPARE(run.errors, QByteArray("a.hts: 0 errors, 0 warnings, 0 notes\n"));
    QCOMPARE(run.read("a.html").count("<section class=\"slot\""), shown);
}

// The system starts no thread whose stack has no room; the input is hashed all the same.
void ToolMemoryTest::pageWithoutAThread()
{
    ToolRun run;
    const QByteArray file = sourceFile("tests/check/files/slot-without-rule.hts") +
                            QByteArray(2 * int(BackgroundSha256::kBlockSize), '\n');
    run.write("a.hts", file);
    run.write("c.txt", "*.*: Sum\n");
    run.startShell("ulimit -c 0; ulimit -s 4000000; ulimit -v 1000000; "
                   "exec \"$PROGRAM\" report a.hts -c c.txt -o a.html");
    QCOMPARE(run.ended(), QByteArray("a.hts: 0 errors, 0 warnings, 0 notes\nexit 0"));
    QVERIFY(run.read("a.html").contains(
        QCryptographicHash::hash(file, QCryptographicHash::Sha256).toHex()));
}

void ToolMemoryTest::manyImportedValues()
{
    ToolRun run;
    run.startShell(
        manyValues(200000) +
        QStringLiteral(
            "{ ulimit -c 0; ulimit -v 100000; \"$PROGRAM\" import --stamp end -o a.hts -; }"));
    QVERIFY2(run.errors.endsWith("values: 12800000, missing of them: 0\n"), run.errors.constData());
    QCOMPARE(run.files(), QStringList{QStringLiteral("a.hts")});
}

HTS_TEST(ToolMemoryTest, QCoreApplication)

#include "tst_toolmemory.moc"
