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

QString formattedLine(Level level, const QString& text)
{
    const QString time =
        QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-ddThh:mm:ss.zzz"));
    return paddedName(level) + QLatin1Char(' ') + time + QLatin1Char(' ') + text;
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
