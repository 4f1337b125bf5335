// How the reader reads an HTS file, section by section. Texts have a '|' at the position of the
// device after reading; it is removed before.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include <QBuffer>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QtTest>

#include "hts/htspackage.h"
#include "tests/hts/packagecompare.h"
#include "tests/hts/piecedevice.h"
#include "tests/hts/randomhts.h"
#include "tests/hts/samplefile.h"
#include "tests/support/testmain.h"

namespace {

const char kBadPackagePreamble[] = "Cannot read package preamble";
const char kBadRunPreamble[] = "Cannot read run preamble";
const char kBadSlotPreamble[] = "Cannot read slot preamble";
const char kBadColumnHeader[] = "Cannot read HTS file: Missing units or scale";

QDateTime utc(int year, int month, int day, int hour = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, 0), Qt::UTC);
}

// A device on a text with a '|'.
class MarkedDevice : public QBuffer
{
public:
    explicit MarkedDevice(const QByteArray& text) : m_mark(text.indexOf('|'))
    {
        setData(QByteArray(text).remove(m_mark, 1));
        open(QIODevice::ReadOnly);
    }

    bool isAtMark() const { return m_mark >= 0 && pos() == m_mark; }

private:
    const int m_mark;
};

// A device whose writer is slow: after its data it reads as empty `emptyReads` times, and then
// continues with `rest`.
class SlowDevice : public QIODevice
{
public:
    SlowDevice(const QByteArray& data, int emptyReads, const QByteArray& rest)
        : m_data(data), m_rest(rest), m_emptyReadsLeft(emptyReads)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    bool isSequential() const override { return true; }
    bool isUsedUp() const { return m_emptyReadsLeft < 0 && m_data.isEmpty(); }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        if (m_data.isEmpty() && maxSize > 0 && m_emptyReadsLeft-- == 0)
            m_data = m_rest;
        const qint64 size = std::min<qint64>(m_data.size(), maxSize);
        std::copy_n(m_data.constData(), size, data);
        m_data.remove(0, static_cast<int>(size));
        return size;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray m_data;
    QByteArray m_rest;
    int m_emptyReadsLeft;
};

void addStepColumns()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("message");
}

QTestData& newRow(const char* name, const QByteArray& text, const char* message = "")
{
    return QTest::newRow(name) << text << QString::fromLatin1(message);
}

// A package preamble for `runs` runs, and the preamble of the first one with `steps` timesteps.
QByteArray opening(int runs, int steps)
{
    QByteArray text = "number_of_runs:" + QByteArray::number(runs) +
                      "\nEND_PACKAGE_PREAMBLE\ntime_steps:" + QByteArray::number(steps) +
                      "\nEND_RUN_PREAMBLE\n";
    for (int step = 1; step <= steps; ++step)
        text += "2000-" + QByteArray::number(step) + "-1 6:00\n";
    return text;
}

const QByteArray kSeries = "object_name: A\nslot_name: Flow\nEND_SLOT_PREAMBLE\n"
                           "units: cms\nscale: 1\n";

// The values of the first slot in the first run of a file that can be read.
HtsColumn firstColumn(const QByteArray& text, HtsPackage& package)
{
    MarkedDevice device(text);
    const Status status = package.read(device);
    if (!status.ok() || !device.isAtMark())
        qFatal("not read: %s, at %lld", qPrintable(status.message), device.pos());
    return package.values.at(0).at(0).at(0);
}

} // namespace

class HtsReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWholeFile_data();
    void readsWholeFile();
    void endsReading_data();
    void endsReading();
    void keepsWhatWasReadBeforeAFailure();
    void readsPackagePreamble_data();
    void readsPackagePreamble();
    void packagePreambleIsReadOnce();
    void readsRunPreamble_data();
    void readsRunPreamble();
    void runPreambleTakesEveryKey();
    void runPreambleOfCompleteRunReadsTimestepsOnly();
    void timestepLineMustMatch_data();
    void timestepLineMustMatch();
    void timestepLineMatchesAsTheRegularExpression();
    void readsSlotPreamble_data();
    void readsSlotPreamble();
    void slotPreambleReadBeforeReadsRowsOnly();
    void readsColumnHeader_data();
    void readsColumnHeader();
    void valueLinesAreNumbers();
    void methodLineWithLeadingBlankIsTheFirstValue();
    void missingEndLinesAreNotDetected();
    void scalarSlotsHaveOneValue_data();
    void scalarSlotsHaveOneValue();
    void tableSlotSkipsLinesUpToItsEnd();
    void tableSlotWaitsForItsEnd();
    void valuesOfLaterRunsGoByPosition();
    void slotTypeOfLaterRunDecidesItsRowCount();
    void laterRunsShareEqualTimesteps();
    void neighboursShareEqualTexts();
    void noTimestepsMeanNoValues();
    void asksAPipeForNothingAfterTheLastRun_data();
    void asksAPipeForNothingAfterTheLastRun();
};

void HtsReaderTest::readsWholeFile_data()
{
    QTest::addColumn<QByteArray>("lineEnd");
    QTest::addColumn<bool>("isTextMode");
    QTest::newRow("plain line ends") << QByteArray("\n") << false;
    QTest::newRow("Windows line ends") << QByteArray("\r\n") << false;
    QTest::newRow("plain line ends, text mode") << QByteArray("\n") << true;
    QTest::newRow("Windows line ends, text mode") << QByteArray("\r\n") << true;
}

void HtsReaderTest::readsWholeFile()
{
    QFETCH(QByteArray, lineEnd);
    QFETCH(bool, isTextMode);
    QByteArray text = kSampleFile;
    text.replace("\n", lineEnd);
    QBuffer device(&text);
    const QIODevice::OpenMode mode = QIODevice::ReadOnly;
    QVERIFY(device.open(isTextMode ? mode | QIODevice::Text : mode));
    HtsPackage package;
    const Status status = package.read(device);
    QCOMPARE(status.message, QString());
    QVERIFY(!status.flag);
    QCOMPARE(difference(package, samplePackage()), QString());
    QVERIFY(device.atEnd());
}

void HtsReaderTest::endsReading_data()
{
    addStepColumns();
    newRow("no runs, whatever follows",
           "number_of_runs:0\nEND_PACKAGE_PREAMBLE\n|END_RUN\nobject_type: x\n");
    newRow("no number of runs", "name:x\nEND_PACKAGE_PREAMBLE\n|time_steps:1\n");
    newRow("negative number of runs", "number_of_runs:-5\nEND_PACKAGE_PREAMBLE\n|start:\n");
    newRow("number of runs is no integer", "number_of_runs:1.0\nEND_PACKAGE_PREAMBLE\n|x\n");
    newRow("run without slots", opening(1, 1) + "END_RUN\n|more\n");
    newRow("end of the run without a line end", opening(1, 1) + "END_RUN|");
    newRow("text after the end of the run", opening(1, 1) + "END_RUN and more\n|rest");
    newRow("empty line before the end of the run ends it", opening(1, 1) + "\n|END_RUN\nrest");
    newRow("empty input", "|", kBadPackagePreamble);
    newRow("blank line in the package preamble", "name:x\n \t\n|number_of_runs:0\n",
           kBadPackagePreamble);
    newRow("input ends in the package preamble", "name:x\nnumber_of_runs:0|", kBadPackagePreamble);
    newRow("input ends before the run", "number_of_runs:1\nEND_PACKAGE_PREAMBLE\n|",
           kBadRunPreamble);
    newRow("blank line in the run preamble",
           "number_of_runs:1\nEND_PACKAGE_PREAMBLE\ntrace:1\n\n|END_RUN_PREAMBLE\n",
           kBadRunPreamble);
    newRow("fewer timestep lines than announced",
           opening(1, 2).replace("time_steps:2", "time_steps:3") +
               "object_type: Reservoir\n|object_name: A\n",
           kBadRunPreamble);
    newRow("second run missing", opening(2, 1) + "END_RUN\n|", kBadRunPreamble);
    newRow("timestep with seconds", opening(1, 1).replace("6:00", "24:00:00") + "|END_RUN\n",
           kBadRunPreamble);
    newRow("blank line in the slot preamble", opening(1, 1) + "slot_name: x\n\n|END_RUN\n",
           kBadSlotPreamble);
    newRow("input ends before the end of the run",
           opening(1, 0) + kSeries + "END_COLUMN\nEND_SLOT\n|", kBadSlotPreamble);
    newRow("letters after the end of the run are a slot line", opening(1, 1) + "END_RUNS\n\n|",
           kBadSlotPreamble);
    newRow("units missing", opening(1, 1) + "END_SLOT_PREAMBLE\nunit: cms\nscale: 1\n|1.0\n",
           kBadColumnHeader);
    newRow("scale missing", opening(1, 1) + "END_SLOT_PREAMBLE\nunits: cms\n1.0\n|END_COLUMN\n",
           kBadColumnHeader);
    newRow("input ends before the column header", opening(1, 1) + "END_SLOT_PREAMBLE\n|",
           kBadColumnHeader);
}

void HtsReaderTest::endsReading()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    MarkedDevice device(text);
    HtsPackage package;
    const Status status = package.read(device);
    QCOMPARE(status.message, message);
    QVERIFY(!status.flag);
    QVERIFY2(device.isAtMark(), qPrintable(QString::number(device.pos())));
}

void HtsReaderTest::keepsWhatWasReadBeforeAFailure()
{
    MarkedDevice device(opening(1, 1) + kSeries +
                        "7\nEND_COLUMN\nEND_SLOT\nslot_name: B\n"
                        "END_SLOT_PREAMBLE\nno units\nscale: 1\n|");
    HtsPackage package;
    QCOMPARE(package.read(device).message, QString::fromLatin1(kBadColumnHeader));
    QCOMPARE(package.runs.size(), 1);
    QCOMPARE(package.numSlots(), 2);
    QCOMPARE(package.slot(0).units, QStringList{QStringLiteral("cms")});
    QCOMPARE(package.slot(1).slotName, QStringLiteral("B"));
    QCOMPARE(package.slot(1).units, QStringList());
    QVERIFY((package.values[0][0][0] == HtsColumn{7.0}));
}

void HtsReaderTest::readsPackagePreamble_data()
{
    addStepColumns();
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("numberOfRuns");
    const QString kX = QStringLiteral("x");
    newRow("any order, unknown lines between",
           "number_of_runs: 2 \ncomment\nname:x\nEND_PACKAGE_PREAMBLE\n|name:y\n")
        << kX << 2;
    newRow("later line wins", "name:a\nname:x\nEND_PACKAGE_PREAMBLE|") << kX << 0;
    newRow("blank stays part of the value", "name: x\nEND_PACKAGE_PREAMBLE\n|")
        << QStringLiteral(" x") << 0;
    newRow("white space around the line", " \tname:x \r\n END_PACKAGE_PREAMBLE \r\n|") << kX << 0;
    newRow("other case is no key", "Name:y\nname:x\nNUMBER_OF_RUNS:3\nEND_PACKAGE_PREAMBLE\n|")
        << kX << 0;
    newRow("text after the end line", "name:x\nEND_PACKAGE_PREAMBLE x\n\n|", kBadPackagePreamble)
        << kX << 0;
    newRow("byte order mark at the start of the line is dropped",
           "\xef\xbb\xbfname:x\nEND_PACKAGE_PREAMBLE\n|")
        << kX << 0;
    newRow("byte order mark after the key stays", "name:\xef\xbb\xbfx\nnumber_of_runs:\xef\xbb\xbf"
                                                  "2\nEND_PACKAGE_PREAMBLE\n|")
        << QString(QChar(QChar::ByteOrderMark) + kX) << 0;
    newRow("UTF-8", "name:\xc3\x84\nEND_PACKAGE_PREAMBLE\n|") << QString(QChar(0xc4)) << 0;
    newRow("empty line", "name:x\n\n|number_of_runs:1\n", kBadPackagePreamble) << kX << 0;
    newRow("end of the input", "name:x\nnumber_of_runs:1|", kBadPackagePreamble) << kX << 1;
    newRow("empty input", "|", kBadPackagePreamble) << QString() << 0;
}

void HtsReaderTest::readsPackagePreamble()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    MarkedDevice device(text);
    HtsPackage package;
    const Status status = package.readPreamble(device);
    QCOMPARE(status.message, message);
    QCOMPARE(package.preambleRead, status.ok());
    QTEST(package.name, "name");
    QTEST(package.numberOfRuns, "numberOfRuns");
    QVERIFY(package.runs.isEmpty());
    QVERIFY2(device.isAtMark(), qPrintable(QString::number(device.pos())));
}

void HtsReaderTest::packagePreambleIsReadOnce()
{
    MarkedDevice device("|name:x\nEND_PACKAGE_PREAMBLE\n");
    HtsPackage package;
    package.preambleRead = true;
    QVERIFY(package.readPreamble(device).ok());
    QCOMPARE(package.name, QString());
    QVERIFY(device.isAtMark());
}

void HtsReaderTest::readsRunPreamble_data()
{
    addStepColumns();
    QTest::addColumn<int>("steps");
    QTest::addColumn<bool>("complete");
    newRow("no timesteps", "trace:1\nEND_RUN_PREAMBLE\n|END_RUN\n") << 0 << true;
    newRow("negative count", "time_steps:-2\nEND_RUN_PREAMBLE\n|2000-1-1 6:00\n") << 0 << true;
    newRow("two timesteps",
           "time_steps:2\nEND_RUN_PREAMBLE\n2000-1-1 6:00\n 2000-1-1 12:00 \r\n|2000-1-1 18:00\n")
        << 2 << true;
    newRow("second spelling", "timesteps:1\nEND_RUN_PREAMBLE\n2000-1-1 6:00\n|x\n") << 1 << true;
    newRow("later spelling wins",
           "timesteps:9\ntime_steps:1\nEND_RUN_PREAMBLE\n2000-1-1 6:00\n|x\n")
        << 1 << true;
    newRow("later second spelling wins",
           "time_steps:9\ntimesteps:1\nEND_RUN_PREAMBLE\n2000-1-1 6:00\n|x\n")
        << 1 << true;
    newRow("date that does not exist", "time_steps:1\nEND_RUN_PREAMBLE\n2000-99-99 99:99\n|x\n")
        << 1 << true;
    newRow("empty line", "trace:1\n\n|END_RUN_PREAMBLE\n", kBadRunPreamble) << 0 << false;
    newRow("end of the input", "trace:1|", kBadRunPreamble) << 0 << false;
    newRow("timestep does not match",
           "time_steps:3\nEND_RUN_PREAMBLE\n2000-1-1 6:00\nobject_type: R\n|2000-1-2 6:00\n",
           kBadRunPreamble)
        << 1 << false;
    newRow("input ends in the timesteps", "time_steps:3\nEND_RUN_PREAMBLE\n2000-1-1 6:00\n|",
           kBadRunPreamble)
        << 1 << false;
}

void HtsReaderTest::readsRunPreamble()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    MarkedDevice device(text);
    HtsRun run;
    QCOMPARE(run.readPreamble(device).message, message);
    QTEST(run.timesteps.size(), "steps");
    QTEST(run.complete, "complete");
    QVERIFY2(device.isAtMark(), qPrintable(QString::number(device.pos())));
}

void HtsReaderTest::runPreambleTakesEveryKey()
{
    MarkedDevice device("idx_sequential:7\nrule_set: rules\nslot_set:set\nconsecutive:0\n"
                        "time_steps:0\nunit_quantity:6\ntime_step_unit:hour\n"
                        "end: 2000-1-1 6:00\nstart:2000-1-1 6:00\ntrace:3\nEND_RUN_PREAMBLE\n|");
    HtsRun run;
    QVERIFY(run.readPreamble(device).ok());
    HtsRun expected;
    expected.complete = true;
    expected.trace = 3;
    expected.start = utc(2000, 1, 1, 6);
    // `end` stays null: the blank after the colon belongs to the value, which is no date-time.
    expected.timeStepUnit = QStringLiteral("hour");
    expected.unitQuantity = 6;
    expected.consecutive = 0;
    expected.slotSet = QStringLiteral("set");
    expected.ruleSet = QStringLiteral(" rules");
    expected.idxSequential = 7;
    QCOMPARE(difference(run, expected), QString());
    QVERIFY(device.isAtMark());
}

void HtsReaderTest::runPreambleOfCompleteRunReadsTimestepsOnly()
{
    MarkedDevice device("2000-1-1 6:00\n|trace:3\nEND_RUN_PREAMBLE\n");
    HtsRun run;
    run.complete = true;
    run.timeStepCount = 1;
    QVERIFY(run.readPreamble(device).ok());
    QCOMPARE(run.timesteps, QStringList{QStringLiteral("2000-1-1 6:00")});
    QCOMPARE(run.trace, -1);
    QVERIFY(device.isAtMark());
}

void HtsReaderTest::timestepLineMustMatch_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("matches");
    for (const char* line : {"2000-1-1 6:00", "2000-12-31 24:00", "0000-00-00 00:00",
                             "2000-01-01 06:05", "9999-99-99 99:99"})
        QTest::newRow(line) << QString::fromLatin1(line) << true;
    for (const char* line : {"2000-1-31 24:00:00",
                             "2000-1-1 6:0",
                             "2000-1-1 6:000",
                             "200-1-1 6:00",
                             "20000-1-1 6:00",
                             "2000-1-1  6:00",
                             "2000-111-1 6:00",
                             "2000-1-1",
                             "2000-1-111 6:00",
                             "2000-1-1 111:00",
                             "2000--1 6:00",
                             "2000-1- 6:00",
                             "2000-1-1 :00",
                             "2000-1-1 6",
                             "x2000-1-1 6:00",
                             "2000-1-1 6:00x",
                             "2000/1/1 6:00",
                             "+200-1-1 6:00",
                             "2000-1-1T6:00",
                             "-",
                             "END_RUN"})
        QTest::newRow(line) << QString::fromLatin1(line) << false;
    // Digits of any script are digits.
    const QString kTwo(QChar(0x0662));
    QTest::newRow("ARABIC-INDIC digits")
        << QStringLiteral("2000-1-1 6:00").replace(2, 1, kTwo) << true;
    QTest::newRow("FULLWIDTH digits")
        << QString(QStringLiteral("2000-1-1 6:0") + QChar(0xff10)) << true;
    QTest::newRow("SUPERSCRIPT TWO is no digit")
        << QString(QStringLiteral("2000-1-") + QChar(0xb2) + QStringLiteral(" 6:00")) << false;
    QTest::newRow("ARABIC-INDIC digit too many")
        << QString(kTwo + QStringLiteral("2000-1-1 6:00")) << false;
    QTest::newRow("MATHEMATICAL digits, of two units each, are none")
        << QString::fromUtf8("200\xf0\x9d\x9f\x8e-1-1 6:00") << false;
}

void HtsReaderTest::timestepLineMustMatch()
{
    QFETCH(QString, line);
    QFETCH(bool, matches);
    MarkedDevice device(line.toUtf8() + "\n|next\n");
    HtsRun run;
    run.complete = true;
    run.timeStepCount = 1;
    QCOMPARE(run.readPreamble(device).message,
             matches ? QString() : QString::fromLatin1(kBadRunPreamble));
    QCOMPARE(run.complete, matches);
    QCOMPARE(run.timesteps, matches ? QStringList{line} : QStringList());
    QVERIFY(device.isAtMark());
}

void HtsReaderTest::timestepLineMatchesAsTheRegularExpression()
{
    const QRegularExpression expression(
        QStringLiteral("^\\d{4}-\\d{1,2}-\\d{1,2} \\d{1,2}:\\d{2}\\z"),
        QRegularExpression::UseUnicodePropertiesOption);
    const QString kPieces = QString::fromUtf8("0123456789-- ::x+/\xd9\xa2\xef\xbc\x97\xc2\xb2");
    QRandomGenerator random(20000131);
    int matching = 0;
    constexpr int kLines = 20000;
    for (int i = 0; i < kLines; ++i) {
        QString line = random.bounded(2) == 0 ? QStringLiteral("2000-12-31 24:00")
                                              : QStringLiteral("1999-1-5 6:30");
        for (int change = random.bounded(3); change >= 0; --change) {
            const QChar piece = kPieces.at(random.bounded(kPieces.size()));
            line.replace(random.bounded(line.size()), random.bounded(2),
                         QString(random.bounded(3), piece));
        }
        line = line.trimmed();
        QBuffer device;
        device.setData(line.toUtf8());
        QVERIFY(device.open(QIODevice::ReadOnly));
        HtsRun run;
        run.complete = true;
        run.timeStepCount = 1;
        const bool matches = expression.match(line).hasMatch();
        QVERIFY2(run.readPreamble(device).ok() == matches, qPrintable(line));
        matching += matches ? 1 : 0;
    }
    QVERIFY2(matching > kLines / 20 && matching < kLines / 2,
             qPrintable(QString::number(matching)));
}

void HtsReaderTest::readsSlotPreamble_data()
{
    addStepColumns();
    QTest::addColumn<QString>("slotType");
    QTest::addColumn<QString>("objectType");
    QTest::addColumn<QStringList>("tableRows");
    const QString kTable = QStringLiteral("TableSlot");
    const QString kX = QStringLiteral("x");
    const QStringList kTwoRows{QStringLiteral("1  2"), QString()};
    newRow("series", "object_type: x\nEND_SLOT_PREAMBLE\n|units: cms\n")
        << QString() << kX << QStringList();
    newRow("key without its blank is ignored",
           "object_type: x\nobject_type:Reservoir\nslot_type:TableSlot\nEND_SLOT_PREAMBLE\n|")
        << QString() << kX << QStringList();
    newRow("value with blanks", "object_type:  x\nEND_SLOT_PREAMBLE\n|")
        << QString() << QStringLiteral(" x") << QStringList();
    newRow("rows without a type make a table",
           "object_type: x\nrows: 2\ncols: 1\nEND_SLOT_PREAMBLE\n 1  2 \n\n|END_SLOT\n")
        << kTable << kX << kTwoRows;
    newRow("rows after a type do not",
           "object_type: x\nslot_type: ScalarSlot\nrows: 2\nEND_SLOT_PREAMBLE\n|1\n2\n")
        << QStringLiteral("ScalarSlot") << kX << QStringList();
    newRow("type after rows wins",
           "object_type: x\nrows: 2\nslot_type: ScalarSlot\nEND_SLOT_PREAMBLE\n|1\n2\n")
        << QStringLiteral("ScalarSlot") << kX << QStringList();
    newRow("table without rows",
           "object_type: x\nslot_type: TableSlot\nrows: 0\nEND_SLOT_PREAMBLE\n|1\n")
        << kTable << kX << QStringList();
    newRow("table with negative rows",
           "object_type: x\nslot_type: TableSlot\nrows: -3\nEND_SLOT_PREAMBLE\n|1\n")
        << kTable << kX << QStringList();
    newRow("table rows are not looked at",
           "object_type: x\nrows: 2\nEND_SLOT_PREAMBLE\nEND_SLOT\nEND_RUN\n|\nEND_SLOT\n")
        << kTable << kX << QStringList{QStringLiteral("END_SLOT"), QStringLiteral("END_RUN")};
    newRow("empty line", "object_type: x\n\n|END_SLOT_PREAMBLE\n", kBadSlotPreamble)
        << QString() << kX << QStringList();
    newRow("end of the input", "object_type: x|", kBadSlotPreamble)
        << QString() << kX << QStringList();
    newRow("rows of a broken preamble are read, too",
           "object_type: x\nrows: 2\n\n1  2\n\n|END_SLOT_PREAMBLE\n", kBadSlotPreamble)
        << kTable << kX << kTwoRows;
    newRow("input ends in the rows", "object_type: x\nrows: 2\nEND_SLOT_PREAMBLE\n1  2|")
        << kTable << kX << kTwoRows;
    newRow("rows after the end of the input are empty",
           "object_type: x\nrows: 5\nEND_SLOT_PREAMBLE\n1  2\n|")
        << kTable << kX
        << QStringList{QStringLiteral("1  2"), QString(), QString(), QString(), QString()};
}

void HtsReaderTest::readsSlotPreamble()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    MarkedDevice device(text);
    HtsSlot slot;
    const Status status = slot.readPreamble(device);
    QCOMPARE(status.message, message);
    QCOMPARE(slot.preambleRead, status.ok());
    QTEST(slot.slotType, "slotType");
    QTEST(slot.objectType, "objectType");
    QTEST(slot.tableRows, "tableRows");
    QVERIFY2(device.isAtMark(), qPrintable(QString::number(device.pos())));
}

void HtsReaderTest::slotPreambleReadBeforeReadsRowsOnly()
{
    MarkedDevice device("slot_name: x\n|END_SLOT_PREAMBLE\n");
    HtsSlot slot;
    slot.preambleRead = true;
    slot.slotType = QStringLiteral("TableSlot");
    slot.rows = 1;
    QVERIFY(slot.readPreamble(device).ok());
    QCOMPARE(slot.tableRows, QStringList{QStringLiteral("slot_name: x")});
    QCOMPARE(slot.slotName, QString());
    QVERIFY(device.isAtMark());
}

void HtsReaderTest::readsColumnHeader_data()
{
    addStepColumns();
    QTest::addColumn<QString>("units");
    QTest::addColumn<double>("scale");
    QTest::addColumn<QString>("method");
    const QString kBefore = QStringLiteral("before");
    const QString kCms = QStringLiteral("cms");
    newRow("without a method", "units: cms\nscale: 0.001\n|1.0\n") << kCms << 0.001 << kBefore;
    newRow("with a method", "units: cms\nscale: 1\nmethod: Sum\n|1.0\n")
        << kCms << 1.0 << QStringLiteral("Sum");
    newRow("m line without the key loses eight characters",
           "units: cms\nscale: 1\nmean: X123\n|1\n")
        << kCms << 1.0 << QStringLiteral("23");
    newRow("short m line", "units: cms\nscale: 1\nmean: X\n|1.0\n") << kCms << 1.0 << QString();
    newRow("blank before the method", "units: cms\nscale: 1\n| method: Sum\n")
        << kCms << 1.0 << kBefore;
    newRow("method in another case", "units: cms\nscale: 1\n|Method: Sum\n")
        << kCms << 1.0 << kBefore;
    newRow("scale is no number", "units: cms\nscale: many\n|1.0\n") << kCms << 0.0 << kBefore;
    newRow("byte order mark before the scale's number", "units: cms\nscale: \xef\xbb\xbf"
                                                        "5\n|1.0\n")
        << kCms << 0.0 << kBefore;
    newRow("byte order mark before the units stays", "units: \xef\xbb\xbf"
                                                     "cms\nscale: 1\n|1.0\n")
        << QString(QChar(QChar::ByteOrderMark) + kCms) << 1.0 << kBefore;
    newRow("end of the input", "units: cms\nscale: 2|") << kCms << 2.0 << kBefore;
    newRow("blank units", "units: \nscale: 1\n|1.0\n", kBadColumnHeader)
        << kBefore << -1.0 << kBefore;
    newRow("units missing", "unit: cms\nscale: 1\n|method: Sum\n", kBadColumnHeader)
        << kBefore << -1.0 << kBefore;
    newRow("scale missing", "units: cms\nmethod: Sum\n|1.0\n", kBadColumnHeader)
        << kBefore << -1.0 << kBefore;
    newRow("wrong order", "scale: 1\nunits: cms\n|1.0\n", kBadColumnHeader)
        << kBefore << -1.0 << kBefore;
    newRow("scale without its blank", "units: cms\nscale:1\n|1.0\n", kBadColumnHeader)
        << kBefore << -1.0 << kBefore;
    newRow("empty input", "|", kBadColumnHeader) << kBefore << -1.0 << kBefore;
}

void HtsReaderTest::readsColumnHeader()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    MarkedDevice device(text);
    QString units = QStringLiteral("before");
    double scale = -1.0;
    QString method = QStringLiteral("before");
    QCOMPARE(HtsPackage::readColumnHeader(device, units, scale, method).message, message);
    QTEST(units, "units");
    QTEST(scale, "scale");
    QTEST(method, "method");
    QVERIFY2(device.isAtMark(), qPrintable(QString::number(device.pos())));
}

void HtsReaderTest::valueLinesAreNumbers()
{
    HtsPackage package;
    const HtsColumn values =
        firstColumn(opening(1, 6) + kSeries +
                        "nan\ntext\n\n -2.5 \ninf\n1e-3\nEND_COLUMN\nEND_SLOT\nEND_RUN\n|",
                    package);
    QVERIFY(std::isnan(values.at(0)));
    const double kInfinity = std::numeric_limits<double>::infinity();
    QVERIFY((HtsColumn(values.begin() + 1, values.end()) ==
             HtsColumn{0.0, 0.0, -2.5, kInfinity, 0.001}));
    QCOMPARE(package.slot(0).methods, QStringList{QString()});
}

void HtsReaderTest::methodLineWithLeadingBlankIsTheFirstValue()
{
    HtsPackage package;
    const HtsColumn values = firstColumn(
        opening(1, 2) + kSeries + " method: Sum\n1\nEND_COLUMN\nEND_SLOT\nEND_RUN\n|", package);
    QVERIFY((values == HtsColumn{0.0, 1.0}));
    QCOMPARE(package.slot(0).methods, QStringList{QString()});
}

void HtsReaderTest::missingEndLinesAreNotDetected()
{
    HtsPackage package;
    const HtsColumn values =
        firstColumn(opening(1, 2) + kSeries + "1\n2\nanything\n\nEND_RUN\n|", package);
    QVERIFY((values == HtsColumn{1.0, 2.0}));
    HtsPackage cutShort;
    // The end lines are taken for values, and the end of the run for the end of the slot.
    MarkedDevice device(opening(1, 2) + kSeries + "1\nEND_COLUMN\nEND_SLOT\nEND_RUN\n|");
    QCOMPARE(cutShort.read(device).message, QString::fromLatin1(kBadSlotPreamble));
    QVERIFY((cutShort.values[0][0][0] == HtsColumn{1.0, 0.0}));
    QVERIFY(device.isAtMark());
}

void HtsReaderTest::scalarSlotsHaveOneValue_data()
{
    QTest::addColumn<QByteArray>("slotType");
    QTest::newRow("scalar") << QByteArray("ScalarSlot");
    QTest::newRow("unknown") << QByteArray("Whatever");
}

void HtsReaderTest::scalarSlotsHaveOneValue()
{
    QFETCH(QByteArray, slotType);
    HtsPackage package;
    const HtsColumn values = firstColumn(opening(1, 3) + "slot_type: " + slotType +
                                             "\nEND_SLOT_PREAMBLE\nunits: m\nscale: 1\n4\n"
                                             "END_COLUMN\nEND_SLOT\nEND_RUN\n|",
                                         package);
    QVERIFY(values == HtsColumn{4.0});
    QCOMPARE(package.slot(0).slotType, QString::fromLatin1(slotType));
}

void HtsReaderTest::tableSlotSkipsLinesUpToItsEnd()
{
    MarkedDevice device(opening(1, 1) +
                        "rows: 1\ncols: 2\nEND_SLOT_PREAMBLE\na b\nunits: x\n\nEND_RUN\n"
                        "END_SLOT more\n END_SLOT \n" +
                        kSeries + "5\nEND_COLUMN\nEND_SLOT\nEND_RUN\n|");
    HtsPackage package;
    QCOMPARE(package.read(device).message, QString());
    QVERIFY(device.isAtMark());
    QCOMPARE(package.numSlots(), 2);
    QCOMPARE(package.slot(0).tableRows, QStringList{QStringLiteral("a b")});
    QCOMPARE(package.slot(0).numColumns(), 2);
    QCOMPARE(package.slot(0).units, QStringList());
    QVERIFY(package.values[0][0].empty());
    QVERIFY(package.values[0][1][0] == HtsColumn{5.0});
}

// The end of the input does not end the search for "END_SLOT": from a pipe, more may come.
void HtsReaderTest::tableSlotWaitsForItsEnd()
{
    SlowDevice device(opening(1, 1) + "rows: 1\ncols: 1\nEND_SLOT_PREAMBLE\na b\nmore\n", 10000,
                      "END_SLOT\n" + kSeries + "5\nEND_COLUMN\nEND_SLOT\nEND_RUN\n");
    HtsPackage package;
    QCOMPARE(package.read(device).message, QString());
    QVERIFY(device.isUsedUp());
    QCOMPARE(package.numSlots(), 2);
    QCOMPARE(package.slot(0).tableRows, QStringList{QStringLiteral("a b")});
    QCOMPARE(package.slot(1).slotName, QStringLiteral("Flow"));
    QVERIFY((package.values == HtsValues{{{}, {{5.0}}}}));
}

void HtsReaderTest::valuesOfLaterRunsGoByPosition()
{
    const auto slot = [](const char* name, const char* units, const char* value) -> QByteArray {
        return QByteArray("slot_name: ") + name + "\nEND_SLOT_PREAMBLE\nunits: " + units +
               "\nscale: 1\nmethod: " + name + "\n" + value + "\nEND_COLUMN\nEND_SLOT\n";
    };
    MarkedDevice device(opening(2, 1) + slot("A", "m", "1") + slot("B", "s", "2") +
                        "END_RUN\ntrace:5\ntime_steps:1\nEND_RUN_PREAMBLE\n2001-1-1 6:00\n" +
                        slot("B", "s", "3") + slot("A", "m", "4") + slot("C", "x", "5") +
                        "END_RUN\n|after\n");
    HtsPackage package;
    QCOMPARE(package.read(device).message, QString());
    QVERIFY(device.isAtMark());
    QCOMPARE(package.numSlots(), 2);
    QCOMPARE(package.slot(0).slotName, QStringLiteral("A"));
    QCOMPARE(package.slot(0).units, QStringList{QStringLiteral("m")});
    QCOMPARE(package.slot(1).methods, QStringList{QStringLiteral("B")});
    QCOMPARE(package.run(1).trace, 5);
    const HtsValues expected = {{{{1.0}}, {{2.0}}}, {{{3.0}}, {{4.0}}, {{5.0}}}};
    QVERIFY(package.values == expected);
}

void HtsReaderTest::slotTypeOfLaterRunDecidesItsRowCount()
{
    MarkedDevice device(opening(2, 2) + kSeries + "1\n2\nEND_COLUMN\nEND_SLOT\nEND_RUN\n" +
                        "END_RUN_PREAMBLE\nslot_type: ScalarSlot\nEND_SLOT_PREAMBLE\n"
                        "units: x\nscale: 1\n3\nEND_COLUMN\nEND_SLOT\nEND_RUN\n|");
    HtsPackage package;
    QCOMPARE(package.read(device).message, QString());
    QVERIFY(device.isAtMark());
    QCOMPARE(package.slot(0).slotType, QString());
    QVERIFY((package.values[0][0][0] == HtsColumn{1.0, 2.0}));
    QVERIFY((package.values[1][0][0] == HtsColumn{3.0}));
}

void HtsReaderTest::laterRunsShareEqualTimesteps()
{
    const QByteArray run = "END_RUN\ntime_steps:2\nEND_RUN_PREAMBLE\n2000-1-1 6:00\n";
    MarkedDevice device(opening(3, 2) + run + "2000-2-1 6:00\n" + run +
                        "2000-3-1 6:00\nEND_RUN\n|");
    HtsPackage package;
    QCOMPARE(package.read(device).message, QString());
    const QString first = QStringLiteral("2000-1-1 6:00");
    QCOMPARE(package.run(0).timesteps, (QStringList{first, QStringLiteral("2000-2-1 6:00")}));
    QCOMPARE(package.run(1).timesteps, package.run(0).timesteps);
    QCOMPARE(package.run(2).timesteps, (QStringList{first, QStringLiteral("2000-3-1 6:00")}));
    // One copy in memory; a change of one run still leaves the other alone.
    QVERIFY(package.run(1).timesteps.isSharedWith(package.run(0).timesteps));
    package.runs[1].timesteps[0] = QStringLiteral("changed");
    QCOMPARE(package.run(0).timesteps.first(), first);
}

void HtsReaderTest::neighboursShareEqualTexts()
{
    const QByteArray slot = kSeries + "1.5\nEND_COLUMN\nEND_SLOT\n";
    MarkedDevice device(opening(1, 1) + slot + slot + "END_RUN\n|");
    HtsPackage package;
    QCOMPARE(package.read(device).message, QString());
    QCOMPARE(package.slot(1).slotName, QStringLiteral("Flow"));
    QVERIFY(package.slot(1).slotName.isSharedWith(package.slot(0).slotName));
    QCOMPARE(package.slot(1).units, QStringList{QStringLiteral("cms")});
    QVERIFY(package.slot(1).units.isSharedWith(package.slot(0).units));
}

void HtsReaderTest::noTimestepsMeanNoValues()
{
    HtsPackage package;
    const HtsColumn values =
        firstColumn(opening(1, 0) + kSeries + "END_COLUMN\nEND_SLOT\nEND_RUN\n|", package);
    QVERIFY(values.empty());
    QCOMPARE(package.slot(0).units, QStringList{QStringLiteral("cms")});
}

void HtsReaderTest::asksAPipeForNothingAfterTheLastRun_data()
{
    QTest::addColumn<int>("pieceSize");
    QTest::addColumn<int>("mode");
    const std::pair<const char*, QIODevice::OpenMode> kModes[] = {
        {"", QIODevice::ReadOnly},
        {", text mode", QIODevice::ReadOnly | QIODevice::Text},
        {", unbuffered", QIODevice::ReadOnly | QIODevice::Unbuffered},
        {", text mode, unbuffered", QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered}};
    for (const int pieceSize : {1, 7, 1000000}) {
        for (const auto& [name, mode] : kModes)
            QTest::addRow("%d bytes%s", pieceSize, name) << pieceSize << static_cast<int>(mode);
    }
}

void HtsReaderTest::asksAPipeForNothingAfterTheLastRun()
{
    QFETCH(int, pieceSize);
    QFETCH(int, mode);
    const auto openMode = static_cast<QIODevice::OpenMode>(mode);
    for (quint32 seed = 0; seed < 60; ++seed) {
        const QByteArray whole = withoutLoneCarriageReturns(RandomHts(seed).file(6));
        QBuffer buffer;
        buffer.setData(whole);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        HtsPackage expected;
        QCOMPARE(expected.read(buffer).message, QString());
        QByteArray used = whole.left(static_cast<int>(buffer.pos()));
        if (!used.endsWith('\n'))
            used += '\n';

        PieceDevice pipe(used, pieceSize);
        QVERIFY(pipe.open(openMode));
        HtsPackage package;
        QCOMPARE(package.read(pipe).message, QString());
        QVERIFY2(!pipe.isOverdrawn(), qPrintable(QString::number(seed)));
        QCOMPARE(difference(package, expected), QString());

        PieceDevice longer(used + "rest\r\nEND_RUN\n", pieceSize);
        QVERIFY(longer.open(openMode));
        QCOMPARE(HtsPackage().read(longer).message, QString());
        longer.setTextModeEnabled(false);
        QCOMPARE(longer.readAll(), QByteArray("rest\r\nEND_RUN\n"));
    }
}

HTS_TEST(HtsReaderTest, NoApplication)
#include "tst_htsreader.moc"
