#!/usr/bin/env python3
"""Makes the example data files from the published series.

Each CSV file has the columns datetime_end,value, the end of each step as YYYY-MM-DD HH:MM with 24:00
for the midnight that ends a day, and NaN for a missing value. All arithmetic is decimal, so that every
machine writes the same bytes.
"""

import argparse
import calendar
import csv
from decimal import Decimal
from pathlib import Path

PLACES = Decimal("0.000000000001")
DAY_SECONDS = 86400


def read_series(path):
    """The published values by end of step, (year, month, day) to Decimal or None for a missing one."""
    series = {}
    with open(path, newline="", encoding="ascii") as file:
        for row in csv.DictReader(file):
            date, time = row["datetime_end"].split(" ")
            if time != "24:00":
                raise ValueError(f"{path.name}: a step that does not end at midnight: {date} {time}")
            value = None if row["value"] == "NaN" else Decimal(row["value"])
            series[tuple(int(part) for part in date.split("-"))] = value
    return series


def days_of(first_year, first_month, last_year, last_month):
    """Every day from the first of one month to the last of another."""
    year, month = first_year, first_month
    while (year, month) <= (last_year, last_month):
        for day in range(1, calendar.monthrange(year, month)[1] + 1):
            yield (year, month, day)
        year, month = (year, month + 1) if month < 12 else (year + 1, 1)


def map_known(function, *series):
    """function of the values at each step, missing where one of them is."""
    return [None if None in values else function(*values) for values in zip(*series)]


def fixed(value):
    return "NaN" if value is None else f"{value.quantize(PLACES):f}"


def shortest(value):
    text = fixed(value)
    return text.rstrip("0").rstrip(".") if "." in text else text


def bucket(inflows, release, content, capacity):
    """Contents of a store at the end of each step; a missing inflow leaves the content as it was."""
    contents = []
    for inflow in inflows:
        if inflow is not None:
            content = min(max(content + inflow - release, Decimal(0)), capacity)
        contents.append(content)
    return contents


def slot_lines(object_type, object_name, slot_type, slot_name, body):
    lines = [f"object_type: {object_type}", f"object_name: {object_name}"]
    if slot_type:
        lines.append(f"slot_type: {slot_type}")
    return [*lines, f"slot_name: {slot_name}", *body, "END_SLOT"]


def column(units, scale, values, method=""):
    header = [f"units: {units}", f"scale: {scale}"]
    if method:
        header.append(f"method: {method}")
    return ["END_SLOT_PREAMBLE", *header, *values, "END_COLUMN"]


def table(rows):
    columns = len(rows[0].split())
    return [f"rows: {len(rows)}", f"cols: {columns}", "END_SLOT_PREAMBLE", *rows]


def step_text(step):
    return "{}-{}-{} 24:00".format(*step)


def package_lines(name, owner, description, create_date, runs):
    """runs: one list of lines per run."""
    lines = [
        f"name:{name}",
        f"owner:{owner}",
        f"description:{description}",
        f"create_date:{create_date}",
        f"number_of_runs:{len(runs)}",
        "END_PACKAGE_PREAMBLE",
    ]
    for run in runs:
        lines += run
    return lines


def run_lines(before, steps, unit, count_key, after, slots):
    """before and after: keyword lines around those that the steps decide."""
    lines = [
        *before,
        f"start:{step_text(steps[0])}",
        f"end:{step_text(steps[-1])}",
        f"time_step_unit:{unit}",
        "unit_quantity:1",
        f"{count_key}:{len(steps)}",
        *after,
        "END_RUN_PREAMBLE",
        *map(step_text, steps),
    ]
    for slot in slots:
        lines += slot
    return [*lines, "END_RUN"]


def rivers_run(trace, steps, choptank, crowsnest, seasonal):
    volume = map_known(lambda flow: flow * DAY_SECONDS / 1000, choptank)
    storage = bucket(volume, Decimal(4 * DAY_SECONDS) / 1000, Decimal(60000), Decimal(150000))
    slots = [
        slot_lines("StreamGauge", "Choptank", "SeriesSlot", "Flow",
                   column("cms", "1", map(fixed, choptank), "Mean")),
        slot_lines("StreamGauge", "Choptank", "SeriesSlot", "Volume.Daily",
                   column("1000 m3", "0.0010", map(fixed, volume))),
        slot_lines("LevelReservoir", "Mill Pond", "TableSlot", "Elevation Area",
                   table(["0.0 0.0", "1.5 420.0", "3.0 1250.0"])),
        slot_lines("LevelReservoir", "Mill Pond", "ScalarSlot", "Capacity",
                   column("1000 m3", "1", ["150000.000000000000"])),
        slot_lines("LevelReservoir", "Mill Pond", "SeriesSlot", "Storage",
                   column("1000 m3", "1000000", map(fixed, storage))),
        slot_lines("StreamGauge", "Crowsnest", "SeriesSlot", "Flow",
                   column("cms", "1", map(fixed, crowsnest))),
        slot_lines("SeasonalGauge", "Crowsnest Summer", "", "Flow",
                   column("cms", "1", map(fixed, seasonal))),
    ]
    return run_lines([f"trace:{trace}"], steps, "day", "time_steps",
                     ["consecutive:1", "slot_set:Gauges and pond", "rule_set:Observed",
                      f"idx_sequential:{trace}"], slots)


def rivers(data):
    choptank_series = read_series(data / "daily_flow_choptank.csv")
    crowsnest_series = read_series(data / "daily_flow_crowsnest.csv")
    steps = list(days_of(1999, 10, 2011, 9))
    choptank = [choptank_series[step] for step in steps]
    crowsnest = [crowsnest_series[step] for step in steps]
    # 48 years are a whole number of leap cycles: every day of the older record finds its own date.
    seasonal = [crowsnest_series[(year - 48, month, day)] for year, month, day in steps]

    # Four water years hold one leap day each time, so the rotated record keeps its dates too.
    shift = 4 * 365 + 1
    runs = [
        rivers_run(1, steps, choptank, crowsnest, seasonal),
        rivers_run(2, steps, *(s[shift:] + s[:shift] for s in (choptank, crowsnest, seasonal))),
    ]
    return package_lines("Rivers daily", "HtsAnnualizer examples",
                         "Daily flows of two rivers, water years 2000 to 2011", "2012-1-1 0:00", runs)


def basins(data):
    rain_series = read_series(data / "monthly_rain_bom_011008.csv")
    co2_series = read_series(data / "monthly_co2_mlo.csv")
    co2_gaps_series = read_series(data / "monthly_co2_mlo_with_gaps.csv")
    steps = [step for step in co2_series if (1958, 3) <= step[:2] <= (2016, 2)]
    rain, co2, measured = ([s[step] for step in steps]
                           for s in (rain_series, co2_series, co2_gaps_series))

    seconds = [Decimal(day * DAY_SECONDS) for _, _, day in steps]
    change = [None] + [b - a for a, b in zip(co2, co2[1:])]
    # Runoff of 150 and 250 km2 where a fifth and three tenths of the rain run off, in 1000 m3.
    upper_volume = map_known(lambda depth: depth * 30, rain)
    lower_volume = map_known(lambda depth: depth * 75, rain)
    upper_inflow = map_known(lambda volume, time: volume * 1000 / time, upper_volume, seconds)
    lower_inflow = map_known(lambda volume, time: volume * 1000 / time, lower_volume, seconds)
    storage = bucket(lower_volume, Decimal(1500), Decimal(9000), Decimal(12000))
    salt = map_known(lambda content: content / 8, storage)
    target = [Decimal(6000 + 250 * month) for _, month, _ in steps]
    norms = [f"{month} {500 + 25 * month}" for month in range(1, 13)]

    slots = [
        slot_lines("RainGauge", "Mundrabilla", "SeriesSlot", "Rain",
                   column("mm", "1", map(shortest, rain))),
        slot_lines("Observatory", "Mauna Loa", "SeriesSlot", "CO2",
                   column("ppm", "1", map(shortest, co2), "Mean")),
        slot_lines("Observatory", "Mauna Loa", "SeriesSlot", "CO2.Measured",
                   column("ppm", "1", map(shortest, measured))),
        slot_lines("Observatory", "Mauna Loa", "", "CO2 Change",
                   column("ppm", "1", map(shortest, change))),
        slot_lines("Basin", "Upper Basin", "ScalarSlot", "Area", column("km2", "1", ["150"])),
        slot_lines("Basin", "Upper Basin", "SeriesSlot", "Volume",
                   column("1000 m3", "0.001", map(shortest, upper_volume))),
        slot_lines("Basin", "Upper Basin", "SeriesSlot", "Inflow",
                   column("cms", "1", map(shortest, upper_inflow))),
        slot_lines("Basin", "Upper Basin", "TableSlot", "Monthly Norm", table(norms)),
        slot_lines("Basin", "Upper Basin", "SeriesSlot", "Target",
                   column("1000 m3", "1", map(shortest, target))),
        slot_lines("Basin", "Lower Basin", "SeriesSlot", "Inflow",
                   column("cms", "1", map(shortest, lower_inflow))),
        slot_lines("Basin", "Lower Basin", "SeriesSlot", "Storage",
                   column("1000 m3", "2.5e-7", map(shortest, storage))),
        slot_lines("Basin", "Lower Basin", "SeriesSlot", "Salt",
                   column("t", "1", map(shortest, salt))),
    ]
    run = run_lines([], steps, "month", "timesteps", ["consecutive:0", "idx_sequential:0"], slots)
    return package_lines("Basins monthly", "HtsAnnualizer examples",
                         "Monthly rain, carbon dioxide and two small basins", "2016-3-1 9:05", [run])


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("data", type=Path, metavar="FOLDER_OF_CSV_FILES")
    parser.add_argument("output", type=Path, metavar="OUTPUT_FOLDER")
    options = parser.parse_args()
    data, output = options.data, options.output
    output.mkdir(parents=True, exist_ok=True)
    for name, make in (("rivers_daily.hts", rivers), ("basins_monthly.hts", basins)):
        text = "\n".join(make(data)) + "\n"
        (output / name).write_bytes(text.encode("ascii"))


if __name__ == "__main__":
    main()
