"""One import by many workers of Dask: the same command, cases, problems, ledger and digest as
``textwizard.read`` gives, however the work is cut and wherever it is done.

    >>> import textwizard.dask
    >>> frame = textwizard.dask.read("/shared/big.csv", client)   # a dask.dataframe
    >>> frame.textwizard.command, frame.textwizard.digest
    >>> textwizard.dask.convert("/shared/big.csv", "/shared/big", "parquet", client)
    >>> textwizard.dask.read("/shared/2024-*.csv", client, source_column="file")   # one data set

Every worker has to see the file under the same path, and the folder that is written to. Types are
never found from a sample: workers sum up their parts of the whole file first. Where no client is given
and none is there, this process does the work itself.
"""
from __future__ import annotations

import json
import os
import re
import warnings
from collections.abc import Callable, Sequence
from typing import TYPE_CHECKING, Any, Optional, Union, Unpack

import dask
import dask.dataframe
import pandas

from . import _native, _parts
from ._columns import Field
from ._errors import Error, FileError, ImportWarning, SettingError
from ._manifest import MANIFEST, Folder, key_of, part_name
from ._plan import DataSet, OneFile, Plan, Run
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

    def __init__(self, plan: Plan, run: Run,
                 manifest: Optional[dict[str, Any]] = None) -> None:
        self._plan = plan
        self._run = run
        self._manifest = manifest
        self._accounts: Optional[list[dict[str, Any]]] = None
        self._problems: Optional[pandas.DataFrame] = None

    @property
    def command(self) -> str:
        """The GET DATA command that gives these cases; of several files theirs, one behind the
        other."""
        return self._plan.command

    @property
    def reading(self) -> dict[str, Any]:
        """How the file was understood, as ``textwizard.sniff`` gives it; of several files the one
        whose structure most have."""
        return json.loads(self._plan.reading)

    @property
    def evidence(self) -> dict[str, Any]:
        """What types were found from, by variable, as of ``textwizard.read``. Of several files
        lines are those of the ``file`` beside them."""
        return {variable["name"]: variable["evidence"]
                for variable in json.loads(self._plan.dictionary)["variables"]
                if "evidence" in variable}

    @property
    def fields(self) -> list[Field]:
        """The columns' names, Arrow types and metadata, in order."""
        return self._plan.columns.fields

    @property
    def dictionary(self) -> dict[str, Any]:
        """The variables and what their cases come to: ``file``, ``cases``, ``variables``,
        ``ledger``; of several files also ``files``, what each came to, and ``drift``, how they
        differ."""
        told = json.loads(self._plan.dictionary)
        of_cases = self._manifest
        if of_cases is None:
            of_cases = _totals(self._accounted())
        told.update({name: of_cases[name] for name in ("cases", "ledger", "files")
                     if name in of_cases})
        return told

    @property
    def files(self) -> Optional[list[dict[str, Any]]]:
        """Of several files what each is (``kind`` is ``"data"``, ``"header-only"``, ``"empty"`` or
        ``"left-out"``), and what is wrong with it (``problem``); None of one file."""
        return self._plan.files

    @property
    def drift(self) -> list[dict[str, Any]]:
        """How several files differ."""
        return json.loads(self._plan.dictionary).get("drift", [])

    @property
    def parts(self) -> list[tuple[str, int, Optional[int]]]:
        """Of each part its file, and where it begins and ends there, in bytes (of a compressed file,
        decompressed; None for the end of the file)."""
        return [(self._plan.sources[part.file].path, part.first, part.last)
                for part in self._plan.parts]

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
        """Values and records that did not fit, in the order of the cases: kind, case and line (from
        1), byte (from 0), variable, format, text and detail, and of several files first the file;
        the first ``problem_limit`` (10,000 unless given) of them."""
        self._accounted()
        return self._problems

    def _accounted(self) -> list[dict[str, Any]]:
        if self._accounts is None:
            plan = self._plan
            done = self._run(_parts.account, plan.calls())
            plan.check_counts([account for account, _ in done])
            problems = [each for _, each in done if len(each)] or [done[0][1]]
            limit = plan.options["problem_limit"]
            self._problems = pandas.concat(problems, ignore_index=True)[:max(limit, 0)]
            self._accounts = [account for account, _ in done]
        return self._accounts


def read(paths: Paths, client: Optional[Client] = None, part_size: Union[int, str] = "64MiB", *,
         times: str = "ns", by: Optional[str] = None, skip_misfits: bool = False,
         source_column: Optional[str] = None,
         **settings: Unpack[ReadSettings]) -> dask.dataframe.DataFrame:
    """A text file, or several of one structure, as a ``dask.dataframe``, a partition for each part.

    All is read once when this returns, for its types, by all workers; a partition is read when it
    is computed. The frame's attribute ``textwizard`` is a ``DaskImport`` (frames that are made from
    this one have none).

    Args:
        paths: the file, or several, or patterns such as "data/*.csv"; workers read them under their
            absolute paths. Several files are one data set as ``textwizard import`` has them: types
            from all, cases in the order of the files (those of a pattern by name). A compressed file
            is one part.
        client: a ``distributed.Client``; by default the current one.
        part_size: bytes of a part, or a text such as "64MiB" or "100 MB".
        times: "ns": dates and times are datetime64[ns] and timedelta64[ns], and a value that these do
            not reach is an error; "objects": objects of Python's datetime.
        by: how the columns of several files go together: "name" or "position"; by name where names
            stand above the columns, unless given.
        skip_misfits: a file that does not fit, or cannot be read, is left out (``.textwizard.files``
            says why); else it is an error.
        source_column: the name of a last column with each case's file.

    The other settings are those of ``textwizard.read``, of each file; ``progress`` cannot be given.

    Raises:
        FileError: a file cannot be read, does not fit, or changed between the passes.
        SchedulerLost: the scheduler died.
        SettingError, CommandError: as ``textwizard.read``.
    """
    if times not in ("ns", "objects"):
        raise SettingError(f"times is {times!r}: give \"ns\" or \"objects\"")
    run = _runner(client)
    plan = _planned(paths, part_size, _set_options(by, skip_misfits, source_column), settings, run)
    meta = plan.meta(times == "objects")
    work = dask.delayed(_parts.frame, pure=True)
    frames = [work(*call, meta) for call in plan.calls()]
    frame = dask.dataframe.from_delayed(frames, meta=meta, prefix="textwizard", verify_meta=True)
    object.__setattr__(frame, "textwizard", DaskImport(plan, run))
    return frame


def convert(paths: Paths, folder: Union[str, "os.PathLike[str]"], format: str = "parquet",
            client: Optional[Client] = None, part_size: Union[int, str] = "64MiB", *,
            by: Optional[str] = None, skip_misfits: bool = False,
            source_column: Optional[str] = None,
            **settings: Unpack[ReadSettings]) -> DaskImport:
    """Writes a text file, or several, as a folder of files, one for each part, and a manifest.

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
    plan = _planned(paths, part_size, _set_options(by, skip_misfits, source_column), settings, run)
    wanted = [_key(plan, part, format) for part in plan.parts]
    manifest = target.manifest()
    if manifest is not None and [part["key"] for part in manifest["parts"]] == wanted:
        target.finish(manifest)
        return DaskImport(plan, run, manifest)
    if manifest is not None:
        # Whoever looks at the folder meanwhile sees that it is not finished.
        os.unlink(os.path.join(target.path, MANIFEST))
    written = run(_parts.write, [(*call, target, format) for call in plan.calls()])
    plan.check()
    plan.check_counts(written)
    read = [source._asdict() for source, recipe in zip(plan.sources, plan.recipes)
            if recipe is not None]
    manifest = {
        "format": format,
        **({"source": read[0]} if plan.files is None else {"sources": read}),
        "command": plan.command,
        **_totals(written),
        "parts": [{"file": part_name(part.number, format),
                   "of": plan.sources[part.file].path, "from": part.first, "to": part.last,
                   "cases": account["cases"], "bytes": account["bytes"],
                   "digest": account["digest"], "key": account["key"]}
                  for part, account in zip(plan.parts, written)],
    }
    target.finish(manifest)
    return DaskImport(plan, run, manifest)


def _key(plan: Plan, part: _parts.Part, format: str) -> str:
    return key_of(plan.recipes[part.file], part.first, part.last, format)


def _totals(accounts: list[dict[str, Any]]) -> dict[str, Any]:
    """What the parts come to together."""
    totals = {"cases": sum(account["cases"] for account in accounts),
              "digest": _parts.added_digests([account["digest"] for account in accounts]),
              "ledger": _parts.added_ledgers([account["ledger"] for account in accounts])}
    if "of_file" in accounts[0]:
        totals["files"] = _parts.added_files(accounts)
    return totals


def _set_options(by: Optional[str], skip_misfits: bool,
                 source_column: Optional[str]) -> dict[str, Any]:
    """Those that make a data set even of one file."""
    given = {"by": by, "skip_misfits": 1 if skip_misfits else None, "source_column": source_column}
    return {name: value for name, value in given.items() if value is not None}


def _planned(paths: Paths, part_size: Union[int, str], set_options: dict[str, Any],
             settings: dict[str, Any], run: Run) -> Plan:
    if settings.get("progress") is not None:
        raise SettingError("progress cannot be told from other machines: look at Dask's own")
    if settings.get("sample_lines"):
        raise SettingError("types come from the whole file: leave sample_lines out")
    file_options, options, _ = split(settings, ReadSettings)
    if options.get("problem_limit") is None:
        options["problem_limit"] = _PROBLEM_LIMIT
    if options.get("null_texts") is not None:
        options["null_texts"] = list(options["null_texts"])
    part_bytes = _bytes_of(part_size)
    one = isinstance(paths, (str, os.PathLike))
    given = [os.path.abspath(os.fsdecode(path)) for path in ([paths] if one else paths)]
    if not given:
        raise SettingError("no file is given")
    files = [os.fsdecode(name) for name in _native.list_files([os.fsencode(path) for path in given])]
    if len(files) == 1 and not set_options:
        return OneFile(_parts.source_of(files[0]), part_bytes, file_options, options, run)
    plan = DataSet([_parts.source_if_there(path) for path in files], files, part_bytes,
                   {"name": " ".join(given), **set_options}, file_options, options, run)
    for text in plan.warnings:
        warnings.warn(text, ImportWarning, stacklevel=3)
    return plan


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


def _runner(client: Optional[Client]) -> Run:
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
