#include "annualize/controlfile.h"

#include <QIODevice>

#include "QsLog.h"
#include "annualize/slotplan.h"
#include "utils/checkedfile.h"

namespace {

void readToEnd(QIODevice& device)
{
    constexpr qint64 kPieceSize = qint64(64) * 1024;
    while (!device.read(kPieceSize).isEmpty()) {
    }
}

} // namespace

ControlFile readControlFile(const QString& path)
{
    ControlFile control;
    UtilsNS::CheckedFile file(path);
    // Not in text mode, in which reading drops every "\r", even one inside a line.
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        control.status = failure(file.errorString());
        return control;
    }
    control.status = control.rules.read(file);
    readToEnd(file); // behind a bad line
    control.isRead = file.problem().isEmpty();
    // A failed read must not count as the end of the rules.
    if (!control.isRead)
        control.status = failure(file.problem());
    if (!control.status.ok())
        control.rules = MethodControl();
    return control;
}

void logAssignmentStart()
{
    QLOG_INFO() << "Starting assignment of methods to slots";
}

void logAssignment(const QString& objectName, const QString& slotName, const QString& method)
{
    const QLatin1String outcome(method.isEmpty() ? " HAD NO METHOD MATCH IN METHOD CONTROL FILE"
                                                 : " assigned method of ");
    QLOG_INFO().noquote() << fullSlotName(objectName, slotName) + outcome + method;
}

void logAssignmentEnd()
{
    QLOG_INFO() << "Finished assigning methods to slots";
}
