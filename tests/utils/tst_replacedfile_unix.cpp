// What is there stays until the new content is whole; what is no regular file is written directly.

#include <cerrno>

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include "tests/support/filesizelimit_unix.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "utils/replacedfile.h"

using UtilsNS::ReplacedFile;

class ReplacedFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(QStringLiteral("%1 file"));
        writeFile(m_path, "before");
    }

    void takesThePlaceWhenItIsWhole()
    {
        ReplacedFile file(m_path);
        QCOMPARE(file.open().message, QString());
        QVERIFY(file.isDroppable());
        file.device().write("after");
        QCOMPARE(readFile(m_path), QByteArray("before"));
        QCOMPARE(file.finish().message, QString());
        QCOMPARE(readFile(m_path), QByteArray("after"));
    }

    void isDroppedWithoutAnEnd()
    {
        {
            ReplacedFile file(m_path);
            QVERIFY(file.open().ok());
            file.device().write("after");
        }
        comparePathAndFolder("before");
    }

    void isDroppedOnAFullDisk()
    {
        {
            const FileSizeLimit limit(5000);
            ReplacedFile file(m_path);
            QVERIFY(file.open().ok());
            file.device().write(QByteArray(9000, 'a'));
            QCOMPARE(file.problem(), qt_error_string(EFBIG));
            QCOMPARE(file.finish().message, qt_error_string(EFBIG));
        }
        comparePathAndFolder("before");
    }

    void deviceIsWrittenDirectly()
    {
        ReplacedFile file(QStringLiteral("/dev/full"));
        QVERIFY(file.open().ok());
        QVERIFY(!file.isDroppable());
        file.device().write("a");
        QCOMPARE(file.finish().message, qt_error_string(ENOSPC));
    }

    void folderIsNoFile()
    {
        ReplacedFile file(m_folder->path());
        QCOMPARE(file.open().message, qt_error_string(EISDIR));
    }

private:
    void comparePathAndFolder(const QByteArray& content)
    {
        QCOMPARE(readFile(m_path), content);
        QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files).size(), 1);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

HTS_TEST(ReplacedFileTest, NoApplication)
#include "tst_replacedfile_unix.moc"
