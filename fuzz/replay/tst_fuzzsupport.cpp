#include <QFile>
#include <QtTest>

#include "fuzz/fuzzsupport.h"
#include "tests/support/testmain.h"

class FuzzSupportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void scratchFileHoldsLastContent()
    {
        const fuzz::ScratchFile file;
        file.write("longer than the next");
        file.write("next\n");
        QFile opened(file.path());
        QVERIFY(opened.open(QIODevice::ReadOnly));
        QCOMPARE(opened.readAll(), QByteArray("next\n"));
    }
};

HTS_TEST(FuzzSupportTest, NoApplication)
#include "tst_fuzzsupport.moc"
