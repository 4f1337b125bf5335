#ifndef UTILS_FILEROLES_H
#define UTILS_FILEROLES_H

#include <cstdio>

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

// Whether the two paths lead to the same file, even through another spelling, a symbolic link or a
// hard link. The file need not exist yet; on Windows, the letter case of its name is then ignored.
// Character devices such as /dev/null and nul never count as the same file: nothing is lost when
// two roles share them.
bool isSameFile(const QString& path, const QString& otherPath);

// Whether `path` leads to the regular file that a standard stream is connected to.
bool isSameFile(const QString& path, std::FILE* stream);

// Fails when `file`, which is about to be truncated, is the same file as one of `others`. The
// message names both: "The output hts file is the input hts file /data/a.hts". Roles with an empty
// path are ignored.
Status checkFileRole(const FileRole& file, const QVector<FileRole>& others);

} // namespace UtilsNS

#endif // UTILS_FILEROLES_H
