#ifndef TESTS_SUPPORT_LOGCOLLECTOR_H
#define TESTS_SUPPORT_LOGCOLLECTOR_H

#include <QStringList>
#include <QVector>

#include "QsLogLevel.h"

// Collects the log lines of one test. While an object exists, every line that the logger lets
// through (all of them, the level is set to Trace) is kept without its level name and time stamp.
// One object at a time.
class LogCollector
{
public:
    LogCollector();
    ~LogCollector();
    LogCollector(const LogCollector&) = delete;
    LogCollector& operator=(const LogCollector&) = delete;

    // Texts as streamed: QDebug puts a blank after every item and quotes around a QString.
    QStringList lines() const;
    // Level of each line.
    QVector<QsLogging::Level> levels() const;
};

#endif // TESTS_SUPPORT_LOGCOLLECTOR_H
