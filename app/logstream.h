#ifndef APP_LOGSTREAM_H
#define APP_LOGSTREAM_H

#include <QMessageLogContext>
#include <QString>
#include <QTextStream>

class QFile;

// The log of the command-line mode. It has no device until the log file is open.
extern QTextStream logStream;

// Writes a message of the toolkit to logStream, only its text; does nothing while logStream has no
// device. For qInstallMessageHandler.
void logMessageHandler(QtMsgType type, const QMessageLogContext& context, const QString& message);

// While an object of this class exists, logStream writes to the file and receives the toolkit's
// messages. One at a time.
class LogStreamAttachment
{
public:
    // The file is open for writing and outlives the object.
    explicit LogStreamAttachment(QFile& file);
    ~LogStreamAttachment();
    LogStreamAttachment(const LogStreamAttachment&) = delete;
    LogStreamAttachment& operator=(const LogStreamAttachment&) = delete;

private:
    QtMessageHandler m_previousHandler;
};

#endif // APP_LOGSTREAM_H
