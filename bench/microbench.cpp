// The parts of a conversion one by one, on data in memory (Google Benchmark).

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include <QBuffer>
#include <QByteArray>
#include <QTextStream>

#include "annualize/aggvalues.h"
#include "bench/plainreader/plainreader.h"
#include "hts/datetimetext.h"
#include "hts/htspackage.h"
#include "hts/numbertext.h"

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

BENCHMARK(readerOfTheProgram)->Unit(benchmark::kMillisecond);
BENCHMARK(readerLineByLine)->Unit(benchmark::kMillisecond);
BENCHMARK(timestepToDateTime);
BENCHMARK(aggregateFiftyYears)->Unit(benchmark::kMicrosecond);
BENCHMARK(writeNumbers)->Unit(benchmark::kMicrosecond);
BENCHMARK(writeNumbersByTextStream)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
