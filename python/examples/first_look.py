"""What is in a measurement file, one of its channels in each form, and all of it as Parquet.

Usage: first_look.py FILE.mf4 FOLDER
"""

import sys

import duckdb
import polars as pl

import mdfkit

path, folder = sys.argv[1:]

with mdfkit.open(path) as m:
    print(m, "\n")

    channel = next(each for each in m.channels if each.is_number and "master" not in each.type)
    q = m.read(channel.name, group=channel.group)
    frame = q.to_pandas()
    print(frame.describe(), "\n")
    print("units:", frame.attrs["units"], "\n")

    print(pl.DataFrame(q), "\n")
    print(duckdb.sql(f'select count(*), max("{channel.name}") from q'))

    for written in m.to_parquet(folder):
        print(f"wrote {written}")
