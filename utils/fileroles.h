#ifndef UTILS_FILEROLES_H
#define UTILS_FILEROLES_H

#include <QString>
#include <QVector>

namespace UtilsNS {

// What a path is used for in a conversion, as the user knows it: "input hts file".
struct FileRole
{
    QString name;
    QString path;
};

// Whether the two paths lead to one file, also by another spelling, a symbolic link or a hard link.
// The file need not exist yet. Character devices such as /dev/null never count as one file: nothing
// is lost when two roles share them.
bool isSameFile(const QString& path, const QString& otherPath);

// Looks for a role in `others` whose file is that of `file`, which is about to be truncated.
// Returns an empty text when there is none, else a text that names both: "The output hts file is
// the input hts file /data/a.hts". Roles with an empty path are passed over.
QString sharedFileMessage(const FileRole& file, const QVector<FileRole>& others);

} // namespace UtilsNS

#endif // UTILS_FILEROLES_H
