"""A fleet's measurement files as one table of Apache Spark.

Spark 4 finds the data source by itself where this package is installed, on the driver and on all
workers. The files must be in a file system that all of them see by the same paths.

>>> frame = (
...     spark.read.format("mdf")
...     .option("group", "engine")
...     .option("channels", "speed,rpm")
...     .load("/fleet/2026-11/*.mf4")
... )
>>> frame.groupBy("path").agg({"speed": "max"}).show()

A channel is a column, the master channel (mostly time) the first one; channels that a file does not
have are null there. Further columns say where a row comes from: ``path`` and ``start``. Damaged
files do not end the job: what is wrong with them is a table of its own:

>>> spark.read.format("mdf").option("table", "findings").load("/fleet/2026-11/*.mf4").show()

`MdfDataSource` has all options. `write_parquet` makes Parquet of a fleet's files.
"""

from .register import register
from .source import MdfDataSource
from .writing import Summary, write_parquet

__all__ = ["MdfDataSource", "Summary", "register", "write_parquet"]
