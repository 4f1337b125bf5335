#include "utils/fileroles.h"

namespace UtilsNS {

Status checkFileRole(const FileRole& file, const QVector<FileRole>& others)
{
    for (const FileRole& other : others) {
        if (!file.path.isEmpty() && !other.path.isEmpty() && isSameFile(file.path, other.path))
            return failure(
                QStringLiteral("The %1 is the %2 %3").arg(file.name, other.name, other.path));
    }
    return {};
}

} // namespace UtilsNS
