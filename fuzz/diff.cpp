// Any two HTS files: compared with themselves they have no difference, what differs is the same
// from both sides, and files without a difference have the same values for the plain reader.
//
// Input: both files, separated by a line "====".

#include <algorithm>
#include <cmath>

#include <QBuffer>

#include "compare/comparefiles.h"
#include "fuzz/fuzzsupport.h"
#include "fuzz/fuzztarget.h"
#include "hts/htspackage.h"
#include "tests/plain/plainreader.h"

namespace {

CompareOutcome comparedFiles(QByteArray first, QByteArray second)
{
    QBuffer a(&first);
    QBuffer b(&second);
    fuzz::require(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly),
                  QStringLiteral("cannot open the buffers"));
    qint64 found = 0;
    const CompareOutcome outcome = compareHts({&a, &b}, {}, [&found](const Difference& difference) {
        ++found;
        fuzz::require(difference.lines[0] > 0 || difference.lines[1] > 0,
                      QStringLiteral("a difference without a line"));
    });
    fuzz::require(found == outcome.structureDifferences + outcome.differingSlots,
                  QStringLiteral("other differences are counted"));
    return outcome;
}

bool isRead(const CompareOutcome& outcome)
{
    return outcome.status[0].ok() && outcome.status[1].ok();
}

void requireNone(const QByteArray& file)
{
    const CompareOutcome outcome = comparedFiles(file, file);
    fuzz::require(!isRead(outcome) || outcome.areEqual(),
                  QStringLiteral("a file differs from itself"));
}

// Of a file that can be read.
HtsValues plainValuesOf(QByteArray file)
{
    QBuffer device(&file);
    fuzz::require(device.open(QIODevice::ReadOnly), QStringLiteral("cannot open the buffer"));
    HtsPackage package;
    bool isEndless = false;
    const Status status = plainreader::readUnlessEndless(device, file, package, isEndless);
    fuzz::require(status.ok() && !isEndless,
                  QStringLiteral("compared in spite of ") + status.message);
    return package.values;
}

bool areSameNumbers(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

void requireSameValues(const HtsValues& first, const HtsValues& second)
{
    fuzz::require(first.size() == second.size(), QStringLiteral("another number of runs"));
    for (std::size_t run = 0; run < first.size(); ++run) {
        const auto& a = first[run];
        const auto& b = second[run];
        fuzz::require(a.size() == b.size(), QStringLiteral("another number of slots"));
        for (std::size_t slot = 0; slot < a.size(); ++slot) {
            const bool isSame = a[slot].size() == b[slot].size() &&
                                std::equal(a[slot].begin(), a[slot].end(), b[slot].begin(),
                                           [](const HtsColumn& x, const HtsColumn& y) {
                                               return std::equal(x.begin(), x.end(), y.begin(),
                                                                 y.end(), areSameNumbers);
                                           });
            fuzz::require(isSame, QStringLiteral("other values without a difference"));
        }
    }
}

} // namespace

FUZZ_TARGET(diff)
{
    const QByteArray separator = "\n====\n";
    const int end = input.indexOf(separator);
    const QByteArray first = end < 0 ? input : input.left(end);
    const QByteArray second = end < 0 ? input : input.mid(end + separator.size());
    requireNone(first);
    requireNone(second);
    const CompareOutcome there = comparedFiles(first, second);
    const CompareOutcome back = comparedFiles(second, first);
    fuzz::require(isRead(there) == isRead(back), QStringLiteral("read from one side only"));
    if (!isRead(there))
        return;
    fuzz::require(there.structureDifferences == back.structureDifferences &&
                      there.differingSlots == back.differingSlots &&
                      there.differingValues == back.differingValues && there.values == back.values,
                  QStringLiteral("other differences from the other side"));
    if (there.areEqual())
        requireSameValues(plainValuesOf(first), plainValuesOf(second));
}
