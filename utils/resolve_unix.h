#ifndef UTILS_RESOLVE_UNIX_H
#define UTILS_RESOLVE_UNIX_H

#include <QLibrary>

namespace UtilsNS {

// Sets a pointer to a function of a library, which is loaded by the first call. Returns whether the
// library and the function are there.
template<typename Function>
bool resolve(QLibrary& library, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    return function != nullptr;
}

} // namespace UtilsNS

#endif // UTILS_RESOLVE_UNIX_H
