// Preloaded into the program, makes the calls on one file fail at a chosen byte:
//
//   FAULTS_FILE    the file; for "open" spelt as the program does
//   FAULTS_CALL    "open", "read", "write" or "close"
//   FAULTS_AT      "read" and "write" work for the bytes before this one
//   FAULTS_COUNT   the number of calls that then fail; later ones work again
//   FAULTS_ERROR   the errno of a failing call; 0 for "nothing was read or written"
//   FAULTS_SIGNAL  a signal that the process gets when a call is about to fail
//
// A call that would go beyond the byte is cut short, as by a disk.

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

long numberOf(const char* variable)
{
    const char* text = std::getenv(variable);
    return text == nullptr ? 0 : std::atol(text);
}

bool isFaultyFile(int descriptor)
{
    const char* path = std::getenv("FAULTS_FILE");
    struct stat wanted;
    struct stat given;
    return path != nullptr && ::stat(path, &wanted) == 0 && ::fstat(descriptor, &given) == 0 &&
           wanted.st_dev == given.st_dev && wanted.st_ino == given.st_ino;
}

bool isSet(const char* variable, const char* text)
{
    const char* value = std::getenv(variable);
    return value != nullptr && std::strcmp(value, text) == 0;
}

bool isFaultyCall(const char* call, int descriptor)
{
    return isSet("FAULTS_CALL", call) && isFaultyFile(descriptor);
}

// Whether the call fails now. Sets errno.
bool fails()
{
    static long failuresLeft = numberOf("FAULTS_COUNT");
    if (failuresLeft == 0)
        return false;
    --failuresLeft;
    if (const auto signal = static_cast<int>(numberOf("FAULTS_SIGNAL")))
        std::raise(signal);
    errno = static_cast<int>(numberOf("FAULTS_ERROR"));
    return true;
}

template<typename Function>
Function realFunction(const char* name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

// A call that moves bytes.
template<typename Function, typename Bytes>
ssize_t transfer(const char* name, int descriptor, Bytes bytes, std::size_t count)
{
    static const auto real = realFunction<Function>(name);
    static long movedBytes = 0;
    static bool isPast = false;
    if (isPast || !isFaultyCall(name, descriptor))
        return real(descriptor, bytes, count);
    // As with a bad sector of a disk, the position in the file counts.
    const off_t position = ::lseek(descriptor, 0, SEEK_CUR);
    const long bytesLeft = numberOf("FAULTS_AT") - (position >= 0 ? position : movedBytes);
    if (bytesLeft <= 0) {
        if (fails())
            return errno == 0 ? 0 : -1;
        isPast = true;
        return real(descriptor, bytes, count);
    }
    const ssize_t moved =
        real(descriptor, bytes, std::min(count, static_cast<std::size_t>(bytesLeft)));
    movedBytes += std::max<ssize_t>(moved, 0);
    return moved;
}

} // namespace

extern "C" {

// As the toolkit calls it, for large files.
int open64(const char* path, int flags, ...)
{
    static const auto real = realFunction<int (*)(const char*, int, ...)>("open64");
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (isSet("FAULTS_CALL", "open") && isSet("FAULTS_FILE", path) && fails())
        return -1;
    return real(path, flags, mode);
}

ssize_t read(int descriptor, void* bytes, size_t count)
{
    return transfer<ssize_t (*)(int, void*, size_t)>("read", descriptor, bytes, count);
}

ssize_t write(int descriptor, const void* bytes, size_t count)
{
    return transfer<ssize_t (*)(int, const void*, size_t)>("write", descriptor, bytes, count);
}

// The descriptor is closed in any case, as by the kernel.
int close(int descriptor)
{
    static const auto real = realFunction<int (*)(int)>("close");
    const bool isFailing = isFaultyCall("close", descriptor) && fails();
    const int error = errno;
    const int result = real(descriptor);
    errno = isFailing ? error : errno;
    return isFailing ? -1 : result;
}
}
