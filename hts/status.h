#ifndef HTS_STATUS_H
#define HTS_STATUS_H

#include <QLatin1String>
#include <QString>

// The result of an operation that can fail. The operations of this program return failures as
// values: a caller that gets a message stops and passes the Status up unchanged.
//
//     const Status status = package.read(device);
//     if (!status.ok())
//         return status;
struct [[nodiscard]] Status
{
    // Empty means success, otherwise the reason, ready to show.
    QString message;
    // Carried along with the message; every producer leaves it false.
    bool flag = false;

    bool ok() const { return message.isEmpty(); }
};

// The result of an operation that failed for the reason `message`, which is not empty.
inline Status failure(const QString& message)
{
    Q_ASSERT(!message.isEmpty());
    return {message, false};
}

inline Status failure(QLatin1String message)
{
    Q_ASSERT(message.size() > 0);
    return {message, false};
}

#endif // HTS_STATUS_H
