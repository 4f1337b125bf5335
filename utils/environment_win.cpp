#include <array>
#include <cstdlib>

#include "utils/environment.h"

namespace UtilsNS {

QByteArray environmentValue(const QByteArray& name)
{
    std::array<char, kMaxEnvironmentValue + 1> value = {};
    std::size_t size = 0; // with the null byte at the end; 0 for a variable that is not set
    const int error = ::getenv_s(&size, value.data(), value.size(), name.constData());
    return error == 0 && size > 0 ? QByteArray(value.data()) : QByteArray();
}

} // namespace UtilsNS
