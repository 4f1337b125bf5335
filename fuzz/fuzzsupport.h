#ifndef FUZZ_FUZZSUPPORT_H
#define FUZZ_FUZZSUPPORT_H

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>
#include <QtGlobal>

// What the fuzz targets share.
namespace fuzz {

// Unless `condition`, prints `message` to stderr and aborts the process.
void require(bool condition, const QString& message);

// Unless the texts are equal, prints both with `what` and aborts the process.
void requireEqual(const QString& what, const QString& actual, const QString& expected);

// A seed for random numbers that depends only on the input.
quint64 seedOf(const QByteArray& input);

// What the targets of conversions and checks take from an input: its first byte is the end month,
// and a line "====" is between a control file and the HTS file. Without that line one rule sums
// all.
struct ConversionInput
{
    int endMonth;
    QByteArray control;
    QByteArray hts;
};
ConversionInput conversionInputOf(const QByteArray& input);

// A file with new content for each input, in a folder that is removed with the object.
class ScratchFile
{
public:
    QString path() const;
    void write(const QByteArray& content) const;

private:
    QTemporaryDir m_folder;
};

} // namespace fuzz

#endif // FUZZ_FUZZSUPPORT_H
