#!/usr/bin/env python3
"""Runs the programs of two builds, such as one with Qt 5 and one with Qt 6, with the same random files
and arguments, and compares what they leave: exit codes, texts, results, and logs without their date.
usage: compare_builds.py BUILD BUILD [CASES [FIRST_SEED]]
Ends with exit code 77 if a build has no programs. The files of a seed whose outcomes differ are kept."""

import calendar
import datetime
import os
import random
import shutil
import subprocess
import sys
import tempfile

NUMBERS = """ . 1. .5 1.e5 1E+5 +1 -1 1e e5 +-1 --1 1d5 1f 1_0 0x10 1,234 7,5 nan NaN NAN +nan -nan nan(1) inf INF
 +inf -inf Inf infinity 1e400 1.8e308 -1e400 1.7976931348623157e308 1e-400 4.9e-324 2e-324 1e-310 -0 -0.0 00012
 9007199254740993 0.1e1 1e+05 1e0005 123456789012345678901234567890 0.000000000000000000000000000001 ١٢ 1\xa02
 1\u2009 \u20091 \u30001 \ufeff1 12\u2028 1\x0b 1\x0c 1\x1c 1\x85 \x851 1e1\x00 -999 -9999.0 1e22 5e-324""".split(" ")
DATES = """1999-10-1\u00a06:00 2000-1-31 24:00|2000-01-31 00:00|0000-1-31 24:00|0001-1-1 0:00|1-1-31 24:00|-0001-1-31 24:00|
9999-12-31 24:00|10000-1-31 24:00|99999-1-31 24:00|2000-13-31 24:00|2000-2-30 24:00|2000-1-31 24:01|2000-1-31 25:00|
2000-1-31 23:60| 2000-1-31 24:00|2000-1-31 24:00 |2000-1-31  24:00|2000-1-31T24:00|2000-+1-31 24:00|2000-1--1 24:00|
+200-1-31 24:00|٢٠٠٠-1-31 24:00|2000-1-31 2４:00|1582-10-10 24:00|1752-9-5 24:00|2000-1-31 4:0|2038-1-19 3:14|24:00|
1900-2-29 24:00|2147483648-1-1 24:00||2000-001-1 24:00""".replace("\n", "").split("|")
BYTES = [b"\xff", b"\xc0\x80", b"\xe2\x82", b"\xe2\x28\xa1", b"\xed\xa0\x80", b"\xed\xa0\xbd\xed\xb8\x80",
         b"\xf4\x90\x80\x80", b"\xf0\x9f\x98\x80", b"\xf0\x9f\x98", b"\xf8\x88\x80\x80\x80", b"\xef\xbf\xbf",
         b"\xef\xbb\xbf", b"\x00", b"\r", b"\r\n", b"\n", b"\x1a", b"\xc2\x85", b"\xe2\x80\xa8", b"\t", b"\x1b[31m",
         b"%1", b"%2", b"a\xcc\x88", b"\xc3\xa4", b"\xc3\x9f", b"\xe1\xba\x9e", b"\xc4\xb0", b"\xc4\xb1", b"&lt;", b"\"", b"\\"]
INNER_BYTES = [bytes for bytes in BYTES if bytes not in (b"\n", b"\r\n", b"\r", b"\x00")]
METHODS = ("Sum Average AverageNaN Max MaxNaN Min MinNaN End sumnan SumNaN Mean Salinity sum MEAN averagenan Avg First "
           "Total \u0130sum none").split(" ")
UNITS = ["month", "day", "hour", "week", "year", "minute", "MONTH", "fortnight", "", "m\u00f6nth"]


class Case:
    def __init__(self, seed):
        self.random = random.Random(seed)
        self.names = [self.name() for _ in range(self.random.randint(1, 4))]

    def one_in(self, chances):
        return self.random.randrange(chances) == 0

    def name(self):
        text = self.random.choice(["Lake", "Mill Pond", "Basin 1", "Straße", "Été"] * 9 + ["x.y", ""]).encode()
        return text + self.random.choice(BYTES if self.one_in(30) else INNER_BYTES) if self.one_in(4) else text

    def date(self, month, unit):
        if self.has_odd_dates and self.one_in(50):
            return self.random.choice(DATES).encode()
        year, index = divmod(month, 12)
        if unit == "day":
            day = datetime.date(self.start, 1, 1) + datetime.timedelta(days=month)
            return b"%d-%d-%d 24:00" % (day.year, day.month, day.day)
        last = [31, 29 if calendar.isleap(self.start + year) else 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31][index]
        return b"%d-%d-%d 24:00" % (self.start + year, index + 1, last)

    def number(self):
        if self.one_in(25):
            return self.random.choice(NUMBERS).encode()
        if self.one_in(12):
            return b"NaN"
        value = self.random.uniform(-10, 10) ** self.random.choice([1, 3, 9, 40])
        return self.random.choice(["%.12f", "%.12f", "%.3f", "%g", "%.17g", "%.0f", "%e"]).__mod__(value).encode()

    def slot(self, name, steps):
        kind = self.random.choice(["SeriesSlot"] * 20 + ["TableSlot", "ScalarSlot", "", "seriesslot"])
        lines = [b"object_type: Reservoir", b"object_name: " + name, b"slot_type: " + kind.encode(),
                 b"slot_name: " + self.random.choice(self.names)]
        if kind == "TableSlot":
            lines += [b"rows: 2", b"cols: 1"]
        lines += [b"END_SLOT_PREAMBLE", b"units: c" + self.name(), b"scale: " + (
            self.number() if self.one_in(15) else b"1"), b"method: " + self.random.choice(METHODS).encode()]
        if kind == "TableSlot":
            return lines + [b"1 2", b"3 4", b"END_SLOT"]
        count = 1 if kind == "ScalarSlot" else steps
        return lines + [self.number() for _ in range(count)] + [b"END_COLUMN", b"END_SLOT"]

    def file(self):
        self.has_odd_dates = self.one_in(5)
        self.start = self.random.choice([1000, 1899, 1969, 1999, 2037, 9990])
        unit = self.random.choice(UNITS[:2] * 40 + UNITS)
        steps = self.random.choice([0] + [12, 24, 36, 30] * 5) if unit != "day" else 730
        first = self.random.choice([0] * 9 + [5])
        dates = [self.date(first + i, unit) for i in range(steps)]
        lines = [b"name:" + self.name(), b"owner:" + self.name(), b"description: " + self.name(), b"create_date:" + (
            self.random.choice(DATES).encode() if self.one_in(12) else b"2000-1-2 3:04")]
        runs = self.random.choice([1, 1, 1, 2])
        lines += [b"number_of_runs:%d" % runs, b"END_PACKAGE_PREAMBLE"]
        for _ in range(runs):
            lines += [b"start:" + (dates[0] if dates else b""), b"end:" + (dates[-1] if dates else b""),
                      b"time_step_unit:" + unit.encode(), b"unit_quantity:1", b"timesteps:%d" % steps,
                      b"consecutive:" + self.random.choice([b"0", b"1"] * 9 + [b"1 ", b"+1", b"x"]),
                      b"slot_set: " + self.name(), b"idx_sequential:" + self.random.choice([b"0", b"-1"] * 9 + [b"2147483648", b"1.0"]), b"END_RUN_PREAMBLE"] + dates
            for name in self.names:
                lines += self.slot(name, steps)
            lines.append(b"END_RUN")
        data = self.random.choice([b"\n", b"\n", b"\r\n"]).join(lines + [b""])
        for _ in range(self.random.choice([0, 0, 0, 0, 0, 1, 3])):
            at = self.random.randrange(len(data) + 1)
            data = data[:at] + self.random.choice(BYTES) + data[at + self.random.choice([0, 0, 1, 9]):]
        return data if not self.one_in(15) else data[:self.random.randrange(len(data))]

    def control(self):
        lines = []
        for _ in range(self.random.randint(0, 6)):
            names = [self.random.choice(self.names + [b"*", b"Reservoir", self.name()]) for _ in range(2)]
            lines.append(b".".join(names) + b": " + self.random.choice(METHODS if self.one_in(20) else METHODS[:8]).encode() + self.random.choice([b"", b" "] * 20 + [b"\xc2\xa0"]))
        return b"\n".join(lines + [b"" if self.one_in(5) else b"*.*: Average"])


def outcome(build, folder, program, arguments, environment):
    """Exit code, output, messages, and the files that the program leaves."""
    before = set(os.listdir(folder))
    try:
        done = subprocess.run([os.path.join(build, program)] + arguments, cwd=folder, env=environment,
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=5)
        result = [done.returncode, done.stdout, done.stderr]
    except subprocess.TimeoutExpired: # a table without its end is read for ever
        result = ["no end"]
    for name in sorted(set(os.listdir(folder)) - before):
        with open(os.path.join(folder, name), "rb") as file:
            lines = file.read().split(b"\n")
        if name == b"out.log":
            lines[1:2] = []
        os.remove(os.path.join(folder, name))
        result.append((name, lines))
    return result


def commands(case):
    month = [] if case.one_in(2) else [b"-y", str(case.random.randint(1, 13)).encode()]
    hts = b"in.hts"
    yield b"app/HtsAnnualizer", [b"-i", hts, b"-o", b"out.hts", b"-c", b"c.txt"] + month
    yield b"tool/htstool", [b"check", b"--all", hts, b"-c", b"c.txt"] + month
    yield b"tool/htstool", [b"check", b"-f", b"json", b"--counts", b"counts.csv", hts, b"-c", b"c.txt"]
    yield b"tool/htstool", [b"export", hts, b"-o", b"out.csv"] + case.random.choice([[], [b"-w"]])
    odd = b"o" + case.random.choice(BYTES).replace(b"\x00", b"").replace(b"\n", b"") + b".hts"
    yield b"app/HtsAnnualizer", [b"-i", hts, b"-o", odd, b"-c", b"c.txt", b"-l", b"out.log"]
    yield b"tool/htstool", [b"check", odd]


def main():
    builds = [os.fsencode(os.path.abspath(build)) for build in sys.argv[1:3]]
    if not all(os.path.exists(os.path.join(build, b"app/HtsAnnualizer")) for build in builds):
        sys.exit(77)
    count = int(sys.argv[3]) if len(sys.argv) > 3 else 100
    first = int(sys.argv[4]) if len(sys.argv) > 4 else 1
    environment = dict(os.environ, LC_ALL="C.UTF-8")
    runs = 0
    converted = 0
    differing = []
    for seed in range(first, first + count):
        case = Case(seed)
        folder = os.fsencode(tempfile.mkdtemp())
        for name, data in ((b"in.hts", case.file()), (b"c.txt", case.control())):
            with open(os.path.join(folder, name), "wb") as file:
                file.write(data)
        same = True
        for program, arguments in commands(case):
            one, other = (outcome(build, folder, program, arguments, environment) for build in builds)
            runs += 1
            converted += program == b"app/HtsAnnualizer" and one[0] == 0
            if one != other:
                same = False
                print("seed %d: %s %s in %s" % (seed, program, arguments, os.fsdecode(folder)))
                for a, b in zip(one, other):
                    if a != b:
                        print("  %r\n  %r" % (str(a)[:1500], str(b)[:1500]))
        if same:
            shutil.rmtree(folder)
        else:
            differing.append(seed)
    print("%d files, %d runs of a program, of which %d converted; different: %s" % (count, runs, converted, differing or "none"))
    sys.exit(1 if differing else 0)


main()
