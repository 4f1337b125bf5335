#include <array>
#include <cstdlib>

#include <QString>

#include "utils/environment.h"

namespace UtilsNS {

QByteArray environmentValue(const QByteArray& name)
{
    std::array<char, kMaxEnvironmentValue + 1> value = {};
    std::size_t size = 0; // with the null byte at the end; 0 for a variable that is not set
    const int error = ::getenv_s(&size, value.data(), value.size(), name.constData());
    if (error != 0 || size == 0)
        return {};
    // The value may have letters that the code page doesn't have. The C library replaces them by
    // similar ones, with which a path is that of another file.
    const bool isExact =
        QString::fromLocal8Bit(value.data()) == qEnvironmentVariable(name.constData());
    return isExact ? QByteArray(value.data()) : QByteArray();
}

} // namespace UtilsNS
