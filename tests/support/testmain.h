#ifndef TESTMAIN_H
#define TESTMAIN_H

#include <memory>

#include <QCoreApplication>
#include <QtTest>

// The test objects of one folder are linked into one program, which runs the one that its first
// argument names. Each file with such an object ends in
//
//     HTS_TEST(ClassOfTheObject, QCoreApplication)
//     #include "NAME_OF_THE_FILE.moc"
//
// with the application that it needs, or NoApplication. Its name is that of the file.

// For tests that must work without an application object.
struct NoApplication
{
    NoApplication(int& /*argc*/, char** /*argv*/) {}
};

class TestRegistration
{
public:
    using Run = int (*)(int argc, char* argv[]);
    // `file` is the path of the source.
    TestRegistration(const char* file, Run run);
};

template<typename Test, typename Application>
int runTest(int argc, char* argv[])
{
    const Application application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

#define HTS_TEST(Test, Application)                                                                \
    namespace {                                                                                    \
    const TestRegistration kRegistration(__FILE__, runTest<Test, Application>);                    \
    }

#endif // TESTMAIN_H
