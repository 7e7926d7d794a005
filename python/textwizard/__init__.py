"""Text files as typed tables.

    >>> import textwizard
    >>> table = textwizard.read("people.csv")      # understands the file, types from all of it
    >>> table.to_pandas()
    >>> print(table.command)                       # the GET DATA command that repeats the import
    >>> table = textwizard.run(table.command)

A ``Table`` is Arrow data (``__arrow_c_stream__``): Polars, DuckDB, pyarrow and others take it as it
is. See ``read``, ``batches``, ``run``, ``sniff`` and ``Table``; ``textwizard.dask`` for many machines.
"""
from ._batches import Batches
from ._columns import Columns, Field
from ._errors import (BusyError, Cancelled, CommandError, Error, FileError, ImportWarning,
                      SettingError)
from ._native import version as _version
from ._reading import batches, read, run, sniff
from ._table import Table

__version__: str = _version()

__all__ = ["Batches", "BusyError", "Cancelled", "Columns", "CommandError", "Error", "Field",
           "FileError", "ImportWarning", "SettingError", "Table", "batches", "read", "run", "sniff"]
