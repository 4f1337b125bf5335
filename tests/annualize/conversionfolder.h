#ifndef TESTS_ANNUALIZE_CONVERSIONFOLDER_H
#define TESTS_ANNUALIZE_CONVERSIONFOLDER_H

#include <QDir>
#include <QTemporaryDir>

#include "annualize/annualizehts.h"
#include "tests/hts/htstext.h"
#include "tests/support/wholefile.h"
#include "utils/checkedfile.h"

// A folder with a year of months of one slot ("good.hts"), the same with a timestep missing
// ("bad.hts"), and a control file.
class ConversionFolder
{
public:
    ConversionFolder()
    {
        const QByteArray lines = "units: cms;scale: 1" + QByteArray(";1").repeated(12);
        const QByteArray good = packageText(1) + runText(monthlyTimesteps(2000, 1, 12), "month",
                                                         slotText("Lake.Flow", lines));
        writeFile(path("good.hts"), good);
        writeFile(path("bad.hts"), QByteArray(good).replace("time_steps:12", "time_steps:13"));
        writeFile(path("methods.txt"), "*.*: Sum\n");
    }

    // An absolute path stays as it is.
    QString path(const char* name) const
    {
        return QDir(m_folder.path()).filePath(QLatin1String(name));
    }

    void configure(AnnualizeHts& engine) const
    {
        if (!engine.setControlFile(path("methods.txt")).ok() || !engine.setEndMonth(12).ok())
            qFatal("cannot set up the engine");
    }

private:
    QTemporaryDir m_folder;
};

// An open file, as a front end opens it.
struct OpenFile : UtilsNS::CheckedFile
{
    OpenFile(const QString& path, QIODevice::OpenMode mode) : UtilsNS::CheckedFile(path)
    {
        if (!open(mode | QIODevice::Text))
            qFatal("cannot open %s", qPrintable(path));
    }
};

constexpr QIODevice::OpenMode kReadInput = QIODevice::ReadOnly | QIODevice::Unbuffered;

#endif // TESTS_ANNUALIZE_CONVERSIONFOLDER_H
