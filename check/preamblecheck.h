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

// Checks the preambles and column headers that a reader reads: keys, the lines between them, and
// why reading fails. Value lines are passed on to a ValueCheck.
//
// After one lost line the reader misinterprets all that follow, up to a place where it is in sync
// with the file again. Of these consequences only the first is reported: there the check gets out
// of sync, and at the end of the next slot preamble it is in sync again.
class PreambleCheck : public HtsReader::Observer
{
public:
    // Becomes the observer of the reader. Reader, values and findings outlive the object.
    PreambleCheck(HtsReader& reader, ValueCheck& values, Findings& findings);

    // To be called before a preamble is read.
    void begin(Section section);
    // To be called after a section was read, or failed: then reports why, with the message of
    // `status`.
    void finish(const Status& status);
    // To be called after a slot preamble has been read: reports what the slot lacks. The check is
    // then in sync.
    void finishSlot(const HtsSlot& slot);

    // Line number of a key in the preamble that was read last; 0 if the key is missing.
    qint64 lineOf(QLatin1String key) const;
    // Line number of the first line of the preamble.
    qint64 firstLine() const { return m_firstLine; }

    bool isInSync() const { return m_isInSync; }
    void loseSync() { m_isInSync = false; }
    // Whether a run was ended by an empty line before its "END_RUN", and that line has not been
    // read yet. The next call returns false.
    bool takeStrayEndOfRun();

    void ignoredLine(std::string_view line) override;
    void keywordLine(QLatin1String key, std::string_view value) override;
    void unexpectedLine(QLatin1String expected, std::string_view line) override;
    void cutLine(std::string_view text) override;
    void oddValueLine(std::size_t index, qint64 lineNumber, std::string_view line) override;

private:
    // A key and where it occurred last.
    struct SeenKey
    {
        QLatin1String key;
        std::string value;
        qint64 line;
        qint64 count;
    };

    void noteKey(QLatin1String key, std::string_view value);
    bool noteKeyWithoutValue(std::string_view line);
    void reportMissing(Code code, QLatin1String key, const QString& value);
    QString missingBefore(std::string_view line);

    HtsReader& m_reader;
    ValueCheck& m_values;
    Findings& m_findings;
    Section m_section = Section::Package;
    qint64 m_firstLine = 0;
    // Keys of this preamble. Entries after the first m_seenCount are kept only for reuse of their
    // memory.
    std::vector<SeenKey> m_seen;
    std::size_t m_seenCount = 0;
    // Keys with which a line of this preamble nearly begins.
    std::vector<QLatin1String> m_nearKeys;
    // Why reading fails, until finish() gets the message.
    bool m_hasFailed = false;
    Code m_failureCode = Code::PackagePreamble;
    qint64 m_failureLine = 0;
    QString m_failureText;

    bool m_isInSync = true;
    bool m_hasStrayEndOfRun = false;
};

#endif // CHECK_PREAMBLECHECK_H
