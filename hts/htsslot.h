#ifndef HTS_HTSSLOT_H
#define HTS_HTSSLOT_H

#include <QLatin1Char>
#include <QList>
#include <QString>
#include <QStringList>

#include "hts/status.h"

class QIODevice;
class QTextStream;
struct HtsRun;

// A slot's name as users write it: "Object.Slot".
inline QString fullSlotName(const QString& objectName, const QString& slotName)
{
    return objectName + QLatin1Char('.') + slotName;
}

// One slot of a package: its object, name and type, and the headers of its columns. A value type;
// the values are in HtsPackage::values.
struct HtsSlot
{
    // Reads the slot preamble and the rows of a table slot; past the end of the input up to 4096
    // empty rows. Fails with "Cannot read slot preamble".
    Status readPreamble(QIODevice& device);
    // Writes what readPreamble reads. Always succeeds.
    Status writePreamble(QTextStream& stream) const;

    // True for an empty slot type and "SeriesSlot": one value for each timestep of the run.
    bool isSeries() const;
    // True for "TableSlot": text rows instead of columns of values.
    bool isTable() const;
    // `cols` of a table slot, else 1.
    int numColumns() const;
    // `rows` of a table slot, -1 for a series slot (see the run's timeStepCount), else 1.
    int numRows() const;
    // Number of values in each column of a slot of `run`, 0 or more; a table has no
    // columns of values.
    int valueCount(const HtsRun& run) const;

    // Lets texts use the memory of equal ones of `neighbour`; see shareIfEqual(). Files have
    // millions of slots of a few types and units.
    void shareTexts(const HtsSlot& neighbour);

    // Set when "END_SLOT_PREAMBLE" has been read.
    bool preambleRead = false;
    QString objectType;
    QString objectName;
    // "SeriesSlot", "TableSlot", "ScalarSlot", other text, or empty.
    QString slotType;
    QString slotName;
    int rows = 0;
    int cols = 0;
    // Rows of a table slot, as in the file, without white space at both ends.
    QStringList tableRows;
    // Column headers, one entry for each column; a column without a method has an empty text.
    QStringList units;
    QList<double> scales;
    QStringList methods;
};

// Lets a QVector of these grow by copying bytes.
Q_DECLARE_TYPEINFO(HtsSlot, Q_MOVABLE_TYPE);

#endif // HTS_HTSSLOT_H
