#include <memory>
#include <string>

#include <QDir>

#include "utils/fileroles.h"

#include <windows.h>

#include <io.h>

namespace UtilsNS {

namespace {

struct HandleCloser
{
    using pointer = HANDLE;
    void operator()(HANDLE handle) const { ::CloseHandle(handle); }
};

using UniqueHandle = std::unique_ptr<HANDLE, HandleCloser>;

// The full path with backslashes, in the form without the limit of 260 characters. The name of a
// device such as "nul" becomes "\\.\nul"; blanks and dots that Windows ignores are removed.
QString fullPath(const QString& path)
{
    const std::wstring native = QDir::toNativeSeparators(path).toStdWString();
    const DWORD size = ::GetFullPathNameW(native.c_str(), 0, nullptr, nullptr);
    std::wstring full(size, L'\0'); // with the null character at the end
    full.resize(::GetFullPathNameW(native.c_str(), size, full.data(), nullptr));
    QString text = QString::fromStdWString(full);
    if (text.startsWith(QLatin1String("\\\\?\\")) || text.startsWith(QLatin1String("\\\\.\\")))
        return text;
    if (text.startsWith(QLatin1String("\\\\")))
        return QLatin1String("\\\\?\\UNC\\") + text.mid(2);
    return QLatin1String("\\\\?\\") + text;
}

// Opens a file or folder to ask for its identity, without reading or locking it. Null when there is
// none.
UniqueHandle openForQuery(const QString& fullPath)
{
    const HANDLE handle = ::CreateFileW(
        fullPath.toStdWString().c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    return UniqueHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

// False for devices such as "nul", which are not files.
bool isSameIdentity(HANDLE file, HANDLE otherFile)
{
    BY_HANDLE_FILE_INFORMATION info;
    BY_HANDLE_FILE_INFORMATION otherInfo;
    return ::GetFileType(file) == FILE_TYPE_DISK && ::GetFileType(otherFile) == FILE_TYPE_DISK &&
           ::GetFileInformationByHandle(file, &info) != FALSE &&
           ::GetFileInformationByHandle(otherFile, &otherInfo) != FALSE &&
           info.dwVolumeSerialNumber == otherInfo.dwVolumeSerialNumber &&
           info.nFileIndexHigh == otherInfo.nFileIndexHigh &&
           info.nFileIndexLow == otherInfo.nFileIndexLow;
}

QString folderOf(const QString& fullPath)
{
    return fullPath.left(fullPath.lastIndexOf(QLatin1Char('\\')) + 1);
}

QString nameOf(const QString& fullPath)
{
    return fullPath.mid(fullPath.lastIndexOf(QLatin1Char('\\')) + 1);
}

// Whether both full paths name the same file, which doesn't exist yet. The letter case of names is
// ignored.
bool isSameNewFile(const QString& path, const QString& otherPath)
{
    if (nameOf(path).compare(nameOf(otherPath), Qt::CaseInsensitive) != 0)
        return false;
    const UniqueHandle folder = openForQuery(folderOf(path));
    const UniqueHandle otherFolder = openForQuery(folderOf(otherPath));
    return folder != nullptr && otherFolder != nullptr &&
           isSameIdentity(folder.get(), otherFolder.get());
}

} // namespace

bool isSameFile(const QString& path, const QString& otherPath)
{
    const QString full = fullPath(path);
    const QString otherFull = fullPath(otherPath);
    const UniqueHandle file = openForQuery(full);
    const UniqueHandle otherFile = openForQuery(otherFull);
    if ((file == nullptr) != (otherFile == nullptr))
        return false;
    if (file == nullptr)
        return isSameNewFile(full, otherFull);
    return isSameIdentity(file.get(), otherFile.get());
}

bool isSameFile(const QString& path, std::FILE* stream)
{
    const UniqueHandle file = openForQuery(fullPath(path));
    const auto ofStream = reinterpret_cast<HANDLE>(::_get_osfhandle(::_fileno(stream)));
    return file != nullptr && ofStream != INVALID_HANDLE_VALUE &&
           isSameIdentity(file.get(), ofStream);
}

} // namespace UtilsNS
