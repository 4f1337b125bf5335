#ifndef TESTS_SUPPORT_TIMEZONE_H
#define TESTS_SUPPORT_TIMEZONE_H

#include <QByteArray>

// Sets the time zone of the process until it is destroyed.
class TimeZone
{
public:
    // `name` as in the environment variable TZ.
    explicit TimeZone(const QByteArray& name);
    ~TimeZone();
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    QByteArray m_nameBefore;
    bool m_wasSet;
};

#endif // TESTS_SUPPORT_TIMEZONE_H
