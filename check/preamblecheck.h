#ifndef CHECK_PREAMBLECHECK_H
#define CHECK_PREAMBLECHECK_H

#include <string>
#include <string_view>
#include <vector>

#include <QLatin1String>
#include <QString>
#include <QtGlobal>

#include "check/finding.h"
#include "check/knownlines.h"
#include "hts/htsreader.h"
#include "hts/status.h"

class Findings;
class ValueCheck;
struct HtsSlot;

// Watches the preambles and column headers that a reader reads: keys, the lines between them, and
// where the reading ends. Value lines are passed on.
//
// One lost line moves all that follow it, up to the next place where the file and the reader agree
// again. Only the first finding of such a stretch is reported: the track is lost there, and found
// again at the end of the next slot preamble.
class PreambleCheck : public HtsReader::Observer
{
public:
    // Reader, values and findings outlive the object.
    PreambleCheck(HtsReader& reader, ValueCheck& values, Findings& findings);

    // Before a preamble is read.
    void begin(Section section);
    // After a section has been read, or could not be: reports why, with the message of `status`.
    void finish(const Status& status);
    // After a slot preamble has been read: what the slot lacks. Finds the track again.
    void finishSlot(const HtsSlot& slot);

    // Line of a key in the preamble that was read last; 0 if it is not there.
    qint64 lineOf(QLatin1String key) const;
    // Line that the preamble begins with.
    qint64 firstLine() const { return m_firstLine; }

    bool isOnTrack() const { return m_isOnTrack; }
    void loseTrack() { m_isOnTrack = false; }
    // Whether the line "END_RUN" of a run that was ended by the empty line before it is yet to
    // come. Asking clears it.
    bool takeStrayEndOfRun();

    void ignoredLine(std::string_view line) override;
    void keywordLine(QLatin1String key, std::string_view value) override;
    void unexpectedLine(QLatin1String expected, std::string_view line) override;
    void cutLine(std::string_view text) override;
    void look(std::size_t index, qint64 lineNumber, std::string_view line) override;

private:
    struct SeenKey
    {
        QLatin1String key;
        std::string value;
        qint64 line;
    };

    void noteKey(QLatin1String key, std::string_view value);
    bool isEmptyValue(std::string_view line);
    void reportMissing(Code code, QLatin1String key, const QString& value);
    QString placeOf(std::string_view line);

    HtsReader& m_reader;
    ValueCheck& m_values;
    Findings& m_findings;
    Section m_section = Section::Package;
    qint64 m_firstLine = 0;
    // Keys of this preamble. Entries past the count are kept for their memory.
    std::vector<SeenKey> m_seen;
    std::size_t m_seenCount = 0;
    // Keys that a line of this preamble nearly has.
    std::vector<QLatin1String> m_nearKeys;
    // Why the reading ends, until its message is known.
    bool m_hasFailed = false;
    Code m_failureCode = Code::PackagePreamble;
    qint64 m_failureLine = 0;
    QString m_failureText;

    bool m_isOnTrack = true;
    bool m_hasStrayEndOfRun = false;
};

#endif // CHECK_PREAMBLECHECK_H
