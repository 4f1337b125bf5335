#include <memory>

#include <QFile>
#include <QLibrary>
#include <QProcess>
#include <QStringList>

#include <gio/gdesktopappinfo.h>
#include <unistd.h>

#include "utils/helpurl.h"
#include "utils/resolve_unix.h"

namespace UtilsNS {

namespace {

// Quotes keep a URL with blanks together in a command line; an argument vector does not need them.
QString withoutQuotes(const QString& url)
{
    const QLatin1Char quote('"');
    const bool isQuoted = url.size() >= 2 && url.startsWith(quote) && url.endsWith(quote);
    return isQuoted ? url.mid(1, url.size() - 2) : url;
}

// The functions of GIO that find and start the browser. Loaded when help is first opened: if the
// program were linked with GIO, loading it and its libraries would take a fifth of the start-up
// time of every conversion.
struct Gio
{
    decltype(&g_app_info_get_default_for_uri_scheme) defaultForUriScheme;
    decltype(&g_desktop_app_info_get_filename) fileName;
    decltype(&g_desktop_app_info_new_from_keyfile) newFromKeyFile;
    decltype(&g_desktop_app_info_launch_uris_as_manager) launchUris;
    decltype(&g_object_unref) unref;
};

// Null where GIO is missing. It stays loaded: GLib cannot unregister its types.
const Gio* loadGio()
{
    static QLibrary library(QStringLiteral("gio-2.0"), 0);
    static Gio gio;
    const bool isLoaded =
        resolve(library, "g_app_info_get_default_for_uri_scheme", gio.defaultForUriScheme) &&
        resolve(library, "g_desktop_app_info_get_filename", gio.fileName) &&
        resolve(library, "g_desktop_app_info_new_from_keyfile", gio.newFromKeyFile) &&
        resolve(library, "g_desktop_app_info_launch_uris_as_manager", gio.launchUris) &&
        resolve(library, "g_object_unref", gio.unref);
    return isLoaded ? &gio : nullptr;
}

using AppInfo = std::unique_ptr<GDesktopAppInfo, decltype(&g_object_unref)>;
using KeyFile = std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)>;

// The program that opens web links, set to get a file:/// URL unchanged: by default GIO passes the
// path instead when the URL has no fragment. Null when there is none.
AppInfo findBrowser(const Gio& gio)
{
    AppInfo none(nullptr, gio.unref);
    // It is always a desktop entry, the only kind on Unix.
    const AppInfo entry(reinterpret_cast<GDesktopAppInfo*>(gio.defaultForUriScheme("http")),
                        gio.unref);
    if (entry == nullptr)
        return none;
    const char* path = gio.fileName(entry.get());
    const KeyFile keys(g_key_file_new(), g_key_file_unref);
    if (path == nullptr ||
        g_key_file_load_from_file(keys.get(), path, G_KEY_FILE_NONE, nullptr) == FALSE)
        return none;
    g_key_file_set_boolean(keys.get(), G_KEY_FILE_DESKTOP_GROUP, "X-GIO-NoFuse", TRUE);
    return AppInfo(gio.newFromKeyFile(keys.get()), gio.unref);
}

// Runs in the new process. Ctrl+C in this program's console must not end the browser.
void leaveSession(gpointer)
{
    ::setsid();
}

// False when there is no browser or it can't be started.
bool startBrowser(const QString& url)
{
    const Gio* gio = loadGio();
    if (gio == nullptr)
        return false;
    const AppInfo browser = findBrowser(*gio);
    if (browser == nullptr)
        return false;
    QByteArray text = QFile::encodeName(url);
    GList urls = {text.data(), nullptr, nullptr};
    // Like g_app_info_launch_uris(), but with control over how the process is started. GLib waits
    // for the intermediate process, so that no zombie is left.
    const int flags = G_SPAWN_SEARCH_PATH | G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL;
    return gio->launchUris(browser.get(), &urls, nullptr, static_cast<GSpawnFlags>(flags),
                           leaveSession, nullptr, nullptr, nullptr, nullptr) != FALSE;
}

void startXdgOpen(const QString& url)
{
    QProcess process;
    process.setProgram(QStringLiteral("xdg-open"));
    process.setArguments({url});
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.startDetached();
}

} // namespace

Status openHelpUrl(const QString& url)
{
    const QString target = withoutQuotes(url);
    if (!startBrowser(target))
        startXdgOpen(target);
    return Status();
}

} // namespace UtilsNS
