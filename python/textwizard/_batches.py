"""A reading that holds one batch at a time."""
from __future__ import annotations

import contextlib
import json
from typing import Any, Iterator, Optional

from . import _native
from ._columns import Columns, Field


class Batches:
    """The cases of a file, batch by batch: iterate over it, once. A context manager; what it holds
    is let go at the end of the cases, too.

    The digest, the ledger and the problems are those of the cases once these came to their end.
    """

    def __init__(self, opened: _native.Import, resources: contextlib.ExitStack) -> None:
        self._opened: Optional[_native.Import] = opened
        self._resources = resources
        self._fields = Columns(opened.no_cases()).fields
        self._command = opened.command()
        self._reading = opened.reading()
        self._dictionary = opened.dictionary()
        self._problems: Optional[Columns] = None
        self._digest: Optional[str] = None

    @property
    def fields(self) -> list[Field]:
        """The columns' names, types and metadata, in order."""
        return list(self._fields)

    @property
    def command(self) -> str:
        """The GET DATA command that gives these cases."""
        return self._command

    @property
    def reading(self) -> dict[str, Any]:
        """How the file was understood, as ``sniff`` gives it."""
        return json.loads(self._reading)

    @property
    def dictionary(self) -> dict[str, Any]:
        """As ``Table.dictionary``; without a ledger before the cases ended."""
        return json.loads(self._dictionary)

    @property
    def evidence(self) -> dict[str, Any]:
        """As ``Table.evidence``."""
        return {variable["name"]: variable["evidence"]
                for variable in self.dictionary["variables"] if "evidence" in variable}

    @property
    def ledger(self) -> Optional[dict[str, Any]]:
        """As ``Table.ledger``; None before the cases ended."""
        return self.dictionary.get("ledger")

    @property
    def digest(self) -> Optional[str]:
        """As ``Table.digest``; None before the cases ended."""
        return self._digest

    @property
    def problems(self) -> Optional[Columns]:
        """As ``Table.problems``; None before the cases ended."""
        return self._problems

    def __iter__(self) -> Iterator[Columns]:
        """The batches, of at most 65,536 cases each. A second time gives what is left."""
        while self._opened is not None:
            batch = self._opened.next()
            if batch is None:
                self._digest = self._opened.digest()
                self._dictionary = self._opened.dictionary()
                self._problems = Columns(self._opened.problems())
                self.close()
                return
            yield Columns(batch)

    def close(self) -> None:
        """Ends the reading where it is. Batches that were given stay."""
        if self._opened is not None:
            self._opened.close()
            self._opened = None
        self._resources.close()

    def __enter__(self) -> Batches:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()
