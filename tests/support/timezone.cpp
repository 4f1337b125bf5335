#include "tests/support/timezone.h"

#include <ctime>

#include <QtGlobal>

TimeZone::TimeZone(const QByteArray& name)
    : m_nameBefore(qgetenv("TZ")), m_wasSet(qEnvironmentVariableIsSet("TZ"))
{
    qputenv("TZ", name);
    tzset();
}

TimeZone::~TimeZone()
{
    if (m_wasSet)
        qputenv("TZ", m_nameBefore);
    else
        qunsetenv("TZ");
    tzset();
}
