"""What one worker does with one part of a file: functions of path, size, time of change and range
alone, so that they can be done again anywhere."""
from __future__ import annotations

import json
import os
from typing import TYPE_CHECKING, Any, NamedTuple, Optional

from . import _native
from ._columns import Columns
from ._errors import CommandError, FileError
from ._manifest import Folder, key_of

if TYPE_CHECKING:
    import pandas

_MODULUS = 1 << 128


class Source(NamedTuple):
    """A file as it was when the work was cut."""

    path: str
    size: int
    modified: int  # nanoseconds since 1970


def source_of(path: str) -> Source:
    try:
        found = os.stat(path)
    except OSError as error:
        raise FileError(f"{path}: {error.strerror}") from error
    return Source(path, found.st_size, found.st_mtime_ns)


def source_if_there(path: str) -> Optional[Source]:
    try:
        return source_of(path)
    except FileError:
        return None


def check(source: Source) -> None:
    """Raises FileError where the file is no longer what it was."""
    if source_of(source.path) != source:
        raise FileError(f"{source.path}: the file changed since the work began, or this machine "
                        "sees another one of that name; begin again")


class Part(NamedTuple):
    """What stands before it is a summary of lines, empty for the first part of a file."""

    number: int  # from 1, of all parts of all files
    file: int  # from 0
    first: int
    last: Optional[int]  # None: where the file ends
    before: bytes


def _threads(options: dict[str, Any]) -> dict[str, Any]:
    """As many as the worker may use, where nobody said."""
    if options.get("workers") is not None:
        return options
    try:
        from distributed import get_worker

        return {**options, "workers": get_worker().state.nthreads}
    except (ImportError, ValueError):
        return options


def summarize(source: Source, number: int, count: int, file_options: dict[str, Any],
              options: dict[str, Any]) -> bytes:
    """Some kilobytes about part ``number`` of ``count``."""
    check(source)
    summary = _native.summarize_part(os.fsencode(source.path), number, count, file_options,
                                     _threads(options))
    seen = json.loads(_native.summary_json(summary))
    if (seen["file_bytes"], seen["modified"]) != (source.size, source.modified):
        check(source)
    return summary


def summarize_if_fit(source: Source, number: int, count: int, file_options: dict[str, Any],
                     options: dict[str, Any]) -> Optional[bytes]:
    """None where the file is none that can be read, which whoever looks at all files tells."""
    try:
        return summarize(source, number, count, file_options, options)
    except (FileError, CommandError):
        check(source)
        return None


def _opened(recipe: str, part: Part, options: dict[str, Any]) -> _native.Import:
    options = _threads(options)
    if part.last is not None:
        options = {**options, "part": (part.first, part.last, part.before)}
    return _native.open_recipe(recipe, options, None)


def _account(opened: _native.Import) -> dict[str, Any]:
    """Of a pass that came to its end: small."""
    dictionary = json.loads(opened.dictionary())
    account = {"cases": dictionary["cases"], "digest": opened.digest(),
               "ledger": json.loads(opened.ledger())}
    if "files" in dictionary:
        account["of_file"] = dictionary["files"][0]
    return account


def account(recipe: str, part: Part, options: dict[str, Any]) -> tuple[dict[str, Any], Any]:
    """Reads the part for its account and its problems alone."""
    opened = _opened(recipe, part, options)
    while opened.next() is not None:
        pass
    told = _account(opened)
    problems = Columns(opened.problems()).to_pandas()
    if "of_file" in told:
        problems.insert(0, "file", told["of_file"]["file"])
    return told, problems


def frame(recipe: str, part: Part, options: dict[str, Any],
          meta: pandas.DataFrame) -> pandas.DataFrame:
    """The part's cases, with the very types of ``meta``."""
    columns = Columns(_opened(recipe, part, options).all_cases())
    return as_meta(columns, meta)


def as_meta(columns: Columns, meta: pandas.DataFrame) -> pandas.DataFrame:
    """The columns under the names and types of ``meta``, which they fit but for missing values."""
    found = columns.to_pandas()
    found.columns = meta.columns
    for position, wanted in enumerate(meta.dtypes):
        name = meta.columns[position]
        has = found.dtypes.iloc[position]
        if has == wanted:
            continue
        if has == object and wanted.kind in "mM":
            raise FileError(
                f"the column {name} holds a time that nanoseconds do not reach: give "
                "times=\"objects\" for columns of datetime objects")
        if wanted == object:
            found[name] = columns.to_numpy()[name].astype(object)
        else:
            found[name] = found[name].astype(wanted)
    return found


def write(recipe: str, part: Part, options: dict[str, Any], folder: Folder,
          ending: str) -> tuple[dict[str, Any], Optional[str]]:
    """Writes the part's cases into the folder, unless an earlier run has."""
    key = key_of(recipe, part.first, part.last, ending)
    known = folder.finished_part(part.number, ending, key)
    if known is not None:
        return known
    opened = _opened(recipe, part, options)
    temporary = folder.temporary(part.number, ending)
    opened.write(os.fsencode(temporary), None, False)
    written = {"key": key, **_account(opened)}
    folder.publish_part(temporary, part.number, ending, written)
    return written


def added_files(accounts: list[dict[str, Any]]) -> list[dict[str, Any]]:
    """What each of several files came to, of the accounts of their parts."""
    files: dict[str, list[dict[str, Any]]] = {}
    for account in accounts:
        files.setdefault(account["of_file"]["file"], []).append(account["of_file"])
    return [{"file": name, "cases": sum(part["cases"] for part in parts),
             "first_case": parts[0]["first_case"],
             "problems": sum(part["problems"] for part in parts),
             "digest": added_digests([part["digest"] for part in parts]),
             "ledger": added_ledgers([part["ledger"] for part in parts])}
            for name, parts in files.items()]


def added_digests(digests: list[str]) -> str:
    """The digest of parts put together is the sum of theirs."""
    return f"{sum(int(digest, 16) for digest in digests) % _MODULUS:032x}"


def added_ledgers(ledgers: list[dict[str, Any]]) -> dict[str, Any]:
    """Ledgers of parts add up, but for the number of variables, which all have."""
    return {name: ledgers[0][name] if name == "variables" else sum(each[name] for each in ledgers)
            for name in ledgers[0]}
