// The log of the command-line mode, which gets the messages of the toolkit while it is attached.

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "app/logstream.h"
#include "tests/support/hostsystem.h"
#include "tests/support/testmain.h"

namespace {

QStringList g_messages;

void keepMessage(QtMsgType, const QMessageLogContext&, const QString& message)
{
    g_messages.append(message);
}

} // namespace

class TestLogStream : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        m_file.reset(new QFile(m_folder->filePath(QStringLiteral("b.log"))));
        QVERIFY(m_file->open(QIODevice::WriteOnly | QIODevice::Text));
        g_messages.clear();
        m_handlerOfTheTest = qInstallMessageHandler(keepMessage);
    }

    void cleanup() { qInstallMessageHandler(m_handlerOfTheTest); }

    void attachedFileGetsTheBareText_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("debug") << int(QtDebugMsg);
        QTest::newRow("info") << int(QtInfoMsg);
        QTest::newRow("warning") << int(QtWarningMsg);
        QTest::newRow("critical") << int(QtCriticalMsg);
    }

    void attachedFileGetsTheBareText()
    {
        QFETCH(int, type);
        {
            const LogStreamAttachment attachment(*m_file);
            const QMessageLogger logger("source.cpp", 17, "function()", "category");
            switch (type) {
            case QtDebugMsg:
                logger.debug("x");
                break;
            case QtInfoMsg:
                logger.info("x");
                break;
            case QtWarningMsg:
                logger.warning("x");
                break;
            default:
                logger.critical("x");
            }
        }
        QCOMPARE(content(), QByteArray("x\n"));
        QCOMPARE(g_messages, QStringList());
    }

    void textsAndMessagesAreInOrder()
    {
        {
            const LogStreamAttachment attachment(*m_file);
            logStream << "before" << Qt::endl;
            qWarning("x");
            qWarning(" two\nlines ");
            logStream << "after";
        }
        QCOMPARE(content(), QByteArray("before\nx\n two\nlines \nafter"));
    }

    void detachedFileGetsNothing()
    {
        {
            const LogStreamAttachment attachment(*m_file);
            qWarning("x");
        }
        QVERIFY(logStream.device() == nullptr);
        QVERIFY(m_file->isOpen());
        qWarning("y");
        QCOMPARE(g_messages, QStringList{QStringLiteral("y")});
        QCOMPARE(content(), QByteArray("x\n"));
    }

    void handlerWithoutDeviceDoesNothing()
    {
        QVERIFY(logStream.device() == nullptr);
        logMessageHandler(QtWarningMsg, QMessageLogContext(), QStringLiteral("lost"));
        // A stream without a device would print a warning.
        QCOMPARE(g_messages, QStringList());
        {
            const LogStreamAttachment attachment(*m_file);
            qWarning("x");
        }
        QCOMPARE(content(), QByteArray("x\n"));
    }

private:
    // The content of the file after it is closed.
    QByteArray content() const
    {
        m_file->close();
        QFile file(m_file->fileName());
        return file.open(QIODevice::ReadOnly) ? fromTextMode(file.readAll())
                                              : QByteArray("(no file)");
    }

    QScopedPointer<QTemporaryDir> m_folder;
    QScopedPointer<QFile> m_file;
    QtMessageHandler m_handlerOfTheTest = nullptr;
};

HTS_TEST(TestLogStream, QCoreApplication)

#include "tst_logstream.moc"
