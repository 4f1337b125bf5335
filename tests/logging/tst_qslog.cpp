#include <QMutex>
#include <QThread>
#include <QtTest>

#include <functional>
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
void log(int level, const Text& text)
{
    const std::function<void()> statements[] = {
        [&] { QLOG_TRACE() << text; }, [&] { QLOG_DEBUG() << text; }, [&] { QLOG_INFO() << text; },
        [&] { QLOG_WARN() << text; },  [&] { QLOG_ERROR() << text; }, [&] { QLOG_FATAL() << text; },
    };
    statements[level]();
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
    // Before anything is changed: the initial state of the logger.
    void initTestCase()
    {
        startsAtInfo();
        Logger::instance().addDestination(
            QsLogging::DestinationFactory::MakeFunctorDestination(write));
    }

    void init()
    {
        Logger::instance().setLoggingLevel(QsLogging::InfoLevel);
        writtenLines.clear();
        overlappingCalls = 0;
    }

    void startsAtInfo() { QCOMPARE(Logger::instance().loggingLevel(), QsLogging::InfoLevel); }

    void levelsHaveTheirNumbers()
    {
        const Level levels[] = {QsLogging::TraceLevel, QsLogging::DebugLevel, QsLogging::InfoLevel,
                                QsLogging::WarnLevel,  QsLogging::ErrorLevel, QsLogging::FatalLevel,
                                QsLogging::OffLevel};
        for (int number = 0; number < 7; ++number)
            QCOMPARE(int(levels[number]), number);
    }

    void formatsLines()
    {
        Logger::instance().setLoggingLevel(QsLogging::TraceLevel);
        const char* const names[] = {"TRACE ", "DEBUG ", "INFO  ", "WARN  ", "ERROR ", "FATAL "};
        for (int level = 0; level < 6; ++level) {
            log(level, "text");
            QCOMPARE(writtenLines.size(), level + 1);
            QCOMPARE(int(writtenLines.last().level), level);
            const QRegularExpression line(
                QStringLiteral(
                    "^%1[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} "
                    "text $")
                    .arg(QLatin1String(names[level])));
            QVERIFY2(line.match(writtenLines.last().text).hasMatch(),
                     qUtf8Printable(writtenLines.last().text));
        }
    }

    void stampsLocalTime()
    {
        const QString format = QStringLiteral("yyyy-MM-ddThh:mm:ss.zzz");
        const QLocale locale = QLocale::c();
        const QString before = locale.toString(QDateTime::currentDateTime(), format);
        QLOG_INFO() << "text";
        const QString after = locale.toString(QDateTime::currentDateTime(), format);
        const QString stamp = writtenLines.first().text.mid(6, format.size());
        // Compared as text, which is in the order of time except in the hour in which a clock is
        // set back.
        QVERIFY2(before > after || (before <= stamp && stamp <= after), qUtf8Printable(stamp));
    }

    void stampsInAsciiDigitsUnderEveryLocale()
    {
        const QStringList locales = localesWithOwnDigits();
        QVERIFY(locales.contains(QStringLiteral("fa_IR")));
        for (const QString& locale : locales) {
            const QString failure = failureUnderLocale(locale, {QStringLiteral("tst_qslog"),
                                                                QStringLiteral("formatsLines"),
                                                                QStringLiteral("stampsLocalTime")});
            QVERIFY2(failure.isEmpty(), qUtf8Printable(locale + QLatin1Char('\n') + failure));
        }
    }

    void streamsLikeADebugStream()
    {
        QLOG_INFO() << "plain \"text\"";
        QLOG_INFO() << QStringLiteral("a \"quoted\" \\ text");
        QLOG_INFO() << "count" << 3 << "of" << 4.5 << true;
        QLOG_INFO();
        QLOG_INFO() << "two\nlines";
        const char* const expected[] = {"plain \"text\" ", "\"a \\\"quoted\\\" \\\\ text\" ",
                                        "count 3 of 4.5 true ", "", "two\nlines "};
        QCOMPARE(writtenLines.size(), 5);
        for (int i = 0; i < 5; ++i)
            QCOMPARE(streamedText(writtenLines.at(i).text), QLatin1String(expected[i]));
    }

    void dropsLinesBelowTheThreshold()
    {
        for (int threshold = 0; threshold < 7; ++threshold) {
            writtenLines.clear();
            Logger::instance().setLoggingLevel(static_cast<Level>(threshold));
            QCOMPARE(int(Logger::instance().loggingLevel()), threshold);
            for (int level = 0; level < 6; ++level)
                log(level, "text");
            QCOMPARE(writtenLines.size(), qMax(6 - threshold, 0));
            for (int i = 0; i < writtenLines.size(); ++i)
                QCOMPARE(int(writtenLines.at(i).level), threshold + i);
        }
    }

    void evaluatesNothingBelowTheThreshold()
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
    void macroIsOneStatement()
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

    void keepsDestinationsApart()
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

    void writesOneLineAtATime()
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
};

HTS_TEST(TestQsLog, QCoreApplication)

#include "tst_qslog.moc"
