#include <QTemporaryDir>
#include <QtTest>

#include "tests/support/helprecorder.h"
#include "tests/support/testmain.h"
#include "utils/helpurl.h"

class TestWindowsHelpUrl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsTheBrowserWithTheUrl_data();
    void startsTheBrowserWithTheUrl();
};

void TestWindowsHelpUrl::startsTheBrowserWithTheUrl_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QByteArray>("arguments"); // their number and the first of them
    QTest::newRow("plain") << "file:///C:/Conv/Help/a.html"
                           << QByteArray("1|file:///C:/Conv/Help/a.html");
    QTest::newRow("fragment") << "file:///C:/Conv/Help/a.html#part-2"
                              << QByteArray("1|file:///C:/Conv/Help/a.html#part-2");
    QTest::newRow("quotes, blank and fragment") << "\"file:///C:/My Conv/Help/a.html#x\""
                                                << QByteArray("1|file:///C:/My Conv/Help/a.html#x");
    QTest::newRow("blank without quotes")
        << "file:///C:/My Conv/a.html" << QByteArray("2|file:///C:/My");
    QTest::newRow("other letters") << QString::fromUtf8("file:///C:/\xc3\xa9/\xe6\xb9\x96.html")
                                   << QByteArray("1|file:///C:/\xc3\xa9/\xe6\xb9\x96.html");
}

void TestWindowsHelpUrl::startsTheBrowserWithTheUrl()
{
    QFETCH(QString, url);
    QFETCH(QByteArray, arguments);
    const QTemporaryDir folder;
    const HelpRecorder recorder(folder.path());
    const Status status = UtilsNS::openHelpUrl(url);
    QCOMPARE(status.message, QString());
    QVERIFY(!status.flag);
    QTRY_VERIFY_WITH_TIMEOUT(recorder.hasOpened(), 60000);
    QCOMPARE(recorder.opened(), arguments);
    QCOMPARE(recorder.commandLine(), url.toUtf8());
}

HTS_TEST(TestWindowsHelpUrl, QCoreApplication)

#include "tst_helpurl_win.moc"
