"""Reading: bare files, commands, and how a file is built."""
from __future__ import annotations

import contextlib
import json
import os
import tempfile
import warnings as _warnings
from collections.abc import Callable, Iterable, Iterator, Mapping
from typing import IO, Any, Optional, TypedDict, Union, Unpack

from . import _native
from ._batches import Batches
from ._errors import ImportWarning, SettingError
from ._table import Table

Source = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]", IO[bytes], IO[str]]
Progress = Callable[[int, int, int], object]

_COPIED_AT_ONCE = 1 << 20


class ImportSettings(TypedDict, total=False):
    """What ``read``, ``run`` and ``batches`` have in common; their docstrings explain it."""

    decimal: Optional[str]
    null_texts: Optional[Iterable[str]]
    join_quoted_lines: Optional[bool]
    backslash_escapes: Optional[bool]
    keep_stray_qualifiers: Optional[bool]
    integers: Optional[bool]
    strict: Optional[bool]
    problem_limit: Optional[int]
    workers: Optional[int]
    progress: Optional[Progress]


class SniffSettings(TypedDict, total=False):
    """What ``sniff`` takes; the docstring of ``read`` explains it."""

    encoding: Optional[str]
    delimiter: Optional[str]
    qualifier: Optional[str]
    first_line: Optional[int]
    header: Optional[bool]
    fixed: Optional[str]
    sample_lines: Optional[int]


class ReadSettings(SniffSettings, ImportSettings, total=False):
    """What ``read`` takes."""

    types: Union[Mapping[str, str], str, None]
    names: Union[Iterable[str], str, None]
    names_as_variables: Optional[bool]


class RunSettings(ImportSettings, total=False):
    """What ``run`` takes."""

    code_page: Optional[str]
    locale_code_page: Optional[str]
    byte_order_mark: Optional[str]
    transcode: Optional[str]
    pad_columns: Optional[str]


# Those that describe the file; the others are of the import.
_OF_FILE = frozenset({*SniffSettings.__annotations__, "types", "names"})


def read(path: Source, **settings: Unpack[ReadSettings]) -> Table:
    """Reads a text file, compressed or not, that nobody has described.

    How it is cut is found from its beginning, the columns' types from all of it; what is given is not
    searched for.

    Args:
        path: a path, or an object with ``read``. Such an object's rest is copied to a temporary file,
            which is gone when this returns (``.command`` names it); str are written as UTF-8.
        encoding: a name that ICU knows, such as "windows-1252".
        delimiter: what separates the columns; "" for one column.
        qualifier: what encloses values; "" for nothing.
        first_line: where the data begins, from 1.
        header: whether names stand above the data.
        fixed: columns by character position, such as "1-8,9-20".
        types: formats by variable, such as {"visited": "EDATE10", "id": "A12"}.
        names: the variables' names.
        sample_lines: find types from so many lines only.
        decimal: "." or ",".
        null_texts: texts that mean a missing number, instead of "NA", "N/A", "NULL", "null", "NaN",
            "nan", "." and "-".
        join_quoted_lines, backslash_escapes, keep_stray_qualifiers: what the file does with
            qualifiers: line breaks within; a backslash before them; unpaired ones are characters.
            What a file needs is found.
        names_as_variables: columns are called as the variables instead of as the header says.
        integers: whether columns of whole numbers within 2**53 become int64; they do by default.
        strict: a problem makes the import fail.
        problem_limit: problems kept, at most; 1,000,000 by default, negative for none.
        workers: threads that convert; one a processor by default.
        progress: called with cases, bytes and all bytes (-1 where unknown), some twenty times a
            second at most. What it raises ends the import.

    Raises:
        FileError: the file cannot be read, or is no text.
        CommandError: its data cannot be imported, or, with ``strict``, has a problem.
        SettingError: a setting cannot be used.
        BusyError: called by ``progress``.

    The GIL is free while it reads; imports of several threads take turns. Ctrl-C ends it. What it
    warns of is an ``ImportWarning``.
    """
    file_options, options, progress = split(settings, ReadSettings)
    with _as_path(path, file_options) as name:
        return _table(_native.open_file(name, file_options, options, progress))


def run(command: Union[str, "os.PathLike[str]"], **settings: Unpack[RunSettings]) -> Table:
    """Runs one GET DATA command.

    Args:
        command: its text; or a path (``os.PathLike``) of a file with it, in UTF-8.
        code_page: of the host's text; UTF-8 by default.
        locale_code_page: what ENCODING=LOCALE means; the locale's codeset by default.
        byte_order_mark: "utf-16le" or "utf-16be": the file is read as if it began with that mark.
        transcode: the file's encoding (a name that ICU knows), where no command can name it: the file
            is converted to UTF-8.
        pad_columns: characters of a line, from 1, such as "13,18": a copy of the file is read that
            has blanks in front of them, so that character n stands at byte 4 * (n - 1).
        decimal: the host's decimal character, "." (the default) or ",".
        integers: numbers whose format has no decimals become int64; a value that is not whole is
            missing then, and a problem.
        null_texts, join_quoted_lines, backslash_escapes, keep_stray_qualifiers, strict,
            problem_limit, workers, progress: as ``read`` has them.

    ``textwizard.run(table.command, **table.run_settings)`` gives the table of a file once more.

    What is raised is as with ``read``; a ``CommandError`` has the number of the message, and line and
    column of what is wrong in the command.
    """
    _, options, progress = split(settings, RunSettings)
    return _table(_native.open_command(_command_text(command), options, progress))


def batches(path: Source, **settings: Unpack[ReadSettings]) -> Batches:
    """Reads as ``read`` does, but holds one batch of at most 65,536 cases at a time: for files that
    are larger than the memory.

    The file is understood when this returns; its cases are read while they are iterated over. The
    arguments, and what is raised, are those of ``read``; the types need one pass over the file before
    the first batch comes. While a reading is open, other imports of the process can be opened only
    where they agree on the decimal character, and bare files not at all (``BusyError``).
    """
    file_options, options, progress = split(settings, ReadSettings)
    with contextlib.ExitStack() as copy:
        name = copy.enter_context(_as_path(path, file_options))
        opened = _native.open_file(name, file_options, options, progress)
        _warn(opened, 3)
        return Batches(opened, copy.pop_all())


def sniff(path: Source, **settings: Unpack[SniffSettings]) -> dict[str, Any]:
    """How a text file is built: encoding, line ends, delimiter, qualifier, where data begins, names,
    each with what speaks for it. Reads its beginning only.

    The arguments are those of ``read``: ``encoding``, ``delimiter``, ``qualifier``, ``first_line``,
    ``header``, ``fixed``, ``sample_lines``; and so are ``FileError`` and ``SettingError``.
    """
    file_options, _, _ = split(settings, SniffSettings)
    with _as_path(path, file_options) as name:
        return json.loads(_native.sniff_file(name, file_options))


def split(settings: Mapping[str, Any],
          known: type) -> tuple[dict[str, Any], dict[str, Any], Optional[Progress]]:
    """The options of the file, those of the import, and the progress function, as the module takes
    them. Raises TypeError for a name that is none of ``known``, a TypedDict."""
    file_options: dict[str, Any] = {}
    options: dict[str, Any] = {}
    for name, value in settings.items():
        if name not in known.__annotations__:
            raise TypeError(f"there is no setting {name!r}; there are "
                            f"{', '.join(known.__annotations__)}")
        target = file_options if name in _OF_FILE else options
        target[name] = _AS_C_SAYS_IT.get(name, _as_it_is)(value)
    return file_options, options, options.pop("progress", None)


def _command_text(command: Union[str, "os.PathLike[str]"]) -> str:
    if isinstance(command, os.PathLike):
        with open(command, encoding="utf-8-sig", newline="") as file:
            command = file.read()
    if not isinstance(command, str):
        raise TypeError(f"a command is a text, not {type(command).__name__}")
    if "\0" in command:
        raise SettingError("the command has a character of code 0")
    return command


def _warn(opened: _native.Import, depth: int) -> None:
    for text in opened.take_warnings():
        _warnings.warn(text, ImportWarning, stacklevel=depth + 1)


def _table(opened: _native.Import) -> Table:
    table = Table(opened, opened.all_cases())
    _warn(opened, 3)
    opened.close()
    return table


def _as_it_is(value: Any) -> Any:
    return value


def _one_or_minus_one(wanted: Optional[bool]) -> Optional[int]:
    """As the C interface says yes and no where nothing said is something else."""
    return None if wanted is None else 1 if wanted else -1


def _listed(names: Union[Iterable[str], str, None]) -> Optional[str]:
    if names is None or isinstance(names, str):
        return names
    names = list(names)
    for name in names:
        if "," in name:
            raise SettingError(f'"{name}" cannot be given: a comma separates the names')
    return ",".join(names)


def _types(types: Union[Mapping[str, str], str, None]) -> Optional[str]:
    if types is None or isinstance(types, str):
        return types
    return _listed(f"{name}={kind}" for name, kind in types.items())


_AS_C_SAYS_IT: dict[str, Callable[[Any], Any]] = {
    "header": _one_or_minus_one, "integers": _one_or_minus_one, "types": _types, "names": _listed}


@contextlib.contextmanager
def _as_path(source: Source, file_options: dict[str, Any]) -> Iterator[bytes]:
    """The path of a source; what an object with ``read`` gives is copied to a temporary file."""
    if not hasattr(source, "read"):
        path = os.fsencode(source)
        if b"\0" in path:
            raise SettingError("the path has a character of code 0")
        yield path
        return
    with tempfile.NamedTemporaryFile(prefix="textwizard-") as copy:
        while part := source.read(_COPIED_AT_ONCE):
            if isinstance(part, str):
                part = part.encode("utf-8")
                file_options["encoding"] = "UTF-8"
            copy.write(part)
        copy.flush()
        yield os.fsencode(copy.name)
