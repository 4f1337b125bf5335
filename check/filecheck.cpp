#include "check/filecheck.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <QBuffer>

#include "check/checkobserver.h"
#include "check/control.h"
#include "check/filekind.h"
#include "check/topiccheck.h"
#include "hts/htsreader.h"

namespace {

constexpr HtsWalk::Options kWalkOptions = {TableRows::Skip, MissingTableEnd::StopAtEndOfInput};

// One method for all slots.
ControlFile ruleForAll()
{
    QByteArray text("*.*: Sum\n");
    QBuffer device(&text);
    device.open(QIODevice::ReadOnly);
    ControlFile control;
    control.status = control.rules.read(device);
    control.isRead = true;
    return control;
}

CheckReport reportWith(const FindingOptions& findings)
{
    CheckReport report;
    report.findings = FindingList(findings);
    return report;
}

// One walk over a file: a conversion judges each section, then the checks of all topics look at it.
// As observers of the reader they also see each line.
class FileCheck
{
public:
    FileCheck(QIODevice& device, const CheckOptions& options);

    CheckReport run();

private:
    void forEach(void (TopicCheck::*function)())
    {
        for (const auto& check : m_checks)
            (*check.*function)();
    }

    void checkSection();
    void runRead();
    void finish();
    void describePlan();

    CheckReport m_report;
    const Sentinels m_sentinels;
    const QString m_otherFile; // what the file is if it is no HTS file
    HtsReader m_reader;
    HtsPackage m_package;
    HtsWalk m_walk;
    Conversion m_conversion;
    RunYears m_years;
    std::optional<RunSteps> m_firstSteps;
    CheckContext m_context;
    std::vector<std::unique_ptr<TopicCheck>> m_checks;
};

FileCheck::FileCheck(QIODevice& device, const CheckOptions& options)
    : m_report(reportWith(options.findings)), m_sentinels(options.sentinels),
      m_otherFile(otherFileText(firstBlockOf(device))), m_reader(device),
      m_walk(m_reader, m_package, kWalkOptions),
      m_conversion(
          [control = options.control] {
              return control == nullptr ? ruleForAll() : control->file();
          },
          options.endMonth, Conversion::Purpose::Judge),
      m_context{options, m_report.findings, m_sentinels, m_reader,    m_package,
                m_walk,  m_conversion,      m_years,     m_firstSteps}
{
    // The findings of such a file may have to make way for one.
    if (!m_otherFile.isEmpty()) {
        FindingOptions kept;
        kept.ignored = options.findings.ignored;
        m_report.findings = FindingList(kept);
    }
    for (const Topic* topic : findingTopics()) {
        m_checks.push_back(topic->makeCheck(m_context));
        if (ReaderObserver* observer = m_checks.back()->lineObserver())
            m_reader.addObserver(*observer);
    }
}

CheckReport FileCheck::run()
{
    while (m_walk.next())
        checkSection();
    finish();
    return std::move(m_report);
}

void FileCheck::checkSection()
{
    // The lines of values must be seen by the checks while they are read.
    if (m_walk.place() == HtsWalk::Place::Slot && !m_walk.slot().isTable())
        forEach(&TopicCheck::beforeValues);
    m_conversion.take(m_walk);
    if (m_walk.place() == HtsWalk::Place::Run) {
        runRead();
    } else if (m_walk.place() == HtsWalk::Place::Slot) {
        m_report.slotCount += m_walk.runIndex() == 0 ? 1 : 0;
        forEach(&TopicCheck::slotRead);
        if (CheckObserver* observer = m_context.options.observer)
            observer->slotRead(m_context);
    } else if (m_walk.place() == HtsWalk::Place::EndOfRun) {
        forEach(&TopicCheck::runEnded);
    }
}

void FileCheck::runRead()
{
    ++m_report.runCount;
    m_context.recovery.runRead();
    m_context.lines.setEndLine(m_reader.lineNumber() - m_walk.run().timesteps.size());
    m_years.beginRun(m_walk.run(), m_conversion, m_context.options.endMonth);
    if (m_walk.runIndex() == 0)
        m_firstSteps.emplace(m_walk.run(), m_conversion.firstYears(), m_context.options.endMonth);
    forEach(&TopicCheck::runRead);
    if (CheckObserver* observer = m_context.options.observer)
        observer->runRead(m_context);
    m_firstSteps.reset();
}

void FileCheck::finish()
{
    m_conversion.finish(m_walk, m_package);
    describePlan();
    m_report.neverEnds = m_walk.isTableWithoutEnd();
    if (!m_report.neverEnds)
        m_report.conversionMessage = m_conversion.verdict().message;
    forEach(&TopicCheck::finish);
    const bool hasPreamble =
        m_walk.status().ok() || m_walk.place() != HtsWalk::Place::PackagePreamble;
    m_report.isOtherFile = !hasPreamble && !m_otherFile.isEmpty();
    if (m_report.isOtherFile)
        reportOtherFile(m_otherFile, m_report.conversionMessage, m_report.findings);
    if (CheckObserver* observer = m_context.options.observer)
        observer->finished(m_context);
}

void FileCheck::describePlan()
{
    const CompleteYears& years = m_conversion.firstYears();
    if (years.status.ok()) {
        const auto isLeftOutAtEnd = [&years](int year) { return year > years.count(); };
        m_report.years = {
            years.count(), years.timesteps.first(), years.timesteps.last(),
            std::count(years.valueMap.begin(), years.valueMap.end(), 0),
            std::count_if(years.valueMap.begin(), years.valueMap.end(), isLeftOutAtEnd)};
    }
    if (m_context.options.control == nullptr)
        return;
    for (const SlotPlan& plan : m_conversion.plans())
        m_report.slotPlan.push_back(
            {plan.objectName, plan.slotName, plan.isSeries, plan.isAnnualized(), plan.method,
             plan.rule == kNoRule ? 0 : m_context.options.control->lineOf(plan.rule)});
}

} // namespace

CheckReport checkFile(QIODevice& device, const CheckOptions& options)
{
    return FileCheck(device, options).run();
}
