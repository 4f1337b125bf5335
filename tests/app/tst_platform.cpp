// How the process is set up for the command line. The end of a process without memory is tested in
// another process of this program.

#include <cstring>
#include <exception>
#include <new>
#include <stdexcept>

#include <QProcess>
#include <QtTest>

#include <sys/resource.h>

#include "app/platform.h"

namespace {

// Fails in the way that `name` says; returns if it is not such a name.
void failBy(const char* name)
{
    if (std::strcmp(name, "bad_alloc") == 0)
        throw std::bad_alloc();
    if (std::strcmp(name, "bad_array_new_length") == 0)
        throw std::bad_array_new_length();
    if (std::strcmp(name, "logic_error") == 0)
        throw std::logic_error("of another kind");
    if (std::strcmp(name, "terminate") == 0)
        std::terminate();
}

// The same from where nothing can be caught.
void endBy(const char* name) noexcept
{
    failBy(name);
}

void leaveNoCoreFile()
{
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
}

} // namespace

class TestPlatform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endWithoutACatcher_data();
    void endWithoutACatcher();
};

void TestPlatform::endWithoutACatcher_data()
{
    QTest::addColumn<int>("exitCode"); // -1 for an end by a signal
    QTest::addColumn<QByteArray>("console");
    const QByteArray noMemory = "HtsAnnualizer Error: Not enough memory\n\n";
    QTest::newRow("bad_alloc") << 1 << noMemory;
    QTest::newRow("bad_array_new_length") << 1 << noMemory;
    QTest::newRow("logic_error") << -1 << QByteArray();
    QTest::newRow("terminate") << -1 << QByteArray();
    QTest::newRow("nothing") << 0 << QByteArray();
}

void TestPlatform::endWithoutACatcher()
{
    QFETCH(int, exitCode);
    QFETCH(QByteArray, console);
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("end-by"), QString::fromLatin1(QTest::currentDataTag())});
    QVERIFY(process.waitForFinished(-1));
    const bool isNormalExit = process.exitStatus() == QProcess::NormalExit;
    QCOMPARE(isNormalExit ? process.exitCode() : -1, exitCode);
    QCOMPARE(process.readAllStandardOutput(), console);
    QCOMPARE(process.readAllStandardError(), QByteArray());
}

int main(int argc, char* argv[])
{
    if (argc == 3 && std::strcmp(argv[1], "end-by") == 0) {
        leaveNoCoreFile();
        prepareCommandLineMode();
        endBy(argv[2]);
        return 0;
    }
    const QCoreApplication application(argc, argv);
    TestPlatform test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_platform.moc"
