#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "check/topiccheck.h"
#include "hts/htskeys.h"
#include "hts/quotedtext.h"

namespace {

constexpr FindingKind kAverageOfPart = {
    Severity::Warning, "average-of-part",
    "`AverageNaN` divides by all timesteps of a year, also by those without a value: with 340 of "
    "365 values the result is 0.93 of their mean.",
    "Choose `Average`, which makes the year NaN, or correct the result by the share that the text "
    "has."};
constexpr FindingKind kNothingIsZero = {
    Severity::Warning, "nothing-is-zero",
    "`SumNaN` or `AverageNaN` gives 0 for a year without any value.",
    "Choose `Sum` or `Average`, which makes the year NaN, or do not use the year of the result."};
constexpr FindingKind kEndMissing = {
    Severity::Warning, "end-missing",
    "The last value of a year is missing; `EndNaN` does not look for the nearest, and gives NaN.",
    "Fill in the value, or do without the year."};
constexpr FindingKind kBeginMissing = {
    Severity::Warning, "begin-missing",
    "The first value of a year is missing; `BeginNaN` does not look for the nearest, and gives "
    "NaN.",
    "Fill in the value, or do without the year."};
constexpr FindingKind kTooManyMissing = {
    Severity::Warning, "too-many-missing",
    "A year lacks more values than `--max-missing` admits, whatever the method makes of it.",
    "Do not use the year of the result."};
constexpr FindingKind kWmoSteps = {
    Severity::Warning, "wmo-steps",
    "`--max-missing wmo` is a rule for days and months; for other timesteps no year is judged.",
    "Give a number or a percentage."};
constexpr FindingKind kSumOfPart = {
    Severity::Note, "sum-of-part", "`SumNaN` is the sum of only a part of the values of a year.",
    "Nothing, if missing values are none; else choose `Sum`, which makes the year NaN."};
constexpr FindingKind kExtremeOfPart = {
    Severity::Note, "extreme-of-part",
    "`MaxNaN` or `MinNaN` knows only a part of the values of a year.",
    "Nothing, if the missing values cannot be the extreme; else choose `Max` or `Min`, which makes "
    "the year NaN."};
constexpr FindingKind kNanResult = {
    Severity::Note, "nan-result",
    "A year becomes NaN, because values of it are missing, or the result is out of range.",
    "Nothing, if that is meant; else fill in the values, or choose a method that ignores missing "
    "ones."};
constexpr FindingKind kSumOfRate = {
    Severity::Note, "sum-of-rate",
    "`Sum` or `SumNaN` of values per second: a sum of daily means in cms is no volume.",
    "Choose `Average` and multiply it by the seconds of the year."};

// Words for units per second, in lower case, beside all that end like one of kRateEndings.
constexpr std::array<const char*, 9> kRateWords = {"cms",   "cfs",    "kcfs", "cumec", "cumecs",
                                                   "cusec", "cusecs", "lps",  "s-1"};
constexpr std::array<const char*, 8> kRateEndings = {"/s",      "/sec", "/second", "per second",
                                                     "per sec", "s^-1", "s**-1",   "s\u207b\u00b9"};

bool isRate(const QString& units)
{
    const QString text = units.trimmed().toLower();
    const QString lastWord = text.section(QLatin1Char(' '), -1); // of "1000 cfs"
    const auto isWord = [&](const char* word) { return lastWord == QLatin1String(word); };
    const auto isEnding = [&](const char* end) { return text.endsWith(QString::fromUtf8(end)); };
    return std::any_of(kRateWords.begin(), kRateWords.end(), isWord) ||
           std::any_of(kRateEndings.begin(), kRateEndings.end(), isEnding);
}

// What is said about years, by what their values rest on: %1 is the method and the slot, %2 the
// years. The texts go on with the number of values of one year.
struct Judgement
{
    const FindingKind* kind;
    const char* pattern;
};

constexpr std::array<Judgement, 7> kJudgements = {{
    {&kNanResult, "%1 is NaN for %2"},
    {&kNothingIsZero, "%1 is 0 for %2, without any value"},
    {&kAverageOfPart, "%1 divides by all timesteps of %2"},
    {&kSumOfPart, "%1 is the sum of a part of the values of %2"},
    {&kExtremeOfPart, "%1 knows a part of the values of %2"},
    {&kEndMissing, "%1 is NaN for %2: the last value is missing"},
    {&kBeginMissing, "%1 is NaN for %2: the first value is missing"},
}};
constexpr std::size_t kTooMany = kJudgements.size(); // the index after them

// What a method makes of a year with some of its values: a number, and NaN. Methods that are not
// here give NaN, or the number that they would give with all values.
struct PartOfYear
{
    const char* method;
    const FindingKind* number;
    const FindingKind* nan;
};

constexpr std::array<PartOfYear, 6> kPartsOfYear = {{
    {"SumNaN", &kSumOfPart, &kNanResult},
    {"AverageNaN", &kAverageOfPart, &kNanResult},
    {"MaxNaN", &kExtremeOfPart, &kNanResult},
    {"MinNaN", &kExtremeOfPart, &kNanResult},
    {"EndNaN", nullptr, &kEndMissing},
    {"BeginNaN", nullptr, &kBeginMissing},
}};

PartOfYear partOfYear(const AggMethod& method)
{
    for (const PartOfYear& part : kPartsOfYear) {
        if (method.word == QLatin1String(part.method))
            return part;
    }
    return {"", nullptr, &kNanResult};
}

// What there is to say about the annual value of a year, or null.
const FindingKind* judged(const YearValues& year, double result, const PartOfYear& part)
{
    const bool isNumber = std::isfinite(result);
    if (RunYear::presentOf(year) == 0)
        return isNumber ? &kNothingIsZero : &kNanResult;
    if (year.missing == 0)
        return isNumber ? nullptr : &kNanResult;
    return isNumber ? part.number : part.nan;
}

// Years that one finding is about: the first few, how many, and the one that lacks most.
class YearTally
{
public:
    void add(int year, qint64 present, qint64 expected)
    {
        if (m_count < kMaxNamed)
            m_first[static_cast<std::size_t>(m_count)] = year;
        if (m_count == 0 || expected - present > m_expected - m_present) {
            m_worst = year;
            m_present = present;
            m_expected = expected;
        }
        ++m_count;
    }

    qint64 count() const { return m_count; }
    // "2001, 2002, 2005 and 14 more".
    QString years() const;
    // "; in 2001 there are 340 of 365 values".
    QString values() const;
    // The same for a mean that is divided by all timesteps.
    QString meanValues() const;

private:
    static constexpr qint64 kMaxNamed = 3;

    std::array<int, kMaxNamed> m_first{};
    qint64 m_count = 0;
    int m_worst = 0;
    qint64 m_present = 0;
    qint64 m_expected = 0;
};

QString YearTally::years() const
{
    QStringList names;
    for (qint64 i = 0; i < std::min(m_count, kMaxNamed); ++i)
        names.append(QString::number(m_first[static_cast<std::size_t>(i)]));
    const QString text = names.join(QLatin1String(", "));
    return m_count > kMaxNamed ? worded("%1 and %2 more", text, m_count - kMaxNamed) : text;
}

QString YearTally::values() const
{
    if (m_count == 1)
        return worded("; there are %1 of %2 values", m_present, m_expected);
    return worded("; in %1 there are %2 of %3 values", m_worst, m_present, m_expected);
}

QString YearTally::meanValues() const
{
    const double share = static_cast<double>(m_present) / static_cast<double>(m_expected);
    int digits = 2;
    QString text;
    do // as many as it takes to be less than 1
        text = QString::number(share, 'g', digits++);
    while (text == QLatin1String("1"));
    const QString ofYear = m_count == 1 ? QString() : worded(" of %1", m_worst);
    return worded("; with %1 of %2 values the result%3 is %4 of their mean", m_present, m_expected,
                  ofYear, text);
}

// Judges what each annual value rests on, from the engine's own counts: one finding of a kind for
// each slot that is converted, with its years.
class AnnualValueCheck : public TopicCheck
{
public:
    using TopicCheck::TopicCheck;

    void runRead() override;
    void slotRead() override;

private:
    bool hasMethods() const { return m_context.options.control != nullptr; }
    bool hasMaximum() const
    {
        return m_context.options.maxMissing.isSet() &&
               m_context.options.maxMissing.isFor(m_context.years.stepLength());
    }
    void reportRate(const SlotPlan& plan);
    void judge(const std::vector<YearValues>& years, const AggMethod& method);
    void countLacking(const std::vector<YearValues>& years);
    void report(std::size_t slotIndex, const SlotPlan& plan);
    QString textOf(std::size_t index, const SlotPlan& plan) const;

    // Of the slot at hand: one for each of kJudgements, and one for too many missing values.
    std::array<YearTally, kTooMany + 1> m_tallies;
    // For each slot a bit for each of them that was reported, so that a file with many runs does
    // not repeat it for each.
    std::vector<quint8> m_reported;
    static_assert(kTooMany < 8);
};

void AnnualValueCheck::runRead()
{
    const HtsRun& run = m_context.walk.run();
    const MaxMissing& maximum = m_context.options.maxMissing;
    if (m_context.walk.runIndex() > 0 || maximum.isFor(m_context.years.stepLength()))
        return;
    add(kWmoSteps, m_context.lineOfRunKey(kUnitKey),
        "the rule wmo is for days and months, not for steps of %1 %2: no year is judged by it",
        std::max(run.unitQuantity, 1), quoted(run.timeStepUnit));
}

void AnnualValueCheck::slotRead()
{
    const Conversion::SlotOutcome& outcome = m_context.conversion.outcome();
    // Values that are read from other lines have been reported; a table has none.
    if (outcome.slot < 0 || !outcome.status.ok() || m_context.walk.slot().isTable() ||
        m_context.recovery.hasForeignLines())
        return;
    const SlotPlan& plan = m_context.conversion.plans().at(outcome.slot);
    m_tallies = {};
    if (hasMethods()) {
        reportRate(plan);
        judge(*outcome.years, *plan.method);
    }
    if (hasMaximum())
        countLacking(*outcome.years);
    report(static_cast<std::size_t>(outcome.slot), plan);
}

void AnnualValueCheck::reportRate(const SlotPlan& plan)
{
    const QString units = m_context.walk.slot().units.value(0);
    if (m_context.walk.runIndex() == 0 && plan.method->isTotal && isRate(units))
        add(kSumOfRate, m_context.lines.firstLine(),
            "%1 of %2 adds values in %3, which are per second: the result is no volume",
            plan.methodWord, fullSlotName(plan.objectName, plan.slotName), quoted(units));
}

void AnnualValueCheck::judge(const std::vector<YearValues>& years, const AggMethod& method)
{
    const PartOfYear part = partOfYear(method);
    for (std::size_t i = 0; i < years.size(); ++i) {
        const YearValues& year = years[i];
        const FindingKind* kind = judged(year, method.resultFor(year), part);
        if (kind == nullptr)
            continue;
        const auto* judgement =
            std::find_if(kJudgements.begin(), kJudgements.end(),
                         [kind](const auto& each) { return each.kind == kind; });
        Q_ASSERT(judgement != kJudgements.end());
        m_tallies[static_cast<std::size_t>(judgement - kJudgements.begin())].add(
            m_context.years.years()[i].name, RunYear::presentOf(year), year.count);
    }
}

void AnnualValueCheck::countLacking(const std::vector<YearValues>& years)
{
    for (std::size_t i = 0; i < years.size(); ++i) {
        const RunYear& year = m_context.years.years()[i];
        if (m_context.options.maxMissing.isExceeded(
                year, year.lackingOf(years[i]), m_context.missing, m_context.years.stepLength()))
            m_tallies[kTooMany].add(year.name, RunYear::presentOf(years[i]), year.expected);
    }
}

void AnnualValueCheck::report(std::size_t slotIndex, const SlotPlan& plan)
{
    m_reported.resize(std::max(m_reported.size(), slotIndex + 1));
    for (std::size_t i = 0; i < m_tallies.size(); ++i) {
        const auto bit = static_cast<quint8>(1U << i);
        if (m_tallies[i].count() == 0 || (m_reported[slotIndex] & bit) != 0)
            continue;
        m_reported[slotIndex] |= bit;
        add(i == kTooMany ? kTooManyMissing : *kJudgements[i].kind, m_context.lines.firstLine(),
            [&] { return textOf(i, plan); });
    }
}

QString AnnualValueCheck::textOf(std::size_t index, const SlotPlan& plan) const
{
    const YearTally& tally = m_tallies[index];
    const int run = m_context.walk.runIndex() + 1;
    const QString start = run == 1 ? QString() : worded("run %1: ", run);
    const QString name = fullSlotName(plan.objectName, plan.slotName);
    if (index == kTooMany) {
        const MaxMissing& maximum = m_context.options.maxMissing;
        return start + worded(maximum.isWmo() ? "%1 lacks a month, by the rule %2, in %3%4"
                                              : "%1 lacks more than %2 of the values of %3%4",
                              name, maximum.text(), tally.years(), tally.values());
    }
    const Judgement& judgement = kJudgements[index];
    const bool isMean = judgement.kind == &kAverageOfPart;
    const bool isZero = judgement.kind == &kNothingIsZero;
    return start +
           worded(judgement.pattern, worded("%1 of %2", plan.methodWord, name), tally.years()) +
           (isZero   ? QString()
            : isMean ? tally.meanValues()
                     : tally.values());
}

} // namespace

const Topic& annualValueTopic()
{
    static const Topic kTopic = {"Annual values",
                                 {&kAverageOfPart, &kNothingIsZero, &kEndMissing, &kBeginMissing,
                                  &kTooManyMissing, &kWmoSteps, &kSumOfPart, &kExtremeOfPart,
                                  &kNanResult, &kSumOfRate},
                                 makeCheck<AnnualValueCheck>};
    return kTopic;
}
