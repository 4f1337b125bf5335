#include <cmath>
#include <functional>
#include <utility>

#include <QBuffer>
#include <QRegularExpression>
#include <QtTest>

#include "hts/linereader.h"
#include "hts/linetext.h"
#include "tests/hts/devicerows.h"
#include "tests/hts/piecedevice.h"
#include "tests/support/testmain.h"

namespace {

// The text of the next line.
template<typename Reader>
QString textOf(Reader&& reader)
{
    return toText(textBytes(reader.line()));
}

QByteArray bytes(std::string_view view)
{
    return QByteArray(view.data(), static_cast<int>(view.size()));
}

} // namespace

class LineReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsLines_data() { addDeviceRows(); }
    void readsLines()
    {
        const char kText[] =
            "first\n\n  inner  blank \t\r\nwindows\r\n\r\n\xc3\x84\xff\na\0b\nlast";
        const auto device = openRowDevice(QByteArray(kText, sizeof kText - 1));
        LineReader reader(*device);
        QCOMPARE(bytes(reader.line()), QByteArray("first"));
        QCOMPARE(bytes(reader.line()), QByteArray());
        QCOMPARE(bytes(reader.line()), QByteArray("inner  blank"));
        QCOMPARE(bytes(reader.line()), QByteArray("windows"));
        QCOMPARE(textOf(reader), QString());
        QCOMPARE(textOf(reader), QString(QString(QChar(0xc4)) + QChar(0xfffd)));
        QCOMPARE(textOf(reader), QStringLiteral("a"));
        QCOMPARE(textOf(reader), QStringLiteral("last"));
        QCOMPARE(textOf(reader), QString());
        QCOMPARE(bytes(reader.line()), QByteArray());
    }

    void leavesTheDeviceAfterTheLastLineRead_data() { addDeviceRows(); }
    void leavesTheDeviceAfterTheLastLineRead()
    {
        const QByteArray text("one\r\ntwo\n3\n4\r\nlast, without a line end");
        const int lineEnds[] = {0, 5, 9, 11, 14, text.size(), text.size()};
        for (int lines = 0; lines < 7; ++lines) {
            const auto device = openRowDevice(text);
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

    void startsAtThePositionOfTheDevice()
    {
        const auto device = openDevice("one\ntwo\nthree\n");
        QVERIFY(device->seek(4));
        QCOMPARE(textOf(LineReader(*device)), QStringLiteral("two"));
        QCOMPARE(device->pos(), 8);
        QCOMPARE(textOf(LineReader(*device)), QStringLiteral("three"));
        QCOMPARE(textOf(LineReader(*device)), QString());
        QCOMPARE(device->pos(), 14);
    }

    void readsLinesOfAnyLength_data()
    {
        QTest::addColumn<int>("length");
        // Around the block size and its doubles, and around the chunk of a device.
        for (const int around : {0, 16384, 32768, 65536, 131072, 262144}) {
            for (int length = std::max(around - 2, 0); length <= around + 2; ++length)
                QTest::addRow("%d", length) << length;
        }
    }
    void readsLinesOfAnyLength()
    {
        QFETCH(int, length);
        const QByteArray line(length, 'x');
        for (const char* lineEnd : {"\n", "\r\n"}) {
            const QByteArray text = line + lineEnd + "short" + lineEnd + line + lineEnd + "last";
            const auto device = openDevice(text);
            {
                LineReader reader(*device);
                QVERIFY(bytes(reader.line()) == line);
                QCOMPARE(bytes(reader.line()), QByteArray("short"));
                QVERIFY(bytes(reader.line()) == line);
            }
            QCOMPARE(device->pos(), text.size() - 4);
        }
    }

    void readsNumbersAcrossBlocks_data() { addDeviceRows(); }
    void readsNumbersAcrossBlocks()
    {
        for (const char* lineEnd : {"\n", "\r\n", " \n"}) {
            QByteArray text = "header\n";
            std::vector<double> expected;
            for (int i = 0; i < 8000; ++i) {
                expected.push_back(i % 7 == 0 ? -i * 0.25 : i / 3.0);
                text += QByteArray::number(expected.back(), 'g', 17) + lineEnd;
            }
            const int end = text.size();
            text += "END";
            const auto device = openRowDevice(text);
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
        // Numbers after the end of the input are 0, and a line is a number even without its end.
        const auto device = openRowDevice("1\n\ntext\nNaN\n12");
        std::vector<double> numbers(7, -1.0);
        LineReader(*device).readNumbers(numbers);
        QVERIFY(std::isnan(numbers[3]));
        numbers[3] = 0.0;
        QVERIFY((numbers == std::vector<double>{1.0, 0.0, 0.0, 0.0, 12.0, 0.0, 0.0}));
        QVERIFY(device->atEnd());
    }

    void looksAheadForAWord_data()
    {
        addColumns<QByteArray, bool>("text", "isNext");
        addRows<QByteArray, bool>({{"alone on its line", "END_RUN\nmore", true},
                                   {"Windows line end", "END_RUN\r\nmore", true},
                                   {"at the end of the input", "END_RUN", true},
                                   {"blank and text after", "END_RUN text\n", true},
                                   {"tab and text after", "END_RUN\ttext\n", true},
                                   {"blank before", " END_RUN\n", true},
                                   {"empty line before", "\nEND_RUN\n", true},
                                   {"return before", "\rEND_RUN\n", true},
                                   {"two blanks before", "  END_RUN\n", false},
                                   {"letter after", "END_RUNS\n", false},
                                   {"cut short", "END_RU\n", false},
                                   {"cut short at the end of the input", "END_RU", false},
                                   {"other case", "end_run\n", false},
                                   {"empty input", "", false},
                                   {"preamble", "END_RUN_PREAMBLE\n", false}});
    }
    void looksAheadForAWord()
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, isNext);
        for (const bool isTextMode : {false, true}) {
            for (const qint64 size : {1, 3, 8, 1000}) {
                const auto device = openDevice(text, size, readMode(isTextMode));
                QCOMPARE(LineReader(*device).nextIs("END_RUN"), isNext);
                device->setTextModeEnabled(false);
                QCOMPARE(device->readAll(), text);
            }
        }
    }

    void looksAheadForAWordAcrossBlocks_data() { addDeviceRows(kQuickKinds); }
    void looksAheadForAWordAcrossBlocks()
    {
        for (int before = 65536 - 12; before <= 65536 + 2; ++before) {
            for (const char* lineEnd : {"\n", "\r\n"}) {
                const auto device =
                    openRowDevice(QByteArray(before - 1, 'x') + "\nEND_RUN" + lineEnd + "mark\n");
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

    void looksAtTheNextByte_data() { addDeviceRows(); }
    void looksAtTheNextByte()
    {
        const auto device = openRowDevice("method: x\n method\n\nM\n");
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

    void atEndReadsNothing()
    {
        const auto device = openDevice("one");
        LineReader reader(*device);
        QVERIFY(!reader.atEnd());
        QVERIFY(!reader.atEnd());
        QCOMPARE(bytes(reader.line()), QByteArray("one"));
        QVERIFY(reader.atEnd());
        QCOMPARE(bytes(reader.line()), QByteArray());
        QVERIFY(reader.atEnd());
    }

    void countsLines_data()
    {
        addColumns<QByteArray, int>("text", "lines");
        addRows<QByteArray, int>({{"no byte", "", 0},
                                  {"empty line", "\n", 1},
                                  {"lines", "a\n\nb\n", 3},
                                  {"last line without an end", "a\nb", 2},
                                  {"many", QByteArray("1.5\n").repeated(100000), 100000}});
    }
    void countsLines()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, lines);
        constexpr int kMore = 5;
        const auto device = openDevice(text);
        LineReader reader(*device);
        std::vector<double> numbers(static_cast<std::size_t>(lines / 2));
        reader.readNumbers(numbers);
        reader.skipLines(lines - lines / 2);
        QCOMPARE(reader.lineNumber(), qint64(lines));
        QCOMPARE(reader.linesPastEnd(), qint64(0));
        numbers.resize(kMore);
        reader.readNumbers(numbers);
        QCOMPARE(reader.lineNumber(), qint64(lines + kMore));
        QCOMPARE(reader.linesPastEnd(), qint64(kMore));
    }

    void restoresTextMode_data()
    {
        // Not byte by byte: QIODevice::readLine then ends a line at its "\r".
        addDeviceRows(kQuickKinds);
    }
    void restoresTextMode()
    {
        QFETCH(bool, isTextMode);
        const auto device = openRowDevice("one\r\ntwo\r\nthree\r\n");
        QCOMPARE(textOf(LineReader(*device)), QStringLiteral("one"));
        QCOMPARE(device->isTextModeEnabled(), isTextMode);
        QCOMPARE(device->readLine(), QByteArray(isTextMode ? "two\n" : "two\r\n"));
    }

    void asksAPipeForNoMoreThanItNeeds_data() { addPipeRows(); }
    void asksAPipeForNoMoreThanItNeeds()
    {
        QFETCH(int, pieceSize);
        QFETCH(int, mode);
        QFETCH(QByteArray, lineEnd);
        // What is read, and a text with just the bytes for that.
        const std::pair<const char*, std::function<void(LineReader&)>> kReads[] = {
            {"one\n",
             [](LineReader& reader) { QCOMPARE(bytes(reader.line()), QByteArray("one")); }},
            {"one\n", [](LineReader& reader) { QVERIFY(reader.nextByteIs('o')); }},
            {"END_RUN\n", [](LineReader& reader) { QVERIFY(reader.nextIs("END_RUN")); }},
            {"o", [](LineReader& reader) { QVERIFY(!reader.atEnd()); }},
            {"1\n2.5\n x\n",
             [](LineReader& reader) {
                 std::vector<double> numbers(3);
                 reader.readNumbers(numbers);
                 QCOMPARE(numbers, (std::vector<double>{1.0, 2.5, 0.0}));
             }},
            {"1\n2\n3\n", [](LineReader& reader) { reader.skipLines(3); }},
            {"one\n2\nmore\nEND_RUN\n",
             [](LineReader& reader) {
                 reader.line();
                 reader.skipLines(1);
                 QVERIFY(reader.nextByteIs('m'));
                 QVERIFY(!reader.nextIs("END_RUN"));
                 reader.line();
                 QVERIFY(reader.nextIs("END_RUN"));
                 reader.line();
             }},
        };
        for (const auto& [text, read] : kReads) {
            PieceDevice device(QByteArray(text).replace("\n", lineEnd), pieceSize);
            QVERIFY(device.open(static_cast<QIODevice::OpenMode>(mode)));
            {
                LineReader reader(device);
                read(reader);
            }
            QVERIFY2(!device.isOverdrawn(), text);
        }
    }

    void leavesWhatItDidNotUseInAPipe_data() { addPipeRows(); }
    void leavesWhatItDidNotUseInAPipe()
    {
        QFETCH(int, pieceSize);
        QFETCH(int, mode);
        QFETCH(QByteArray, lineEnd);
        const QByteArray rest = QByteArray("two\nthree\n").replace("\n", lineEnd);
        PieceDevice device("one" + lineEnd + rest, pieceSize);
        QVERIFY(device.open(static_cast<QIODevice::OpenMode>(mode)));
        QCOMPARE(textOf(LineReader(device)), QStringLiteral("one"));
        QCOMPARE(LineReader(device).nextByteIs('t'), true);
        // The returned bytes are read first, without any others, and are enough.
        QCOMPARE(textOf(LineReader(device)), QStringLiteral("two"));
        QVERIFY(!device.isOverdrawn());
        device.setTextModeEnabled(false);
        QCOMPARE(device.readAll(), "three" + lineEnd);
    }

    // Within the block at hand and beyond it, in any order.
    void goesBackToAPlace_data()
    {
        addColumns<bool, bool>("isTextMode", "hasReturns");
        addRows<bool, bool>({{"plain", false, false},
                             {"text mode", true, false},
                             {"Windows line ends in text mode", true, true}});
    }
    void goesBackToAPlace()
    {
        QFETCH(bool, isTextMode);
        QFETCH(bool, hasReturns);
        QByteArray text;
        constexpr int kLines = 20000; // more than two blocks
        for (int i = 1; i <= kLines; ++i)
            text += QByteArray::number(i) + (hasReturns ? "\r\n" : "\n");
        QBuffer device(&text);
        QVERIFY(
            device.open(QIODevice::ReadOnly | (isTextMode ? QIODevice::Text : QIODevice::NotOpen)));
        {
            LineReader reader(device);
            std::vector<LinePlace> places;
            for (int i = 0; i < kLines; ++i) {
                places.push_back(reader.place());
                reader.line();
            }
            constexpr int kStride = 7919; // without a common factor
            for (int i = 0; i < kLines; ++i) {
                const int line = static_cast<int>(qint64(i) * kStride % kLines);
                reader.goTo(places[static_cast<std::size_t>(line)]);
                QCOMPARE(bytes(reader.line()), QByteArray::number(line + 1));
                QCOMPARE(reader.lineNumber(), qint64(line + 1));
            }
            reader.goTo(places.front());
            reader.line();
        }
        QCOMPARE(device.pos(), qint64(hasReturns ? 3 : 2));
    }

    void closedDeviceIsEmpty()
    {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral(".*device not open")));
        QBuffer device;
        LineReader reader(device);
        QCOMPARE(textOf(reader), QString());
    }
};

HTS_TEST(LineReaderTest, NoApplication)
#include "tst_linereader.moc"
