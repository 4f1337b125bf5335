// usage: htsgenerate [NAME=VALUE...] > FILE
//
// Writes a synthetic HTS file of series slots "Object<s>.Flow". The same arguments give the same
// bytes. Names and defaults:
//     runs=1 slots=200 steps=18262 unit=day      unit is day, week or month; steps end at 24:00
//     missing=0.01 seed=1 lineend=unix           share of values that are NaN; unix or windows
//     columns=0                                  number of different columns of values, which all
//                                                slots share in turn; 0 for one for each slot. With
//                                                a few it writes as fast as a pipe takes it.
//     values=flow decimals=12                    flow: up to 1,000; storage: 10,000 to 10,000,000;
//                                                mix: a slot of flows, one of storages, one of
//                                                elevations near 1,200; and their decimals, or "e"
//                                                for seven digits with an exponent

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <QDate>

#include "hts/numbertext.h"

namespace {

std::map<std::string, std::string> options = {
    {"runs", "1"}, {"slots", "200"},    {"steps", "18262"}, {"unit", "day"},    {"missing", "0.01"},
    {"seed", "1"}, {"lineend", "unix"}, {"columns", "0"},   {"values", "flow"}, {"decimals", "12"},
};

int number(const char* name)
{
    return std::stoi(options.at(name));
}

class Output
{
public:
    explicit Output(const std::string& lineEnd) : m_lineEnd(lineEnd) {}
    ~Output() { flush(); }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void line(std::string_view text)
    {
        m_text.append(text).append(m_lineEnd);
        if (m_text.size() > 1 << 20)
            flush();
    }

    // Whole lines, with their ends.
    void lines(std::string_view text)
    {
        flush();
        std::fwrite(text.data(), 1, text.size(), stdout);
    }

    const std::string& lineEnd() const { return m_lineEnd; }

private:
    void flush()
    {
        std::fwrite(m_text.data(), 1, m_text.size(), stdout);
        m_text.clear();
    }

    const std::string m_lineEnd;
    std::string m_text;
};

// The day that step `index` ends with.
QDate stepEnd(int index)
{
    const QDate first(1950, 1, 1);
    const std::string& unit = options.at("unit");
    if (unit == "month")
        return first.addMonths(index + 1).addDays(-1);
    return first.addDays(unit == "week" ? index * 7 + 6 : index);
}

std::string stepText(int index)
{
    return stepEnd(index).toString(QStringLiteral("yyyy-M-d")).toStdString() + " 24:00";
}

// Numbers from 0 up to 1, the same on every machine.
class Random
{
public:
    explicit Random(unsigned seed) : m_engine(seed) {}
    double next() { return static_cast<double>(m_engine() >> 11) * 0x1p-53; }

private:
    std::mt19937_64 m_engine;
};

void writeRunPreamble(int run, Output& output)
{
    const int steps = number("steps");
    output.line("trace:" + std::to_string(run + 1));
    output.line("start:" + stepText(0));
    output.line("end:" + stepText(steps - 1));
    output.line("time_step_unit:" + options.at("unit"));
    output.line("unit_quantity:1");
    output.line("time_steps:" + options.at("steps"));
    output.line("consecutive:1");
    output.line("idx_sequential:1");
    output.line("END_RUN_PREAMBLE");
    for (int i = 0; i < steps; ++i)
        output.line(stepText(i));
}

// A value of the kind `values`, made of a number from 0 up to 1.
double valueOf(const std::string& values, double share)
{
    if (values == "storage")
        return std::pow(10.0, 4.0 + 3.0 * share);
    return values == "elevation" ? 1200.0 + 50.0 * share : 1000.0 * share;
}

std::string valueText(double value)
{
    const std::string& decimals = options.at("decimals");
    char text[kMaxNumberLength];
    const char* end =
        decimals == "12" ? writeNumber(text, value)
        : decimals == "e"
            ? std::to_chars(text, text + sizeof text, value, std::chars_format::scientific, 6).ptr
            : std::to_chars(text, text + sizeof text, value, std::chars_format::fixed,
                            number("decimals"))
                  .ptr;
    return {text, static_cast<std::size_t>(end - text)};
}

// The value lines of the column with that index.
std::string columnText(int column, Random& random, const std::string& lineEnd)
{
    static const char* const kMix[] = {"flow", "storage", "elevation"};
    const double missing = std::stod(options.at("missing"));
    const std::string values =
        options.at("values") == "mix" ? kMix[column % 3] : options.at("values");
    std::string lines;
    for (int i = 0; i < number("steps"); ++i) {
        const bool isMissing = random.next() < missing;
        const double value = valueOf(values, random.next());
        lines.append(isMissing ? "NaN" : valueText(value)).append(lineEnd);
    }
    return lines;
}

// Columns that are made when they are asked for, in that order.
class Columns
{
public:
    Columns(unsigned seed, const std::string& lineEnd) : m_random(seed), m_lineEnd(lineEnd) {}

    // Of a slot of any run. Valid until the next call.
    const std::string& of(int slot)
    {
        const int count = number("columns");
        if (count == 0) {
            m_last = columnText(slot, m_random, m_lineEnd);
            return m_last;
        }
        const auto index = static_cast<std::size_t>(slot % count);
        while (m_kept.size() <= index)
            m_kept.push_back(columnText(static_cast<int>(m_kept.size()), m_random, m_lineEnd));
        return m_kept[index];
    }

private:
    Random m_random;
    const std::string m_lineEnd;
    std::string m_last;
    std::vector<std::string> m_kept;
};

void writeSlot(int slot, Columns& columns, Output& output)
{
    output.line("object_type: Reservoir");
    output.line("object_name: Object" + std::to_string(slot));
    output.line("slot_type: SeriesSlot");
    output.line("slot_name: Flow");
    output.line("END_SLOT_PREAMBLE");
    output.line("units: cms");
    output.line("scale: 1");
    output.lines(columns.of(slot));
    output.line("END_COLUMN");
    output.line("END_SLOT");
}

} // namespace

int main(int argc, char* argv[])
{
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const std::size_t equals = argument.find('=');
        if (options.count(argument.substr(0, equals)) == 0 || equals == std::string::npos) {
            std::fprintf(stderr, "htsgenerate: unknown argument %s\n", argv[i]);
            return 1;
        }
        options[argument.substr(0, equals)] = argument.substr(equals + 1);
    }

    Output output(options.at("lineend") == "windows" ? "\r\n" : "\n");
    Columns columns(static_cast<unsigned>(number("seed")), output.lineEnd());
    output.line("name:Synthetic");
    output.line("owner:htsgenerate");
    output.line("description:random values");
    output.line("create_date:2000-1-1 6:00");
    output.line("number_of_runs:" + options.at("runs"));
    output.line("END_PACKAGE_PREAMBLE");
    for (int run = 0; run < number("runs"); ++run) {
        writeRunPreamble(run, output);
        for (int slot = 0; slot < number("slots"); ++slot)
            writeSlot(slot, columns, output);
        output.line("END_RUN");
    }
    return 0;
}
