// The method of every slot, by the rules of the control file.

#include "annualize/annualizehts.h"

#include <QBuffer>
#include <QFile>

#include "QsLog.h"
#include "annualize/methodcontrol.h"

Status AnnualizeHts::assignMethods(const QVector<HtsSlot>& slots, QStringList& methods) const
{
    QFile file(m_controlFile);
    // Not in text mode, in which reading all drops every "\r", even one inside a line.
    if (!file.open(QIODevice::ReadOnly))
        return failure(file.errorString());
    // All of it first: a failed read must not pass for the end of the rules. It is seen when the
    // file is asked once more; readAll() asks only once.
    QByteArray rules;
    constexpr qint64 kPieceSize = qint64(64) * 1024;
    for (QByteArray piece = file.read(kPieceSize); !piece.isEmpty(); piece = file.read(kPieceSize))
        rules += piece;
    if (file.error() != QFileDevice::NoError)
        return failure(file.errorString());
    QLOG_INFO() << "Starting assignment of methods to slots";

    MethodControl control;
    QBuffer buffer(&rules);
    buffer.open(QIODevice::ReadOnly);
    Status status = control.read(buffer);
    if (!status.ok())
        return status;

    methods.clear();
    methods.reserve(slots.size());
    for (const HtsSlot& slot : slots) {
        const QString method = control.methodFor(slot);
        methods.append(method);
        const QLatin1String outcome(method.isEmpty() ? " HAD NO METHOD MATCH IN METHOD CONTROL FILE"
                                                     : " assigned method of ");
        QLOG_INFO().noquote() << slot.objectName + QLatin1Char('.') + slot.slotName + outcome +
                                     method;
    }
    QLOG_INFO() << "Finished assigning methods to slots";
    return {};
}
