#include "tests/support/hostlocale.h"

#include <QCoreApplication>
#include <QLocale>
#include <QProcess>

QStringList localesWithOwnDigits()
{
    QStringList names;
    const QList<QLocale> locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
    for (const QLocale& locale : locales) {
        // Some languages have several scripts; the name without a script means one of them.
        const QString name = locale.name();
        if (QLocale(name).zeroDigit() != QLatin1Char('0') && !names.contains(name))
            names.append(name);
    }
    return names;
}

QString failureUnderLocale(const QString& locale, const QStringList& arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), locale + QLatin1String(".UTF-8"));
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QCoreApplication::applicationFilePath(), arguments);
    process.waitForFinished(-1);
    const bool hasPassed = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return hasPassed ? QString() : QString::fromUtf8(process.readAll());
}
