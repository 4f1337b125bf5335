// The program on an input that is larger than the memory it may have: a gigabyte of days through a
// pipe. The address space is limited, so that nothing of the input can be kept.

#include <QtTest>

#include "tests/app/annualizerrun.h"
#include "tests/support/testmain.h"

namespace {

constexpr int kColumns = 7;
constexpr int kSlots = 3500;
constexpr qint64 kInputSize = 1'000'000'000; // or more
constexpr int kMemory = 400'000;             // in KiB

// Days of fifty years.
QString generate(int slots)
{
    return QStringLiteral("'" HTS_GENERATE "' slots=%1 columns=%2 steps=18262")
        .arg(slots)
        .arg(kColumns);
}

QByteArray objectLine(int slot)
{
    return "object_name: Object" + QByteArray::number(slot) + '\n';
}

// The result for `kSlots` slots that share the columns of the few of `result`.
QByteArray repeated(const QByteArray& result)
{
    const QByteArray slotKey = "object_type: ";
    const QByteArray runEnd = "END_RUN\n";
    QVector<int> starts;
    for (int start = result.indexOf(slotKey); start >= 0;
         start = result.indexOf(slotKey, start + 1))
        starts.append(start);
    if (starts.size() != kColumns || !result.endsWith(runEnd))
        qFatal("%d slots", static_cast<int>(starts.size()));
    starts.append(result.size() - runEnd.size());

    QByteArray text = result.left(starts.first());
    for (int slot = 0; slot < kSlots; ++slot) {
        const int column = slot % kColumns;
        const int start = starts.at(column);
        text += result.mid(start, starts.at(column + 1) - start)
                    .replace(objectLine(column), objectLine(slot));
    }
    return text + runEnd;
}

} // namespace

class TestHugeInput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gigabyteOfDaysFromAPipeNeedsLittleMemory()
    {
        AnnualizerRun few;
        few.write("c.txt", "*.*: Average\n");
        few.startShell(generate(kColumns) +
                       QStringLiteral(" > a.hts; \"$PROGRAM\" -i a.hts -o b.hts "
                                      "-c c.txt"));
        QCOMPARE(few.exitCode, 0);
        const QByteArray input = few.read("a.hts");
        const qint64 slotSize = (input.size() - input.indexOf("object_type: ")) / kColumns;
        QVERIFY2(slotSize * kSlots >= kInputSize, QByteArray::number(slotSize));
        const QByteArray expected = repeated(few.result());

        AnnualizerRun many;
        many.write("c.txt", "*.*: Average\n");
        many.startShell(
            generate(kSlots) +
            QStringLiteral(" | { ulimit -v %1 && exec \"$PROGRAM\" -i /dev/stdin -o b.hts "
                           "-c c.txt; }")
                .arg(kMemory));
        QCOMPARE(many.ended(), QByteArray("exit 0"));
        QVERIFY(many.read("b.log").endsWith(kCreated));
        // Not printed when they differ: there are megabytes of them.
        QVERIFY(many.result() == expected);
    }

    // The engine's log has a line for each slot that is left out in each run, and nobody sees it.
    void slotsThatLaterRunsLackTakeNoTime()
    {
        constexpr int kCount = 6000;
        QByteArray runStart = "start:2000-1-31 24:00\nend:2000-12-31 24:00\ntime_step_unit:month\n"
                              "time_steps:12\nEND_RUN_PREAMBLE\n";
        QByteArray series = "object_name: Lake\nslot_name: Inflow\nEND_SLOT_PREAMBLE\nunits: cms\n"
                            "scale: 1\n";
        const int ends[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        for (int month = 1; month <= 12; ++month) {
            runStart += "2000-" + QByteArray::number(month) + '-' +
                        QByteArray::number(ends[month - 1]) + " 24:00\n";
            series += "1\n";
        }
        series += "END_COLUMN\nEND_SLOT\n";
        const QByteArray scalar =
            "object_name: Lake\nslot_type: ScalarSlot\nslot_name: Area\n"
            "END_SLOT_PREAMBLE\nunits: km2\nscale: 1\n1\nEND_COLUMN\nEND_SLOT\n";
        AnnualizerRun run;
        run.write("c.txt", "*.*: Sum\n");
        run.write("a.hts", "number_of_runs:" + QByteArray::number(kCount + 1) +
                               "\nEND_PACKAGE_PREAMBLE\n" + runStart + series +
                               scalar.repeated(kCount) + "END_RUN\n" +
                               QByteArray(runStart + series + "END_RUN\n").repeated(kCount));
        run.convertAfter(QStringLiteral("ulimit -c 0; ulimit -t 5; exec"));
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.result().count("\n12.000000000000\n"), kCount + 1);
    }
};

HTS_TEST(TestHugeInput, QCoreApplication)

#include "tst_hugeinput.moc"
