"""The data source in a session that did not find it by itself."""

from __future__ import annotations

from pyspark.sql import SparkSession

from .source import MdfDataSource

_PUSHING = "spark.sql.python.filterPushdown.enabled"


def register(spark: SparkSession) -> None:
    """Make ``spark.read.format("mdf")`` known, and have filters pushed down to it.

    Sessions find the data source by themselves where this package is installed. Filters on the time
    and on files are pushed down only if Spark's setting ``spark.sql.python.filterPushdown.enabled``
    is true, which this function sees to; without it Spark applies them to all that is read.

    Examples
    --------
    >>> mdfkit.spark.register(spark)
    >>> frame = spark.read.format("mdf").load("/fleet")
    >>> frame.filter("t between 10 and 20").count()        # reads these ten seconds of each file
    """
    spark.conf.set(_PUSHING, "true")
    spark.dataSource.register(MdfDataSource)
