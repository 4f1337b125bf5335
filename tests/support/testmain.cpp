// usage: tests_FOLDER NAME_OF_A_TEST [ARGUMENTS OF QT TEST...]

#include "tests/support/testmain.h"

#include <cstdio>
#include <map>
#include <string>

#include <QFileInfo>

namespace {

std::map<std::string, TestRegistration::Run>& registeredTests()
{
    static std::map<std::string, TestRegistration::Run> tests;
    return tests;
}

} // namespace

TestRegistration::TestRegistration(const char* file, Run run)
{
    const QString name = QFileInfo(QString::fromLocal8Bit(file)).completeBaseName();
    const bool isNew = registeredTests().emplace(name.toStdString(), run).second;
    Q_ASSERT(isNew);
    Q_UNUSED(isNew)
}

int main(int argc, char* argv[])
{
    const auto test = registeredTests().find(argc > 1 ? argv[1] : "");
    if (test == registeredTests().end()) {
        std::fputs("The first argument must be one of these tests:\n", stderr);
        for (const auto& [name, run] : registeredTests())
            std::fprintf(stderr, "%s\n", name.c_str());
        return 2;
    }
    // The test sees its own arguments only.
    argv[1] = argv[0];
    return test->second(argc - 1, argv + 1);
}
