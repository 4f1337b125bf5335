#ifndef HTS_HTSPACKAGE_H
#define HTS_HTSPACKAGE_H

#include <vector>

#include <QDateTime>
#include <QString>
#include <QVector>

#include "hts/htsrun.h"
#include "hts/htsslot.h"
#include "hts/status.h"

class HtsWalk;
class QIODevice;
class QTextStream;

// The values of one column, one for each row.
using HtsColumn = std::vector<double>;
// values[run][slot][column][row]
using HtsValues = std::vector<std::vector<std::vector<HtsColumn>>>;

// One HTS file in memory: the package preamble, the runs, the slots (the same in every run) and the
// values. A plain value type; not safe to use from two threads at once.
//
//     HtsPackage package;
//     const Status status = package.read(file);   // file: open for reading
//     if (status.ok())
//         use(package.slot(0).objectName, package.values[0][0][0]);
//
// docs/hts-format.md describes the file format. "slots" is a macro of the toolkit: a program that
// includes this header defines QT_NO_KEYWORDS.
struct HtsPackage
{
    // The message for a package preamble that can't be read.
    static inline const QLatin1String kBadPreamble{"Cannot read package preamble"};

    // Reads a whole file into this package, which must be empty. The device must be open for
    // reading, in text mode or not, and may be sequential; its position is then after the last line
    // used. Reading stops at the first problem and leaves the package incomplete. Messages: "Cannot
    // read package preamble", "Cannot read run preamble", "Cannot read slot preamble", "Cannot read
    // HTS file: Missing units or scale". For a table slot without its line "END_SLOT" the call
    // never returns. To use a file section by section, without the whole of it in memory, see
    // HtsWalk.
    Status read(QIODevice& device);

    // The steps of read(). Each leaves the device after the last line that it used. readPreamble()
    // fails with kBadPreamble.
    Status readPreamble(QIODevice& device);
    // Reads the units line, the scale line and, where the next byte is the letter m, the method
    // line. Fails with "Cannot read HTS file: Missing units or scale"; the three results are then
    // unchanged.
    static Status readColumnHeader(QIODevice& device, QString& units, double& scale,
                                   QString& method);

    // Writes the package as UTF-8 text to a device that is open for writing. Always succeeds:
    // whoever opened the device checks its error afterwards.
    Status write(QIODevice& device) const;
    Status writePreamble(QTextStream& stream) const;

    // Copies the preamble of `other`, and resizes `runs` and the run dimension of `values` to its
    // numberOfRuns (below zero counts as none).
    void copyPreamble(const HtsPackage& other);

    int numSlots() const { return static_cast<int>(slots.size()); }
    // Resizes `slots`, and the slot dimension of `values` in every run; below zero counts as none.
    void setNumSlots(int count);

    // The run or slot at the index; a default one that lives as long as the program when the index
    // is out of range.
    const HtsRun& run(int index) const;
    const HtsSlot& slot(int index) const;
    // Replaces the run or slot at the index; does nothing when the index is out of range.
    void setRun(int index, const HtsRun& run);
    void setSlot(int index, const HtsSlot& slot);

    // Set when "END_PACKAGE_PREAMBLE" has been read.
    bool preambleRead = false;
    QString name;
    QString owner;
    QString description;
    QDateTime createDate; // in UTC; null when absent or not a date-time
    // As stated in the file; below zero counts as none.
    int numberOfRuns = 0;
    QVector<HtsRun> runs;
    QVector<HtsSlot> slots;
    HtsValues values;

private:
    void append(HtsWalk& walk);
    void appendSlot(HtsWalk& walk);
};

#endif // HTS_HTSPACKAGE_H
