#include "utils/helpurl.h"

#include <QFile>
#include <QProcess>
#include <QStringList>

#include <csignal>

#include <unistd.h>

#include "utils/desktopentry.h"

namespace UtilsNS {

namespace {

constexpr int kQueryTimeoutMs = 2000;

// Quotes keep a URL with blanks together in a command line; an argument vector does not need them.
QString withoutQuotes(const QString& url)
{
    const QLatin1Char quote('"');
    const bool isQuoted = url.size() >= 2 && url.startsWith(quote) && url.endsWith(quote);
    return isQuoted ? url.mid(1, url.size() - 2) : url;
}

// A process that can be ended with all that it started: xdg-mime is a script, and what hangs is one
// of its commands.
class GroupProcess : public QProcess
{
public:
    void killGroup()
    {
        const auto group = static_cast<pid_t>(processId());
        if (group > 0) // else kill() would reach this process
            ::kill(-group, SIGKILL);
    }

protected:
    void setupChildProcess() override { ::setpgid(0, 0); }
};

// The desktop file id of the program that opens web links; empty when there is none.
QString browserId()
{
    GroupProcess query;
    query.setStandardInputFile(QProcess::nullDevice());
    query.setStandardErrorFile(QProcess::nullDevice());
    query.start(QStringLiteral("xdg-mime"), {QStringLiteral("query"), QStringLiteral("default"),
                                             QStringLiteral("x-scheme-handler/http")});
    if (!query.waitForFinished(kQueryTimeoutMs)) {
        query.killGroup();
        query.waitForFinished(kQueryTimeoutMs);
        return QString();
    }
    return QFile::decodeName(query.readAllStandardOutput()).trimmed();
}

QStringList browserCommand(const QString& url)
{
    const QString id = browserId();
    return id.isEmpty() ? QStringList() : DesktopEntry::find(id).command(url);
}

// Starts the program on its own, out of reach of this program's console.
bool start(const QStringList& command)
{
    if (command.isEmpty())
        return false;
    QProcess process;
    process.setProgram(command.first());
    process.setArguments(command.mid(1));
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    return process.startDetached();
}

} // namespace

Status openHelpUrl(const QString& url)
{
    const QString target = withoutQuotes(url);
    if (!start(browserCommand(target)))
        start({QStringLiteral("xdg-open"), target});
    return Status();
}

} // namespace UtilsNS
