"""How files are imported in parts: what the first pass makes."""
from __future__ import annotations

import json
import os
import warnings
from collections.abc import Callable
from typing import Any, Optional

import pandas

from . import _native, _parts
from ._columns import Columns
from ._errors import Error, FileError, ImportWarning, SettingError
from ._parts import Part, Source

Run = Callable[..., list[Any]]


class Plan:
    """The parts of all files, and of each file the recipe by which they are read.

    Attributes:
        recipes: by file; None of one that is not read.
        parts: in the order of their cases.
        records: by file, how many it has.
        files: of several files what each is, as the C library tells it; None of one file.
    """

    command: str
    reading: str
    dictionary: str  # JSON, without what the cases come to
    columns: Columns
    recipes: list[Optional[str]]
    records: list[int]
    files: Optional[list[dict[str, Any]]] = None

    def __init__(self, sources: list[Optional[Source]], options: dict[str, Any]) -> None:
        self.sources = sources
        self.options = options
        self.parts: list[Part] = []

    def check(self) -> None:
        """Raises FileError where a file is no longer what it was."""
        for source, recipe in zip(self.sources, self.recipes):
            if source is not None and recipe is not None:
                _parts.check(source)

    def calls(self) -> list[tuple[str, Part, dict[str, Any]]]:
        """What every work on a part takes first."""
        return [(self.recipes[part.file], part, self.options) for part in self.parts]

    def check_counts(self, accounts: list[dict[str, Any]]) -> None:
        """Raises Error where files gave other cases than cases behind them were numbered by."""
        cases = [0] * len(self.records)
        for part, account in zip(self.parts, accounts):
            cases[part.file] += account["cases"]
        if cases != self.records:
            raise Error(f"the files' cases are {cases}, and their records {self.records}")

    def meta(self, objects: bool) -> pandas.DataFrame:
        """A frame without rows: whole numbers are nullable where one is missing anywhere, which the
        evidence of all values says."""
        meta = self.columns.to_pandas()
        variables = json.loads(self.dictionary)["variables"]
        records = sum(self.records)
        meta.columns = pandas.Index(self.columns._unique_names(), dtype=object)
        for name, field, variable in zip(meta.columns, self.columns.fields, variables):
            if field.type in ("int64", "int8"):
                read = [candidate["read"] for candidate in variable["evidence"]["candidates"]
                        if candidate["format"] == variable["format"]]
                complete = bool(read) and read[0] == records
                meta[name] = meta[name].astype(
                    field.type if complete else field.type.capitalize())
            elif objects and field.type in ("date32", "timestamp[us]", "duration[us]"):
                meta[name] = meta[name].astype(object)
        return meta

    def _add_parts(self, file: int, summaries: list[bytes]) -> None:
        before = b""
        for summary in summaries:
            of = json.loads(_native.summary_json(summary))
            if of["to"] > of["from"] or summary is summaries[0]:
                self.parts.append(Part(len(self.parts) + 1, file, of["from"],
                                       max(of["to"], 1), before))
            lines = _native.merge_summaries([summary], True)
            before = _native.merge_summaries([before, lines], True) if before else lines


def _part_count(source: Source, part_bytes: int, file_options: dict[str, Any],
                options: dict[str, Any]) -> int:
    if source.size <= part_bytes:
        return 1
    # A look at no line of it: whether it can be read, and how long it is decompressed.
    nothing = _native.summarize_part(os.fsencode(source.path), 1, 1_000_000_000, file_options,
                                     options)
    data_bytes = json.loads(_native.summary_json(nothing))["data_bytes"]
    # Whoever reads a part of a compressed file decompresses all of it.
    return 1 if data_bytes != source.size else -(-data_bytes // part_bytes)


def _warn_of_one_part(source: Source, error: Error) -> None:
    warnings.warn(f"{source.path} is read as one part: {error}", ImportWarning, stacklevel=6)


class OneFile(Plan):
    """Of one file: raises what it cannot be read for."""

    def __init__(self, source: Source, part_bytes: int, file_options: dict[str, Any],
                 options: dict[str, Any], run: Run) -> None:
        super().__init__([source], options)
        count = _part_count(source, part_bytes, file_options, options)

        def understood(count: int) -> tuple[list[bytes], bytes, _native.Import]:
            summaries = run(_parts.summarize, [(source, number, count, file_options, options)
                                               for number in range(1, count + 1)])
            _parts.check(source)
            whole = _native.merge_summaries(summaries, False)
            return summaries, whole, _native.open_summary(whole, file_options, options, None)

        try:
            summaries, whole, opened = understood(count)
        except (FileError, SettingError) as error:
            _parts.check(source)
            if count == 1:
                raise
            _warn_of_one_part(source, error)
            summaries, whole, opened = understood(1)
        self.command = opened.command()
        self.reading = opened.reading()
        self.dictionary = opened.dictionary()
        self.recipes = [opened.recipe()]
        self.columns = Columns(opened.no_cases())
        self.records = [json.loads(_native.summary_json(whole))["records"]]
        opened.close()
        self._add_parts(0, summaries)


class DataSet(Plan):
    """Of several files that are one data set."""

    def __init__(self, sources: list[Optional[Source]], paths: list[str], part_bytes: int,
                 set_options: dict[str, Any], file_options: dict[str, Any],
                 options: dict[str, Any], run: Run) -> None:
        super().__init__(sources, options)
        calls, owners = [], []
        for file, source in enumerate(sources):
            if source is None:
                continue
            try:
                count = _part_count(source, part_bytes, file_options, options)
            except Error:
                # Whoever looks at all files tells what is wrong with it.
                continue
            for number in range(1, count + 1):
                calls.append((source, number, count, file_options, options))
                owners.append(file)
        parts: list[list[Optional[bytes]]] = [[] for _ in sources]
        for file, summary in zip(owners, run(_parts.summarize_if_fit, calls)):
            parts[file].append(summary)
        summaries = [[] if None in of_file else of_file for of_file in parts]
        whole = []
        again = []
        for file, of_file in enumerate(summaries):
            try:
                if of_file:
                    whole.append(_native.merge_summaries(of_file, False))
            except SettingError as error:
                _parts.check(sources[file])
                _warn_of_one_part(sources[file], error)
                again.append(file)
        for file, summary in zip(again, run(_parts.summarize, [
                (sources[file], 1, 1, file_options, options) for file in again])):
            summaries[file] = [summary]
            whole.append(summary)
        opened = _native.open_data_set([os.fsencode(path) for path in paths], whole, set_options,
                                       file_options, options)
        self.warnings = opened["warnings"]
        self.command = opened["command"]
        self.reading = opened["reading"]
        self.dictionary = opened["dictionary"]
        self.recipes = opened["recipes"]
        self.files = json.loads(opened["files"])
        self.records = [told.get("records", 0) for told in self.files]
        for file, (source, recipe, told) in enumerate(zip(sources, self.recipes, self.files)):
            if recipe is None:
                continue
            if source is None or (told["file_bytes"], told["modified"]) != source[1:]:
                raise FileError(f"{paths[file]}: the file changed since the work began; begin again")
            if told["summarized"]:
                self._add_parts(file, summaries[file])
            else:
                # By itself it is cut in another way than among the others: it is one part.
                self.parts.append(Part(len(self.parts) + 1, file, 0, None, b""))
        first = next(recipe for recipe in self.recipes if recipe is not None)
        with_columns = _native.open_recipe(first, options, None)
        self.columns = Columns(with_columns.no_cases())
        with_columns.close()
