#include "QsLog.h"

#include <QDateTime>
#include <QMutexLocker>

namespace QsLogging {

namespace {

QLatin1String paddedName(Level level)
{
    static const char* const kNames[] = {"TRACE", "DEBUG", "INFO ", "WARN ", "ERROR", "FATAL"};
    return QLatin1String(kNames[level]);
}

// The local time as yyyy-MM-ddThh:mm:ss.zzz. What stands before the milliseconds is made once a
// second: converting to local time asks the operating system each time.
QString timeStamp()
{
    thread_local qint64 lastSecond = -1;
    thread_local QString secondText;
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const qint64 second = now / 1000;
    if (second != lastSecond) {
        lastSecond = second;
        secondText = QDateTime::fromMSecsSinceEpoch(second * 1000)
                         .toString(QStringLiteral("yyyy-MM-ddThh:mm:ss."));
    }
    const auto milliseconds = static_cast<int>(now % 1000);
    const QChar digits[] = {QLatin1Char(static_cast<char>('0' + milliseconds / 100)),
                            QLatin1Char(static_cast<char>('0' + milliseconds / 10 % 10)),
                            QLatin1Char(static_cast<char>('0' + milliseconds % 10))};
    return secondText + QString(digits, 3);
}

QString formattedLine(Level level, const QString& text)
{
    return paddedName(level) + QLatin1Char(' ') + timeStamp() + QLatin1Char(' ') + text;
}

} // namespace

Logger& Logger::instance()
{
    static Logger logger;
    return logger;
}

void Logger::addDestination(const DestinationPtr& destination)
{
    const QMutexLocker locker(&m_mutex);
    m_destinations.append(destination);
}

void Logger::setLoggingLevel(Level level)
{
    m_level = level;
}

Level Logger::loggingLevel() const
{
    return m_level;
}

void Logger::write(const QString& line, Level level)
{
    const QMutexLocker locker(&m_mutex);
    for (const DestinationPtr& destination : qAsConst(m_destinations))
        destination->write(line, level);
}

Logger::Helper::Helper(Level level) : m_level(level), m_stream(&m_text) {}

Logger::Helper::~Helper()
{
    Logger::instance().write(formattedLine(m_level, m_text), m_level);
}

} // namespace QsLogging
