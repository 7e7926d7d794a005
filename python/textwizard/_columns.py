"""Arrow columns for people: numpy, pandas, batches, and a look at them."""
from __future__ import annotations

from typing import TYPE_CHECKING, Any, Iterator, NamedTuple, Optional

import numpy

from . import _native, _show

if TYPE_CHECKING:
    import pandas

# What Arrow's C interface writes for a type, and its usual name.
_TYPE_NAMES = {"g": "float64", "l": "int64", "c": "int8", "tdD": "date32", "tsu:": "timestamp[us]",
               "tDu": "duration[us]", "u": "utf8", "U": "large_utf8"}
# numpy's type of a time, nanoseconds in one of its units, and pandas' type of it.
_TIMES = {"date32": ("datetime64[D]", 86_400_000_000_000, "datetime64[ns]"),
          "timestamp[us]": ("datetime64[us]", 1_000, "datetime64[ns]"),
          "duration[us]": ("timedelta64[us]", 1_000, "timedelta64[ns]")}


class Field(NamedTuple):
    """A column: its name, its Arrow type ("float64", "int64", "int8", "date32", "timestamp[us]",
    "duration[us]", "utf8" or "large_utf8"), and what else is known of it ("variable", "label",
    "format", "width")."""

    name: str
    type: str
    metadata: dict[str, str]


class Columns:
    """Columns of one length. They do not change, and any thread may read them."""

    def __init__(self, native: _native.Columns) -> None:
        self._native = native
        self._fields = [Field(name, _TYPE_NAMES[code], metadata)
                        for name, code, metadata in native.fields]

    @property
    def fields(self) -> list[Field]:
        """The columns' names, types and metadata, in order."""
        return list(self._fields)

    @property
    def names(self) -> list[str]:
        """The columns' names, in order."""
        return [field.name for field in self._fields]

    @property
    def shape(self) -> tuple[int, int]:
        """Cases and columns."""
        return self._native.rows, len(self._fields)

    def __len__(self) -> int:
        """Cases."""
        return self._native.rows

    def __iter__(self) -> Iterator[Columns]:
        """The batches, of at most 65,536 cases each; nothing is copied."""
        for batch in range(self._native.batch_count):
            yield Columns(self._native.batch(batch))

    def __arrow_c_schema__(self) -> object:
        """The schema, as a capsule "arrow_schema"."""
        return self._native.schema()

    def __arrow_c_stream__(self, requested_schema: Optional[object] = None) -> object:
        """The cases, as a capsule "arrow_array_stream"; nothing is copied.

        ``requested_schema`` is a wish that is not granted: the columns come in their own types.
        """
        return self._native.stream()

    def to_numpy(self) -> dict[str, numpy.ndarray]:
        """An array a column, by name.

        float64 (missing: NaN), int64 and int8 (where values are missing, a masked array),
        datetime64[D] and datetime64[us], timedelta64[us] (missing: NaT), and objects, which are str.
        Where two columns have one name, all are called by their variables' names.
        """
        arrays = [self._to_numpy(column) for column in range(len(self._fields))]
        return dict(zip(self._unique_names(), arrays))

    def to_pandas(self) -> pandas.DataFrame:
        """A pandas DataFrame.

        Numbers are float64 with NaN for missing, whole numbers int64 and int8, or Int64 and Int8
        where values are missing; dates and times datetime64[ns], durations timedelta64[ns], with NaT
        for missing; strings objects. A column with a date outside of the years 1678 to 2261 (with a
        duration above 292 years), which nanoseconds do not reach, has objects: datetime.date,
        datetime.datetime or datetime.timedelta.
        """
        import pandas

        columns = {column: self._to_pandas(column) for column in range(len(self._fields))}
        frame = pandas.DataFrame(columns, index=pandas.RangeIndex(len(self)), copy=False)
        frame.columns = pandas.Index(self.names, dtype=object)
        return frame

    def __repr__(self) -> str:
        return _show.text(self)

    def _repr_html_(self) -> str:
        return _show.html(self)

    def _unique_names(self) -> list[str]:
        names = self.names
        if len(set(names)) == len(names):
            return names
        return [field.metadata.get("variable", field.name) for field in self._fields]

    def _to_numpy(self, column: int) -> numpy.ndarray:
        kind = self._fields[column].type
        if kind == "float64":
            return self._native.numbers(column)
        if kind in ("int64", "int8"):
            values, missing = self._native.integers(column)
            return values if missing is None else numpy.ma.MaskedArray(values, missing)
        if kind in _TIMES:
            times = self._native.times(column, 1)
            return times.view(_TIMES[kind][0])
        return self._native.texts(column)

    def _to_pandas(self, column: int) -> Any:
        kind = self._fields[column].type
        if kind in ("int64", "int8"):
            import pandas

            values, missing = self._native.integers(column)
            return values if missing is None else pandas.arrays.IntegerArray(values, missing)
        if kind in _TIMES:
            unit, nanoseconds, pandas_type = _TIMES[kind]
            times = self._native.times(column, nanoseconds)
            if times is not None:
                return times.view(pandas_type)
            # Nanoseconds do not reach so far.
            return self._native.times(column, 1).view(unit).astype(object)
        return self._to_numpy(column)

    def _values(self, column: int, first: int, count: int) -> list[Any]:
        """Values for a look at them; times in days and microseconds."""
        return self._native.values(column, first, count)
