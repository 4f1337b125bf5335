#include <QDir>
#include <QFile>

#include "tests/support/helprecorder.h"
#include "tests/support/wholefile.h"

HelpRecorder::HelpRecorder(const QString& folder) : m_folder(folder), m_before(qgetenv("PATH"))
{
    const QString script = QDir(folder).filePath(QStringLiteral("xdg-open"));
    writeFile(script, "#!/bin/sh\nprintf '%s|%s' $# \"$1\" >\"${0%/*}/part\"\n"
                      "/bin/mv \"${0%/*}/part\" \"${0%/*}/opened\"\n");
    QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("PATH", QFile::encodeName(folder));
}

HelpRecorder::~HelpRecorder()
{
    qputenv("PATH", m_before);
}

bool HelpRecorder::hasOpened() const
{
    return QFile::exists(QDir(m_folder).filePath(QStringLiteral("opened")));
}

QByteArray HelpRecorder::opened() const
{
    return readFile(QDir(m_folder).filePath(QStringLiteral("opened")));
}

QByteArray HelpRecorder::commandLine() const
{
    return QByteArray();
}
