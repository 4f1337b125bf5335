#include "QsLog.h"

#include <QDateTime>
#include <QLocale>
#include <QMutexLocker>

namespace QsLogging {

namespace {

QLatin1String paddedName(Level level)
{
    static const char* const kNames[] = {"TRACE", "DEBUG", "INFO ", "WARN ", "ERROR", "FATAL"};
    Q_ASSERT(level >= TraceLevel && level < OffLevel);
    return QLatin1String(kNames[level]);
}

// The local time of a second since the epoch as yyyy-MM-ddThh:mm:ss and a point. Computed once a
// second: each conversion to local time asks the operating system.
const QString& secondText(qint64 second)
{
    thread_local qint64 lastSecond = -1;
    thread_local QString text;
    if (second != lastSecond) {
        lastSecond = second;
        // QDateTime::toString would write the digits of the host's locale.
        text = QLocale::c().toString(QDateTime::fromMSecsSinceEpoch(second * 1000),
                                     QStringLiteral("yyyy-MM-ddThh:mm:ss."));
    }
    return text;
}

QString formattedLine(Level level, const QString& text)
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const auto milliseconds = static_cast<int>(now % 1000);
    const char digits[] = {static_cast<char>('0' + milliseconds / 100),
                           static_cast<char>('0' + milliseconds / 10 % 10),
                           static_cast<char>('0' + milliseconds % 10)};
    return paddedName(level) + QLatin1Char(' ') + secondText(now / 1000) +
           QLatin1String(digits, 3) + QLatin1Char(' ') + text;
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
