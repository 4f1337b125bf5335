#!/usr/bin/env python3
"""Compares the program with general tools that do the same work, and prints one table;
bench/bench-peers calls it.

The work: the water years of a file of daily series, a method for each slot, incomplete years left
out. First the results of all are compared with the program's; a value that differs ends with an
error and without a table. Then all are timed in turn, each as a whole process with its start, the
reading of its input and the writing of its result. Inputs are kept in BUILD_FOLDER/bench/data.
"""

import argparse
import csv
import multiprocessing
import os
import resource
import shutil
import statistics
import subprocess
import sys
from dataclasses import dataclass
from pathlib import Path
from typing import Callable

folder = Path(__file__).resolve().parent
sys.path.append(str(folder.parent))
from compare import MIB, Bench # noqa: E402

END_MONTH = 9
METHODS = ["SumNaN", "Average", "MaxNaN", "MinNaN"] # of the slots in turn
LARGEST_DIFFERENCE = 1e-11 # relative; the annual file has twelve decimals
# With so few missing values some of the averages have one, and most have none.
LARGE = "slots=200 steps=18262 unit=day missing=0.0005"
SMALL = "slots=8 steps=1500 unit=day missing=0.001"
PYTHON = "/usr/bin/python3" # Debian's, which has the packages


class Data:
    """An input in the forms that the tools read, and its control file. Made when they are missing;
    the table, the Parquet and the NetCDF file are not timed."""

    def __init__(self, bench, arguments):
        self.hts = bench.generated(arguments)
        self.control = self.hts.with_name(f"{self.hts.stem}_peers.txt")
        slots = int(dict(word.split("=") for word in arguments.split())["slots"])
        self.control.write_text("".join(f"Object{slot}.Flow: {METHODS[slot % len(METHODS)]}\n"
                                        for slot in range(slots)))
        self.csv = self._made(".csv", lambda path: export_command(bench, self, path))
        self.parquet = self._made(".parquet", lambda path: ["node", folder / "wide_to_parquet.js",
                                                            self.csv, path], bench.environment)
        self.netcdf = self._made(".nc", lambda path: [PYTHON, folder / "wide_to_netcdf.py", self.csv,
                                                      path])

    def _made(self, suffix, command, environment=None):
        path = self.hts.with_suffix(suffix)
        if not path.exists() or path.stat().st_mtime < self.hts.stat().st_mtime:
            partial = path.with_suffix(".partial")
            subprocess.run(command(partial), check=True, env=environment)
            partial.rename(path)
        return path


def export_command(bench, data, path):
    return [bench.build / "tool" / "htstool", "export", "--wide", "-o", path, data.hts]


@dataclass
class Tool:
    name: str
    version: list # the command that prints it
    reads: str # the field of Data
    command: Callable # of bench, data and the path of the result
    rows: Callable # of bench, data and the path of the result: slot, year, value as text


def table_rows(bench, data, result):
    with open(result, newline="") as file:
        yield from ((row["slot"], int(row["year"]), row["value"]) for row in csv.DictReader(file))


def netcdf_rows(bench, data, result):
    table = bench.results / "rows.csv"
    subprocess.run([PYTHON, folder / "netcdf_to_rows.py", result, data.control, table], check=True)
    return table_rows(bench, data, table)


def annual_file_rows(bench, data, result):
    with open(result) as file:
        lines = map(str.rstrip, file)
        for line in lines:
            key, _, value = line.partition(":")
            if key == "time_steps":
                steps = int(value)
            elif key == "END_RUN_PREAMBLE":
                years = [int(next(lines).split("-")[0]) for _ in range(steps)]
            elif key == "object_name":
                name = value[1:]
            elif key == "slot_name":
                name += "." + value[1:]
            elif key == "method": # the last line before the values
                yield from ((name, year, next(lines)) for year in years)


def recipe(*interpreter_and_file, reads):
    *interpreter, file = interpreter_and_file
    return lambda bench, data, result: [*interpreter, folder / file, getattr(data, reads), data.control,
                                        str(END_MONTH), result]


def program(bench, data, result):
    return [bench.build / "app" / "HtsAnnualizer", "-i", data.hts, "-o", result, "-c", data.control,
            "-y", str(END_MONTH)]


def mawk(bench, data, result):
    return ["sh", "-c", 'result=$1; shift; exec "$@" >"$result"', "sh", result, "mawk", "-v",
            f"end_month={END_MONTH}", "-f", folder / "annual.awk", data.control, data.hts]


def tools(bench):
    node_version = "process.stdout.write(require('{}/package.json').version)".format
    return [
        Tool("HtsAnnualizer", [bench.build / "tool" / "htstool", "--version"], "hts", program,
             annual_file_rows),
        Tool("mawk", ["mawk", "-W", "version"], "hts", mawk, table_rows),
        Tool("polars", ["node", "-e", node_version("nodejs-polars")], "parquet",
             recipe("node", "annual_polars.js", reads="parquet"), table_rows),
        Tool("DuckDB", ["node", "-e", node_version("@duckdb/node-api")], "parquet",
             recipe("node", "annual_duckdb.js", reads="parquet"), table_rows),
        Tool("data.table", ["Rscript", "-e", "cat(format(packageVersion('data.table')))"], "csv",
             recipe("Rscript", "--vanilla", "annual_datatable.R", reads="csv"), table_rows),
        Tool("pandas", [PYTHON, "-c", "import pandas; print(pandas.__version__)"], "csv",
             recipe(PYTHON, "annual_pandas.py", reads="csv"), table_rows),
        Tool("CDO", ["cdo", "--version"], "netcdf", recipe("annual_cdo", reads="netcdf"), netcdf_rows),
    ]


def version(tool, environment):
    """The first word with a digit of what the tool says about its version."""
    said = subprocess.run(tool.version, env=environment, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, check=True, text=True).stdout
    return next(word for word in said.split() if word[0].isdigit()).rstrip(",")


def number(text):
    """None for a missing value."""
    return None if text in ("", "NA", "NaN", "nan") else float(text)


def rows_of(tool, bench, data, result):
    rows = {}
    for slot, year, value in tool.rows(bench, data, result):
        if (slot, year) in rows:
            sys.exit(f"peers.py: {tool.name} has two values of {slot} in {year}")
        rows[slot, year] = number(value)
    return rows


def difference(value, expected):
    if value is None or expected is None:
        return 0 if value is expected else float("inf")
    return abs(value - expected) / abs(expected) if expected != 0 else abs(value)


def largest_difference(tool, rows, expected):
    if rows.keys() != expected.keys():
        missing, extra = len(expected.keys() - rows.keys()), len(rows.keys() - expected.keys())
        sys.exit(f"peers.py: the years of {tool.name} differ: {missing} missing, {extra} too many")
    largest = 0
    for key, value in expected.items():
        found = difference(rows[key], value)
        if not found <= LARGEST_DIFFERENCE:
            slot, year = key
            sys.exit(f"peers.py: {tool.name} has {rows[key]} for {slot} in {year}, not {value}")
        largest = max(largest, found)
    return largest


def compare_results(bench, chosen, data):
    """Ends the program when a result differs."""
    ours, *others = chosen
    result = bench.results / "result"

    def rows(tool):
        bench.time(tool.command(bench, data, result))
        return rows_of(tool, bench, data, result)

    expected = rows(ours)
    missing = sum(value is None for value in expected.values())
    if not 0 < missing < len(expected) / 2:
        sys.exit(f"peers.py: {missing} of {len(expected)} annual values are missing")
    largest = max(largest_difference(tool, rows(tool), expected) for tool in others)
    print(f"{len(expected)} annual values, {missing} of them missing, are the same within "
          f"{LARGEST_DIFFERENCE:g} in {len(others)} tools; the largest difference is {largest:.1e}.",
          flush=True)


@dataclass
class Times:
    seconds: list
    processor: list
    peak: int = 0


def measure(bench, commands):
    """Times of each command. They take turns; a round before the first warms the disk cache."""
    times = [Times([], []) for _ in commands]
    for run in range(bench.runs + 1):
        for command, its in zip(commands, times):
            seconds, usage = bench.time(command)
            if run > 0:
                its.seconds.append(seconds)
                its.processor.append(usage.ru_utime + usage.ru_stime)
                its.peak = max(its.peak, usage.ru_maxrss * 1024)
    return times


def show(bench, chosen, large, small):
    result = bench.results / "result"
    commands = [tool.command(bench, data, result) for tool in chosen for data in (large, small)]
    names = [f"{tool.name} {version(tool, bench.environment)}" for tool in chosen]
    files = [getattr(large, tool.reads) for tool in chosen]
    # What makes the CSV, which is not part of the other times.
    commands += [export_command(bench, data, result) for data in (large, small)]
    names.append("`htstool export --wide`")
    files.append(large.hts)

    load = " ".join(f"{value:.1f}" for value in os.getloadavg())
    measured = measure(bench, commands)
    print(f"Medians; rounds: {bench.runs}; processors: {os.cpu_count()}; load before: {load}, after: "
          + " ".join(f"{value:.1f}" for value in os.getloadavg()) + ".\n")
    print("| | reads | time | ratio | ratio, fastest rounds | processor time | small file | peak memory |")
    print("|---|---|---|---|---|---|---|---|")
    ours = measured[0].seconds
    # A child's peak counts from that of the process that started it, which is this one.
    least = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * 1024
    for name, file, its, its_small in zip(names, files, measured[::2], measured[1::2]):
        kind = {".hts": "HTS", ".csv": "CSV", ".parquet": "Parquet", ".nc": "NetCDF"}[file.suffix]
        median = statistics.median(its.seconds)
        print(f"| {name} | {kind}, {file.stat().st_size / 1e6:.0f} MB | {median:.3f} s | "
              f"{median / statistics.median(ours):.1f} | {min(its.seconds) / min(ours):.1f} | "
              f"{statistics.median(its.processor):.2f} s | {statistics.median(its_small.seconds):.3f} s | "
              f"{'' if its.peak > least else '<= '}{its.peak / MIB:.0f} MiB |")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=Path)
    parser.add_argument("node_modules", type=Path)
    parser.add_argument("--runs", type=int, default=9)
    parser.add_argument("--tiny", action="store_true")
    parser.add_argument("--only", default="")
    arguments = parser.parse_args()
    bench = Bench(arguments.build.resolve(), arguments.tiny, 1 if arguments.tiny else arguments.runs)
    bench.environment["NODE_PATH"] = str(arguments.node_modules.resolve())
    # All processors, as the others take them; without it only half of them.
    bench.environment["R_DATATABLE_NUM_PROCS_PERCENT"] = "100"

    ours, *others = tools(bench)
    chosen = [ours, *(tool for tool in others if arguments.only in tool.name)]
    if len(chosen) == 1:
        parser.error(f"no tool's name holds {arguments.only}")
    if bench.tiny:
        print("A tiny input, one run each: shows that everything works; the ratios mean nothing.\n")
    try:
        small = Data(bench, SMALL)
        large = small if bench.tiny else Data(bench, LARGE)
        # In a process of its own, so that its memory is not part of what is measured later.
        comparison = multiprocessing.Process(target=compare_results, args=(bench, chosen, large))
        comparison.start()
        comparison.join()
        if comparison.exitcode != 0:
            sys.exit(1)
        show(bench, chosen, large, small)
    finally:
        shutil.rmtree(bench.results)


if __name__ == "__main__":
    main()
