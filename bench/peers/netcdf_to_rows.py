"""Writes what annual_cdo made as the rows that the other recipes write.

usage: netcdf_to_rows.py RESULT.nc CONTROL.txt RESULT.csv
"""
import sys

import netCDF4
import numpy as np

netcdf_path, control_path, result_path = sys.argv[1:]
with open(control_path) as control:
    rules = [line.rstrip("\n").split(": ") for line in control]

with netCDF4.Dataset(netcdf_path) as netcdf, open(result_path, "w") as result:
    print("slot,year,value", file=result)
    time = netcdf["time"]
    years = [date.year for date in netCDF4.num2date(time[:], time.units, time.calendar)]
    for method in dict.fromkeys(method for _, method in rules):
        slots = [slot for slot, its_method in rules if its_method == method]
        rows = netcdf[method][:].reshape(len(years), len(slots))
        for year, row in zip(years, np.ma.filled(rows, np.nan).tolist()):
            for slot, value in zip(slots, row):
                print(slot, year, "" if value != value else repr(value), sep=",", file=result)
