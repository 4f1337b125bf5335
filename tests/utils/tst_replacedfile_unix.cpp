// What is there stays until the new content is whole; what is no regular file is written directly.

#include <cerrno>

#include <QDir>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QtTest>

#include "tests/support/filesizelimit_unix.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "utils/replacedfile.h"

using UtilsNS::ReplacedFile;

namespace {

const QString kMemory = QStringLiteral("/dev/shm"); // not in every container

} // namespace

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

    // A file that somebody has opened and goes on writing to; and a link without a file.
    void othersAreWrittenDirectly_data()
    {
        addColumns<const char*, bool>("path", "isDroppable");
        addRows<const char*, bool>({{"itself", "FILE", true},
                                    {"link", "FILE link", true},
                                    {"link without a file", "FILE new", false},
                                    {"descriptor", "/dev/fd/FD", false},
                                    {"of the process", "/proc/self/fd/FD", false}});
        if (QFileInfo(kMemory).isWritable())
            addRows<const char*, bool>({{"memory", "MEMORY", true}});
    }
    void othersAreWrittenDirectly()
    {
        QFETCH(QString, path);
        QFETCH(bool, isDroppable);
        QVERIFY(QFile::link(m_path, m_path + QLatin1String(" link")));
        QVERIFY(QFile::link(m_path + QLatin1String("-2"), m_path + QLatin1String(" new")));
        QTemporaryFile inMemory(kMemory + QStringLiteral("/XXXXXX"));
        QCOMPARE(inMemory.open(), QFileInfo(kMemory).isWritable());
        QFile opened(m_path);
        QVERIFY(opened.open(QIODevice::ReadWrite));
        path.replace(QLatin1String("FD"), QString::number(opened.handle()))
            .replace(QLatin1String("MEMORY"), inMemory.fileName())
            .replace(QLatin1String("FILE"), m_path);
        ReplacedFile file(path);
        QCOMPARE(file.open().message, QString());
        QCOMPARE(file.isDroppable(), isDroppable);
        QCOMPARE(file.handle() >= 0, !isDroppable);
        file.device().write("after");
        QCOMPARE(file.finish().message, QString());
        QCOMPARE(readFile(path), QByteArray("after"));
        QCOMPARE(QFileInfo(m_path + QLatin1String(" link")).isSymLink(), true);
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
