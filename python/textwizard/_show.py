"""How columns are shown: a table with the types under the names, missing values visible."""
from __future__ import annotations

import html as _html
import shutil
import unicodedata
from typing import TYPE_CHECKING, Any

import numpy

if TYPE_CHECKING:
    from ._columns import Columns

_MISSING = "<NA>"
_GAP = "…"
# Cases shown of a longer table: the first and the last.
_HEAD, _TAIL = 5, 5
_LONGEST = 40
_NUMBERS = ("float64", "int64", "int8", "date32", "timestamp[us]", "duration[us]")


def _width(text: str) -> int:
    """Cells of a terminal."""
    cells = 0
    for character in text:
        if not unicodedata.combining(character):
            cells += 2 if unicodedata.east_asian_width(character) in "WF" else 1
    return cells


def _cut(text: str) -> str:
    if len(text) > _LONGEST:
        text = text[:_LONGEST - 1] + _GAP
    return "".join(c if c.isprintable() else repr(c)[1:-1] for c in text)


def _duration(microseconds: int) -> str:
    sign = "-" if microseconds < 0 else ""
    seconds, fraction = divmod(abs(microseconds), 1_000_000)
    text = f"{sign}{seconds // 3600}:{seconds // 60 % 60:02}:{seconds % 60:02}"
    return text + f".{fraction:06}".rstrip("0") if fraction else text


def _timestamp(microseconds: int) -> str:
    text = str(numpy.datetime64(microseconds, "us")).replace("T", " ")
    return text.rstrip("0").rstrip(".") if "." in text else text


def _cell(value: Any, kind: str) -> str:
    if value is None:
        return _MISSING
    if kind == "float64":
        return format(value, ".15g")
    if kind == "date32":
        return str(numpy.datetime64(value, "D"))
    if kind == "timestamp[us]":
        return _timestamp(value)
    if kind == "duration[us]":
        return _duration(value)
    return _cut(str(value))


def _rows(columns: Columns) -> tuple[list[list[str]], bool]:
    """Each column's cells, of the first and last cases; whether cases between are left out."""
    rows = len(columns)
    is_cut = rows > _HEAD + _TAIL
    table = []
    for column, field in enumerate(columns.fields):
        if is_cut:
            values = (columns._values(column, 0, _HEAD)
                      + columns._values(column, rows - _TAIL, _TAIL))
        else:
            values = columns._values(column, 0, rows)
        table.append([_cell(value, field.type) for value in values])
    return table, is_cut


def _counted(count: int, thing: str) -> str:
    return f"{count:,} {thing}{'' if count == 1 else 's'}"


def _size(columns: Columns) -> str:
    rows, width = columns.shape
    return f"{_counted(rows, 'case')}, {_counted(width, 'column')}"


def text(columns: Columns) -> str:
    """For a terminal; columns that do not fit into its width are named below."""
    table, is_cut = _rows(columns)
    shown: list[list[str]] = []
    room = shutil.get_terminal_size((100, 24)).columns
    for field, cells in zip(columns.fields, table):
        if is_cut:
            cells = [*cells[:_HEAD], _GAP, *cells[_HEAD:]]
        cells = [_cut(field.name), field.type, *cells]
        width = max(map(_width, cells))
        if shown and room < width + 2:
            break
        room -= width + 2
        right = field.type in _NUMBERS
        padded = [" " * (width - _width(cell)) + cell if right else
                  cell + " " * (width - _width(cell)) for cell in cells]
        padded.insert(2, "-" * width)
        shown.append(padded)
    lines = ["  ".join(line).rstrip() for line in zip(*shown)]
    lines.append(_size(columns))
    if hidden := columns.names[len(shown):]:
        lines[-1] += f" (not shown: {', '.join(map(_cut, hidden[:8]))}"
        lines[-1] += f", {_GAP})" if len(hidden) > 8 else ")"
    return "\n".join(lines)


def html(columns: Columns) -> str:
    """For a notebook."""
    table, is_cut = _rows(columns)

    def line(tag: str, cells: list[str]) -> str:
        return "<tr>" + "".join(f"<{tag}>{cell}</{tag}>" for cell in cells) + "</tr>"

    def shown(cell: str) -> str:
        escaped = _html.escape(cell)
        return f"<em>{escaped}</em>" if cell == _MISSING else escaped

    rows = [[shown(cell) for cell in row] for row in zip(*table)]
    if is_cut:
        rows.insert(_HEAD, [_GAP] * len(table))
    return "\n".join([
        "<table>", "<thead>",
        line("th", [_html.escape(_cut(name)) for name in columns.names]),
        line("th", [f"<small>{_html.escape(field.type)}</small>" for field in columns.fields]),
        "</thead>", "<tbody>", *(line("td", row) for row in rows), "</tbody>", "</table>",
        f"<p>{_size(columns)}</p>"])
