#include "check/topiccheck.h"
#include "hts/htskeys.h"
#include "hts/htsreader.h"
#include "hts/quotedtext.h"

namespace {

constexpr FindingKind kNoRuns = {Severity::Error, "no-runs",
                                 "`number_of_runs:` is missing, or announces none.",
                                 "Write the number of runs."};
constexpr FindingKind kMoreRuns = {
    Severity::Warning, "more-runs",
    "The file has more runs than `number_of_runs:` announces; they are not converted.",
    "Correct the number."};
constexpr FindingKind kTextAfterLastRun = {Severity::Warning, "text-after-last-run",
                                           "Text follows the last run; it is not read.",
                                           "Check whether it belongs to a run or a slot."};

// Checks that there are runs, and reads what follows the last one, to the end of the input.
class PackageCheck : public TopicCheck
{
public:
    using TopicCheck::TopicCheck;

    void finish() override;

private:
    void checkRest();
};

void PackageCheck::checkRest()
{
    HtsReader& reader = m_context.reader;
    qint64 firstLine = 0;
    qint64 runs = 0;
    QString first;
    while (!reader.atEnd()) {
        const std::string_view line = reader.readLine();
        if (line.empty())
            continue;
        if (line == bytesOf(kEndRun) && m_context.recovery.takeStrayEndOfRun())
            continue;
        if (firstLine == 0) {
            firstLine = reader.lineNumber();
            first = quoted(line);
        }
        runs += line == bytesOf(kEndRunPreamble) ? 1 : 0;
    }
    if (runs == 1)
        add(kMoreRuns, firstLine, "a run that is not announced follows; it is not converted");
    else if (runs > 1)
        add(kMoreRuns, firstLine, "%1 runs that are not announced follow; they are not converted",
            runs);
    else if (firstLine > 0)
        add(kTextAfterLastRun, firstLine, "%1 follows the last run and is not read", first);
}

void PackageCheck::finish()
{
    const HtsWalk& walk = m_context.walk;
    if (!walk.status().ok() || walk.isTableWithoutEnd())
        return;
    const int runs = m_context.package.numberOfRuns;
    if (runs < 1)
        add(kNoRuns, m_context.lineNumber(), "the file announces %1 runs%2", runs,
            conversionFails(m_context.conversion.verdict().message));
    checkRest();
}

} // namespace

const Topic& packageTopic()
{
    static const Topic kTopic = {
        "Package", {&kNoRuns, &kMoreRuns, &kTextAfterLastRun}, makeCheck<PackageCheck>};
    return kTopic;
}
