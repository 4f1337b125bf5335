#include <QThread>
#include <QtTest>

#include <atomic>
#include <iterator>
#include <memory>
#include <vector>

#include "QsLog.h"
#include "tests/support/testmain.h"
#include "utils/messagewatcher.h"
#include "utils/verboselogging.h"

using UtilsNS::messageWatcher;
using UtilsNS::watcherDestination;

namespace {

struct Line
{
    QsLogging::Level level = QsLogging::OffLevel;
    QString text;
};

// Collects what the watcher emits until it is destroyed.
class Recorder : public QObject
{
public:
    Recorder()
    {
        connect(
            &messageWatcher, &UtilsNS::MessageWatcher::message, this,
            [this](QsLogging::Level level, const QString& text) {
                lines.append({level, text});
                thread = QThread::currentThread();
            },
            Qt::DirectConnection);
    }

    QVector<Line> lines;
    QThread* thread = nullptr; // of the last line
};

} // namespace

class TestMessageWatcher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void signalHasItsSignature()
    {
        const QMetaObject& meta = UtilsNS::MessageWatcher::staticMetaObject;
        QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
        const QMetaMethod method = meta.method(meta.methodOffset());
        QCOMPARE(method.methodType(), QMetaMethod::Signal);
        QCOMPARE(method.methodSignature(), QByteArray("message(QsLogging::Level,QString)"));
        QVERIFY(messageWatcher.parent() == nullptr);
    }

    void removesTheTimeStamp()
    {
        const char* const rows[][2] = {
            {"2015-06-30T14:05:09.123   Cannot read file", "Cannot read file"},
            {"WARN  2015-06-30T14:05:09.123 Text", "WARN  Text"},
            {"ERROR 2015-06-30T14:05:09.123 Text", "ERROR Text"},
            {"2015-06-30T14:05:09.123\t\n Text", "Text"},
            {"2015-06-30T14:05:09.123 Text  ", "Text  "},
            {"a 2015-06-30T14:05:09.123 b", "a b"},
            {"2015-06-30T14:05:09.123 ", ""},
            {"2015-06-30T14:05:09.123 2016-07-31T15:06:10.456 Text",
             "2016-07-31T15:06:10.456 Text"},
            {"2015-06-30T14:05:09 2016-07-31T15:06:10.456 Text", "2015-06-30T14:05:09 Text"},
            {"12015-06-30T14:05:09.123 Text", "1Text"},
            {"2015-06-30T14:05:09.12 Text", "2015-06-30T14:05:09.12 Text"},
            {"2015-06-30T14:05:09.1234 Text", "2015-06-30T14:05:09.1234 Text"},
            {"2015-06-30T14:05:09 Text", "2015-06-30T14:05:09 Text"},
            {"2015-06-30T14:05:09.123Text", "2015-06-30T14:05:09.123Text"},
            {"Text 2015-06-30T14:05:09.123", "Text 2015-06-30T14:05:09.123"},
            {"2015-06-30t14:05:09.123 Text", "2015-06-30t14:05:09.123 Text"},
            {"2015-06-30T14:05:09,123 Text", "2015-06-30T14:05:09,123 Text"},
            {"2015-06-30T14:05:09.12\xd9\xa3 Text", "Text"},
            {"2015-06-30T14:05:09.123\xc2\xa0Text", "Text"},
            {"2015-06-30T14:05:09.123\xc2\x85Text", "Text"},
            {"2015-06-30T14:05:09.123\xe2\x80\xa8Text", "Text"},
            {"2015-06-30T14:05:09.123\xe2\x80\x8bText",
             "2015-06-30T14:05:09.123\xe2\x80\x8bText"}, // a zero-width space is none
            {"2015-06-30T14:05:09.123 \xf0\x9d\x84\x9e", "\xf0\x9d\x84\x9e"},
            {"INFO  Text", "INFO  Text"},
            {"", ""},
        };
        const Recorder recorder;
        for (const auto& [line, expected] : rows) {
            watcherDestination(QString::fromUtf8(line), QsLogging::InfoLevel);
            QCOMPARE(recorder.lines.last().text, QString::fromUtf8(expected));
        }
        QCOMPARE(recorder.lines.size(), int(std::size(rows)));
        // A name that is not UTF-8.
        watcherDestination(QStringLiteral("2015-06-30T14:05:09.123 ") + QChar(0xdcff),
                           QsLogging::InfoLevel);
        QCOMPARE(recorder.lines.last().text, QString(QChar(0xdcff)));
    }

    void narrowsTheLevel()
    {
        const int expected[] = {2, 2, 2, 3, 4, 4}; // from Trace to Fatal
        const Recorder recorder;
        for (int level = QsLogging::TraceLevel; level <= QsLogging::FatalLevel; ++level) {
            watcherDestination(QStringLiteral("Text"), static_cast<QsLogging::Level>(level));
            QCOMPARE(recorder.lines.size(), level + 1);
            QCOMPARE(int(recorder.lines.last().level), expected[level]);
        }
    }

    void emitsOnTheLoggingThread()
    {
        const Recorder recorder;
        const std::unique_ptr<QThread> thread(QThread::create(
            [] { watcherDestination(QStringLiteral("Text"), QsLogging::InfoLevel); }));
        thread->start();
        QVERIFY(thread->wait());
        QCOMPARE(recorder.lines.size(), 1);
        QCOMPARE(recorder.thread, thread.get());
    }

    // Without the logger's lock: a matcher shared by the threads would cut the lines in wrong
    // places.
    void takesLinesOfSeveralThreadsAtOnce()
    {
        std::atomic<int> good{0};
        std::atomic<int> bad{0};
        QObject receiver;
        connect(
            &messageWatcher, &UtilsNS::MessageWatcher::message, &receiver,
            [&](QsLogging::Level, const QString& text) {
                const QString expected =
                    QString(text.size() - 1, QLatin1Char('a')) + QLatin1Char('b');
                ++(text == expected ? good : bad);
            },
            Qt::DirectConnection);

        const int threadCount = 4;
        const int lineCount = 2000;
        std::vector<std::unique_ptr<QThread>> threads;
        for (int i = 0; i < threadCount; ++i) {
            const QString line = QString(i * 7, QLatin1Char('a')) +
                                 QStringLiteral("2015-06-30T14:05:09.123") +
                                 QString(i + 1, QLatin1Char(' ')) + QLatin1Char('b');
            threads.emplace_back(QThread::create([line] {
                for (int k = 0; k < lineCount; ++k)
                    watcherDestination(line, QsLogging::InfoLevel);
            }));
            threads.back()->start();
        }
        for (const auto& thread : threads)
            QVERIFY(thread->wait());
        QCOMPARE(bad.load(), 0);
        QCOMPARE(good.load(), threadCount * lineCount);
    }

    void losesLinesWithoutReceiver()
    {
        watcherDestination(QStringLiteral("Lost"), QsLogging::InfoLevel);
        const Recorder recorder;
        watcherDestination(QStringLiteral("Kept"), QsLogging::InfoLevel);
        QCOMPARE(recorder.lines.size(), 1);
        QCOMPARE(recorder.lines.first().text, QStringLiteral("Kept"));
    }

    void setsTheThreshold()
    {
        for (const bool verbose : {true, false}) {
            QsLogging::Logger::instance().setLoggingLevel(QsLogging::OffLevel);
            UtilsNS::setVerboseLogging(verbose);
            QCOMPARE(int(QsLogging::Logger::instance().loggingLevel()), verbose ? 0 : 3);
        }
    }

    // From end to end: the logger's line format, its threshold and the destination's type.
    void servesTheLogger()
    {
        QsLogging::Logger::instance().addDestination(
            QsLogging::DestinationFactory::MakeFunctorDestination(watcherDestination));
        const Recorder recorder;

        UtilsNS::setVerboseLogging(false);
        QLOG_INFO() << "Below the threshold";
        QLOG_FATAL() << "Cannot"
                     << "go on";
        UtilsNS::setVerboseLogging(true);
        QLOG_TRACE() << "Step" << 3;

        QCOMPARE(recorder.lines.size(), 2);
        QCOMPARE(recorder.lines.at(0).text, QStringLiteral("FATAL Cannot go on "));
        QCOMPARE(recorder.lines.at(0).level, QsLogging::ErrorLevel);
        QCOMPARE(recorder.lines.at(1).text, QStringLiteral("TRACE Step 3 "));
        QCOMPARE(recorder.lines.at(1).level, QsLogging::InfoLevel);
    }
};

HTS_TEST(TestMessageWatcher, QCoreApplication)

#include "tst_messagewatcher.moc"
