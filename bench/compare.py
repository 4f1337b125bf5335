#!/usr/bin/env python3
"""Compares the program with its baselines and prints one table; scripts/bench calls it.

Each row runs two or more commands in turn, so that a change in the machine's speed meets all of
them, and compares the medians. Inputs are made by htsgenerate in BUILD_FOLDER/bench/data and kept
for the next time.
"""

import argparse
import filecmp
import json
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass
from pathlib import Path

MIB = 1024 * 1024


@dataclass
class Shape:
    """An input: arguments of htsgenerate, and for how many slots its control file has rules of their
    own; 0 for one rule for all."""

    arguments: str
    tiny: str
    rules: int = 0

    def number(self, name, tiny):
        words = dict(word.split("=") for word in (self.tiny if tiny else self.arguments).split())
        return int(words[name])


SHAPES = {
    "days": Shape("slots=200 steps=18262 unit=day", "slots=2 steps=800 unit=day"),
    "days, Windows line ends": Shape("slots=200 steps=18262 unit=day lineend=windows",
                                     "slots=2 steps=800 unit=day lineend=windows"),
    **{f"days, {what}": Shape(f"slots=200 steps=18262 unit=day {values}",
                              f"slots=3 steps=800 unit=day {values}")
       for what, values in {"storages": "values=storage", "mixed": "values=mix",
                            "storages, integers": "values=storage decimals=0",
                            "two decimals": "decimals=2", "six decimals": "decimals=6",
                            "exponents": "values=storage decimals=e"}.items()},
    "many slots": Shape("slots=10000 steps=120 unit=month", "slots=10 steps=24 unit=month"),
    "many runs": Shape("runs=200 slots=50 steps=600 unit=month",
                       "runs=3 slots=2 steps=24 unit=month"),
    "days, 1.2 GB": Shape("slots=4000 steps=18262 unit=day", "slots=4 steps=800 unit=day"),
    "one rule": Shape("slots=20000 steps=120 unit=month", "slots=20 steps=24 unit=month"),
    "a rule for each slot": Shape("slots=20000 steps=120 unit=month",
                                  "slots=20 steps=24 unit=month", rules=20000),
    "a million rules": Shape("slots=5 steps=120 unit=month", "slots=5 steps=24 unit=month",
                             rules=1050000),
    "small": Shape("slots=8 steps=1500 unit=day missing=0.001", "slots=8 steps=400 unit=day", rules=8),
}


# Numbers of other sizes and forms: program / reading bound.
NUMBERS = {"storages": 0.95, "mixed": 0.9, "storages, integers": 0.95, "two decimals": 0.95,
           "six decimals": 0.95, "exponents": 0.95}


class Bench:
    def __init__(self, build, tiny, runs):
        self.build = build
        self.tiny = tiny
        self.runs = runs
        self.data = build / "bench" / "data"
        self.data.mkdir(parents=True, exist_ok=True)
        self.data.chmod(0o700) # as the toolkit wants its XDG_RUNTIME_DIR
        # Results go to memory where that is possible: the disk is not what is measured.
        memory = Path("/dev/shm")
        self.results = Path(tempfile.mkdtemp(dir=memory if memory.is_dir() else None))
        self.environment = {**os.environ, "XDG_RUNTIME_DIR": str(self.data)}
        self.offscreen = {**self.environment, "QT_QPA_PLATFORM": "offscreen"}

    def generated(self, arguments):
        """Path of what htsgenerate makes of these arguments, made when it is missing."""
        stem = arguments.replace(" ", "_").replace("=", "")
        path = self.data / f"{stem}.hts"
        if not path.exists():
            partial = path.with_suffix(".partial")
            with open(partial, "wb") as file:
                subprocess.run([self.build / "tests" / "generate" / "htsgenerate", *arguments.split()],
                               stdout=file, check=True)
            partial.rename(path)
        return path

    def input(self, name):
        """Paths of the input of that shape and of its control file, made when they are missing."""
        shape = SHAPES[name]
        path = self.generated(shape.tiny if self.tiny else shape.arguments)
        rules = min(shape.rules, 20) if self.tiny else shape.rules
        control = self.data / f"{path.stem}_{rules}.txt"
        if not control.exists():
            partial = control.with_suffix(".partial")
            with open(partial, "w", encoding="ascii") as file:
                if rules == 0:
                    file.write("*.*: Average\n")
                # In pieces; see whole_process.
                file.writelines(f"Object{slot}.Flow: Average\n" for slot in range(rules))
            partial.rename(control)
        return path, control

    def program(self, name):
        path, control = self.input(name)
        return [self.build / "app" / "HtsAnnualizer", "-i", path, "-o", self.results / "annual.hts",
                "-c", control, "-y", "12"]

    def variant(self, reader, log, name):
        path, control = self.input(name)
        return [self.build / "bench" / "convert", reader, log, path, self.results / "variant.hts",
                control, "12"]

    def plain(self, name):
        return self.variant("plain", "on", name)

    def bound(self, name):
        return [self.build / "bench" / "readbound", self.input(name)[0]]

    def check(self, name, *options):
        """htstool check, which ends with 0 for these inputs."""
        path, control = self.input(name)
        # The summary is for people.
        return ["sh", "-c", 'exec "$@" 2>/dev/null', "sh", self.build / "tool" / "htstool", "check",
                path, "-c", control, *options]

    def check_with_counts(self, name):
        return self.check(name, "--counts", self.results / "counts.csv")

    def report(self, name):
        """htstool report, without its summary."""
        command = self.check(name, "-y", "12", "-o", self.results / "report.html")
        command[command.index("check")] = "report"
        return command

    def export(self, name, *options):
        return [self.build / "tool" / "htstool", "export", self.input(name)[0],
                "-o", self.results / "export.csv", *options]

    def time(self, command):
        """Seconds and resource usage of one run."""
        start = time.perf_counter()
        process = subprocess.Popen(command, env=self.environment, stdout=subprocess.DEVNULL)
        _, status, usage = os.wait4(process.pid, 0)
        seconds = time.perf_counter() - start
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            sys.exit(f"compare.py: {' '.join(map(str, command))} ended with {process.returncode}")
        return seconds, usage

    def compare(self, *commands):
        """Median seconds and peak bytes of each command. The commands take turns; a round before
        the first warms the disk cache."""
        seconds = [[] for _ in commands]
        peaks = [0 for _ in commands]
        for run in range(self.runs + 1):
            for index, command in enumerate(commands):
                # The kernel takes long to drop an old table.
                (self.results / "export.csv").unlink(missing_ok=True)
                taken, usage = self.time(command)
                if run > 0 or self.runs == 0:
                    seconds[index].append(taken)
                peaks[index] = max(peaks[index], usage.ru_maxrss * 1024)
        return [statistics.median(taken) for taken in seconds], peaks

    def memory_limit(self, name):
        """What a conversion may need at its peak: the toolkit, the result and what is known of one
        run, but nothing that grows with the number of runs or of values."""
        shape = SHAPES[name]
        result = (self.results / "annual.hts").stat().st_size
        rules = self.input(name)[1].stat().st_size
        return (24 * MIB + 1.5 * result + rules + 100 * shape.number("steps", self.tiny) +
                400 * shape.number("slots", self.tiny))


@dataclass
class Row:
    what: str
    measured: str
    target: str
    detail: str


def whole_process(bench, shape, times_plain, times_bound):
    (program, plain, bound), (peak, *_) = bench.compare(bench.program(shape), bench.plain(shape),
                                                        bench.bound(shape))
    # In pieces: the peak memory of a child counts from that of this process when it is started.
    if not filecmp.cmp(bench.results / "annual.hts", bench.results / "variant.hts", shallow=False):
        sys.exit(f"compare.py: the two conversions of {shape} differ")
    size = bench.input(shape)[0].stat().st_size
    limit = bench.memory_limit(shape)
    detail = f"{size / 1e6:.0f} MB, {program:.3f} s"
    return [
        Row(f"{shape}: plain conversion / program", f"{plain / program:.1f}", f">= {times_plain}",
            detail),
        Row(f"{shape}: program / reading bound", f"{program / bound:.2f}", f"<= {times_bound}",
            f"bound {bound:.3f} s"),
        Row(f"{shape}: peak memory / limit", f"{peak / limit:.2f}", "<= 1",
            f"{peak / MIB:.0f} MiB of {limit / MIB:.0f} MiB"),
    ]


def growth(bench):
    (small, large), peaks = bench.compare(bench.program("days"), bench.program("days, 1.2 GB"))
    sizes = [bench.input(name)[0].stat().st_size for name in ("days", "days, 1.2 GB")]
    ratio = (large / sizes[1]) / (small / sizes[0])
    return [
        Row("growth: time per byte, 1.2 GB / 60 MB", f"{ratio:.2f}", "<= 0.9",
            f"{large:.2f} s for {sizes[1] / 1e9:.2f} GB"),
        Row("growth: peak memory, 1.2 GB / 60 MB", f"{peaks[1] / peaks[0]:.2f}", "<= 1.3",
            f"{peaks[1] / MIB:.0f} MiB and {peaks[0] / MIB:.0f} MiB"),
    ]


def growth_of_check(bench):
    _, peaks = bench.compare(bench.check_with_counts("days"),
                             bench.check_with_counts("days, 1.2 GB"))
    return [Row("growth: peak memory of htstool check, 1.2 GB / 60 MB", f"{peaks[1] / peaks[0]:.2f}",
                "<= 1.3", f"{peaks[1] / MIB:.0f} MiB and {peaks[0] / MIB:.0f} MiB")]


def tool(bench, shape, what, aim, command):
    (seconds, program), (peak, _) = bench.compare(command, bench.program(shape))
    return [Row(f"{shape}: htstool {what} / program", f"{seconds / program:.2f}", f"<= {aim}",
                f"{seconds:.3f} s, {peak / MIB:.0f} MiB")]


def checking(bench, shape):
    return (tool(bench, shape, "check", 1.0, bench.check(shape)) +
            tool(bench, shape, "check with counts", 1.1, bench.check_with_counts(shape)))


def reporting(bench, shape):
    (seconds, check), (peak, _) = bench.compare(bench.report(shape), bench.check(shape))
    shown = min(SHAPES[shape].number("slots", bench.tiny), 200)
    limit = 24 * MIB + 30000 * shown # and 8 bytes for each annual value
    return [Row(f"{shape}: htstool report / htstool check", f"{seconds / check:.2f}", "<= 2",
                f"{seconds:.3f} s"),
            Row(f"{shape}: peak memory of htstool report / limit", f"{peak / limit:.2f}", "<= 1",
                f"{peak / MIB:.0f} MiB of {limit / MIB:.0f} MiB")]


def exporting(bench, shape):
    return (tool(bench, shape, "export", 2.5, bench.export(shape)) +
            tool(bench, shape, "export --wide", 2.5, bench.export(shape, "--wide")))


def method_assignment(bench):
    (each, one), _ = bench.compare(bench.program("a rule for each slot"), bench.program("one rule"))
    return [Row("method assignment: 20,000 rules for 20,000 slots, share of the conversion",
                f"{(each - one) / each:.1%}", "< 5%", f"{each:.3f} s, with one rule {one:.3f} s")]


def many_rules(bench):
    (seconds,), (peak,) = bench.compare(bench.program("a million rules"))
    limit = bench.memory_limit("a million rules")
    return [Row("a million rules: peak memory / limit", f"{peak / limit:.2f}", "<= 1",
                f"{peak / MIB:.0f} MiB of {limit / MIB:.0f} MiB, {seconds:.2f} s")]


def log_lines(bench):
    (logged, silent), _ = bench.compare(bench.variant("own", "on", "one rule"),
                                        bench.variant("own", "off", "one rule"))
    return [Row("log lines of 20,000 slots, nobody listening, share of the conversion",
                f"{(logged - silent) / logged:.1%}", "< 20%", f"{logged:.3f} s, without {silent:.3f} s")]


def writing(bench):
    """microbench alternates the two itself, in memory."""
    slots = 1000 if bench.tiny else 480000
    command = [bench.build / "bench" / "microbench", f"--benchmark_filter=AnnualPackage/{slots}$",
               "--benchmark_format=json", f"--benchmark_repetitions={bench.runs}",
               "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.01"]
    output = subprocess.run(command, env=bench.environment, stdout=subprocess.PIPE,
                            stderr=subprocess.DEVNULL, check=True, text=True)
    speeds = {}
    for run in json.loads(output.stdout)["benchmarks"]:
        if run["run_type"] == "iteration":
            speeds.setdefault(run["name"].split("/")[0], []).append(run["bytes_per_second"])
    write, read = (statistics.median(speeds[name])
                   for name in ("writeAnnualPackage", "readAnnualPackage"))
    return [Row("writing an annual result of 100 MB: speed / speed of reading it",
                f"{write / read:.2f}", ">= 1", f"{write / 1e6:.0f} MB/s, reading {read / 1e6:.0f}")]


def start_up(bench):
    bare = [bench.build / "bench" / "bareapplication"]
    version = [bench.build / "app" / "HtsAnnualizer", "-v"]
    tool_version = [bench.build / "tool" / "htstool", "--version"]
    hts, control = bench.input("small")
    mawk = ["mawk", "-v", "end_month=12", "-f", Path(__file__).parent / "peers" / "annual.awk", control,
            hts]
    (shown, tool_shown, nothing, small, mawk_small), _ = bench.compare(
        version, tool_version, bare, bench.program("small"), mawk)
    return [
        Row("start-up: -v / bare application", f"{shown / nothing:.2f}", "<= 1.3",
            f"{shown * 1000:.1f} ms"),
        Row("start-up: -v / htstool --version", f"{shown / tool_shown:.2f}", "<= 1.15",
            f"{tool_shown * 1000:.1f} ms"),
        Row(f"start-up: conversion of {hts.stat().st_size / 1e3:.0f} KB / mawk",
            f"{small / mawk_small:.2f}", "< 1",
            f"{small * 1000:.1f} ms, mawk {mawk_small * 1000:.1f} ms"),
    ]


def viewer(bench):
    """bench_viewer alternates the viewer and the bare tree itself and prints a row for each case."""
    size = ["1", "1000"] if bench.tiny else [str(bench.runs)]
    output = subprocess.run([bench.build / "bench" / "viewer" / "bench_viewer", *size],
                            env=bench.offscreen, stdout=subprocess.PIPE, check=True, text=True)
    print(output.stdout, end="")
    return []


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=Path)
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--tiny", action="store_true")
    parser.add_argument("--only", default="")
    arguments = parser.parse_args()
    bench = Bench(arguments.build.resolve(), arguments.tiny, 1 if arguments.tiny else arguments.runs)

    measurements = {
        "days": lambda: whole_process(bench, "days", 20, 0.95),
        "days, Windows line ends": lambda: whole_process(bench, "days, Windows line ends", 12, 1.0),
        "days, numbers": lambda: [row for what, aim in NUMBERS.items() for row in
                                  whole_process(bench, f"days, {what}", 12, aim)[1:2]],
        "many slots": lambda: whole_process(bench, "many slots", 8, 1.2),
        "many runs": lambda: whole_process(bench, "many runs", 12, 1.15),
        "check, days": lambda: checking(bench, "days"),
        "check, many slots": lambda: checking(bench, "many slots"),
        "check, many runs": lambda: checking(bench, "many runs"),
        "report, days": lambda: reporting(bench, "days"),
        "report, many slots": lambda: reporting(bench, "many slots"),
        "report, many runs": lambda: reporting(bench, "many runs"),
        "export, days": lambda: exporting(bench, "days"),
        "export, many slots": lambda: exporting(bench, "many slots"),
        "growth": lambda: growth(bench),
        "growth, check": lambda: growth_of_check(bench),
        "method assignment": lambda: method_assignment(bench),
        "many rules": lambda: many_rules(bench),
        "log lines": lambda: log_lines(bench),
        "writing": lambda: writing(bench),
        "start-up": lambda: start_up(bench),
        "viewer": lambda: viewer(bench),
    }
    if bench.tiny:
        print("Tiny inputs, one run each: shows that everything works; the ratios mean nothing.\n")
    try:
        show(measurements, arguments.only)
    finally:
        shutil.rmtree(bench.results)


def show(measurements, only):
    print("| what | measured | to reach | |\n|---|---|---|---|", flush=True)
    for name, measure in measurements.items():
        if only in name:
            for row in measure():
                print(f"| {row.what} | {row.measured} | {row.target} | {row.detail} |", flush=True)


if __name__ == "__main__":
    main()
