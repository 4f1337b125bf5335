#include <QDir>
#include <QFile>
#include <QSettings>

#include "tests/support/helprecorder.h"
#include "tests/support/wholefile.h"

namespace {

const QString kHandlerKey = QStringLiteral("HKEY_CLASSES_ROOT\\http\\shell\\open\\command");
const QString kDefaultValue = QStringLiteral(".");

QString setHandler(const QString& command)
{
    QSettings key(kHandlerKey, QSettings::NativeFormat);
    QString before = key.value(kDefaultValue).toString();
    key.setValue(kDefaultValue, command);
    return before;
}

} // namespace

HelpRecorder::HelpRecorder(const QString& folder) : m_folder(folder)
{
    const QString program = QDir::toNativeSeparators(QStringLiteral(RECORDER));
    m_before = setHandler(QStringLiteral("\"%1\" %2").arg(program, QStringLiteral("%1"))).toUtf8();
    qputenv("HTS_RECORD", QFile::encodeName(QDir(m_folder).filePath(QStringLiteral("opened"))));
}

HelpRecorder::~HelpRecorder()
{
    setHandler(QString::fromUtf8(m_before));
    qunsetenv("HTS_RECORD");
}

bool HelpRecorder::hasOpened() const
{
    // The name is there before the renaming browser has closed the file; until then no other
    // process can open it.
    return QFile(QDir(m_folder).filePath(QStringLiteral("opened"))).open(QIODevice::ReadOnly);
}

QByteArray HelpRecorder::opened() const
{
    const QByteArray record = readFile(QDir(m_folder).filePath(QStringLiteral("opened")));
    return record.left(record.indexOf('\n'));
}

QByteArray HelpRecorder::commandLine() const
{
    const QByteArray record = readFile(QDir(m_folder).filePath(QStringLiteral("opened")));
    return record.mid(record.indexOf('\n') + 1);
}
