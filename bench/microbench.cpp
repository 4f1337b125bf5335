// The parts of a conversion one by one, on data in memory (Google Benchmark).

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include <QBuffer>
#include <QByteArray>
#include <QTextStream>

#include "annualize/aggvalues.h"
#include "hts/datetimetext.h"
#include "hts/htspackage.h"
#include "hts/numbertext.h"
#include "tests/plain/plainreader.h"

namespace {

constexpr int kValues = 18262; // 50 years of days

std::vector<double> randomValues()
{
    std::mt19937_64 engine(1);
    std::vector<double> values(kValues);
    for (double& value : values)
        value = static_cast<double>(engine() >> 11) * 0x1p-53 * 1000.0;
    return values;
}

QByteArray valueLines()
{
    QByteArray text;
    for (const double value : randomValues()) {
        char number[kMaxNumberLength];
        text.append(number, static_cast<int>(writeNumber(number, value) - number)).append('\n');
    }
    return text;
}

QByteArray packageText()
{
    QByteArray text =
        "number_of_runs:1\nEND_PACKAGE_PREAMBLE\ntime_steps:" + QByteArray::number(kValues) +
        "\nEND_RUN_PREAMBLE\n";
    for (int i = 0; i < kValues; ++i)
        text += "2000-12-31 24:00\n";
    for (int slot = 0; slot < 10; ++slot) {
        text += "object_name: A\nslot_name: B\nEND_SLOT_PREAMBLE\nunits: cms\nscale: 1\n" +
                valueLines() + "END_COLUMN\nEND_SLOT\n";
    }
    return text + "END_RUN\n";
}

template<typename Read>
void readPackage(benchmark::State& state, Read read)
{
    QByteArray text = packageText();
    for (auto _ : state) {
        QBuffer buffer(&text);
        buffer.open(QIODevice::ReadOnly | QIODevice::Text);
        HtsPackage package;
        if (!read(buffer, package).ok())
            state.SkipWithError("not read");
        benchmark::DoNotOptimize(package.values.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * text.size());
}

void readerOfTheProgram(benchmark::State& state)
{
    readPackage(state, [](QIODevice& device, HtsPackage& package) { return package.read(device); });
}

void readerLineByLine(benchmark::State& state)
{
    readPackage(state, [](QIODevice& device, HtsPackage& package) {
        return plainreader::read(device, package);
    });
}

void timestepToDateTime(benchmark::State& state)
{
    const QString text = QStringLiteral("2000-12-31 24:00");
    for (auto _ : state)
        benchmark::DoNotOptimize(textToDateTime(text).toMSecsSinceEpoch());
}

void aggregateFiftyYears(benchmark::State& state)
{
    const std::vector<double> values = randomValues();
    std::vector<std::int32_t> valueMap(kValues);
    for (std::size_t i = 0; i < valueMap.size(); ++i)
        valueMap[i] = static_cast<std::int32_t>(i / 366 + 1);
    AggValues aggValues;
    QString message;
    for (auto _ : state)
        benchmark::DoNotOptimize(aggValues.aggregate(values, valueMap, 50, message));
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * kValues);
}

void writeNumbers(benchmark::State& state)
{
    const std::vector<double> values = randomValues();
    char text[kMaxNumberLength];
    for (auto _ : state) {
        for (const double value : values)
            benchmark::DoNotOptimize(writeNumber(text, value));
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * kValues);
}

void writeNumbersByTextStream(benchmark::State& state)
{
    const std::vector<double> values = randomValues();
    for (auto _ : state) {
        QByteArray text;
        QTextStream stream(&text);
        stream.setRealNumberNotation(QTextStream::FixedNotation);
        stream.setRealNumberPrecision(12);
        for (const double value : values)
            stream << value << '\n';
        stream.flush();
        benchmark::DoNotOptimize(text.data());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * kValues);
}

// An annual result: `slotCount` slots of three years each, about 210 bytes of text a slot.
HtsPackage annualPackage(std::int64_t slotCount)
{
    HtsPackage package;
    package.numberOfRuns = 1;
    HtsRun run;
    run.timeStepUnit = QStringLiteral("year");
    run.timeStepCount = 3;
    for (const char* end : {"2000-12-31 24:00", "2001-12-31 24:00", "2002-12-31 24:00"})
        run.timesteps.append(QString::fromLatin1(end));
    package.runs.append(run);
    HtsSlot slot;
    slot.objectType = QStringLiteral("Reservoir");
    slot.slotType = QStringLiteral("SeriesSlot");
    slot.slotName = QStringLiteral("Flow");
    slot.units = QStringList{QStringLiteral("cms")};
    slot.scales = QList<double>{1.0};
    slot.methods = QStringList{QStringLiteral("Average")};
    const std::vector<double> values = randomValues();
    package.values.resize(1);
    for (std::size_t i = 0; i < static_cast<std::size_t>(slotCount); ++i) {
        slot.objectName = QStringLiteral("Object%1").arg(i);
        package.slots.append(slot);
        const HtsColumn column = {values[i % 1000], values[i % 1001], values[i % 1002]};
        package.values.front().push_back({column});
    }
    return package;
}

void writeAnnualPackage(benchmark::State& state)
{
    const HtsPackage package = annualPackage(state.range(0));
    QByteArray text;
    for (auto _ : state) {
        QBuffer buffer(&text);
        buffer.open(QIODevice::WriteOnly | QIODevice::Text);
        benchmark::DoNotOptimize(package.write(buffer).ok());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * text.size());
}

void readAnnualPackage(benchmark::State& state)
{
    QByteArray text;
    QBuffer out(&text);
    out.open(QIODevice::WriteOnly);
    benchmark::DoNotOptimize(annualPackage(state.range(0)).write(out).ok());
    for (auto _ : state) {
        QBuffer buffer(&text);
        buffer.open(QIODevice::ReadOnly | QIODevice::Text);
        HtsPackage package;
        if (!package.read(buffer).ok())
            state.SkipWithError("not read");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * text.size());
}

BENCHMARK(writeAnnualPackage)->Arg(1000)->Arg(480000)->Unit(benchmark::kMillisecond);
BENCHMARK(readAnnualPackage)->Arg(1000)->Arg(480000)->Unit(benchmark::kMillisecond);
BENCHMARK(readerOfTheProgram)->Unit(benchmark::kMillisecond);
BENCHMARK(readerLineByLine)->Unit(benchmark::kMillisecond);
BENCHMARK(timestepToDateTime);
BENCHMARK(aggregateFiftyYears)->Unit(benchmark::kMicrosecond);
BENCHMARK(writeNumbers)->Unit(benchmark::kMicrosecond);
BENCHMARK(writeNumbersByTextStream)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
