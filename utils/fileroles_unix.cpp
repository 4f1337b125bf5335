#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

#include "utils/fileroles.h"

namespace UtilsNS {

namespace {

bool statPath(const QString& path, struct stat& info)
{
    return ::stat(QFile::encodeName(path).constData(), &info) == 0;
}

// The path of the file that opening `path` for writing would create, if there is none yet: the end
// of the chain of symbolic links.
QString pathToCreate(const QString& path)
{
    constexpr int kMaxLinks = 40; // the limit of the kernel
    QString target = path;
    for (int i = 0; i < kMaxLinks && QFileInfo(target).isSymLink(); ++i)
        target = QFileInfo(target).symLinkTarget();
    return target;
}

// Whether both paths name the same file, which doesn't exist yet.
bool isSameNewFile(const QString& path, const QString& otherPath)
{
    const QFileInfo file(pathToCreate(path));
    const QFileInfo otherFile(pathToCreate(otherPath));
    struct stat folder;
    struct stat otherFolder;
    return file.fileName() == otherFile.fileName() && statPath(file.path(), folder) &&
           statPath(otherFile.path(), otherFolder) && folder.st_dev == otherFolder.st_dev &&
           folder.st_ino == otherFolder.st_ino;
}

} // namespace

bool isSameFile(const QString& path, const QString& otherPath)
{
    struct stat info;
    struct stat otherInfo;
    const bool exists = statPath(path, info);
    if (exists != statPath(otherPath, otherInfo))
        return false;
    if (!exists)
        return isSameNewFile(path, otherPath);
    return info.st_dev == otherInfo.st_dev && info.st_ino == otherInfo.st_ino &&
           !S_ISCHR(info.st_mode);
}

bool isSameFile(const QString& path, std::FILE* stream)
{
    struct stat info;
    struct stat ofStream;
    return statPath(path, info) && ::fstat(::fileno(stream), &ofStream) == 0 &&
           S_ISREG(info.st_mode) && info.st_dev == ofStream.st_dev &&
           info.st_ino == ofStream.st_ino;
}

} // namespace UtilsNS
