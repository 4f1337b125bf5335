#!/usr/bin/env python3
"""Computes the expected result of every conversion in cases.tsv, without the program.

Writes NAME.expected beside this script for each line "NAME<tab>input<tab>control<tab>end month" of
cases.tsv; with --check it only compares. With the folder of the published series it also compares
the results with the annual values that the publishers give, each within the rounding of what is
published. Needs pandas.
"""

import argparse
import csv
import math
import re
import sys
from dataclasses import dataclass, field
from pathlib import Path

import pandas as pd

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[2]
WORDS = ["Sum", "SumNaN", "Average", "AverageNaN", "Max", "MaxNaN", "Min", "MinNaN", "End", "EndNaN",
         "Begin", "BeginNaN", "Salinity"]
ONE_NANOSECOND = pd.Timedelta(1, "ns")


@dataclass
class Slot:
    keys: dict
    units: str = ""
    scale: str = ""
    values: list = field(default_factory=list)  # one pandas Series per run, indexed by end of step

    @property
    def name(self):
        return f"{self.keys['object_name']}.{self.keys['slot_name']}"

    @property
    def is_series(self):
        return self.keys.get("slot_type", "SeriesSlot") == "SeriesSlot"


@dataclass
class Package:
    keys: dict
    run_keys: list = field(default_factory=list)
    steps: list = field(default_factory=list)
    slots: list = field(default_factory=list)


def instant(text):
    date, time = text.split(" ")
    day = pd.Timestamp(*(int(part) for part in date.split("-")))
    hours, minutes = (int(part) for part in time.split(":"))
    return day + pd.Timedelta(hours=hours, minutes=minutes)


def instant_text(when):
    day = when
    hours = when.hour
    if when.hour == 0 and when.minute == 0:
        day = when - pd.Timedelta(days=1)
        hours = 24
    return f"{day.year}-{day.month}-{day.day} {hours}:{when.minute:02}"


def read_keys(lines, separator, end):
    keys = {}
    for line in lines:
        if line == end:
            return keys
        key, _, value = line.partition(separator)
        keys[key] = value
    raise ValueError(f"no {end}")


def read_slot(lines, first_line, index, count):
    keys = read_keys(iter([first_line, *iter(lambda: next(lines), "END_SLOT_PREAMBLE"), "end"]), ": ",
                     "end")
    slot = Slot(keys)
    if keys.get("slot_type") == "TableSlot":
        while next(lines) != "END_SLOT":
            pass
        return slot
    slot.units = next(lines).removeprefix("units: ")
    slot.scale = next(lines).removeprefix("scale: ")
    rows = list(iter(lambda: next(lines), "END_COLUMN"))
    if rows[0].startswith("method: "):
        rows = rows[1:]
    if len(rows) != (count if slot.is_series else 1):
        raise ValueError(f"{slot.name}: {len(rows)} values")
    if slot.is_series:
        slot.values.append(pd.Series([float(row) for row in rows], index=index))
    if next(lines) != "END_SLOT":
        raise ValueError(f"{slot.name}: no END_SLOT")
    return slot


def read_package(path):
    lines = iter(path.read_text(encoding="utf-8").splitlines())
    package = Package(read_keys(lines, ":", "END_PACKAGE_PREAMBLE"))
    for _ in range(int(package.keys["number_of_runs"])):
        keys = read_keys(lines, ":", "END_RUN_PREAMBLE")
        count = int(keys.get("time_steps") or keys["timesteps"])
        steps = [next(lines) for _ in range(count)]
        index = pd.DatetimeIndex([instant(step) for step in steps])
        slots = [read_slot(lines, line, index, count)
                 for line in iter(lambda: next(lines), "END_RUN")]
        package.run_keys.append(keys)
        package.steps.append(steps)
        if not package.slots:
            package.slots = slots
        else:
            for known, again in zip(package.slots, slots, strict=True):
                known.values += again.values
    return package


def read_rules(path):
    rules = []
    for line in path.read_text(encoding="utf-8").splitlines():
        if line.strip():
            target, _, word = line.rpartition(":")
            target_object, _, target_slot = target.partition(".")
            word = next(w for w in WORDS if w.lower() == word.strip().lower())
            rules.append((target_object.strip(), target_slot.strip(), word))
    return rules


def method_of(slot, rules):
    owners = ("*", slot.keys["object_name"], slot.keys["object_type"])
    for target_object, target_slot, word in rules:
        if target_object in owners and target_slot in ("*", slot.keys["slot_name"]):
            return word
    return ""


def year_labels(index, end_month):
    """The calendar year in which the year of each step ends; a step belongs to where it ends."""
    inside = index - ONE_NANOSECOND
    return inside.year + (inside.month > end_month)


def complete_years(index, unit, end_month):
    """The last step of each year that has all its steps, by label."""
    sizes = pd.Series(index, index=index).groupby(year_labels(index, end_month))
    complete = {}
    for label, ends in sizes:
        last_day = pd.Timestamp(label, end_month, 1) + pd.offsets.MonthEnd(0)
        first_day = last_day - pd.DateOffset(years=1) + pd.offsets.MonthEnd(0)
        wanted = 12 if unit == "month" else (last_day - first_day).days
        if len(ends) == wanted:
            complete[label] = ends.iloc[-1]
    return complete


def naive_sum(values):
    """Left to right in double precision; pandas and newer sum() compensate and differ at the end."""
    total = 0.0
    for value in values:
        total += value
    return total


def aggregate(values, word):
    values = [float(value) for value in values]
    known = [value for value in values if math.isfinite(value)]
    if not word.endswith("NaN") and len(known) < len(values):
        return math.nan
    return {
        "Sum": lambda: naive_sum(known),
        "Average": lambda: naive_sum(known) / len(values),
        "Max": lambda: max(known, default=math.nan),
        "Min": lambda: min(known, default=math.nan),
        "End": lambda: values[-1],
        "Begin": lambda: values[0],
    }[word.removesuffix("NaN")]()


def annual_values(package, slot, run, word, end_month):
    """The result by label of the complete years."""
    unit = package.run_keys[run]["time_step_unit"]
    series = slot.values[run]
    years = complete_years(series.index, unit, end_month)
    groups = series.groupby(year_labels(series.index, end_month))
    return {label: aggregate(group, word) for label, group in groups if label in years}


def number_text(value):
    if not math.isfinite(value):
        return "NaN"
    return f"{value + 0.0:.12f}"


def chosen_slots(package, rules):
    for slot in package.slots:
        word = method_of(slot, rules)
        if slot.is_series and word not in ("", "Salinity"):
            yield slot, word


def slot_text(slot, word, values):
    keys = ["object_type", "object_name", "slot_type", "slot_name"]
    yield from (f"{key}: {slot.keys[key]}" for key in keys if key in slot.keys)
    yield "END_SLOT_PREAMBLE"
    summed = " summed over the year" if word in ("Sum", "SumNaN") else ""
    yield f"units: {slot.units}{summed}"
    yield f"scale: {float(slot.scale):g}"
    yield f"method: {word}"
    yield from map(number_text, values.values())
    yield "END_COLUMN"
    yield "END_SLOT"


def result_lines(package, rules, end_month):
    yield from (f"{key}:{package.keys[key]}" for key in ("name", "owner", "description"))
    yield f"create_date:{instant_text(instant(package.keys['create_date']))}"
    yield f"number_of_runs:{package.keys['number_of_runs']}"
    yield "END_PACKAGE_PREAMBLE"
    # Every run of equal timing carries the preamble made for the first one, without a trace.
    keys = package.run_keys[0]
    index = pd.DatetimeIndex([instant(step) for step in package.steps[0]])
    ends = complete_years(index, keys["time_step_unit"], end_month).values()
    steps = [step for step, when in zip(package.steps[0], index) if when in set(ends)]
    for run in range(len(package.run_keys)):
        assert package.steps[run] == package.steps[0]
        yield f"start:{instant_text(instant(steps[0]))}"
        yield f"end:{instant_text(instant(steps[-1]))}"
        yield from ("time_step_unit:year", "unit_quantity:1", f"time_steps:{len(steps)}")
        wanted = ("consecutive", "slot_set", "rule_set", "idx_sequential")
        yield from (f"{key}:{keys[key]}" for key in wanted if key in keys)
        yield "END_RUN_PREAMBLE"
        yield from steps
        for slot, word in chosen_slots(package, rules):
            values = annual_values(package, slot, run, word, end_month)
            yield from slot_text(slot, word, values)
        yield "END_RUN"


def read_cases():
    with open(HERE / "cases.tsv", newline="", encoding="utf-8") as file:
        for name, source, control, end_month in csv.reader(file, delimiter="\t"):
            yield name, ROOT / source, ROOT / control, int(end_month)


# Published annual values: which slot of which case, by which column of which file, and how far a
# result may lie from a published number p.
def within(tolerance):
    return lambda published: tolerance + 1e-9


def within_three_digits(published):
    return 0.5 * 10.0 ** (math.floor(math.log10(abs(published))) - 2) + 1e-9


PUBLISHED = [
    ("rivers_september", "Choptank.Flow", "Average", "daily_flow_choptank_water_year.csv", "mean",
     within(0.005)),
    ("rivers_december", "Crowsnest.Flow", "Max", "daily_flow_crowsnest_annual.csv", "max", within(0)),
    ("rivers_lows", "Crowsnest.Flow", "Min", "daily_flow_crowsnest_annual.csv", "min", within(0)),
    ("rivers_means", "Crowsnest.Flow", "Average", "daily_flow_crowsnest_annual.csv", "mean",
     within_three_digits),
    ("basins_december", "Mundrabilla.Rain", "Sum", "monthly_rain_bom_011008_annual.csv", "sum",
     within(1e-6)),
    ("basins_december", "Mauna Loa.CO2", "Average", "monthly_co2_mlo_annual.csv", "mean",
     within(0.005)),
]


def expected_values(name, slot_name, word):
    """What the first run of an .expected file holds for a slot, by calendar year of the step."""
    lines = iter((HERE / f"{name}.expected").read_text(encoding="utf-8").splitlines())
    read_keys(lines, ":", "END_PACKAGE_PREAMBLE")
    count = int(read_keys(lines, ":", "END_RUN_PREAMBLE")["time_steps"])
    years = [int(next(lines)[:4]) for _ in range(count)]
    for line in iter(lambda: next(lines), "END_RUN"):
        slot = Slot(read_keys(iter([line, *iter(lambda: next(lines), "END_SLOT_PREAMBLE"), "end"]),
                              ": ", "end"))
        rows = list(iter(lambda: next(lines), "END_SLOT"))
        if slot.name == slot_name and rows[2] == f"method: {word}":
            return dict(zip(years, map(float, rows[3:-1]), strict=True))
    raise ValueError(f"{name}: no {slot_name} with {word}")


def compare_published(folder):
    failures = 0
    for name, slot_name, word, file_name, column, tolerance in PUBLISHED:
        table = pd.read_csv(folder / file_name, index_col=0)[column]
        ours = expected_values(name, slot_name, word)
        years = [year for year in table.index if year in ours]
        both = [y for y in years if math.isfinite(table[y]) and math.isfinite(ours[y])]
        neither = [y for y in years if math.isnan(table[y]) and math.isnan(ours[y])]
        one_sided = sorted(set(years) - set(both) - set(neither))
        outside = [y for y in both if abs(table[y] - ours[y]) > tolerance(table[y])]
        largest = max((abs(table[y] - ours[y]) for y in both), default=math.nan)
        print(f"{name}: {slot_name} {word} against {file_name} {column}: {len(both)} years, largest"
              f" difference {largest:.3g}, missing in both {neither}, in one only {one_sided},"
              f" outside the rounding {outside}")
        failures += len(outside) + len(one_sided) + (not both)
    return failures


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--check", action="store_true", help="write nothing, only compare")
    parser.add_argument("folder", nargs="?", type=Path, help="of the published series, as CSV files")
    options = parser.parse_args()
    failures = 0
    for name, source, control, end_month in read_cases():
        lines = result_lines(read_package(source), read_rules(control), end_month)
        expected = ("\n".join(lines) + "\n").encode("utf-8")
        path = HERE / f"{name}.expected"
        if not options.check:
            path.write_bytes(expected)
        elif path.read_bytes() != expected:
            print(f"{path.name} differs from what its rules give")
            failures += 1
    if options.folder:
        failures += compare_published(options.folder)
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
