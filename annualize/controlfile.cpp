#include "annualize/controlfile.h"

#include "QsLog.h"
#include "hts/htsslot.h"
#include "utils/checkedfile.h"

ControlFile readControlFile(const QString& path, MethodControl::Observer* observer)
{
    ControlFile control;
    UtilsNS::CheckedFile file(path);
    if (observer != nullptr)
        file.limitLines();
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        control.status = failure(file.errorString());
        return control;
    }
    control.status = control.rules.read(file, observer);
    control.isRead = file.problem().isEmpty();
    // A failed read must not count as the end of the rules, nor what it left of a line as a bad
    // one.
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
