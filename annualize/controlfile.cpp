#include "annualize/controlfile.h"

#include <QBuffer>
#include <QFile>

#include "QsLog.h"
#include "annualize/slotplan.h"

namespace {

// Reads an open file to its end. A failed read must not count as the end of the rules. It only
// shows at the next read, which readAll() does not make.
Status readAllBytes(QFile& file, QByteArray& bytes)
{
    constexpr qint64 kPieceSize = qint64(64) * 1024;
    for (QByteArray piece = file.read(kPieceSize); !piece.isEmpty(); piece = file.read(kPieceSize))
        bytes += piece;
    return file.error() == QFileDevice::NoError ? Status() : failure(file.errorString());
}

} // namespace

ControlFile readControlFile(const QString& path)
{
    ControlFile control;
    QFile file(path);
    // Not in text mode, in which reading drops every "\r", even one inside a line.
    if (!file.open(QIODevice::ReadOnly)) {
        control.status = failure(file.errorString());
        return control;
    }
    QByteArray bytes;
    control.status = readAllBytes(file, bytes);
    control.isRead = control.status.ok();
    if (!control.isRead)
        return control;

    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    control.status = control.rules.read(buffer);
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
