#ifndef TESTS_SUPPORT_HOSTLOCALE_H
#define TESTS_SUPPORT_HOSTLOCALE_H

#include <QString>
#include <QStringList>

// The locale of the host, which the toolkit takes from the environment once, at its start. None of
// these locales needs to be installed.

// Names such as "fa_IR" of all locales known to the toolkit whose digits are not the ASCII ones.
QStringList localesWithOwnDigits();

// Runs this test program in a process of its own under the locale, with the name of a test and
// those of its functions as arguments. Returns an empty text if they pass, else what the process
// wrote. Needs an application object.
QString failureUnderLocale(const QString& locale, const QStringList& arguments);

#endif // TESTS_SUPPORT_HOSTLOCALE_H
