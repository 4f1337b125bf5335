#ifndef FUZZ_TOOLCASE_H
#define FUZZ_TOOLCASE_H

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

// What the targets that call htstool share.
namespace fuzz {

// The files of one input, whose parts are separated by lines "====": the name of the HTS file, its
// control file, the HTS file. Missing parts are empty. The files are removed with the object.
class ToolCase
{
public:
    explicit ToolCase(const QByteArray& input);

    QString htsPath() const { return pathWith({}); }
    // Empty if the input has no control file.
    QString controlPath() const;
    // A path for a result; there is no file yet.
    QString resultPath() const { return pathWith(QLatin1String(".csv")); }
    const QByteArray& hts() const { return m_hts; }

private:
    // QTemporaryDir has no path for a name that begins with a colon.
    QString pathWith(QLatin1String ending) const
    {
        return m_folder.path() + QLatin1Char('/') + m_name + ending;
    }

    QTemporaryDir m_folder;
    QString m_name;
    bool m_hasControl = false;
    QByteArray m_hts;
};

struct ToolOutcome
{
    int exitCode;
    QByteArray output;
    QByteArray errors;
};

ToolOutcome runHtstool(const QStringList& arguments);

} // namespace fuzz

#endif // FUZZ_TOOLCASE_H
