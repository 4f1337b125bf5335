#include "check/filecheck.h"

#include <optional>

#include "annualize/annualization.h"
#include "annualize/slotplan.h"
#include "check/preamblecheck.h"
#include "check/quotedtext.h"
#include "check/runcheck.h"
#include "check/slotendcheck.h"
#include "check/timecheck.h"
#include "check/valuecheck.h"
#include "check/yearcounts.h"
#include "hts/htskeys.h"
#include "hts/htspackage.h"
#include "hts/htsreader.h"

namespace {

// One pass over a file. Its loops follow the order of the file; the checks decide what to report
// about each section.
class FileCheck
{
public:
    FileCheck(QIODevice& device, const CheckOptions& options);

    CheckReport run();

private:
    Status readRun(int runIndex);
    Status readSlot(const HtsRun& run, int runIndex);
    bool isMissingRun(int runIndex, const HtsPackage& package);
    void startRun(const HtsRun& run, int runIndex);
    void startFirstRun(const HtsRun& run, const RunLines& lines);
    void addSlot(const HtsSlot& slot, std::size_t valueCount, int runIndex, qint64 line);
    Status readColumnHeader(HtsSlot& slot);
    void readValues(const HtsRun& run, const HtsSlot& slot);
    RunLines linesOfRun(const HtsRun& run) const;
    bool hasBadControlFile() const;
    void finish(const Status& readStatus, const HtsPackage& package);
    void setConversionMessage(const Status& readStatus);

    const CheckOptions& m_options;
    CheckReport m_report;
    HtsReader m_reader;
    ValueCheck m_values;
    PreambleCheck m_preamble;
    SlotEndCheck m_slotEnds;
    RunCheck m_runs;
    std::optional<RuleCheck> m_rules;
    std::optional<YearCounts> m_counts;

    RunYears m_firstYears;
    RunYears m_laterYears; // of a run with another timing
    bool m_hasConvertedSlot = false;
    std::vector<double> m_column; // a buffer
};

FileCheck::FileCheck(QIODevice& device, const CheckOptions& options)
    : m_options(options), m_reader(device), m_values(m_report.findings),
      m_preamble(m_reader, m_values, m_report.findings),
      m_slotEnds(m_reader, m_preamble, m_values, m_report.findings),
      m_runs(options.endMonth, m_report.findings)
{
    if (!options.controlPath.isEmpty())
        m_rules.emplace(m_report.findings).read(options.controlPath);
    if (options.counts != nullptr)
        m_counts.emplace(*options.counts, options.fileName);
}

CheckReport FileCheck::run()
{
    HtsPackage package;
    m_preamble.begin(Section::Package);
    Status status = m_reader.readPackagePreamble(package);
    m_preamble.finish(status);
    for (int r = 0; status.ok() && r < package.numberOfRuns && !m_report.neverEnds; ++r) {
        if (isMissingRun(r, package)) {
            status = failure(HtsRun::kBadPreamble);
            break;
        }
        status = readRun(r);
    }
    finish(status, package);
    return std::move(m_report);
}

// Reported here, because for the reader it is a run preamble like any other bad one.
bool FileCheck::isMissingRun(int runIndex, const HtsPackage& package)
{
    if (!m_reader.atEnd())
        return false;
    m_report.findings.add(Code::FewerRuns, m_reader.lineNumber(), [&]() -> QString {
        return QStringLiteral("the file ends after %1 of %2 runs")
                   .arg(QString::number(runIndex), QString::number(package.numberOfRuns)) +
               conversionFails(HtsRun::kBadPreamble);
    });
    return true;
}

Status FileCheck::readRun(int runIndex)
{
    HtsRun run;
    m_preamble.begin(Section::Run);
    Status status = m_reader.readRun(run);
    m_preamble.finish(status);
    if (!status.ok())
        return status;
    ++m_report.runCount;
    startRun(run, runIndex);
    while (status.ok() && !m_report.neverEnds && !m_reader.takeEndOfRun())
        status = readSlot(run, runIndex);
    if (!status.ok() || m_report.neverEnds)
        return status;
    if (runIndex > 0)
        m_runs.finishRun(m_reader.lineNumber());
    else if (m_rules)
        m_rules->finish(); // only now: the slots after an error in the first run are not known
    return status;
}

RunLines FileCheck::linesOfRun(const HtsRun& run) const
{
    RunLines lines;
    lines.start = m_preamble.lineOf(QLatin1String("start:"));
    lines.end = m_preamble.lineOf(QLatin1String("end:"));
    lines.unit = m_preamble.lineOf(QLatin1String("time_step_unit:"));
    lines.endOfPreamble = m_reader.lineNumber() - run.timesteps.size();
    return lines;
}

void FileCheck::startRun(const HtsRun& run, int runIndex)
{
    const RunLines lines = linesOfRun(run);
    const RunYears* years = &m_firstYears;
    if (runIndex == 0) {
        startFirstRun(run, lines);
    } else if (!m_runs.beginRun(runIndex, run, lines)) {
        m_laterYears = yearsOf(run, m_options.endMonth);
        years = &m_laterYears;
    }
    if (m_counts)
        m_counts->beginRun(runIndex, run, *years);
}

void FileCheck::startFirstRun(const HtsRun& run, const RunLines& lines)
{
    m_firstYears = yearsOf(run, m_options.endMonth);
    checkTiming(run, lines, m_firstYears, m_options.endMonth, m_report.findings);
    m_runs.setFirstRun(run);
    if (!m_firstYears.years.status.ok())
        return;
    YearPlan& plan = m_report.years;
    plan.count = m_firstYears.yearCount();
    plan.first = m_firstYears.years.timesteps.first();
    plan.last = m_firstYears.years.timesteps.last();
    plan.leftOutAtStart = m_firstYears.leftOutAtStart();
    plan.leftOutAtEnd = m_firstYears.leftOutAtEnd();
}

Status FileCheck::readSlot(const HtsRun& run, int runIndex)
{
    HtsSlot slot;
    m_preamble.begin(Section::Slot);
    Status status = m_reader.readSlotPreamble(slot, HtsReader::TableRows::Leave);
    if (status.ok()) {
        m_preamble.finishSlot(slot);
        status = readColumnHeader(slot);
    }
    m_preamble.finish(status);
    if (!status.ok())
        return status;
    const qint64 line = m_preamble.firstLine();
    m_column.clear();
    if (slot.isTable()) {
        const QString name = shownSlot(slot.objectName, slot.slotName);
        m_report.neverEnds = !m_slotEnds.readTable(slot, name);
    } else {
        readValues(run, slot);
    }
    if (!m_report.neverEnds)
        addSlot(slot, m_column.size(), runIndex, line);
    if (m_counts)
        m_counts->addSlot(slot, m_column);
    return status;
}

Status FileCheck::readColumnHeader(HtsSlot& slot)
{
    if (slot.isTable())
        return {};
    QString units;
    double scale = 0.0;
    QString method;
    Status status = m_reader.readColumnHeader(units, scale, method);
    slot.units.append(units);
    slot.scales.append(scale);
    return status;
}

void FileCheck::readValues(const HtsRun& run, const HtsSlot& slot)
{
    const QString name = shownSlot(slot.objectName, slot.slotName);
    m_column.resize(static_cast<std::size_t>(slot.valueCount(run)));
    const qint64 firstLine = m_reader.lineNumber() + 1;
    m_values.begin(name, m_column.size());
    m_reader.readValues(m_column);
    m_values.finish(m_column, firstLine);
    m_slotEnds.readEndLines(name);
}

void FileCheck::addSlot(const HtsSlot& slot, std::size_t valueCount, int runIndex, qint64 line)
{
    if (runIndex > 0) {
        m_runs.addSlot(slot, valueCount, line);
        return;
    }
    ++m_report.slotCount;
    const bool isConverted = m_rules ? m_rules->addSlot(slot, line).isConverted() : slot.isSeries();
    m_hasConvertedSlot = m_hasConvertedSlot || isConverted;
    m_runs.addFirstSlot(slot, isConverted);
}

// That is a finding already, with the message of Code::NothingToConvert.
bool FileCheck::hasBadControlFile() const
{
    const Findings& findings = m_report.findings;
    return findings.count(Code::ControlUnreadable) + findings.count(Code::ControlLine) > 0;
}

void FileCheck::finish(const Status& readStatus, const HtsPackage& package)
{
    if (m_rules)
        m_report.slotPlan = m_rules->plan();
    const bool isWhole = readStatus.ok() && !m_report.neverEnds;
    if (isWhole && m_report.runCount == 0) {
        m_firstYears = yearsOf(HtsRun(), m_options.endMonth);
        m_report.findings.add(Code::NoRuns, m_reader.lineNumber(), [&]() -> QString {
            return QStringLiteral("the file announces %1 runs").arg(package.numberOfRuns) +
                   conversionFails(m_firstYears.years.status.message);
        });
    } else if (isWhole && m_firstYears.years.status.ok() && !m_hasConvertedSlot &&
               !hasBadControlFile()) {
        m_report.findings.add(Code::NothingToConvert, m_reader.lineNumber(), [&]() -> QString {
            return (m_rules ? QStringLiteral("no series slot has a method")
                            : QStringLiteral("the first run has no series slot")) +
                   conversionFails(Annualization::kNoSlots);
        });
    }
    if (isWhole)
        m_slotEnds.readRest();
    setConversionMessage(readStatus);
}

// In the order of a conversion: the first failure counts.
void FileCheck::setConversionMessage(const Status& readStatus)
{
    if (m_report.neverEnds)
        return;
    if (!readStatus.ok())
        m_report.conversionMessage = readStatus.message;
    else if (!m_firstYears.years.status.ok())
        m_report.conversionMessage = m_firstYears.years.status.message;
    else if (!m_hasConvertedSlot)
        m_report.conversionMessage = Annualization::kNoSlots;
    else
        m_report.conversionMessage = m_runs.status().message;
}

} // namespace

CheckReport checkFile(QIODevice& device, const CheckOptions& options)
{
    return FileCheck(device, options).run();
}
