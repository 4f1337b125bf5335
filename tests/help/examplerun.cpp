#include "tests/help/examplerun.h"

#include <QDir>
#include <QFile>

#include "tests/help/markdown.h"
#include "tests/support/wholefile.h"

namespace {

const char kAppFolder[] = "build/release/app";
const char kToolFolder[] = "build/release/tool";

} // namespace

ExampleRun::ExampleRun()
{
    const auto link = [this](const char* file, const char* folder, const char* name) {
        const QString linkPath = path(folder) + QLatin1String(name);
        if (!QDir().mkpath(path(folder)) || !QFile::link(QString::fromUtf8(file), linkPath))
            qFatal("cannot link %s", qPrintable(linkPath));
    };
    link(SOURCE_DIR "/examples", "tmp", "/../examples");
    link(HTS_ANNUALIZER, kAppFolder, "/HtsAnnualizer");
    link(HTSTOOL, kToolFolder, "/htstool");
}

QByteArray ExampleRun::type(const QByteArray& console, const QByteArray& before)
{
    QByteArrayList shown;
    QByteArray allErrors;
    for (const QByteArray& line : console.split('\n')) {
        if (!line.startsWith("$ "))
            continue;
        startShell(QString::fromUtf8(before + '\n' + line.mid(2)));
        allErrors += errors;
        shown.append(line);
        if (!output.isEmpty())
            shown.append(asShown(output));
    }
    errors = allErrors;
    return shown.join('\n');
}

CommandRun::CommandRun()
{
    set("PATH",
        QStringList{path(kAppFolder), path(kToolFolder), environment.value(QStringLiteral("PATH"))}
            .join(QLatin1Char(':')));
}

QByteArray golden(const char* name)
{
    return sourceFile(QStringLiteral("tests/app/golden/") + QLatin1String(name));
}
