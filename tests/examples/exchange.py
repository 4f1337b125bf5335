#!/usr/bin/env python3
"""Runs recipes of examples/exchange with the example files and finds every value in what they make.

usage: exchange.py HTSTOOL SOURCE_FOLDER RECIPE...

RECIPE is pandas, folder, r, duckdb or netcdf. Their tools are installed; DuckDB is found by NODE_PATH.
"""

import csv
import math
import os
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

EXAMPLES = ("basins_monthly.hts", "rivers_daily.hts")
NA_NAME = "object_name: NA"


class Case:
    """An example file with an object named NA, and its table."""

    def __init__(self, tool, source, name, folder):
        self.tool, self.folder = tool, folder
        self.recipes = source / "examples" / "exchange"
        self.file = folder / name
        text = (source / "examples" / name).read_text(encoding="utf-8")
        first = next(line for line in text.split("\n") if line.startswith("object_name: "))
        self.file.write_text(text.replace(first, NA_NAME), encoding="utf-8")
        self.table = self.file.with_suffix(".csv")
        self.run(tool, "export", "-o", self.table, self.file)
        with open(self.table, encoding="utf-8", newline="") as table:
            self.rows = list(csv.DictReader(table))
        self.values = [number(row["value"]) for row in self.rows]

    def run(self, *command):
        return subprocess.run([str(word) for word in command], check=True, cwd=self.folder, text=True,
                              stdout=subprocess.PIPE, env={**os.environ, "HTSTOOL": str(self.tool)}).stdout


def number(text):
    return float(text) if text not in ("", "NA") else math.nan


def bits(value):
    return "missing" if math.isnan(value) else struct.pack("d", value)


def check_same(found, expected):
    assert list(map(bits, found)) == list(map(bits, expected))


def check_pandas(case):
    sys.dont_write_bytecode = True
    sys.path.insert(0, str(case.recipes))
    from read import read_table  # pylint: disable=import-error,import-outside-toplevel
    table = read_table(case.table)
    assert table.object[0] == "NA" and list(table.units) == [row["units"] for row in case.rows]
    assert [str(time)[:10] for time in table.time.dropna()] == [row["time"][:10] for row in case.rows if row["time"]]
    check_same(table.value, case.values)


def check_r(case):
    script = (f"source('{case.recipes}/read.R'); table <- read_table('{case.table}');"
              "stopifnot(table$object[1] == 'NA', !anyNA(table$object), !anyNA(table$units));"
              "cat(ifelse(is.na(table$value), 'NA', sprintf('%a', table$value)), sep = '\\n')")
    found = [math.nan if text == "NA" else float.fromhex(text)
             for text in case.run("Rscript", "-e", script).split()]
    assert len(found) == len(case.values)
    for value, expected in zip(found, case.values):
        assert bits(value) == bits(expected) or abs(value - expected) <= math.ulp(expected)


def check_duckdb(case):
    parquet = case.folder / "it's.parquet"
    summary = case.run("node", case.recipes / "parquet.js", case.table, parquet)
    assert "NA\t" in summary, summary
    query = ("const {DuckDBInstance} = require('@duckdb/node-api'); (async () => {"
             "const c = await (await DuckDBInstance.create()).connect();"
             "const r = await c.runAndReadAll('SELECT value FROM ' + JSON.stringify(process.argv[1]));"
             "for (const [v] of r.getRows()) console.log(v === null ? 'NA' : v); })()")
    check_same(map(number, case.run("node", "-e", query, parquet).split()), case.values)


def check_netcdf(case):
    import numpy  # pylint: disable=import-outside-toplevel
    import xarray  # pylint: disable=import-outside-toplevel
    rows = [row for row in case.rows if row["run"] == "1"]
    result = case.folder / "result.nc"
    case.run("/usr/bin/python3", case.recipes / "to-netcdf.py", case.file, result)
    with xarray.open_dataset(result) as data:
        assert data.attrs["Conventions"] == "CF-1.8"
        assert data.time.encoding["units"] == "minutes since 1970-01-01"
        ends = [row["time"] for row in rows]
        steps = sorted({end for end in ends if end})
        assert [str(end)[:19] for end in data.time.values] == steps
        bounds = data.time_bnds.values
        assert numpy.array_equal(bounds[:, 1], data.time.values)
        assert numpy.array_equal(bounds[1:, 0], bounds[:-1, 1])
        for variable in data.data_vars.values():
            if variable.name == "time_bnds":
                continue
            mine = [row for row in rows if f"{row['object']}.{row['slot']}" == variable.attrs["long_name"]]
            check_same(variable.values.ravel(), [number(row["value"]) for row in mine])
            assert {row["units"] for row in mine} == {variable.attrs["hts_units"]}
            if variable.attrs["hts_units"] == "cms":
                assert variable.attrs["units"] == "m3 s-1"
        if "daily" in str(case.file):
            assert data["NA_Flow"].attrs["cell_methods"] == "time: mean"


def check_folder(case):
    tables, results = case.folder / "my tables", case.folder / "it's %1 done"
    tables.mkdir(exist_ok=True)
    for run in ("1", "2"):
        table = tables / f"run {run} $HOME.csv"
        if subprocess.run([case.tool, "export", "-o", table, "--run", run, case.file], cwd=case.folder,
                          stderr=subprocess.DEVNULL, check=False).returncode == 0:
            with open(table, encoding="utf-8") as content:
                expected = content.read()
            case.run(case.recipes / "import-folder", tables, results, "--object-type", "Two words")
            again = case.run(case.tool, "export", "-o", "-", results / f"{table.stem}.hts")
            assert again.replace("\n1,", f"\n{run},") == expected.replace("\r\n", "\n")
    (tables / "bad.csv").write_text("date,Lake.Level [m]\n2020-01-01,1\n2020-01-02,none\n", encoding="utf-8")
    (results / "bad.hts").write_text("old", encoding="utf-8")
    failed = subprocess.run([case.recipes / "import-folder", tables, results], check=False, text=True,
                            stderr=subprocess.PIPE, env={**os.environ, "HTSTOOL": str(case.tool)})
    assert failed.returncode == 1 and '"none" is not a number' in failed.stderr, failed.stderr
    assert not (results / "bad.hts").exists()
    wrong = subprocess.run([case.recipes / "import-folder", tables], check=False, text=True, stderr=subprocess.PIPE)
    assert (wrong.returncode, wrong.stderr) == (2, "usage: import-folder TABLES RESULTS [OPTION...]\n")


def main():
    tool, source = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
    checks = {"pandas": check_pandas, "folder": check_folder, "r": check_r, "duckdb": check_duckdb,
              "netcdf": check_netcdf}
    for name in EXAMPLES:
        with tempfile.TemporaryDirectory() as folder:
            case = Case(tool, source, name, Path(folder))
            for recipe in sys.argv[3:]:
                checks[recipe](case)
                print(f"{name}: {recipe}: {len(case.values)} values")


main()
