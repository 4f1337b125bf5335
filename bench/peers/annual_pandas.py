"""Annual values of a wide table of daily series, with pandas.

usage: annual_pandas.py INPUT.csv CONTROL.txt END_MONTH RESULT.csv
"""
import sys

import pandas as pd

table_path, control_path, end_month, result_path = sys.argv[1:]
end_month = int(end_month)

with open(control_path) as control:
    method_of = dict(line.rstrip("\n").split(": ") for line in control)

names = pd.read_csv(table_path, nrows=0).columns
# The processor's cache holds a piece, which makes this faster than reading all at once.
table = pd.concat(pd.read_csv(table_path, usecols=names[2:], dtype=dict.fromkeys(names[3:], "float64"),
                              parse_dates=["time"], infer_datetime_format=True, chunksize=2000))
day = table.pop("time") - pd.Timedelta(days=1)  # the time is the instant that ends the day
table.columns = [name.split(" [")[0] for name in table.columns]
year = (day.dt.year + (day.dt.month > end_month)).rename("year")


def of(method):
    return [slot for slot in table.columns if method_of[slot] == method]


years = table.groupby(year)
size = years.size()
average = years[of("Average")]
annual = pd.concat([
    years[of("SumNaN")].sum(),
    average.mean().where(average.count().eq(size, axis="index")),  # one missing value, and there is none
    years[of("MaxNaN")].max(),
    years[of("MinNaN")].min(),
], axis="columns")

ends = pd.to_datetime({"year": annual.index, "month": end_month, "day": 1}) + pd.offsets.MonthEnd(0)
starts = ends - pd.DateOffset(years=1) + pd.offsets.MonthEnd(0)
days = (ends - starts).dt.days.to_numpy()
annual = annual[size.to_numpy() == days]

annual.reset_index().melt("year", var_name="slot")[["slot", "year", "value"]].to_csv(
    result_path, index=False)
