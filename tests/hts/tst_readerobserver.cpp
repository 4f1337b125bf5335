// What is reported to an observer of the reader, and with which line numbers.

#include <QBuffer>
#include <QtTest>

#include "hts/htspackage.h"
#include "hts/htsreader.h"

namespace {

QString textOf(std::string_view bytes)
{
    return QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
}

// Notes every call as a text: line number, kind of line, the line.
class RecordingObserver : public HtsReader::Observer
{
public:
    explicit RecordingObserver(const HtsReader& reader) : m_reader(reader) {}

    void ignoredLine(std::string_view line) override { add("ignored", textOf(line)); }
    void keywordLine(QLatin1String key, std::string_view value) override
    {
        add("key", key + QLatin1Char('|') + textOf(value));
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

// Reads a whole file; the rows of tables are read as end lines.
QStringList observed(const QByteArray& text)
{
    QBuffer device;
    device.setData(text);
    device.open(QIODevice::ReadOnly);
    HtsReader reader(device);
    RecordingObserver observer(reader);
    reader.setObserver(&observer);
    HtsPackage package;
    Status status = reader.readPackagePreamble(package);
    for (int r = 0; status.ok() && r < package.numberOfRuns; ++r) {
        HtsRun run;
        status = reader.readRun(run);
        while (status.ok() && !reader.takeEndOfRun()) {
            HtsSlot slot;
            status = reader.readSlot(slot, HtsReader::TableRows::Leave);
            if (!status.ok())
                break;
            if (slot.isTable()) {
                while (reader.readLine() != "END_SLOT")
                    observer.calls.append(QStringLiteral("row"));
                continue;
            }
            std::vector<double> values(static_cast<std::size_t>(slot.valueCount(run)));
            reader.readValues(values);
            reader.readLine();
            reader.readLine();
        }
    }
    return observer.calls;
}

} // namespace

class ReaderObserverTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isShown_data();
    void isShown();
};

void ReaderObserverTest::isShown_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("calls");

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
    row("end of a preamble", "name:a\n", {"1 key: name:|a", "2 unexpected: END_PACKAGE_PREAMBLE|"});
    row("timesteps",
        "number_of_runs:1\nEND_PACKAGE_PREAMBLE\ntime_steps:2\nEND_RUN_PREAMBLE\n"
        "2000-1-1 24:00\n2000-1-2\n",
        {"1 key: number_of_runs:|1", "3 key: time_steps:|2",
         "6 unexpected: yyyy-M-d h:mm|2000-1-2"});
    row("column header and values",
        "number_of_runs:1\nEND_PACKAGE_PREAMBLE\ntime_steps:2\nEND_RUN_PREAMBLE\n"
        "2000-1-1 24:00\n2000-1-2 24:00\nslot_name: f\nEND_SLOT_PREAMBLE\nunits: cms\nscale: 1,5\n"
        "mean: x\n1.5\n1,5\nEND_COLUMN\nEND_SLOT\nEND_RUN\n",
        {"1 key: number_of_runs:|1", "3 key: time_steps:|2", "7 key: slot_name: |f",
         "9 key: units: |cms", "10 key: scale: |1,5", "11 unexpected: method: |mean: x",
         "13 value 1: 1,5"});
    row("method line",
        "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nEND_RUN_PREAMBLE\n"
        "END_SLOT_PREAMBLE\nunits: cms\nscale: 1\nmethod: Sum\nEND_COLUMN\nEND_SLOT\nEND_RUN\n",
        {"1 key: number_of_runs:|1", "5 key: units: |cms", "6 key: scale: |1",
         "7 key: method: |Sum"});
    row("column header that ends the reading",
        "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nEND_RUN_PREAMBLE\n"
        "END_SLOT_PREAMBLE\nscale: 1\n7\n",
        {"1 key: number_of_runs:|1", "5 unexpected: units: |scale: 1", "6 unexpected: scale: |7"});
    row("rows of a table are left",
        "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nEND_RUN_PREAMBLE\n"
        "rows: 2\nEND_SLOT_PREAMBLE\n1 2\nEND_SLOT\nEND_RUN\n",
        {"1 key: number_of_runs:|1", "4 key: rows: |2", "row"});
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
         "6 cut: 2000-1-1 24:00", "7 cut: slot_name: f", "7 key: slot_name: |f",
         "9 cut: units: cms", "9 key: units: |cms", "10 cut: scale: 1", "10 key: scale: |1",
         "11 cut: method: Sum", "11 key: method: |Sum"});
}

void ReaderObserverTest::isShown()
{
    QFETCH(QByteArray, text);
    QFETCH(QStringList, calls);
    QCOMPARE(observed(text), calls);
}

QTEST_APPLESS_MAIN(ReaderObserverTest)

#include "tst_readerobserver.moc"
