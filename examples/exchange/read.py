"""Reads a table of htstool export with pandas: exact numbers, and names such as NA as they are.

    from read import read_table
    table = read_table("flows.csv")
    table[table.slot == "Flow"].groupby("object").value.mean()
"""

import pandas


def read_table(path):
    return pandas.read_csv(path, parse_dates=["time"], float_precision="round_trip",
                           keep_default_na=False,
                           na_values={name: [""] for name in ("trace", "time", "value")})
