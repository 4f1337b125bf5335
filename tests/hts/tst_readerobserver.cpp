// What is reported to an observer of the reader, and with which line numbers.

#include <QBuffer>
#include <QtTest>

#include "hts/htskeys.h"
#include "hts/htsreader.h"
#include "hts/htswalk.h"
#include "tests/support/testmain.h"

namespace {

QString textOf(std::string_view bytes)
{
    return QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
}

// Notes every call as a text: line number, kind of line, the line.
class RecordingObserver : public ReaderObserver
{
public:
    explicit RecordingObserver(const HtsReader& reader) : m_reader(reader) {}

    void ignoredLine(std::string_view line) override { add("ignored", textOf(line)); }
    void keywordLine(const HtsKeyword& keyword, std::string_view value) override
    {
        add("key", keyword.key + QLatin1Char('|') + textOf(value));
    }
    void slotPreambleRead(const HtsSlot& slot) override { add("slot", slot.slotName); }
    void endLine(QLatin1String expected, std::string_view line) override
    {
        add("end", expected + QLatin1Char('|') + textOf(line));
    }
    void tableRow(const HtsSlot&, int row, std::string_view line) override
    {
        add("row", QString::number(row) + QLatin1Char('|') + textOf(line));
    }
    void lineAfterTable(const HtsSlot&, std::string_view line) override
    {
        add("after table", textOf(line));
    }
    void unexpectedLine(QLatin1String expected, std::string_view line) override
    {
        add("unexpected", expected + QLatin1Char('|') + textOf(line));
    }
    void cutLine(std::string_view text) override { add("cut", textOf(text)); }
    void oddValueLine(std::size_t index, qint64 lineNumber, std::string_view line) override
    {
        calls.append(
            QStringLiteral("%1 value %2: %3").arg(lineNumber).arg(index).arg(textOf(line)));
    }

    QStringList calls;

private:
    void add(const char* what, const QString& text)
    {
        calls.append(
            QStringLiteral("%1 %2: %3").arg(m_reader.lineNumber()).arg(QLatin1String(what), text));
    }

    const HtsReader& m_reader;
};

// Reads a whole file, its values included.
QStringList observed(const QByteArray& text)
{
    QBuffer device;
    device.setData(text);
    device.open(QIODevice::ReadOnly);
    HtsReader reader(device);
    RecordingObserver observer(reader);
    reader.addObserver(observer);
    HtsPackage package;
    HtsWalk walk(reader, package);
    while (walk.next()) {
        if (walk.place() == HtsWalk::Place::Slot)
            walk.values();
    }
    return observer.calls;
}

} // namespace

class ReaderObserverTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isShown_data()
    {
        addColumns<QByteArray, QStringList>("text", "calls");

        // An "@" in the text is a NUL byte.
        const auto row = [](const char* name, const char* text,
                            std::initializer_list<const char*> calls) {
            QStringList texts;
            for (const char* call : calls)
                texts.append(QString::fromUtf8(call));
            QTest::newRow(name) << QByteArray(text).replace('@', '\0') << texts;
        };
        row("keyword lines and ignored lines", "name:a\n # x \nEND_PACKAGE_PREAMBLE\n",
            {"1 key: name:|a", "2 ignored: # x"});
        row("end of a preamble", "name:a\n",
            {"1 key: name:|a", "2 unexpected: END_PACKAGE_PREAMBLE|"});
        row("timesteps",
            "number_of_runs:1\nEND_PACKAGE_PREAMBLE\ntime_steps:2\nEND_RUN_PREAMBLE\n"
            "2000-1-1 24:00\n2000-1-2\n",
            {"1 key: number_of_runs:|1", "3 key: time_steps:|2",
             "6 unexpected: yyyy-M-d h:mm|2000-1-2"});
        row("column header and values",
            "number_of_runs:1\nEND_PACKAGE_PREAMBLE\ntime_steps:2\nEND_RUN_PREAMBLE\n"
            "2000-1-1 24:00\n2000-1-2 24:00\nslot_name: f\nEND_SLOT_PREAMBLE\nunits: cms\nscale: "
            "1,5\n"
            "mean: x\n1.5\n1,5\nEND_COLUMN\nEND_SLOT\nEND_RUN\n",
            {"1 key: number_of_runs:|1", "3 key: time_steps:|2", "7 key: slot_name: |f",
             "8 slot: f", "9 key: units: |cms", "10 key: scale: |1,5",
             "11 unexpected: method: |mean: x", "13 value 1: 1,5", "14 end: END_COLUMN|END_COLUMN",
             "15 end: END_SLOT|END_SLOT"});
        row("method line",
            "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nEND_RUN_PREAMBLE\n"
            "END_SLOT_PREAMBLE\nunits: cms\nscale: 1\nmethod: Sum\nEND_COLUMN\nEND_SLOT\nEND_RUN\n",
            {"1 key: number_of_runs:|1", "4 slot: ", "5 key: units: |cms", "6 key: scale: |1",
             "7 key: method: |Sum", "8 end: END_COLUMN|END_COLUMN", "9 end: END_SLOT|END_SLOT"});
        row("column header that ends the reading",
            "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nEND_RUN_PREAMBLE\n"
            "END_SLOT_PREAMBLE\nscale: 1\n7\n",
            {"1 key: number_of_runs:|1", "4 slot: ", "5 unexpected: units: |scale: 1",
             "6 unexpected: scale: |7"});
        row("rows of a table, and lines after them",
            "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nEND_RUN_PREAMBLE\n"
            "rows: 2\nEND_SLOT_PREAMBLE\n1 2\n3 4\nx\nEND_SLOT\nEND_RUN\n",
            {"1 key: number_of_runs:|1", "4 key: rows: |2", "5 slot: ", "6 row: 0|1 2",
             "7 row: 1|3 4", "8 after table: x"});
        row("empty line before the end of the run",
            "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nEND_RUN_PREAMBLE\n\nEND_RUN\n",
            {"1 key: number_of_runs:|1", "4 unexpected: END_RUN|"});
        row("text after the end of the run",
            "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nEND_RUN_PREAMBLE\nEND_RUN x\n",
            {"1 key: number_of_runs:|1", "4 unexpected: END_RUN|END_RUN x"});
        row("NUL bytes",
            "name:a@b\nnumber_of_runs:1\nEND_PACKAGE_PREAMBLE\ntime_steps:1\nEND_RUN_PREAMBLE\n"
            "2000-1-1 24:00@\nslot_name: f@@\nEND_SLOT_PREAMBLE\nunits: cms@\nscale: 1@\n"
            "method: Sum@x\n1\nEND_COLUMN\nEND_SLOT\nEND_RUN\n",
            {"1 cut: name:a", "1 key: name:|a", "2 key: number_of_runs:|1", "4 key: time_steps:|1",
             "6 cut: 2000-1-1 24:00", "7 cut: slot_name: f", "7 key: slot_name: |f", "8 slot: f",
             "9 cut: units: cms", "9 key: units: |cms", "10 cut: scale: 1", "10 key: scale: |1",
             "11 cut: method: Sum", "11 key: method: |Sum", "13 end: END_COLUMN|END_COLUMN",
             "14 end: END_SLOT|END_SLOT"});
    }
    void isShown()
    {
        QFETCH(QByteArray, text);
        QFETCH(QStringList, calls);
        QCOMPARE(observed(text), calls);
    }
};

HTS_TEST(ReaderObserverTest, NoApplication)

#include "tst_readerobserver.moc"
