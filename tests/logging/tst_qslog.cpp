#include <QMutex>
#include <QThread>
#include <QtTest>

#include <memory>
#include <vector>

#include "QsLog.h"
#include "tests/support/hostlocale.h"
#include "tests/support/testmain.h"

using QsLogging::Level;
using QsLogging::Logger;

namespace {

struct Line
{
    QString text;
    Level level;
};

QMutex writeMutex;
QVector<Line> writtenLines;
int runningCalls = 0;
int overlappingCalls = 0;

// Deliberately without a lock around the append: the logger has to call one at a time.
void write(const QString& message, Level level)
{
    {
        const QMutexLocker locker(&writeMutex);
        overlappingCalls += runningCalls;
        ++runningCalls;
    }
    QThread::yieldCurrentThread();
    writtenLines.append({message, level});
    const QMutexLocker locker(&writeMutex);
    --runningCalls;
}

int countedCalls = 0;

void count(const QString& /*message*/, Level /*level*/)
{
    ++countedCalls;
}

// An operand that shows whether it was evaluated.
QString touch(int* evaluations)
{
    ++*evaluations;
    return QStringLiteral("touched");
}

// Logs `text` at the level.
template<typename Text>
void log(Level level, const Text& text)
{
    switch (level) {
    case QsLogging::TraceLevel:
        QLOG_TRACE() << text;
        break;
    case QsLogging::DebugLevel:
        QLOG_DEBUG() << text;
        break;
    case QsLogging::InfoLevel:
        QLOG_INFO() << text;
        break;
    case QsLogging::WarnLevel:
        QLOG_WARN() << text;
        break;
    case QsLogging::ErrorLevel:
        QLOG_ERROR() << text;
        break;
    default:
        QLOG_FATAL() << text;
    }
}

// The text after level name and time stamp.
QString streamedText(const QString& line)
{
    return line.mid(6 + 23 + 1);
}

} // namespace

class TestQsLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void startsAtInfo();
    void levelsHaveTheirNumbers();
    void formatsLines_data();
    void formatsLines();
    void stampsLocalTime();
    void stampsInAsciiDigitsUnderEveryLocale();
    void streamsLikeADebugStream_data();
    void streamsLikeADebugStream();
    void dropsLinesBelowTheThreshold_data();
    void dropsLinesBelowTheThreshold();
    void evaluatesNothingBelowTheThreshold();
    void macroIsOneStatement();
    void keepsDestinationsApart();
    void writesOneLineAtATime();
};

// Before anything is changed: the initial state of the logger.
void TestQsLog::initTestCase()
{
    startsAtInfo();
    Logger::instance().addDestination(QsLogging::DestinationFactory::MakeFunctorDestination(write));
}

void TestQsLog::init()
{
    Logger::instance().setLoggingLevel(QsLogging::InfoLevel);
    writtenLines.clear();
    overlappingCalls = 0;
}

void TestQsLog::startsAtInfo()
{
    QCOMPARE(Logger::instance().loggingLevel(), QsLogging::InfoLevel);
}

void TestQsLog::levelsHaveTheirNumbers()
{
    const Level levels[] = {QsLogging::TraceLevel, QsLogging::DebugLevel, QsLogging::InfoLevel,
                            QsLogging::WarnLevel,  QsLogging::ErrorLevel, QsLogging::FatalLevel,
                            QsLogging::OffLevel};
    for (int number = 0; number < 7; ++number)
        QCOMPARE(int(levels[number]), number);
}

void TestQsLog::formatsLines_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("name");

    QTest::newRow("trace") << 0 << QStringLiteral("TRACE ");
    QTest::newRow("debug") << 1 << QStringLiteral("DEBUG ");
    QTest::newRow("info") << 2 << QStringLiteral("INFO  ");
    QTest::newRow("warn") << 3 << QStringLiteral("WARN  ");
    QTest::newRow("error") << 4 << QStringLiteral("ERROR ");
    QTest::newRow("fatal") << 5 << QStringLiteral("FATAL ");
}

void TestQsLog::formatsLines()
{
    QFETCH(const int, level);
    QFETCH(const QString, name);

    Logger::instance().setLoggingLevel(QsLogging::TraceLevel);
    log(static_cast<Level>(level), "text");
    QCOMPARE(writtenLines.size(), 1);
    QCOMPARE(int(writtenLines.first().level), level);
    const QRegularExpression line(
        QStringLiteral("^") + name +
        QStringLiteral("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} text $"));
    QVERIFY2(line.match(writtenLines.first().text).hasMatch(),
             qUtf8Printable(writtenLines.first().text));
}

void TestQsLog::stampsLocalTime()
{
    const QString format = QStringLiteral("yyyy-MM-ddThh:mm:ss.zzz");
    const QLocale locale = QLocale::c();
    const QString before = locale.toString(QDateTime::currentDateTime(), format);
    QLOG_INFO() << "text";
    const QString after = locale.toString(QDateTime::currentDateTime(), format);
    const QString stamp = writtenLines.first().text.mid(6, format.size());
    // Compared as text, which is in the order of time except in the hour in which a clock is set
    // back.
    QVERIFY2(before > after || (before <= stamp && stamp <= after), qUtf8Printable(stamp));
}

void TestQsLog::stampsInAsciiDigitsUnderEveryLocale()
{
    const QStringList locales = localesWithOwnDigits();
    QVERIFY(locales.contains(QStringLiteral("fa_IR")));
    for (const QString& locale : locales) {
        const QString failure =
            failureUnderLocale(locale, {QStringLiteral("tst_qslog"), QStringLiteral("formatsLines"),
                                        QStringLiteral("stampsLocalTime")});
        QVERIFY2(failure.isEmpty(), qUtf8Printable(locale + QLatin1Char('\n') + failure));
    }
}

void TestQsLog::streamsLikeADebugStream_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("expected");

    QTest::newRow("plain text") << 0 << QStringLiteral("plain \"text\" ");
    QTest::newRow("string") << 1 << QStringLiteral("\"a \\\"quoted\\\" \\\\ text\" ");
    QTest::newRow("several items") << 2 << QStringLiteral("count 3 of 4.5 true ");
    QTest::newRow("nothing") << 3 << QString();
    QTest::newRow("line feed") << 4 << QStringLiteral("two\nlines ");
}

void TestQsLog::streamsLikeADebugStream()
{
    QFETCH(const int, kind);
    QFETCH(const QString, expected);

    switch (kind) {
    case 0:
        QLOG_INFO() << "plain \"text\"";
        break;
    case 1:
        QLOG_INFO() << QStringLiteral("a \"quoted\" \\ text");
        break;
    case 2:
        QLOG_INFO() << "count" << 3 << "of" << 4.5 << true;
        break;
    case 3:
        QLOG_INFO();
        break;
    default:
        QLOG_INFO() << "two\nlines";
    }
    QCOMPARE(writtenLines.size(), 1);
    QCOMPARE(streamedText(writtenLines.first().text), expected);
}

void TestQsLog::dropsLinesBelowTheThreshold_data()
{
    QTest::addColumn<int>("threshold");
    for (int threshold = 0; threshold < 7; ++threshold)
        QTest::addRow("%d", threshold) << threshold;
}

void TestQsLog::dropsLinesBelowTheThreshold()
{
    QFETCH(const int, threshold);

    Logger::instance().setLoggingLevel(static_cast<Level>(threshold));
    QCOMPARE(int(Logger::instance().loggingLevel()), threshold);
    for (int level = 0; level < 6; ++level)
        log(static_cast<Level>(level), "text");
    QVector<int> levels;
    for (const Line& line : qAsConst(writtenLines))
        levels.append(line.level);
    QVector<int> expected;
    for (int level = threshold; level < 6; ++level)
        expected.append(level);
    QCOMPARE(levels, expected);
}

void TestQsLog::evaluatesNothingBelowTheThreshold()
{
    int evaluations = 0;
    QLOG_TRACE() << touch(&evaluations);
    QLOG_DEBUG() << touch(&evaluations);
    QCOMPARE(evaluations, 0);
    QLOG_INFO() << touch(&evaluations);
    QCOMPARE(evaluations, 1);
    Logger::instance().setLoggingLevel(QsLogging::OffLevel);
    QLOG_FATAL() << touch(&evaluations);
    QCOMPARE(evaluations, 1);
}

// An else after it belongs to the if before it.
void TestQsLog::macroIsOneStatement()
{
    for (const bool condition : {true, false}) {
        if (condition)
            QLOG_DEBUG() << "below the threshold";
        else
            QLOG_INFO() << "in the else branch";
    }
    QCOMPARE(writtenLines.size(), 1);
    QCOMPARE(streamedText(writtenLines.first().text), QStringLiteral("in the else branch "));
}

void TestQsLog::keepsDestinationsApart()
{
    countedCalls = 0;
    const QsLogging::DestinationPtr destination =
        QsLogging::DestinationFactory::MakeFunctorDestination(count);
    QVERIFY(destination->isValid());
    destination->write(QStringLiteral("text"), QsLogging::InfoLevel);
    QCOMPARE(countedCalls, 1);
    Logger::instance().addDestination(destination);
    QLOG_INFO() << "text";
    QCOMPARE(countedCalls, 2);
    QCOMPARE(writtenLines.size(), 1);
}

void TestQsLog::writesOneLineAtATime()
{
    const int threadCount = 4;
    const int lineCount = 500;
    std::vector<std::unique_ptr<QThread>> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back(QThread::create([i] {
            for (int k = 0; k < lineCount; ++k)
                QLOG_INFO() << i << "line" << k;
        }));
        threads.back()->start();
    }
    for (const auto& thread : threads)
        QVERIFY(thread->wait());

    QCOMPARE(overlappingCalls, 0);
    QVector<QStringList> texts(threadCount); // each thread's lines, which keep their order
    for (const Line& line : qAsConst(writtenLines)) {
        const QString text = streamedText(line.text);
        const int thread = text.section(QLatin1Char(' '), 0, 0).toInt();
        texts[thread].append(text);
    }
    for (int i = 0; i < threadCount; ++i) {
        QStringList expected;
        for (int k = 0; k < lineCount; ++k)
            expected.append(QStringLiteral("%1 line %2 ").arg(i).arg(k));
        QCOMPARE(texts.at(i), expected);
    }
}

HTS_TEST(TestQsLog, QCoreApplication)

#include "tst_qslog.moc"
