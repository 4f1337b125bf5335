#ifndef UTILS_FILEROLES_H
#define UTILS_FILEROLES_H

#include <QString>
#include <QVector>

#include "hts/status.h"

namespace UtilsNS {

// What a path is used for in a conversion, as the user knows it: "input hts file".
struct FileRole
{
    QString name;
    QString path;
};

// Whether the two paths lead to one file, also by another spelling, a symbolic link or a hard link.
// The file need not exist yet; on Windows, the letter case of its name doesn't count then either.
// Character devices such as /dev/null and nul never count as one file: nothing is lost when two
// roles share them.
bool isSameFile(const QString& path, const QString& otherPath);

// Fails when a role in `others` has the file of `file`, which is about to be truncated. The message
// names both: "The output hts file is the input hts file /data/a.hts". Roles with an empty path are
// left out.
Status checkFileRole(const FileRole& file, const QVector<FileRole>& others);

} // namespace UtilsNS

#endif // UTILS_FILEROLES_H
