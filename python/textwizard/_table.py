"""What an import gives."""
from __future__ import annotations

import json
from typing import Any

from . import _native
from ._columns import Columns


class Table(Columns):
    """The cases of an import as columns, and what was found out on the way.

    It holds all cases in memory, as Arrow columns.
    """

    def __init__(self, opened: _native.Import, cases: _native.Columns) -> None:
        super().__init__(cases)
        self._problems = Columns(opened.problems())
        self._command = opened.command()
        self._dictionary = opened.dictionary()
        self._reading = opened.reading()
        self._digest = opened.digest()
        self._run_settings = _run_settings(json.loads(opened.recipe()))

    @property
    def command(self) -> str:
        """The GET DATA command that gives these cases; of a bare file it was made."""
        return self._command

    @property
    def run_settings(self) -> dict[str, Any]:
        """What ``run`` has to be told besides the command to give these cases, by the names of its
        arguments: what the command language has no words for. Empty for most files."""
        return dict(self._run_settings)

    @property
    def problems(self) -> Columns:
        """Values and records that did not fit, a row each: kind, case and line (from 1), byte (from
        0), variable, format, text and detail."""
        return self._problems

    @property
    def dictionary(self) -> dict[str, Any]:
        """The file, the cases, the variables with formats, widths and, where types were found, the
        evidence, and the ledger."""
        return json.loads(self._dictionary)

    @property
    def evidence(self) -> dict[str, Any]:
        """What types were found from, by variable: counts, the first value with its line, and what
        else the column could be. Of a command, AUTO variables have it."""
        return {variable["name"]: variable["evidence"]
                for variable in self.dictionary["variables"] if "evidence" in variable}

    @property
    def ledger(self) -> dict[str, Any]:
        """Where every byte, record and cell of the file went."""
        return self.dictionary["ledger"]

    @property
    def reading(self) -> dict[str, Any]:
        """How a bare file was understood, as ``sniff`` gives it; empty for a command."""
        return json.loads(self._reading) if self._reading else {}

    @property
    def digest(self) -> str:
        """Of the cases: 32 hexadecimal digits, the same for the same cases on any machine."""
        return self._digest


# Called alike in a recipe and by ``run``.
_SAID_ALIKE = ("code_page", "locale_code_page", "join_quoted_lines", "backslash_escapes",
               "keep_stray_qualifiers", "transcode")


def _run_settings(recipe: dict[str, Any]) -> dict[str, Any]:
    """What of a recipe is no default, as arguments of ``run``."""
    settings: dict[str, Any] = {name: recipe[name] for name in _SAID_ALIKE if recipe[name]}
    if recipe["decimal_comma"]:
        settings["decimal"] = ","
    if recipe["mark"]:
        little = recipe["mark"] == [0xFF, 0xFE]
        settings["byte_order_mark"] = "utf-16le" if little else "utf-16be"
    if recipe["padded_at"]:
        settings["pad_columns"] = ",".join(str(place + 1) for place in recipe["padded_at"])
    if recipe["null_texts"] is not None:
        settings["null_texts"] = recipe["null_texts"]
    return settings
