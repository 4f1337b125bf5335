#ifndef UTILS_DESKTOPENTRY_H
#define UTILS_DESKTOPENTRY_H

#include <QHash>
#include <QString>
#include <QStringList>

namespace UtilsNS {

// A program as the desktop knows it: one file "<name>.desktop" by the Desktop Entry Specification,
// read as far as it takes to start the program. TryExec and Path are not looked at: whether the
// program is there shows when it is started, in the current folder.
//
//     const DesktopEntry entry = DesktopEntry::find(QStringLiteral("firefox.desktop"));
//     QStringList command = entry.command(QStringLiteral("file:///opt/a.html#top"));
class DesktopEntry
{
public:
    // The entry with the desktop file id `id`, looked up in the folders of $XDG_DATA_HOME and
    // $XDG_DATA_DIRS; an entry without keys when there is none. A dash of the id may stand for a
    // subfolder.
    static DesktopEntry find(const QString& id);

    // The entry in the file `path`; without keys when the file cannot be read.
    static DesktopEntry read(const QString& path);

    // The program and its arguments to open `url`, which is one argument however the entry takes
    // it. Empty when the entry has no usable command or its program needs a terminal.
    QStringList command(const QString& url) const;

private:
    QString value(const QString& key) const;
    QString localizedName() const;
    QStringList expanded(const QString& argument, const QString& url) const;

    QString m_path;
    QHash<QString, QString> m_values; // of the group [Desktop Entry]
};

} // namespace UtilsNS

#endif // UTILS_DESKTOPENTRY_H
