// How far a command is, on a terminal: what is shown when, and that it is wiped.

#include <QtTest>

#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "tests/tool/toolrun.h"
#include "tool/progress.h"

namespace {

constexpr int kMiB = 1024 * 1024;

// Writes down what is shown; "-" for a wipe.
class RecordedLine : public StatusLine
{
public:
    RecordedLine(QStringList& texts, int columns) : m_texts(texts), m_columns(columns) {}

    int columns() const override { return m_columns; }
    void show(const QString& text) override { m_texts.append(text); }
    void wipe() override { m_texts.append(QStringLiteral("-")); }

private:
    QStringList& m_texts;
    const int m_columns;
};

// The file at hand: open, with a size unless it is a pipe.
class AnyDevice : public QIODevice
{
public:
    explicit AnyDevice(qint64 size) : m_size(size) { open(QIODevice::ReadOnly); }

    bool isSequential() const override { return m_size < 0; }
    qint64 size() const override { return m_size; }

protected:
    qint64 readData(char* /*data*/, qint64 /*maxSize*/) override { return -1; }
    qint64 writeData(const char* /*data*/, qint64 /*size*/) override { return -1; }

private:
    const qint64 m_size;
};

void writeCleanFile(const ToolRun& run)
{
    run.write("a.hts", sourceFile("tests/check/files/slot-without-rule.hts"));
}

} // namespace

class ProgressTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsHowFarItIs_data();
    void showsHowFarItIs();
    void countsFilesThatAreReadTogether();
    void isShownAfterASecondAndFiveTimesASecond();
    void nothingIsShownWithoutALine();
    void isWipedBeforeOutput();
    void isShownOnATerminalOnly();
    void interruptWipes();
};

void ProgressTest::showsHowFarItIs_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<int>("streamSize"); // of the last file
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("shown"); // at half of the last file of 2 MiB

    const struct
    {
        const char* files;
        int streamSize;
        int columns;
        const char* shown;
    } rows[] = {
        {"b", 0, 80, "htstool: 50 %"},
        {"a b", 0, 80, "htstool: 75 %, b"},
        {"none a . b", 0, 80, "htstool: 75 %, b"},
        {"-", 2 * kMiB, 80, "htstool: 50 %"},
        {"a -", 2 * kMiB, 80, "htstool: 75 %, -"},
        {"-", -1, 80, "htstool: 1 MiB"},
        {"a -", -1, 80, "htstool: 3 MiB, -"},
        {"/dev/null b", 0, 80, "htstool: 3 MiB, b"},
        // A file that has grown.
        {"c", 0, 80, "htstool: 100 %"},
        {"a \xc3\xa4\xc3\xb6\xc3\xbc\x1b.hts", 0, 80,
         "htstool: 75 %, \xc3\xa4\xc3\xb6\xc3\xbc\\u001b.hts"},
        {"a \xc3\xa4\xc3\xb6\xc3\xbc\x1b.hts", 0, 30, "htstool: 75 %, ...\\u001b.hts"},
        {"a \xc3\xa4\xc3\xb6\xc3\xbc\x1b.hts", 0, 31, "htstool: 75 %, ...\xc3\xbc\\u001b.hts"},
        {"a b", 0, 16, "htstool: 75 %"},
        {"a b", 0, 10, "htstool: "},
    };
    for (const auto& row : rows)
        QTest::addRow("%s, %d, %d", row.files, row.streamSize, row.columns)
            << words(row.files) << row.streamSize << row.columns << QString::fromUtf8(row.shown);
}

void ProgressTest::showsHowFarItIs()
{
    QFETCH(QStringList, files);
    QFETCH(int, streamSize);
    QFETCH(int, columns);
    ToolRun folder;
    for (const QString& name : {QStringLiteral("a"), files.last()})
        folder.write(name, QByteArray(name == QLatin1String("c") ? 10 : 2 * kMiB, 'x'));
    QVERIFY(QDir::setCurrent(folder.path(QStringLiteral("."))));
    QStringList texts;
    qint64 now = 0;
    Progress progress(std::make_unique<RecordedLine>(texts, columns), [&now] { return now; });
    progress.begin(files);
    for (const QString& name : files) {
        progress.beginFile(AnyDevice(name == QLatin1String("-") ? streamSize : 0));
        if (name != files.last())
            progress.addBytes(2 * kMiB);
    }
    now = 1000;
    progress.addBytes(kMiB);
    QTEST(texts.join(QLatin1Char('|')), "shown");
    QVERIFY(QDir::setCurrent(QStringLiteral("/")));
}

void ProgressTest::countsFilesThatAreReadTogether()
{
    ToolRun folder;
    for (const char* name : {"a", "b"})
        folder.write(QLatin1String(name), QByteArray(2 * kMiB, 'x'));
    QVERIFY(QDir::setCurrent(folder.path(QStringLiteral("."))));
    QStringList texts;
    qint64 now = 0;
    Progress progress(std::make_unique<RecordedLine>(texts, 80), [&now] { return now; });
    progress.begin(words("a b"), 2);
    now = 1000;
    progress.addBytes(6 * kMiB);
    QCOMPARE(texts, QStringList{QStringLiteral("htstool: 75 %")});
    QVERIFY(QDir::setCurrent(QStringLiteral("/")));
}

void ProgressTest::isShownAfterASecondAndFiveTimesASecond()
{
    QStringList texts;
    qint64 now = 5000;
    {
        Progress progress(std::make_unique<RecordedLine>(texts, 80), [&now] { return now; });
        progress.begin({QStringLiteral("-")});
        progress.beginFile(AnyDevice(-1));
        for (; now < 7000; ++now)
            progress.addBytes(kMiB);
        QCOMPARE(texts.size(), 5);
        QCOMPARE(texts.first(), QStringLiteral("htstool: 1001 MiB"));
        QCOMPARE(texts.last(), QStringLiteral("htstool: 1801 MiB"));
        progress.wipe();
        progress.wipe();
        now += 1000;
        progress.addBytes(1);
        progress.stop();
        now += 1000;
        progress.addBytes(1);
        QCOMPARE(texts.mid(5),
                 (QStringList{QStringLiteral("-"), QStringLiteral("htstool: 2000 MiB"),
                              QStringLiteral("-")}));
        progress.begin({QStringLiteral("-")});
        now += 1000;
        progress.addBytes(1);
    }
    QCOMPARE(texts.mid(8).last(), QStringLiteral("-"));
}

void ProgressTest::nothingIsShownWithoutALine()
{
    Progress progress(nullptr, [] { return qint64(1) << 40; });
    progress.begin({QStringLiteral("-")});
    progress.beginFile(AnyDevice(-1));
    progress.addBytes(1);
    progress.wipe();
}

void ProgressTest::isWipedBeforeOutput()
{
    QStringList texts;
    qint64 now = 0;
    Progress progress(std::make_unique<RecordedLine>(texts, 80), [&now] { return now; });
    progress.begin({QStringLiteral("-")});
    now = 1000;
    progress.addBytes(1);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    WipingDevice device(buffer, progress);
    QCOMPARE(device.write("text"), qint64(4));
    QCOMPARE(buffer.data(), QByteArray("text"));
    QCOMPARE(texts, (QStringList{QStringLiteral("htstool: 0 MiB"), QStringLiteral("-")}));
}

namespace {

const QByteArray kShown = "\rhtstool: 0 MiB\033[K";
const QByteArray kWipe = "\r\033[K";

} // namespace

// All at once, as each takes more than a second: the file comes through a pipe that stops after the
// first lines, from when the program has opened it. Under script(1) all standard streams are a
// terminal.
void ProgressTest::isShownOnATerminalOnly()
{
    const QByteArray summary = "p: 0 errors, 0 warnings, 0 notes\r\n";
    const struct
    {
        const char* command;
        QByteArray output;
    } rows[] = {
        {"TERM=xterm script -qec '$PROGRAM check p' /dev/null", kShown + kWipe + summary},
        {"TERM=xterm script -qec '$PROGRAM check p none' /dev/null",
         "\rhtstool: 0 MiB, p\033[K" + kWipe + summary +
             "htstool: none: No such file or directory\r\n"},
        {"TERM=xterm script -qec '$PROGRAM export p -o p.csv' /dev/null", kShown + kWipe},
        {"TERM=xterm script -qec '$PROGRAM export p -o - > p.csv' /dev/null", kShown + kWipe},
        {"TERM=xterm script -qec '$PROGRAM export p -r 3 -o p.csv' /dev/null",
         kShown + kWipe + "htstool: p: The file has 1 runs; nothing is exported\r\n"},
        {"TERM=dumb script -qec '$PROGRAM check p' /dev/null", summary},
        {"TERM=xterm script -qec '$PROGRAM check p 2> e' /dev/null", ""},
        {"$PROGRAM check p 2>&1", QByteArray(summary).replace("\r", "")},
    };
    ToolRun run;
    writeCleanFile(run);
    QString commands = QStringLiteral("exec 3<&0; ");
    QByteArray outputs;
    for (const auto& row : rows) {
        commands +=
            QStringLiteral("(mkdir %2 && cd %2 && mkfifo p && "
                           "{ { head -3 ../a.hts; sleep 1.1; tail -n +4 ../a.hts; } > p & } && "
                           "%1) <&3 > %2.out & ")
                .arg(QLatin1String(row.command), QString::number(&row - rows));
        outputs += row.command + ("\n" + row.output) + '\n';
    }
    commands += QStringLiteral("wait");
    run.startShell(commands);
    QByteArray shown;
    for (const auto& row : rows)
        shown += row.command + ("\n" + run.read(QStringLiteral("%1.out").arg(&row - rows))) + '\n';
    QCOMPARE(shown, outputs);
}

// The interrupt is typed when the line is shown, and the pipe stays open.
void ProgressTest::interruptWipes()
{
    ToolRun run;
    writeCleanFile(run);
    run.startShell(
        "mkfifo p k; { head -3 a.hts; sleep 1.1; head -9 a.hts; cat k; } > p & "
        "{ until grep -q MiB shown; do sleep 0.05; done; printf '\\003'; } 2> /dev/null | "
        "TERM=xterm script -qefc '$PROGRAM check p' shown > /dev/null; "
        "echo $?; : > k; tr -d '\\r' < shown | grep -v '^Script'");
    QCOMPARE(run.output,
             QByteArray(kShown + "^C" + kWipe).replace("\r", "").prepend("130\n") + '\n');
}

HTS_TEST(ProgressTest, QCoreApplication)

#include "tst_progress.moc"
