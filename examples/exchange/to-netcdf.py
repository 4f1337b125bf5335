#!/usr/bin/env python3
"""Makes a NetCDF file of a run of an HTS file, which follows the CF conventions.

usage: to-netcdf.py INPUT.hts OUTPUT.nc [RUN]

Each series is a variable with its units, its method as cell_methods, and its name as long_name; scalars
are variables without time. The time is the end of a timestep, and has both ends as bounds. Needs xarray
and netCDF4; htstool is found by PATH, or by the variable HTSTOOL.
"""

import io
import os
import re
import subprocess
import sys

import pandas
import xarray

# Of units whose names UDUNITS does not know or takes for others; the others stay as they are.
UNITS = {"cms": "m3 s-1", "cfs": "ft3 s-1", "m3/s": "m3 s-1", "1000 m3": "1000 m3", "af": "acre_foot",
         "acre-feet": "acre_foot", "cms day": "m3 s-1 d"}
# The methods of control files, and the word for daily means in files.
CELL_METHODS = {"average": "mean", "averagenan": "mean", "mean": "mean", "sum": "sum", "sumnan": "sum",
                "max": "maximum", "maxnan": "maximum", "min": "minimum", "minnan": "minimum",
                "begin": "point", "beginnan": "point", "end": "point", "endnan": "point"}


def read_table(path, run):
    """A row for each value, with the columns that the file's variables need."""
    export = subprocess.run([os.environ.get("HTSTOOL", "htstool"), "export", "-o", "-", "--run", run, "--columns",
                             "object_type,scale,method,begin", "--", path], stdout=subprocess.PIPE, check=False)
    if export.returncode > 1:  # 1: text counts as 0, which standard error says
        sys.exit(export.returncode)
    return pandas.read_csv(io.BytesIO(export.stdout), parse_dates=["time", "begin"], float_precision="round_trip",
                           keep_default_na=False,
                           na_values={name: [""] for name in ("trace", "time", "begin", "value")})


def variable_of(rows):
    """The rows of one slot as a variable."""
    first = rows.iloc[0]
    attributes = {"long_name": f"{first.object}.{first.slot}", "units": UNITS.get(first.units, first.units),
                  "hts_units": first.units, "hts_scale": first.scale, "hts_object_type": first.object_type}
    if pandas.isna(first.time):
        return xarray.Variable((), first.value, attributes)
    if first.method.lower() in CELL_METHODS:
        attributes["cell_methods"] = "time: " + CELL_METHODS[first.method.lower()]
    return xarray.Variable("time", rows.value.to_numpy(), attributes)


def name_of(slot, taken):
    """A name of letters, digits and underscores, as CF recommends, that no other variable has."""
    name = re.sub(r"\W", "_", slot, flags=re.ASCII)
    name = name if re.match("[A-Za-z]", name) else "slot_" + name
    return name if name not in taken else f"{name}_{len(taken)}"


def dataset_of(table):
    """All slots of a run, in the order of the file."""
    # A slot has one row in each place of the time; slots with the same names are told apart by it.
    ends = table.time.isna() | table.time.eq(table.time.iloc[0]) | table.slot.ne(table.slot.shift()) | \
        table.object.ne(table.object.shift())
    variables = {}
    steps = None
    for _, rows in table.groupby(ends.cumsum(), sort=False):
        variables[name_of(f"{rows.object.iloc[0]}_{rows.slot.iloc[0]}", variables)] = variable_of(rows)
        if steps is None and rows.time.notna().all():
            steps = rows
    coordinates = {}
    if steps is not None:
        coordinates["time"] = ("time", steps.time.to_numpy(),
                               {"standard_name": "time", "axis": "T", "bounds": "time_bnds"})
        variables["time_bnds"] = (("time", "nv"), steps[["begin", "time"]].to_numpy())
    return xarray.Dataset(variables, coordinates, {"Conventions": "CF-1.8"})


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit("usage: to-netcdf.py INPUT.hts OUTPUT.nc [RUN]")
    table = read_table(sys.argv[1], sys.argv[3] if len(sys.argv) == 4 else "1")
    data = dataset_of(table)
    encoding = {"dtype": "int64", "units": "minutes since 1970-01-01", "calendar": "standard"}
    for name in set(data.variables) & {"time"}:
        data[name].encoding = {**encoding, "_FillValue": None}
    for name in set(data.variables) - {"time", "time_bnds"}:
        data[name].encoding = {"_FillValue": float("nan")}
    data.to_netcdf(sys.argv[2])


if __name__ == "__main__":
    main()
