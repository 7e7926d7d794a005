"""One import by many workers of Dask: the same command, cases, problems, ledger and digest as
``textwizard.read`` gives, however the work is cut and wherever it is done.

    >>> import textwizard.dask
    >>> frame = textwizard.dask.read("/shared/big.csv", client)   # a dask.dataframe
    >>> frame.textwizard.command, frame.textwizard.digest
    >>> textwizard.dask.convert("/shared/big.csv", "/shared/big", "parquet", client)

Every worker has to see the file under the same path, and the folder that is written to. Types are
never found from a sample: workers sum up their parts of the whole file first. Where no client is given
and none is there, this process does the work itself.
"""
from __future__ import annotations

import json
import os
import re
from collections.abc import Callable, Sequence
from typing import TYPE_CHECKING, Any, Optional, Union, Unpack

import dask
import dask.dataframe
import pandas

from . import _native, _parts
from ._columns import Columns, Field
from ._errors import Error, FileError, SettingError
from ._manifest import MANIFEST, Folder, part_name
from ._reading import ReadSettings, split

if TYPE_CHECKING:
    from distributed import Client

Paths = Union[str, "os.PathLike[str]", Sequence[Union[str, "os.PathLike[str]"]]]

_FORMATS = ("parquet", "arrow", "csv")
_UNITS = {"": 1, "b": 1, "kib": 1 << 10, "mib": 1 << 20, "gib": 1 << 30,
          "kb": 10**3, "mb": 10**6, "gb": 10**9}
# How often a task is done again that failed on one worker.
_RETRIES = 2
_PROBLEM_LIMIT = 10_000


class SchedulerLost(Error):
    """The scheduler, or all of its workers, died while the work was under way."""


class DaskImport:
    """What was found out about an import, and what its cases come to.

    Problems, ledger and digest come from a pass over all parts, which is made when the first of them
    is asked for; of an import that was written to files they are known.
    """

    def __init__(self, plan: _Plan, run: Callable[..., list[Any]],
                 manifest: Optional[dict[str, Any]] = None) -> None:
        self._plan = plan
        self._run = run
        self._manifest = manifest
        self._accounts: Optional[list[dict[str, Any]]] = None
        self._problems: Optional[pandas.DataFrame] = None

    @property
    def command(self) -> str:
        """The GET DATA command that gives these cases."""
        return self._plan.command

    @property
    def reading(self) -> dict[str, Any]:
        """How the file was understood, as ``textwizard.sniff`` gives it."""
        return json.loads(self._plan.reading)

    @property
    def evidence(self) -> dict[str, Any]:
        """What types were found from, by variable, as of ``textwizard.read``."""
        return {variable["name"]: variable["evidence"]
                for variable in json.loads(self._plan.dictionary)["variables"]
                if "evidence" in variable}

    @property
    def fields(self) -> list[Field]:
        """The columns' names, Arrow types and metadata, in order."""
        return self._plan.columns.fields

    @property
    def parts(self) -> list[tuple[int, int]]:
        """Where each part begins and ends, in bytes (of a compressed file, decompressed)."""
        return [(part.first, part.last) for part in self._plan.parts]

    @property
    def manifest(self) -> Optional[dict[str, Any]]:
        """Of files that were written; None of a frame."""
        return self._manifest

    @property
    def digest(self) -> str:
        """Of the cases: 32 hexadecimal digits, those of an import by one."""
        if self._manifest is not None:
            return self._manifest["digest"]
        return _parts.added_digests([account["digest"] for account in self._accounted()])

    @property
    def ledger(self) -> dict[str, Any]:
        """Where every byte, record and cell of the file went."""
        if self._manifest is not None:
            return self._manifest["ledger"]
        return _parts.added_ledgers([account["ledger"] for account in self._accounted()])

    @property
    def problems(self) -> pandas.DataFrame:
        """Values and records that did not fit, in the order of the file: kind, case and line (from
        1), byte (from 0), variable, format, text and detail; the first ``problem_limit`` (10,000
        unless given) of them."""
        self._accounted()
        return self._problems

    def _accounted(self) -> list[dict[str, Any]]:
        if self._accounts is None:
            plan = self._plan
            done = self._run(_parts.account, [(plan.recipe, part, plan.options)
                                              for part in plan.parts])
            problems = [each for _, each in done if len(each)] or [done[0][1]]
            limit = plan.options["problem_limit"]
            self._problems = pandas.concat(problems, ignore_index=True)[:max(limit, 0)]
            self._accounts = [account for account, _ in done]
        return self._accounts


class _Plan:
    """How one file is imported in parts: made by the first pass."""

    def __init__(self, source: _parts.Source, part_bytes: int, file_options: dict[str, Any],
                 options: dict[str, Any], run: Callable[..., list[Any]]) -> None:
        self.source = source
        self.options = options
        path = os.fsencode(source.path)
        # A look at no line of it: whether it can be read, and how long it is decompressed.
        nothing = _native.summarize_part(path, 1, 1_000_000_000, file_options, options)
        data_bytes = json.loads(_native.summary_json(nothing))["data_bytes"]
        count = max(1, -(-data_bytes // part_bytes))
        if data_bytes != source.size:
            # Whoever reads a part of a compressed file decompresses all of it.
            count = 1
        summaries = run(_parts.summarize, [(source, number, count, file_options, options)
                                           for number in range(1, count + 1)])
        _parts.check(source)
        whole = _native.merge_summaries(summaries, False)
        opened = _native.open_summary(whole, file_options, options, None)
        self.command = opened.command()
        self.reading = opened.reading()
        self.dictionary = opened.dictionary()
        self.recipe = opened.recipe()
        self.columns = Columns(opened.no_cases())
        self.records = json.loads(_native.summary_json(whole))["records"]
        opened.close()
        self.parts = []
        before = b""
        for number, summary in enumerate(summaries, 1):
            of = json.loads(_native.summary_json(summary))
            if of["to"] > of["from"] or number == 1:
                self.parts.append(_parts.Part(number, of["from"], max(of["to"], 1), before))
            lines = _native.merge_summaries([summary], True)
            before = _native.merge_summaries([before, lines], True) if before else lines

    def meta(self, objects: bool) -> pandas.DataFrame:
        """A frame without rows: whole numbers are nullable where one is missing anywhere, which the
        evidence of the whole file says."""
        meta = self.columns.to_pandas()
        variables = json.loads(self.dictionary)["variables"]
        meta.columns = pandas.Index(self.columns._unique_names(), dtype=object)
        for name, field, variable in zip(meta.columns, self.columns.fields, variables):
            if field.type in ("int64", "int8"):
                read = [candidate["read"] for candidate in variable["evidence"]["candidates"]
                        if candidate["format"] == variable["format"]]
                complete = bool(read) and read[0] == self.records
                meta[name] = meta[name].astype(
                    field.type if complete else field.type.capitalize())
            elif objects and field.type in ("date32", "timestamp[us]", "duration[us]"):
                meta[name] = meta[name].astype(object)
        return meta


def read(paths: Paths, client: Optional[Client] = None, part_size: Union[int, str] = "64MiB", *,
         times: str = "ns", **settings: Unpack[ReadSettings]) -> dask.dataframe.DataFrame:
    """A text file as a ``dask.dataframe``, a partition for each part of it.

    The file is read once when this returns, for its types, by all workers; a partition is read when it
    is computed. The frame's attribute ``textwizard`` is a ``DaskImport`` (frames that are made from
    this one have none).

    Args:
        paths: the file; workers read it under its absolute path.
        client: a ``distributed.Client``; by default the current one.
        part_size: bytes of a part, or a text such as "64MiB" or "100 MB".
        times: "ns": dates and times are datetime64[ns] and timedelta64[ns], and a value that these do
            not reach is an error; "objects": objects of Python's datetime.

    The other settings are those of ``textwizard.read``; ``progress`` cannot be given.

    Raises:
        FileError: the file cannot be read, or changed between the passes.
        SchedulerLost: the scheduler died.
        SettingError, CommandError: as ``textwizard.read``.
    """
    if times not in ("ns", "objects"):
        raise SettingError(f"times is {times!r}: give \"ns\" or \"objects\"")
    run = _runner(client)
    plan = _planned(paths, part_size, settings, run)
    meta = plan.meta(times == "objects")
    work = dask.delayed(_parts.frame, pure=True)
    frames = [work(plan.recipe, part, plan.options, meta) for part in plan.parts]
    frame = dask.dataframe.from_delayed(frames, meta=meta, prefix="textwizard", verify_meta=True)
    object.__setattr__(frame, "textwizard", DaskImport(plan, run))
    return frame


def convert(paths: Paths, folder: Union[str, "os.PathLike[str]"], format: str = "parquet",
            client: Optional[Client] = None, part_size: Union[int, str] = "64MiB",
            **settings: Unpack[ReadSettings]) -> DaskImport:
    """Writes a text file as a folder of files, one for each part, and a manifest.

    Parts are written under temporary names and renamed; ``manifest.json`` comes last: it names the
    parts with their cases, bytes and digests, the command, the ledger and the digest of all. A folder
    without it is unfinished, and a second run with the same arguments finishes it: what is there of the
    same data is kept. A folder that is finished from the same data is left as it is.

    Args:
        folder: made where it is not there; all workers see it.
        format: "parquet", "arrow" or "csv".

    The others, and what is raised, are those of ``read``.
    """
    if format not in _FORMATS:
        raise SettingError(f"format is {format!r}: give one of {', '.join(_FORMATS)}")
    run = _runner(client)
    target = Folder(os.path.abspath(os.fspath(folder)))
    target.prepare()
    plan = _planned(paths, part_size, settings, run)
    wanted = [_key(plan, part, format) for part in plan.parts]
    manifest = target.manifest()
    if manifest is not None and [part["key"] for part in manifest["parts"]] == wanted:
        target.finish(manifest)
        return DaskImport(plan, run, manifest)
    if manifest is not None:
        # Whoever looks at the folder meanwhile sees that it is not finished.
        os.unlink(os.path.join(target.path, MANIFEST))
    written = run(_parts.write, [(plan.recipe, part, plan.options, target, format)
                                 for part in plan.parts])
    _parts.check(plan.source)
    manifest = {
        "format": format,
        "source": plan.source._asdict(),
        "command": plan.command,
        "cases": sum(account["cases"] for account in written),
        "digest": _parts.added_digests([account["digest"] for account in written]),
        "ledger": _parts.added_ledgers([account["ledger"] for account in written]),
        "parts": [{"file": part_name(part.number, format), "from": part.first, "to": part.last,
                   "cases": account["cases"], "bytes": account["bytes"],
                   "digest": account["digest"], "key": account["key"]}
                  for part, account in zip(plan.parts, written)],
    }
    target.finish(manifest)
    return DaskImport(plan, run, manifest)


def _key(plan: _Plan, part: _parts.Part, format: str) -> str:
    from ._manifest import key_of

    return key_of(plan.recipe, part.first, part.last, format)


def _planned(paths: Paths, part_size: Union[int, str], settings: dict[str, Any],
             run: Callable[..., list[Any]]) -> _Plan:
    if settings.get("progress") is not None:
        raise SettingError("progress cannot be told from other machines: look at Dask's own")
    if settings.get("sample_lines"):
        raise SettingError("types come from the whole file: leave sample_lines out")
    file_options, options, _ = split(settings, ReadSettings)
    if options.get("problem_limit") is None:
        options["problem_limit"] = _PROBLEM_LIMIT
    if options.get("null_texts") is not None:
        options["null_texts"] = list(options["null_texts"])
    source = _parts.source_of(os.path.abspath(_one(paths)))
    return _Plan(source, _bytes_of(part_size), file_options, options, run)


def _one(paths: Paths) -> str:
    if isinstance(paths, (str, os.PathLike)):
        return os.fspath(paths)
    listed = [os.fspath(path) for path in paths]
    if len(listed) != 1:
        raise SettingError(f"{len(listed)} files are given: give one")
    return listed[0]


def _bytes_of(size: Union[int, str]) -> int:
    if isinstance(size, int):
        number, factor = size, 1
    else:
        found = re.fullmatch(r"\s*(\d+)\s*([A-Za-z]*)\s*", size)
        factor = _UNITS.get(found[2].lower()) if found else None
        if factor is None:
            raise SettingError(f"part_size is {size!r}: give bytes, or a text such as \"64MiB\"")
        number = int(found[1])
    if number < 1:
        raise SettingError(f"part_size is {size!r}: a part has a byte at least")
    return number * factor


def _runner(client: Optional[Client]) -> Callable[..., list[Any]]:
    """What does a function for each tuple of arguments, and gives the results in their order."""
    if client is None:
        try:
            from distributed import default_client

            client = default_client()
        except (ImportError, ValueError):
            return lambda work, calls: [work(*call) for call in calls]

    def run(work: Callable[..., Any], calls: list[tuple[Any, ...]]) -> list[Any]:
        from concurrent.futures import CancelledError

        from distributed.comm.core import CommClosedError

        address = client.scheduler.address if client.scheduler is not None else "?"
        futures: list[Any] = []
        try:
            futures = client.map(lambda call: work(*call), calls, pure=False, retries=_RETRIES)
            return client.gather(futures)
        except (CancelledError, CommClosedError, TimeoutError, ConnectionError) as error:
            raise SchedulerLost(
                f"the scheduler at {address} was lost while the work was under way ({error!r}): "
                "start it and do this again; parts of files that are written are kept") from error
        finally:
            del futures

    return run
