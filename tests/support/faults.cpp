#include "tests/support/faults.h"

#include <QString>

void preload(ProcessRun& run, const Fault& fault)
{
    const auto set = [&run](const char* name, const QString& value) {
        run.environment.insert(QString::fromLatin1(name), value);
    };
    set("LD_PRELOAD", QStringLiteral(FAULTS_SHIM));
    set("FAULTS_FILE", QString::fromLatin1(fault.file));
    set("FAULTS_CALL", QString::fromLatin1(fault.call));
    set("FAULTS_AT", QString::number(fault.at));
    set("FAULTS_COUNT", QString::number(fault.count));
    set("FAULTS_ERROR", QString::number(fault.error));
    set("FAULTS_SIGNAL", QString::number(fault.signal));
    // The address sanitizer must come before any other library, and would report that it does not.
    set("ASAN_OPTIONS", run.environment.value(QStringLiteral("ASAN_OPTIONS")) +
                            QStringLiteral(":verify_asan_link_order=0"));
}
