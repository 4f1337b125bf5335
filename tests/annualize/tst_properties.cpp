#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <iterator>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

#include <QBuffer>
#include <QHash>
#include <QObject>
#include <QTemporaryDir>
#include <QtTest>

#include "QsLog.h"
#include "annualize/aggvalues.h"
#include "annualize/annualizehts.h"
#include "annualize/conversion.h"
#include "hts/datetimetext.h"
#include "tests/annualize/conversioncompare.h"
#include "tests/annualize/randomcase.h"
#include "tests/hts/packagecompare.h"
#include "tests/hts/piecedevice.h"
#include "tests/support/hostsystem.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

// What must be true for every conversion, tried on random conversions. The environment variable
// HTS_PROPERTY_CASES sets how many each test tries; a failure names the seed.

namespace {

constexpr int kUsualCases = 40;

using Numbers = std::vector<double>;

// The years of a case, by its calendar.
struct Years
{
    int count = 0; // below 1 when none is complete
    AnnualizeHts::ValueMap map;
    QByteArrayList lastSteps; // of each complete year
};

// Counts, for each timestep, the years that have started before it ends.
Years yearsOf(const RandomTiming& timing)
{
    const std::vector<qint64>& instants = timing.instants;
    const auto yearStart = [&](int year) { return instantOf(year, timing.endMonth + 1, 1); };
    const qint64 week = 7 * kMinutesPerDay;

    // Years are named after the calendar year that they start at the end month's end of.
    const qint64 first = instants.front();
    int firstYear = yearOf(first) - (timing.endMonth == 12 ? 1 : 0);
    const qint64 start = yearStart(firstYear);
    const qint64 endOfFirstStep = timing.unit == "month"
                                      ? instantOf(firstYear, timing.endMonth + 2, 1)
                                  : timing.unit == "week" ? start + week
                                                          : start + kMinutesPerDay;
    if (start < first && endOfFirstStep < first)
        ++firstYear;

    Years years;
    for (int step = 0; step < timing.stepTexts.size(); ++step) {
        int started = 0;
        while (yearStart(firstYear + started) < instants[static_cast<std::size_t>(step)])
            ++started;
        if (started > 1 && years.map.back() == started - 1)
            years.lastSteps.append(timing.stepTexts.at(step - 1));
        years.map.push_back(started);
    }

    years.count = years.map.back();
    const qint64 left = yearStart(firstYear + years.count) - instants.back();
    const bool isComplete = timing.unit == "week" ? left > 0 && left < week : left == 0;
    if (isComplete)
        years.lastSteps.append(timing.stepTexts.last());
    else
        --years.count;
    return years;
}

// The values of each year.
std::vector<Numbers> splitByYear(const Numbers& values, const Years& years)
{
    std::vector<Numbers> result(static_cast<std::size_t>(std::max(0, years.count)));
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::int32_t year = years.map[i];
        if (year >= 1 && year <= years.count)
            result[static_cast<std::size_t>(year - 1)].push_back(values[i]);
    }
    return result;
}

Numbers usableOf(const Numbers& values)
{
    Numbers result;
    std::copy_if(values.begin(), values.end(), std::back_inserter(result),
                 [](double value) { return std::isfinite(value); });
    return result;
}

// One aggregate of one year, word by word.
double aggregateOf(const QByteArray& method, const Numbers& year)
{
    const Numbers usable = usableOf(year);
    const bool isTolerant = method.endsWith("NaN");
    if (!isTolerant && usable.size() < year.size())
        return std::nan("1"); // the lowest bit set
    const QByteArray word = isTolerant ? method.chopped(3) : method;
    const double sum = std::accumulate(usable.begin(), usable.end(), 0.0);
    if (word == "Sum")
        return sum;
    if (word == "Average")
        return sum / static_cast<double>(year.size());
    if (word == "End")
        return year.back();
    if (word == "Begin" || usable.empty())
        return year.front();
    return word == "Max" ? *std::max_element(usable.begin(), usable.end())
                         : *std::min_element(usable.begin(), usable.end());
}

QString numberDifference(const Numbers& left, const Numbers& right)
{
    if (left.size() != right.size())
        return QStringLiteral("%1 and %2 values").arg(left.size()).arg(right.size());
    for (std::size_t i = 0; i < left.size(); ++i) {
        if (bitsOf(left[i]) != bitsOf(right[i]))
            return QStringLiteral("value %1: %2 (%3) and %4 (%5)")
                .arg(i)
                .arg(left[i], 0, 'g', 17)
                .arg(bitsOf(left[i]), 0, 16)
                .arg(right[i], 0, 'g', 17)
                .arg(bitsOf(right[i]), 0, 16);
    }
    return {};
}

// The sum, off by less than a unit in its last place: the terms are added without any error into a
// few numbers that don't overlap, the smallest first.
double exactSum(const Numbers& terms)
{
    Numbers partials;
    for (double term : terms) {
        std::size_t kept = 0;
        for (double partial : partials) {
            if (std::abs(term) < std::abs(partial))
                std::swap(term, partial);
            const double high = term + partial;
            const double low = partial - (high - term);
            if (low != 0.0)
                partials[kept++] = low;
            term = high;
        }
        partials.resize(kept);
        partials.push_back(term);
    }
    return std::accumulate(partials.rbegin(), partials.rend(), 0.0);
}

// What is wrong with the sum and the average of a year's usable values. The error of adding n
// numbers one after another is (n - 1) * u * (the sum of their magnitudes) at most, with u the
// relative error of one rounding. The division adds another.
QString sumFault(const Numbers& year, double sum, double average)
{
    constexpr double kTolerance = 1 + 1e-9; // for the errors of the measurement itself
    Numbers terms = usableOf(year);
    Numbers magnitudes = terms;
    for (double& magnitude : magnitudes)
        magnitude = std::abs(magnitude);
    const double unit = std::ldexp(exactSum(magnitudes), -53) * kTolerance;
    const auto usable = static_cast<double>(terms.size());
    const auto all = static_cast<double>(year.size());

    // What the sum, and `all` times the average, lack of the exact sum.
    terms.push_back(-sum);
    const double sumError = std::abs(exactSum(terms));
    const double product = average * all;
    terms.back() = -product;
    terms.push_back(-std::fma(average, all, -product));
    const double averageError = std::abs(exactSum(terms));
    if (sumError > std::max(0.0, usable - 1) * unit)
        return QStringLiteral("the sum is off by %1").arg(sumError);
    if (averageError > usable * unit)
        return QStringLiteral("the average is off by %1 / %2").arg(averageError).arg(all);
    return {};
}

// Calls `check` for each run of each series slot until it finds a fault.
QString checkSeries(const RandomCase& conversion,
                    const std::function<QString(const Numbers& values)>& check)
{
    for (const RandomSlot& slot : conversion.series) {
        for (std::size_t run = 0; slot.isSeries() && run < slot.numbers.size(); ++run) {
            const QString fault = check(slot.numbers[run]);
            if (!fault.isEmpty())
                return QStringLiteral("%1, run %2: ")
                           .arg(QString::fromLatin1(slot.slotName))
                           .arg(run) +
                       fault;
        }
    }
    return {};
}

// The result of a conversion for a slot, in every run.
struct AnnualSlot
{
    HtsSlot slot;
    std::vector<Numbers> values;
};

QString slotDifference(const AnnualSlot& left, const AnnualSlot& right)
{
    QString fault = difference(left.slot, right.slot);
    if (left.values.size() != right.values.size())
        fault += QStringLiteral("number of runs");
    for (std::size_t run = 0; fault.isEmpty() && run < left.values.size(); ++run)
        fault = numberDifference(left.values[run], right.values[run]);
    return fault;
}

QHash<QString, AnnualSlot> slotsByName(const HtsPackage& package)
{
    QHash<QString, AnnualSlot> result;
    for (int s = 0; s < package.numSlots(); ++s) {
        AnnualSlot& slot = result[package.slot(s).objectName + package.slot(s).slotName];
        slot.slot = package.slot(s);
        for (const auto& run : package.values)
            slot.values.push_back(run[static_cast<std::size_t>(s)].front());
    }
    return result;
}

// A negative number that rounds to zero keeps its sign in a file, but minus zero has none.
QByteArray withoutSignsOfZero(QByteArray text)
{
    return text.replace("\n-0.000000000000\n", "\n0.000000000000\n")
        .replace("\n-0.000000000000\n", "\n0.000000000000\n");
}

QByteArray written(const HtsPackage& package)
{
    QBuffer device;
    device.open(QIODevice::WriteOnly | QIODevice::Text);
    return package.write(device).ok() ? fromTextMode(device.data()) : QByteArray("not written");
}

QString read(QByteArray text, HtsPackage& package)
{
    QBuffer device(&text);
    device.open(QIODevice::ReadOnly | QIODevice::Text);
    return package.read(device).message;
}

} // namespace

class PropertiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_folder.isValid());
        QsLogging::Logger::instance().setLoggingLevel(QsLogging::OffLevel);
    }

    void valueMapFollowsCalendar()
    {
        const auto property = [](const RandomTiming& timing) -> QString {
            HtsRun input;
            input.timeStepUnit = QString::fromLatin1(timing.unit);
            for (const QByteArray& text : timing.stepTexts)
                input.timesteps.append(QString::fromLatin1(text));
            input.timeStepCount = input.timesteps.size();
            input.start = textToDateTime(input.timesteps.first());
            AnnualizeHts engine;
            static_cast<void>(engine.setEndMonth(timing.endMonth));
            AnnualizeHts::ValueMap map;
            HtsRun annual;
            const Status status = engine.calculateAnnualTimesteps(input, map, annual);

            const Years years = yearsOf(timing);
            const auto [actual, expected] =
                std::mismatch(map.begin(), map.end(), years.map.begin(), years.map.end());
            if (actual != map.end() || expected != years.map.end())
                return QStringLiteral("map entry %1").arg(actual - map.begin());
            if (status.ok() != (years.count >= 1))
                return QStringLiteral("%1 complete years, but ").arg(years.count) + status.message;
            QByteArrayList lastSteps;
            for (const QString& text : qAsConst(annual.timesteps))
                lastSteps.append(text.toLatin1());
            if (status.ok() && lastSteps != years.lastSteps)
                return QString::fromLatin1(lastSteps.join(", "));
            return {};
        };
        tryAll<RandomTiming>(property, 15);
    }

    void aggregatesFollowTheirWords()
    {
        tryAll<RandomCase>([](const RandomCase& conversion) {
            const Years years = yearsOf(conversion);
            AggValues agg;
            return checkSeries(conversion, [&](const Numbers& values) -> QString {
                QString message;
                if (!agg.aggregate(values, years.map, std::max(0, years.count), message))
                    return message;
                for (const AggMethod& method : aggMethods()) {
                    if (!method.isSupported())
                        continue;
                    Numbers expected;
                    for (const Numbers& year : splitByYear(values, years))
                        expected.push_back(aggregateOf(method.word.toLatin1(), year));
                    const QString fault = numberDifference(agg.results(method), expected);
                    if (!fault.isEmpty())
                        return method.word + QLatin1String(", ") + fault;
                }
                return {};
            });
        });
    }

    void sumsAreAsExactAsSummingAllows()
    {
        tryAll<RandomCase>([](const RandomCase& conversion) {
            const Years years = yearsOf(conversion);
            AggValues agg;
            return checkSeries(conversion, [&](const Numbers& values) -> QString {
                QString message;
                if (!agg.aggregate(values, years.map, std::max(0, years.count), message))
                    return message;
                const std::vector<Numbers> parts = splitByYear(values, years);
                const Numbers sums = agg.results(*findMethod(QStringLiteral("SumNaN")));
                const Numbers averages = agg.results(*findMethod(QStringLiteral("AverageNaN")));
                for (std::size_t year = 0; year < parts.size(); ++year) {
                    const QString fault = sumFault(parts[year], sums[year], averages[year]);
                    if (!fault.isEmpty())
                        return QStringLiteral("year %1: ").arg(year) + fault;
                }
                return {};
            });
        });
    }

    void conversionGivesEachSlotItsAggregate()
    {
        tryConversions([this](const RandomCase& conversion) -> QString {
            HtsPackage output;
            const QString message = convert(conversion, conversion.fileText(), output);
            if (!message.isEmpty())
                return message;
            const Years years = yearsOf(conversion);
            const auto isAnnualized = [](const RandomSlot& slot) { return slot.isAnnualized(); };
            if (output.numSlots() !=
                std::count_if(conversion.series.begin(), conversion.series.end(), isAnnualized))
                return QStringLiteral("number of slots");
            std::size_t annualized = 0;
            for (const RandomSlot& slot : conversion.series) {
                for (std::size_t run = 0; slot.isAnnualized() && run < slot.numbers.size(); ++run) {
                    Numbers expected;
                    for (const Numbers& year : splitByYear(slot.numbers[run], years))
                        expected.push_back(aggregateOf(slot.method, year));
                    const auto& actual = output.values[run].at(annualized).at(0);
                    const QString fault = numberDifference(actual, expected);
                    if (!fault.isEmpty())
                        return QString::fromLatin1(slot.slotName) + QLatin1String(", ") + fault;
                }
                annualized += slot.isAnnualized() ? 1U : 0U;
            }
            return {};
        });
    }

    void packageSurvivesFile()
    {
        tryAll<RandomCase>([](const RandomCase& conversion) -> QString {
            // A table is written without its end, so that it can't be read again.
            std::vector<int> readable = conversion.allSlots();
            const auto isTable = [&](int slot) {
                return conversion.series[static_cast<std::size_t>(slot)].kind == "TableSlot";
            };
            readable.erase(std::remove_if(readable.begin(), readable.end(), isTable),
                           readable.end());
            HtsPackage first;
            const QString message =
                read(conversion.fileText(conversion.allRuns(), readable), first);
            if (!message.isEmpty())
                return message;
            // The only thing that a file can't contain.
            for (auto& run : first.values) {
                for (auto& slot : run)
                    std::replace_if(
                        slot.front().begin(), slot.front().end(),
                        [](double value) { return std::isinf(value); },
                        std::numeric_limits<double>::quiet_NaN());
            }
            const QByteArray firstText = written(first);
            HtsPackage second;
            const QString secondMessage = read(firstText, second);
            if (!secondMessage.isEmpty())
                return secondMessage;
            const QString fault = difference(first, second);
            if (!fault.isEmpty())
                return fault;
            return written(second) == firstText ? QString()
                                                : QStringLiteral("the text has changed");
        });
    }

    void resultSurvivesFile()
    {
        tryConversions([this](const RandomCase& conversion) -> QString {
            const QByteArray firstText = convertText(conversion, conversion.fileText());
            HtsPackage first;
            QString message = read(firstText, first);
            if (!message.isEmpty())
                return message;
            const QByteArray secondText = written(first);
            if (secondText != withoutSignsOfZero(firstText))
                return QStringLiteral("the text has changed");
            HtsPackage second;
            message = read(withoutSignsOfZero(firstText), second);
            return message.isEmpty() && written(second) == secondText ? QString()
                                                                      : QStringLiteral("again");
        });
    }

    void orderOfSlotsDoesNotMatter()
    {
        tryConversions([this](const RandomCase& conversion) -> QString {
            HtsPackage inOrder;
            HtsPackage shuffled;
            const QString message =
                convert(conversion, conversion.fileText(), inOrder) +
                convert(conversion,
                        conversion.fileText(conversion.allRuns(), conversion.shuffledSlots),
                        shuffled);
            if (!message.isEmpty())
                return message;
            const auto expected = slotsByName(inOrder);
            const auto actual = slotsByName(shuffled);
            if (expected.size() != actual.size() || expected.size() != inOrder.numSlots())
                return QStringLiteral("number of slots");
            for (auto slot = expected.begin(); slot != expected.end(); ++slot) {
                const QString fault = slotDifference(slot.value(), actual.value(slot.key()));
                if (!fault.isEmpty())
                    return slot.key() + QLatin1String(": ") + fault;
            }
            return {};
        });
    }

    void runsDoNotMatterToEachOther()
    {
        tryConversions([this](const RandomCase& conversion) -> QString {
            HtsPackage together;
            QString message = convert(conversion, conversion.fileText(), together);
            for (int run = 0; message.isEmpty() && run < conversion.runCount; ++run) {
                HtsPackage alone;
                message =
                    convert(conversion, conversion.fileText({run}, conversion.allSlots()), alone);
                if (!message.isEmpty())
                    break;
                const auto index = static_cast<std::size_t>(run);
                message = difference(together.run(run), alone.run(0));
                HtsPackage part = alone;
                part.values = {together.values[index]};
                if (message.isEmpty())
                    message = difference(part, alone);
            }
            return message;
        });
    }

private:
    // Tries the property, which returns what is wrong, on `factor` times as many cases as usual.
    template<typename Case, typename Property>
    static void tryAll(const Property& property, int factor = 1)
    {
        bool isSet = false;
        const int wanted = qEnvironmentVariableIntValue("HTS_PROPERTY_CASES", &isSet);
        const int cases = factor * (isSet ? std::max(1, wanted) : kUsualCases);
        for (int seed = 1; seed <= cases; ++seed) {
            const Case tried(static_cast<quint32>(seed));
            const QString fault = property(tried);
            QVERIFY2(fault.isEmpty(),
                     qPrintable(tried.description() + QLatin1String(": ") + fault));
        }
    }

    // The same on those with a complete year and an annualized slot, most of them.
    template<typename Property>
    void tryConversions(const Property& property)
    {
        int tried = 0;
        int all = 0;
        tryAll<RandomCase>([&](const RandomCase& conversion) -> QString {
            ++all;
            const bool hasSlot =
                std::any_of(conversion.series.begin(), conversion.series.end(),
                            [](const RandomSlot& slot) { return slot.isAnnualized(); });
            if (!hasSlot || yearsOf(conversion).count < 1)
                return {};
            ++tried;
            writeFile(controlPath(), conversion.controlText());
            return property(conversion);
        });
        if (!QTest::currentTestFailed())
            QVERIFY2(2 * tried >= all, qPrintable(QStringLiteral("%1 of %2").arg(tried).arg(all)));
    }

    // Converts from memory to memory. Returns the message.
    QString convert(const RandomCase& conversion, const QByteArray& file, HtsPackage& output)
    {
        QBuffer source;
        source.setData(file);
        source.open(QIODevice::ReadOnly);
        Conversion engine([this] { return readControlFile(controlPath()); }, conversion.endMonth);
        Status status = readConversion(source, engine);
        if (status.ok())
            status = engine.report();
        output = engine.annualPackage();
        return status.message;
    }

    // Converts the text of a file to that of the result. Returns it or the message.
    QByteArray convertText(const RandomCase& conversion, const QByteArray& file)
    {
        const auto source = openDevice(file, 0, readMode(true));
        const ConversionOutcome outcome =
            convertInOnePass(*source, controlPath(), conversion.endMonth);
        return outcome.status.ok() ? outcome.written : outcome.status.message.toUtf8();
    }

    QString controlPath() const { return m_folder.filePath(QStringLiteral("methods.txt")); }

    QTemporaryDir m_folder;
};

HTS_TEST(PropertiesTest, QCoreApplication)

#include "tst_properties.moc"
