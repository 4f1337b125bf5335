#ifndef UTILS_ENVIRONMENT_H
#define UTILS_ENVIRONMENT_H

#include <QByteArray>

namespace UtilsNS {

// In bytes. Environment variables with longer values count as not set.
constexpr int kMaxEnvironmentValue = 1023;

// The value of the environment variable `name`, both in the encoding of the environment. Empty when
// it is not set or longer than kMaxEnvironmentValue bytes, or, on Windows, has letters that the
// encoding doesn't have.
QByteArray environmentValue(const QByteArray& name);

} // namespace UtilsNS

#endif // UTILS_ENVIRONMENT_H
