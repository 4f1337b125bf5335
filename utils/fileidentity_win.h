#ifndef UTILS_FILEIDENTITY_WIN_H
#define UTILS_FILEIDENTITY_WIN_H

#include <QString>
#include <QtGlobal>

namespace UtilsNS {

// What tells an existing file or folder from others.
struct FileIdentity
{
    quint32 volume = 0;
    quint64 index = 0; // 0 on some network shares, for every file
    // As the system gives it for the open file. Names of one file may still differ: through hard
    // links, for example.
    QString finalPath;
};

// By volume and index; where both indexes are 0, by the paths, without letter case.
inline bool operator==(const FileIdentity& identity, const FileIdentity& other)
{
    if (identity.index == 0 && other.index == 0)
        return identity.finalPath.compare(other.finalPath, Qt::CaseInsensitive) == 0;
    return identity.volume == other.volume && identity.index == other.index;
}

} // namespace UtilsNS

#endif // UTILS_FILEIDENTITY_WIN_H
