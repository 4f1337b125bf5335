#!/usr/bin/env python3
"""Draws an HTS file, its annual result over it, and how many of its values are missing each year.

usage: plot.py INPUT.hts ANNUAL.hts PICTURE.png [RUN]

RUN counts from 1, which is also what is drawn without it. The picture's ending chooses its format.
htstool is found by PATH, or by the variable HTSTOOL. Needs pandas and matplotlib (Debian:
python3-pandas python3-matplotlib).
"""
import os
import subprocess
import sys
import tempfile
import textwrap

try:
    import matplotlib
    matplotlib.use("Agg")  # a picture, no window
    import matplotlib.pyplot as plt
    import pandas as pd
except ImportError as error:
    sys.exit(f"{error}; it comes with the packages python3-pandas and python3-matplotlib")

INPUT, ANNUAL = "#56B4E9", "#D55E00"  # colours that colour-blind readers can tell apart
BARS = ["#0072B2", "#E69F00", "#009E73", "#CC79A7", "#999999"]
SLOT = ["object", "slot"]


def plain(text):
    """The text as matplotlib shows it: a dollar sign would begin a formula."""
    return text.replace("$", r"\$")


def path(name):
    """The name of a file, where one that begins with "-" would be an option."""
    return os.path.join(".", name) if name.startswith("-") else name


def htstool(*arguments):
    program = os.environ.get("HTSTOOL", "htstool")
    try:
        done = subprocess.run([program, *arguments], capture_output=True, text=True)
    except OSError as error:
        sys.exit(f"{program}: {error.strerror}")
    if done.returncode > 1:  # 1 is a warning
        sys.exit(done.stderr.rstrip())


def read(command, file, run, *options):
    """The rows of one run in what htstool writes: date-times as such, missing values as NaN."""
    time = "time" if command == "export" else "year_end"
    with tempfile.TemporaryDirectory() as folder:
        table = os.path.join(folder, "table.csv")
        htstool(command, *options, table, path(file))
        # A slot may be named NA; only an empty value is a missing one.
        rows = pd.read_csv(table, parse_dates=[time], dtype={"object": str, "slot": str},
                           keep_default_na=False, na_values={"value": [""]})
    return rows[rows["run"] == run]


def over_the_year(annual):
    """Times and values of a line that is level from the start to the end of each year."""
    times, values = list(annual["time"]), list(annual["value"])
    return [times[0] - pd.DateOffset(years=1), *times], [values[0], *values]


def without_neighbours(values):
    """The values between two missing ones, of which a line shows nothing."""
    missing = values["value"].isna()
    return values[~missing & missing.shift(fill_value=True) & missing.shift(-1, fill_value=True)]


def draw_slot(axes, name, values, annual):
    unit, annual_unit = plain(values["units"].iloc[0]), plain(annual["units"].iloc[0])
    axes.plot(values["time"], values["value"], color=INPUT, linewidth=0.8)
    single = without_neighbours(values)
    axes.plot(single["time"], single["value"], ".", color=INPUT, markersize=4)
    axes.set_title(plain(".".join(name)), loc="left", fontsize="medium")
    axes.set_ylabel(unit)
    if annual_unit != unit:  # sums of a year are far larger than what they sum
        axes = axes.twinx()
        axes.set_ylabel(textwrap.fill(annual_unit, 16), color=ANNUAL)
        axes.margins(y=0.15)
    axes.plot(*over_the_year(annual), drawstyle="steps-pre", color=ANNUAL, linewidth=1.8)


def draw_missing(axes, counts):
    """One bar for each year of each slot that misses any value."""
    slots = [s for s in counts.groupby(SLOT, sort=False) if s[1]["missing"].any()]
    width = pd.Timedelta(days=300) / max(len(slots), 1)
    for i, (name, years) in enumerate(slots):
        left = years["year_end"] - pd.Timedelta(days=332) + i * width
        axes.bar(left, years["missing"], width=width, align="edge", color=BARS[i % len(BARS)])
    axes.set_title("Missing values" if slots else "No missing values", loc="left",
                   fontsize="medium")
    axes.set_ylabel("per year")
    if slots:
        axes.set_ylim(0, 1.6 * counts["missing"].max())  # room for the legend
        legend = axes.legend(axes.containers, [""] * len(slots), fontsize="small", ncol=3,
                             loc="upper right", frameon=False)
        # A label that begins with "_" would not be shown.
        for text, (name, _) in zip(legend.get_texts(), slots):
            text.set_text(plain(".".join(name)))


def legend_lines():
    return [plt.Line2D([], [], color=INPUT, label="input"),
            plt.Line2D([], [], color=ANNUAL, linewidth=1.8, label="annual result")]


def layout(figure):
    """Margins in inches; those that matplotlib looks for take a time that grows with the square."""
    width, height = figure.get_size_inches()
    figure.subplots_adjust(left=0.87 / width, right=1 - 1.03 / width, top=1 - 0.48 / height,
                           bottom=0.28 / height, hspace=0.27)
    for axes in figure.axes:
        left = axes.yaxis.get_label_position() == "left"
        axes.yaxis.set_label_coords(-0.095 if left else 1.1, 0.5)


def main(source, result, picture, run="1"):
    if not run.isdecimal():
        sys.exit(f"RUN counts from 1: {run}")
    values = read("export", source, int(run), "-o")
    annual = read("export", result, int(run), "-o")
    if values.empty or annual.empty:
        sys.exit(f"no values of run {run} in {source} and {result}")
    last_day = annual["time"].iloc[0] - pd.Timedelta(days=1)  # times are the ends of timesteps
    counts = read("check", source, int(run), "-y", str(last_day.month), "--counts")

    inputs = dict(list(values.groupby(SLOT)))
    slots = list(annual.groupby(SLOT, sort=False))
    twins = counts[counts.duplicated([*SLOT, "trace", "year_end"])].groupby(SLOT).groups
    for name, _ in slots:
        if name not in inputs:
            sys.exit(".".join(name) + " is not in the input")
        if name in twins:
            sys.exit("two slots of the input are named " + ".".join(name))
    figure, panels = plt.subplots(len(slots) + 1, 1, sharex=True,
                                  figsize=(9, 1.5 * len(slots) + 2))
    for axes, (name, rows) in zip(panels, slots):
        draw_slot(axes, name, inputs[name], rows)
    draw_missing(panels[-1], counts)
    for axes in panels:
        axes.grid(axis="x", alpha=0.4)
        axes.margins(x=0.01)
    layout(figure)
    figure.suptitle(plain(f"{os.path.basename(source)}, run {run}"), x=0.02, ha="left",
                    y=1 - 0.05 / figure.get_figheight())
    figure.legend(handles=legend_lines(), loc="upper right", ncol=2, frameon=False)
    try:
        figure.savefig(picture, dpi=100)
    except (OSError, ValueError) as error:  # a format that matplotlib does not know
        sys.exit(f"{picture}: {error}")


if __name__ == "__main__":
    if len(sys.argv) not in (4, 5):
        sys.exit(__doc__)
    main(*sys.argv[1:])
