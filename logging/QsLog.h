#ifndef LOGGING_QSLOG_H
#define LOGGING_QSLOG_H

#include <atomic>

#include <QDebug>
#include <QMutex>
#include <QString>
#include <QVector>

#include "QsLogDest.h"
#include "QsLogLevel.h"

// A drop-in for the part of the QsLog library that this program uses.
//
//     QsLogging::Logger::instance().setLoggingLevel(QsLogging::TraceLevel);
//     QsLogging::Logger::instance().addDestination(destination);
//     QLOG_INFO() << "Starting with" << count << "slots";
//
// A line is the level's name padded to five characters, a blank, the local time as
// yyyy-MM-ddThh:mm:ss.zzz, a blank, and the streamed text:
// "INFO  2015-06-30T14:05:09.123 Starting with 3 slots ". Nothing below the logger's level is
// formatted. Safe to use from any thread.

namespace QsLogging {

class Logger
{
public:
    static Logger& instance();

    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;

    // Adds a destination for all lines from now on; the logger shares its ownership.
    void addDestination(const DestinationPtr& destination);
    // Lines below this level are dropped; InfoLevel at the start, OffLevel drops all.
    void setLoggingLevel(Level level);
    Level loggingLevel() const;

    // Collects the text of one line, which goes to the destinations when the helper is destroyed.
    class Helper
    {
    public:
        // `level` is below OffLevel.
        explicit Helper(Level level);
        ~Helper();
        Helper(const Helper&) = delete;
        Helper& operator=(const Helper&) = delete;
        QDebug& stream() { return m_stream; }

    private:
        const Level m_level;
        QString m_text;
        QDebug m_stream;
    };

private:
    Logger() = default;
    void write(const QString& line, Level level);

    std::atomic<Level> m_level{InfoLevel};
    QMutex m_mutex; // guards m_destinations and the calls to them
    QVector<DestinationPtr> m_destinations;
};

} // namespace QsLogging

#define QSLOG_AT(level)                                                                            \
    if (QsLogging::Logger::instance().loggingLevel() > (level)) {                                  \
    } else                                                                                         \
        QsLogging::Logger::Helper(level).stream()

#define QLOG_TRACE() QSLOG_AT(QsLogging::TraceLevel)
#define QLOG_DEBUG() QSLOG_AT(QsLogging::DebugLevel)
#define QLOG_INFO() QSLOG_AT(QsLogging::InfoLevel)
#define QLOG_WARN() QSLOG_AT(QsLogging::WarnLevel)
#define QLOG_ERROR() QSLOG_AT(QsLogging::ErrorLevel)
#define QLOG_FATAL() QSLOG_AT(QsLogging::FatalLevel)

#endif // LOGGING_QSLOG_H
