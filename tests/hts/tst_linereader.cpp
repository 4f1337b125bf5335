#include <cmath>
#include <memory>

#include <QBuffer>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include "hts/linereader.h"
#include "tests/hts/piecedevice.h"

namespace {

QByteArray bytes(std::string_view view)
{
    return QByteArray(view.data(), static_cast<int>(view.size()));
}

} // namespace

class LineReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void readsLines_data();
    void readsLines();
    void leavesTheDeviceBehindTheLastLineRead_data();
    void leavesTheDeviceBehindTheLastLineRead();
    void startsAtThePositionOfTheDevice();
    void readsLinesOfAnyLength_data();
    void readsLinesOfAnyLength();
    void readsNumbersAcrossBlocks_data();
    void readsNumbersAcrossBlocks();
    void looksAheadForAWord_data();
    void looksAheadForAWord();
    void looksAheadForAWordAcrossBlocks_data();
    void looksAheadForAWordAcrossBlocks();
    void looksAtTheNextByte_data();
    void looksAtTheNextByte();
    void atEndReadsNothing();
    void restoresTextMode_data();
    void restoresTextMode();
    void closedDeviceIsEmpty();

private:
    // Rows of the kinds, each in text mode and not. A number stands for a sequential device that
    // hands out so many bytes at a time.
    static void addDeviceRows(std::initializer_list<const char*> kinds = {"buffer", "file", "1",
                                                                          "7"});
    // The device of the current row with `data`.
    std::unique_ptr<QIODevice> opened(const QByteArray& data);

    QTemporaryDir m_folder;
};

void LineReaderTest::initTestCase()
{
    QVERIFY(m_folder.isValid());
}

void LineReaderTest::addDeviceRows(std::initializer_list<const char*> kinds)
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("isTextMode");
    for (const char* kind : kinds) {
        QTest::addRow("%s", kind) << QString::fromLatin1(kind) << false;
        QTest::addRow("%s, text mode", kind) << QString::fromLatin1(kind) << true;
    }
}

std::unique_ptr<QIODevice> LineReaderTest::opened(const QByteArray& data)
{
    QFETCH(QString, kind);
    QFETCH(bool, isTextMode);
    std::unique_ptr<QIODevice> device;
    if (kind == QLatin1String("buffer")) {
        auto buffer = std::make_unique<QBuffer>();
        buffer->setData(data);
        device = std::move(buffer);
    } else if (kind == QLatin1String("file")) {
        auto file = std::make_unique<QFile>(m_folder.filePath(QStringLiteral("file.txt")));
        if (!file->open(QIODevice::WriteOnly) || file->write(data) != data.size())
            qFatal("cannot write %s", qPrintable(file->fileName()));
        file->close();
        device = std::move(file);
    } else {
        device = std::make_unique<PieceDevice>(data, kind.toInt());
    }
    const QIODevice::OpenMode mode = QIODevice::ReadOnly;
    if (!device->open(isTextMode ? mode | QIODevice::Text : mode))
        qFatal("cannot open the device");
    return device;
}

void LineReaderTest::readsLines_data()
{
    addDeviceRows();
}

void LineReaderTest::readsLines()
{
    const char kText[] = "first\n\n  inner  blank \t\r\nwindows\r\n\r\n\xc3\x84\xff\na\0b\nlast";
    const auto device = opened(QByteArray(kText, sizeof kText - 1));
    LineReader reader(*device);
    QCOMPARE(bytes(reader.line()), QByteArray("first"));
    QCOMPARE(bytes(reader.line()), QByteArray());
    QCOMPARE(bytes(reader.line()), QByteArray("inner  blank"));
    QCOMPARE(bytes(reader.line()), QByteArray("windows"));
    QCOMPARE(reader.text(), QString());
    QCOMPARE(reader.text(), QString(QString(QChar(0xc4)) + QChar(0xfffd)));
    QCOMPARE(reader.text(), QStringLiteral("a"));
    QCOMPARE(reader.text(), QStringLiteral("last"));
    QCOMPARE(reader.text(), QString());
    QCOMPARE(bytes(reader.line()), QByteArray());
}

void LineReaderTest::leavesTheDeviceBehindTheLastLineRead_data()
{
    addDeviceRows();
}

void LineReaderTest::leavesTheDeviceBehindTheLastLineRead()
{
    const QByteArray text("one\r\ntwo\n3\n4\r\nlast, without a line end");
    const int lineEnds[] = {0, 5, 9, 11, 14, text.size(), text.size()};
    for (int lines = 0; lines < 7; ++lines) {
        const auto device = opened(text);
        {
            LineReader reader(*device);
            for (int line = 0; line < lines; ++line)
                reader.line();
        }
        if (!device->isSequential())
            QCOMPARE(device->pos(), lineEnds[lines]);
        device->setTextModeEnabled(false);
        QCOMPARE(device->readAll(), text.mid(lineEnds[lines]));
    }
}

void LineReaderTest::startsAtThePositionOfTheDevice()
{
    QBuffer device;
    device.setData("one\ntwo\nthree\n");
    QVERIFY(device.open(QIODevice::ReadOnly));
    QVERIFY(device.seek(4));
    QCOMPARE(LineReader(device).text(), QStringLiteral("two"));
    QCOMPARE(device.pos(), 8);
    QCOMPARE(LineReader(device).text(), QStringLiteral("three"));
    QCOMPARE(LineReader(device).text(), QString());
    QCOMPARE(device.pos(), 14);
}

void LineReaderTest::readsLinesOfAnyLength_data()
{
    QTest::addColumn<int>("length");
    // Around the block size and its doubles, and around the chunk of a device.
    for (const int around : {0, 16384, 32768, 65536, 131072, 262144}) {
        for (int length = std::max(around - 2, 0); length <= around + 2; ++length)
            QTest::addRow("%d", length) << length;
    }
}

void LineReaderTest::readsLinesOfAnyLength()
{
    QFETCH(int, length);
    const QByteArray line(length, 'x');
    for (const char* lineEnd : {"\n", "\r\n"}) {
        const QByteArray text = line + lineEnd + "short" + lineEnd + line + lineEnd + "last";
        QBuffer device;
        device.setData(text);
        QVERIFY(device.open(QIODevice::ReadOnly));
        {
            LineReader reader(device);
            QVERIFY(bytes(reader.line()) == line);
            QCOMPARE(bytes(reader.line()), QByteArray("short"));
            QVERIFY(bytes(reader.line()) == line);
        }
        QCOMPARE(device.pos(), text.size() - 4);
    }
}

void LineReaderTest::readsNumbersAcrossBlocks_data()
{
    addDeviceRows();
}

void LineReaderTest::readsNumbersAcrossBlocks()
{
    for (const char* lineEnd : {"\n", "\r\n", " \n"}) {
        QByteArray text = "header\n";
        std::vector<double> expected;
        for (int i = 0; i < 12000; ++i) {
            expected.push_back(i % 7 == 0 ? -i * 0.25 : i / 3.0);
            text += QByteArray::number(expected.back(), 'g', 17) + lineEnd;
        }
        const int end = text.size();
        text += "END";
        const auto device = opened(text);
        std::vector<double> numbers(expected.size(), -1.0);
        {
            LineReader reader(*device);
            QCOMPARE(bytes(reader.line()), QByteArray("header"));
            reader.readNumbers(numbers);
        }
        QVERIFY(numbers == expected);
        device->setTextModeEnabled(false);
        QCOMPARE(device->readAll(), text.mid(end));
    }
    // Numbers behind the end of the input are 0, and a line is a number even without its end.
    const auto device = opened("1\n\ntext\nNaN\n12");
    std::vector<double> numbers(7, -1.0);
    LineReader(*device).readNumbers(numbers);
    QVERIFY(std::isnan(numbers[3]));
    numbers[3] = 0.0;
    QVERIFY((numbers == std::vector<double>{1.0, 0.0, 0.0, 0.0, 12.0, 0.0, 0.0}));
    QVERIFY(device->atEnd());
}

void LineReaderTest::looksAheadForAWord_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isNext");
    const auto addRow = [](const char* name, const char* text, bool isNext) {
        QTest::newRow(name) << QByteArray(text) << isNext;
    };
    addRow("alone on its line", "END_RUN\nmore", true);
    addRow("Windows line end", "END_RUN\r\nmore", true);
    addRow("at the end of the input", "END_RUN", true);
    addRow("blank and text behind", "END_RUN text\n", true);
    addRow("tab and text behind", "END_RUN\ttext\n", true);
    addRow("blank before", " END_RUN\n", true);
    addRow("empty line before", "\nEND_RUN\n", true);
    addRow("two blanks before", "  END_RUN\n", false);
    addRow("letter behind", "END_RUNS\n", false);
    addRow("cut short", "END_RU\n", false);
    addRow("cut short at the end of the input", "END_RU", false);
    addRow("other case", "end_run\n", false);
    addRow("empty input", "", false);
    addRow("preamble", "END_RUN_PREAMBLE\n", false);
}

void LineReaderTest::looksAheadForAWord()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, isNext);
    for (const bool isTextMode : {false, true}) {
        for (const qint64 size : {1, 3, 8, 1000}) {
            PieceDevice device(text, size);
            const QIODevice::OpenMode mode = QIODevice::ReadOnly;
            QVERIFY(device.open(isTextMode ? mode | QIODevice::Text : mode));
            QCOMPARE(LineReader(device).nextIs("END_RUN"), isNext);
            device.setTextModeEnabled(false);
            QCOMPARE(device.readAll(), text);
        }
    }
}

void LineReaderTest::looksAheadForAWordAcrossBlocks_data()
{
    addDeviceRows({"buffer", "file", "4096"});
}

void LineReaderTest::looksAheadForAWordAcrossBlocks()
{
    for (int before = 65536 - 12; before <= 65536 + 2; ++before) {
        for (const char* lineEnd : {"\n", "\r\n"}) {
            const auto device =
                opened(QByteArray(before - 1, 'x') + "\nEND_RUN" + lineEnd + "mark\n");
            LineReader reader(*device);
            reader.line();
            QVERIFY(!reader.nextIs("END_SET"));
            QVERIFY(reader.nextIs("END_RUN"));
            QCOMPARE(bytes(reader.line()), QByteArray("END_RUN"));
            QVERIFY(reader.nextByteIs('m'));
            QCOMPARE(bytes(reader.line()), QByteArray("mark"));
        }
    }
}

void LineReaderTest::looksAtTheNextByte_data()
{
    addDeviceRows();
}

void LineReaderTest::looksAtTheNextByte()
{
    const auto device = opened("method: x\n method\n\nM\n");
    {
        LineReader reader(*device);
        QVERIFY(reader.nextByteIs('m'));
        QVERIFY(!reader.nextByteIs('e'));
        QCOMPARE(bytes(reader.line()), QByteArray("method: x"));
        QVERIFY(!reader.nextByteIs('m')); // a blank
        QCOMPARE(bytes(reader.line()), QByteArray("method"));
        QVERIFY(!reader.nextByteIs('m')); // a line end
        QCOMPARE(bytes(reader.line()), QByteArray());
        QVERIFY(!reader.nextByteIs('m'));
    }
    QCOMPARE(device->readAll(), QByteArray("M\n"));
    LineReader reader(*device);
    QVERIFY(!reader.nextByteIs('m'));
    QVERIFY(!reader.nextByteIs('\0'));
}

void LineReaderTest::atEndReadsNothing()
{
    QBuffer device;
    device.setData("one");
    QVERIFY(device.open(QIODevice::ReadOnly));
    LineReader reader(device);
    QVERIFY(!reader.atEnd());
    QVERIFY(!reader.atEnd());
    QCOMPARE(bytes(reader.line()), QByteArray("one"));
    QVERIFY(reader.atEnd());
    QCOMPARE(bytes(reader.line()), QByteArray());
    QVERIFY(reader.atEnd());
}

void LineReaderTest::restoresTextMode_data()
{
    // Not byte by byte: QIODevice::readLine then ends a line at its "\r".
    addDeviceRows({"buffer", "file", "4096"});
}

void LineReaderTest::restoresTextMode()
{
    QFETCH(bool, isTextMode);
    const auto device = opened("one\r\ntwo\r\nthree\r\n");
    QCOMPARE(LineReader(*device).text(), QStringLiteral("one"));
    QCOMPARE(device->isTextModeEnabled(), isTextMode);
    QCOMPARE(device->readLine(), QByteArray(isTextMode ? "two\n" : "two\r\n"));
}

void LineReaderTest::closedDeviceIsEmpty()
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral(".*device not open")));
    QBuffer device;
    LineReader reader(device);
    QCOMPARE(reader.text(), QString());
}

QTEST_APPLESS_MAIN(LineReaderTest)
#include "tst_linereader.moc"
