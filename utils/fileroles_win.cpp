#include <memory>
#include <optional>
#include <string>

#include <QDir>

#include "utils/fileidentity_win.h"
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

// The path that the system gives the open file, or `path` if it gives none.
QString finalPath(HANDLE file, const QString& path)
{
    const DWORD size = ::GetFinalPathNameByHandleW(file, nullptr, 0, FILE_NAME_NORMALIZED);
    std::wstring final(size, L'\0'); // with the null character at the end
    const DWORD length =
        ::GetFinalPathNameByHandleW(file, final.data(), size, FILE_NAME_NORMALIZED);
    return length == 0 || length >= size ? path
                                         : QString::fromWCharArray(final.data(), int(length));
}

// Null for devices such as "nul", which are not files.
std::optional<FileIdentity> identityOf(HANDLE file, const QString& path)
{
    BY_HANDLE_FILE_INFORMATION info;
    if (::GetFileType(file) != FILE_TYPE_DISK || ::GetFileInformationByHandle(file, &info) == FALSE)
        return std::nullopt;
    return FileIdentity{info.dwVolumeSerialNumber,
                        quint64(info.nFileIndexHigh) << 32 | info.nFileIndexLow,
                        finalPath(file, path)};
}

// The paths are those that the files were opened with, empty if that is not known.
bool isSameIdentity(HANDLE file, const QString& path, HANDLE otherFile, const QString& otherPath)
{
    const std::optional<FileIdentity> identity = identityOf(file, path);
    const std::optional<FileIdentity> other = identityOf(otherFile, otherPath);
    return identity && other && *identity == *other;
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
           isSameIdentity(folder.get(), folderOf(path), otherFolder.get(), folderOf(otherPath));
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
    return isSameIdentity(file.get(), full, otherFile.get(), otherFull);
}

bool isSameFile(const QString& path, std::FILE* stream)
{
    const QString full = fullPath(path);
    const UniqueHandle file = openForQuery(full);
    const auto ofStream = reinterpret_cast<HANDLE>(::_get_osfhandle(::_fileno(stream)));
    return file != nullptr && ofStream != INVALID_HANDLE_VALUE &&
           isSameIdentity(file.get(), full, ofStream, QString());
}

} // namespace UtilsNS
