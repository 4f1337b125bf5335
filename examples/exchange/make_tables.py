#!/usr/bin/env python3
"""Makes the example tables from the published series: parts of them, in forms that agencies publish.

Reads the same CSV files as make_examples.py.
"""

import argparse
import csv
from pathlib import Path


def read_series(path, first, last):
    """[(year, month, day), text] of the steps that end on the days first to last, as YYYY-MM-DD."""
    with open(path, newline="", encoding="ascii") as file:
        rows = [(row["datetime_end"].split(" ")[0], row["value"]) for row in csv.DictReader(file)]
    return [(tuple(map(int, day.split("-"))), value) for day, value in rows if first <= day <= last]


def choptank(data):
    """Comments, a line of names and one of widths, tabs, a column for the quality of each value."""
    yield "# Choptank River near Greensboro, station 01491000"
    yield "# mean daily flow, m3/s"
    yield "agency_cd\tsite_no\tdatetime\tflow_mean\tflow_mean_cd"
    yield "5s\t15s\t20d\t14n\t10s"
    for (year, month, day), value in read_series(data / "daily_flow_choptank.csv", "1999-10-01", "2000-09-30"):
        yield f"USGS\t01491000\t{year}-{month:02}-{day:02}\t{value}\tA"


def mundrabilla(data):
    """The year and the month in columns of their own, a column for the quality."""
    yield "Product code,Station number,Year,Month,Monthly Precipitation Total (millimetres),Quality"
    for (year, month, _), value in read_series(data / "monthly_rain_bom_011008.csv", "1902-01-01", "1903-12-31"):
        yield f"IDCJAC0001,011008,{year},{month:02},{value},Y"


def mauna_loa(data):
    """Comments, no names, columns between blanks, and a number for missing values."""
    yield "# Mauna Loa, carbon dioxide, monthly means, ppm; missing: -99.99"
    yield "# year  month   decimal   average"
    series = read_series(data / "monthly_co2_mlo_with_gaps.csv", "1959-01-01", "1964-12-31")
    for (year, month, _), value in series:
        text = "-99.99" if value == "NaN" else value
        yield f"   {year}    {month:2}    {year + (month - 0.5) / 12:.4f}    {text:>6}"


def crowsnest_semicolon(data):
    """Semicolons, decimal commas, the day first, and nothing for missing values."""
    yield "Date;Flow [m3/s]"
    for (year, month, day), value in read_series(data / "daily_flow_crowsnest.csv", "1911-01-01", "1911-12-31"):
        yield f"{day:02}.{month:02}.{year};{value.replace('.', ',')}"


def crowsnest_digits(data):
    """A title, a line of names and one of units, days of eight digits."""
    yield "Crowsnest River at Frank (05AA008)"
    yield "DATE,FLOW"
    yield ",m3/s"
    for (year, month, day), value in read_series(data / "daily_flow_crowsnest.csv", "1911-01-01", "1912-12-31"):
        yield f"{year}{month:02}{day:02},{value}"


TABLES = {
    "choptank.tsv": choptank,
    "mundrabilla.csv": mundrabilla,
    "mauna_loa.txt": mauna_loa,
    "crowsnest_semicolon.csv": crowsnest_semicolon,
    "crowsnest_digits.csv": crowsnest_digits,
}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("data", type=Path, metavar="FOLDER_OF_CSV_FILES")
    parser.add_argument("output", type=Path, metavar="OUTPUT_FOLDER")
    options = parser.parse_args()
    options.output.mkdir(parents=True, exist_ok=True)
    for name, lines in TABLES.items():
        (options.output / name).write_bytes(("\n".join(lines(options.data)) + "\n").encode("ascii"))


if __name__ == "__main__":
    main()
