"""What Spark finds by this module's name: its data source "mdf"."""

from mdfkit.spark.source import MdfDataSource as DefaultSource

__all__ = ["DefaultSource"]
