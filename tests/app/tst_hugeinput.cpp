// The program on an input that is larger than the memory it may have: a gigabyte of days through a
// pipe. The address space is limited, so that nothing of the input can be kept.

#include <QtTest>

#include "tests/app/annualizerrun.h"

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
        qFatal("%d slots", starts.size());
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
    void gigabyteOfDaysFromAPipeNeedsLittleMemory();
};

void TestHugeInput::gigabyteOfDaysFromAPipeNeedsLittleMemory()
{
    AnnualizerRun few;
    few.write(QStringLiteral("c.txt"), "*.*: Average\n");
    few.startShell(generate(kColumns) + QStringLiteral(" > a.hts; \"$PROGRAM\" -i a.hts -o b.hts "
                                                       "-c c.txt"));
    QCOMPARE(few.exitCode, 0);
    const QByteArray input = few.read(QStringLiteral("a.hts"));
    const qint64 slotSize = (input.size() - input.indexOf("object_type: ")) / kColumns;
    QVERIFY2(slotSize * kSlots >= kInputSize, QByteArray::number(slotSize));
    const QByteArray expected = repeated(few.read(QStringLiteral("b.hts")));

    AnnualizerRun many;
    many.write(QStringLiteral("c.txt"), "*.*: Average\n");
    many.startShell(generate(kSlots) +
                    QStringLiteral(" | { ulimit -v %1 && exec \"$PROGRAM\" -i /dev/stdin -o b.hts "
                                   "-c c.txt; }")
                        .arg(kMemory));
    QCOMPARE(many.output, QByteArray());
    QCOMPARE(many.errors, QByteArray());
    QCOMPARE(many.exitCode, 0);
    QVERIFY(many.read(QStringLiteral("b.log")).endsWith(kCreated));
    // Not printed when they differ: there are megabytes of them.
    QVERIFY(many.read(QStringLiteral("b.hts")) == expected);
}

QTEST_GUILESS_MAIN(TestHugeInput)

#include "tst_hugeinput.moc"
