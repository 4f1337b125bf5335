#include <QFile>
#include <QtTest>

#include "fuzz/fuzzsupport.h"

class FuzzSupportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void scratchFileHoldsLastContent();
};

void FuzzSupportTest::scratchFileHoldsLastContent()
{
    const fuzz::ScratchFile file;
    file.write("longer than the next");
    file.write("next\n");
    QFile opened(file.path());
    QVERIFY(opened.open(QIODevice::ReadOnly));
    QCOMPARE(opened.readAll(), QByteArray("next\n"));
}

QTEST_APPLESS_MAIN(FuzzSupportTest)
#include "tst_fuzzsupport.moc"
