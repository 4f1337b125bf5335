#ifndef TESTMAIN_H
#define TESTMAIN_H

#include <array>
#include <initializer_list>
#include <memory>
#include <tuple>
#include <type_traits>

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
    const TestRegistration k##Test##Registration(__FILE__, runTest<Test, Application>);            \
    }

// Adds columns to the data table of a test: addColumns<QByteArray, int>("text", "lines"). A column
// of const char* is one of QString, as its values become one.
template<typename... Types, typename... Names>
void addColumns(Names... names)
{
    using std::conditional_t;
    using std::is_same_v;
    (QTest::addColumn<conditional_t<is_same_v<Types, const char*>, QString, Types>>(names), ...);
}

// Adds rows to it, each with its name and the values of the columns. The texts of const char* are
// UTF-8.
template<typename... Types>
void addRows(std::initializer_list<std::tuple<const char*, Types...>> rows)
{
    for (const auto& row : rows) {
        const auto add = [](const char* name, const Types&... values) {
            (QTest::newRow(*name == 0 ? "(empty)" : name) << ... << values);
        };
        std::apply(add, row);
    }
}

// Both at once: addTable<int>({"lines"}, {{"one", 1}, {"two", 2}}).
template<typename... Types>
void addTable(const std::array<const char*, sizeof...(Types)>& columns,
              std::initializer_list<std::tuple<const char*, Types...>> rows)
{
    std::apply([](auto... names) { addColumns<Types...>(names...); }, columns);
    addRows<Types...>(rows);
}

// A table of one column of QString, whose rows have their text, in UTF-8, as their name.
template<typename Texts = std::initializer_list<const char*>>
void addTexts(const char* column, const Texts& texts)
{
    addColumns<QString>(column);
    for (const char* const text : texts)
        addRows<const char*>({{text, text}});
}

#endif // TESTMAIN_H
