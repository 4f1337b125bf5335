#include <QtGlobal>

#include "utils/environment.h"

namespace UtilsNS {

QByteArray environmentValue(const QByteArray& name)
{
    QByteArray value = qgetenv(name.constData());
    return value.size() > kMaxEnvironmentValue ? QByteArray() : value;
}

} // namespace UtilsNS
