#!/usr/bin/env python3
"""Exports HTS files, reads the tables with pandas and finds every value.

usage: readback.py HTSTOOL FILE.hts...

The files are read by a reader of its own, in a few lines, so that no code of the program is on
both sides of the comparison.
"""

import datetime
import math
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

import pandas


# The name that follows in the file becomes a line that is ignored.
NA_NAME = "object_name: NA\n#"


def instant(text):
    """2000-1-31 24:00 is midnight of the next day."""
    date, time = text.split(" ")
    hour, minute = map(int, time.split(":"))
    return datetime.datetime(*map(int, date.split("-"))) + datetime.timedelta(hours=hour,
                                                                             minutes=minute)


def read_slot(lines, steps):
    """Object, slot, units, kind and value texts of the next slot; None at the end of the run."""
    fields = {}
    for line in lines:
        if line == "END_RUN":
            return None
        if line == "END_SLOT_PREAMBLE":
            break
        key, _, value = line.partition(": ")
        fields[key] = value
    kind = fields.get("slot_type", "SeriesSlot")
    rest = []
    for line in lines:
        if line == "END_SLOT":
            break
        rest.append(line)
    units = rest[0].partition(": ")[2]
    values = [line for line in rest[2:-1] if not line.startswith("method: ")]
    assert kind == "TableSlot" or len(values) == (steps if kind == "SeriesSlot" else 1)
    return fields["object_name"], fields["slot_name"], units, kind, values


def values_of(path):
    """Run, trace, object, slot, units, time and value of every value, in the order of the file."""
    lines = iter(path.read_text(encoding="utf-8").split("\n"))
    preamble = dict(line.split(":", 1) for line in iter(lambda: next(lines),
                                                        "END_PACKAGE_PREAMBLE"))
    rows = []
    for run in range(1, int(preamble["number_of_runs"]) + 1):
        keys = dict(line.split(":", 1) for line in iter(lambda: next(lines), "END_RUN_PREAMBLE"))
        steps = [instant(next(lines)) for _ in range(int(keys.get("time_steps")
                                                         or keys["timesteps"]))]
        trace = float(keys.get("trace", "nan"))
        while (slot := read_slot(lines, len(steps))) is not None:
            name, slot_name, units, kind, texts = slot
            if kind == "TableSlot":
                continue
            times = steps if kind == "SeriesSlot" else [pandas.NaT]
            rows += [(run, trace, name, slot_name, units, time, float(text))
                     for time, text in zip(times, texts)]
    return rows


def same(a, b):
    """Equal to the last bit, or both missing."""
    if isinstance(a, float) or isinstance(b, float):
        return (math.isnan(a) and math.isnan(b)) or struct.pack("d", a) == struct.pack("d", b)
    return a == b or (a is pandas.NaT and b is pandas.NaT)


def export(tool, path, table, *options):
    subprocess.run([tool, "export", path, "-o", table, *options], check=True)
    return pandas.read_csv(table, parse_dates=["time"], float_precision="round_trip",
                           keep_default_na=False, na_values=[""])


def check_long(tool, path, folder, rows):
    table = export(tool, path, folder / "long.csv")
    assert list(table.columns) == ["run", "trace", "object", "slot", "units", "time", "value"]
    assert len(table) == len(rows), (path, len(table), len(rows))
    columns = (table[name].tolist() for name in table.columns)
    for number, (found, expected) in enumerate(zip(zip(*columns), rows)):
        assert all(map(same, found, expected)), (path, number, found, expected)


def check_wide(tool, path, folder, rows):
    for run in sorted({row[0] for row in rows}):
        table = export(tool, path, folder / "wide.csv", "--wide", "--run", str(run))
        series = [row for row in rows if row[0] == run and row[5] is not pandas.NaT]
        by_time = {time: at for at, time in enumerate(table["time"].tolist())}
        assert len(series) == len(table) * (len(table.columns) - 3)
        for _, _, name, slot, units, time, value in series:
            found = table[f"{name}.{slot} [{units}]"].iat[by_time[time]]
            assert same(float(found), value), (path, run, name, slot, time, found, value)


def main():
    tool, *files = sys.argv[1:]
    assert files
    for file in map(Path, files):
        with tempfile.TemporaryDirectory() as folder:
            # With a name that readers of tables take for a missing value.
            copy = Path(folder) / file.name
            copy.write_text(file.read_text(encoding="utf-8").replace("object_name: ", NA_NAME, 1),
                            encoding="utf-8")
            rows = values_of(copy)
            assert rows[0][2] == "NA"
            check_long(tool, copy, Path(folder), rows)
            check_wide(tool, copy, Path(folder), rows)
        print(f"{file.name}: {len(rows)} values found")


main()
