"""Makes a NetCDF file, as CDO reads it, of a wide table of daily series: flow(time, slot).

usage: wide_to_netcdf.py INPUT.csv OUTPUT.nc
"""
import sys

import netCDF4
import numpy as np
import pandas as pd

table_path, netcdf_path = sys.argv[1:]
table = pd.read_csv(table_path, parse_dates=["time"], infer_datetime_format=True)
day = table["time"] - pd.Timedelta(days=1)  # the time is the instant that ends the day
values = table.drop(columns=["run", "trace", "time"]).to_numpy()

with netCDF4.Dataset(netcdf_path, "w", format="NETCDF3_64BIT_OFFSET") as netcdf:
    netcdf.createDimension("time", None)
    netcdf.createDimension("slot", values.shape[1])
    days = netcdf.createVariable("time", "f8", ["time"])
    days.units = "days since 1900-01-01 00:00:00"
    days.calendar = "standard"
    days[:] = (day - pd.Timestamp("1900-01-01")) / pd.Timedelta(days=1)
    missing = 1e20
    flow = netcdf.createVariable("flow", "f8", ["time", "slot"], fill_value=missing)
    flow[:] = np.nan_to_num(values, nan=missing)
