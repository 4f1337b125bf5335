// What is found in preambles and about their ends, with the whole texts: preambles.txt.

#include <QtTest>

#include "tests/check/checkedtext.h"
#include "tests/support/testmain.h"

namespace {

// Lines 1 to 5, 6 to 11, 12 to 23, and 24 to 44; the values begin on line 31.
const QByteArray kFile =
    "name:Test\nowner:\ncreate_date:2000-1-1 24:00\nnumber_of_runs:1\nEND_PACKAGE_PREAMBLE\n"
    "start:2000-1-31 24:00\nend:2000-12-31 24:00\ntime_step_unit:month\nunit_quantity:1\n"
    "time_steps:12\nEND_RUN_PREAMBLE\n"
    "2000-1-31 24:00\n2000-2-29 24:00\n2000-3-31 24:00\n2000-4-30 24:00\n2000-5-31 24:00\n"
    "2000-6-30 24:00\n2000-7-31 24:00\n2000-8-31 24:00\n2000-9-30 24:00\n2000-10-31 24:00\n"
    "2000-11-30 24:00\n2000-12-31 24:00\n"
    "object_type: Reservoir\nobject_name: Lake\nslot_type: SeriesSlot\nslot_name: Flow\n"
    "END_SLOT_PREAMBLE\nunits: cms\nscale: 1\n"
    "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\nEND_COLUMN\nEND_SLOT\nEND_RUN\n";

// The bytes of a text with \n, \t and \xff.
QByteArray unescaped(const QString& escaped)
{
    QByteArray text = escaped.toUtf8().replace("\\n", "\n").replace("\\t", "\t");
    for (int at = text.indexOf("\\x"); at >= 0; at = text.indexOf("\\x"))
        text.replace(at, 4, QByteArray::fromHex(text.mid(at + 2, 2)));
    return text;
}

} // namespace

class PreambleCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsInPreambles_data();
    void findsInPreambles();
};

void PreambleCheckTest::findsInPreambles_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("findings");
    for (const TextCase& row : textCases(QStringLiteral("preambles.txt"))) {
        const QByteArray before = unescaped(row.lines.at(0));
        if (kFile.count(before) != 1)
            qFatal("\"%s\" is not there once", before.constData());
        QTest::newRow(row.name) << QByteArray(kFile).replace(before, unescaped(row.lines.at(1)))
                                << QStringList(row.lines.mid(2));
    }
}

void PreambleCheckTest::findsInPreambles()
{
    QFETCH(QByteArray, text);
    QFETCH(QStringList, findings);
    QCOMPARE(findingTexts(checkedText(text).findings), findings);
}

HTS_TEST(PreambleCheckTest, NoApplication)

#include "tst_preamblecheck.moc"
