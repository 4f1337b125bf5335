#include "app/logstream.h"

#include <QFile>

QTextStream logStream;

void logMessageHandler(QtMsgType, const QMessageLogContext&, const QString& message)
{
    if (logStream.device() != nullptr)
        logStream << message << Qt::endl;
}

LogStreamAttachment::LogStreamAttachment(QFile& file)
{
    Q_ASSERT(logStream.device() == nullptr && file.isOpen() && file.isWritable());
    logStream.setDevice(&file);
    m_previousHandler = qInstallMessageHandler(logMessageHandler);
}

LogStreamAttachment::~LogStreamAttachment()
{
    qInstallMessageHandler(m_previousHandler);
    logStream.setDevice(nullptr);
}
