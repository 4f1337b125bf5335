// Imports of any table with any options: each ends with a file or a reason. What the file holds
// comes back from its export.
//
// Input: see fuzz/toolcase.h; the control file has the options, one argument on a line, and the
// HTS file is the table.

#include <QBuffer>
#include <QFile>
#include <QSet>

#include "fuzz/fuzzsupport.h"
#include "fuzz/fuzztarget.h"
#include "fuzz/toolcase.h"
#include "hts/htspackage.h"

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Not those that choose another output.
QStringList optionsOf(const fuzz::ToolCase& files)
{
    QStringList options;
    if (files.controlPath().isEmpty())
        return options;
    for (const QByteArray& line : contentOf(files.controlPath()).replace('\0', "").split('\n')) {
        if (!line.isEmpty() && !line.startsWith("-o") && !line.startsWith("--output"))
            options.append(QString::fromUtf8(line));
    }
    return options;
}

int import(const QString& table, const QString& result, const QStringList& options)
{
    const fuzz::ToolOutcome outcome = fuzz::runHtstool(
        QStringList{QStringLiteral("import"), QStringLiteral("-o"), result, table} + options);
    fuzz::require(outcome.exitCode == 0 || outcome.exitCode == 2 || outcome.exitCode == 3,
                  QStringLiteral("exit code %1").arg(outcome.exitCode));
    fuzz::require(outcome.exitCode == 0 || outcome.errors.contains("htstool: "),
                  QStringLiteral("no reason"));
    fuzz::require(outcome.exitCode == 0 || !QFile::exists(result),
                  QStringLiteral("a file in spite of a failure"));
    return outcome.exitCode;
}

QByteArray exported(const QString& hts, const QString& table, const QString& columns)
{
    const fuzz::ToolOutcome outcome =
        fuzz::runHtstool({QStringLiteral("export"), QStringLiteral("--columns"), columns,
                          QStringLiteral("-o"), table, hts});
    fuzz::require(outcome.exitCode == 0, QString::fromUtf8(outcome.errors));
    return contentOf(table);
}

// Slots with one name cannot be told apart in a long table.
bool hasRepeatedSlots(const QByteArray& hts)
{
    QBuffer device;
    device.setData(hts);
    fuzz::require(device.open(QIODevice::ReadOnly), QStringLiteral("cannot open the buffer"));
    HtsPackage package;
    const Status status = package.read(device);
    fuzz::require(status.ok(), status.message);
    QSet<QString> names;
    for (const HtsSlot& slot : qAsConst(package.slots))
        names.insert(slot.objectName + QLatin1Char('\n') + slot.slotName);
    return names.size() < package.slots.size();
}

} // namespace

FUZZ_TARGET(import)
{
    const fuzz::ToolCase files(input);
    const QString first = files.resultPath() + QLatin1String(".1");
    const QString second = files.resultPath() + QLatin1String(".2");
    const QString table = files.resultPath();
    if (import(files.htsPath(), first, optionsOf(files)) != 0 || !QFile::exists(first))
        return; // the help was asked for
    // --fill makes much of a table with a gap of centuries.
    constexpr int kMaxSize = 1000000;
    const QByteArray hts = contentOf(first);
    if (hts.size() > kMaxSize || hasRepeatedSlots(hts))
        return;
    const QString columns = QStringLiteral("object_type,slot_type,scale,method");
    const QByteArray rows = exported(first, table, columns);
    static_cast<void>(exported(first, table, columns + QLatin1String(",begin")));
    fuzz::require(import(table, second, {}) == 0, QStringLiteral("an export is refused"));
    fuzz::requireEqual(QStringLiteral("values"),
                       QString::fromUtf8(exported(second, table, columns)),
                       QString::fromUtf8(rows));
}
