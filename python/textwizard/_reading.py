"""Reading: bare files, commands, and how a file is built."""
from __future__ import annotations

import contextlib
import json
import os
import tempfile
import warnings as _warnings
from collections.abc import Callable, Iterable, Iterator, Mapping
from typing import IO, Any, Optional, Union

from . import _native
from ._errors import ImportWarning, SettingError
from ._table import Table

Source = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]", IO[bytes], IO[str]]
Progress = Callable[[int, int, int], object]

_COPIED_AT_ONCE = 1 << 20


def read(
    path: Source,
    *,
    encoding: Optional[str] = None,
    delimiter: Optional[str] = None,
    qualifier: Optional[str] = None,
    first_line: Optional[int] = None,
    header: Optional[bool] = None,
    fixed: Optional[str] = None,
    types: Union[Mapping[str, str], str, None] = None,
    names: Union[Iterable[str], str, None] = None,
    sample_lines: Optional[int] = None,
    decimal: Optional[str] = None,
    null_texts: Optional[Iterable[str]] = None,
    join_quoted_lines: Optional[bool] = None,
    backslash_escapes: Optional[bool] = None,
    keep_stray_qualifiers: Optional[bool] = None,
    names_as_variables: Optional[bool] = None,
    integers: Optional[bool] = None,
    strict: Optional[bool] = None,
    problem_limit: Optional[int] = None,
    workers: Optional[int] = None,
    progress: Optional[Progress] = None,
) -> Table:
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
    file_options = {
        "encoding": encoding, "delimiter": delimiter, "qualifier": qualifier,
        "first_line": first_line, "header": _one_or_minus_one(header), "fixed": fixed,
        "types": _types(types), "names": _listed(names), "sample_lines": sample_lines,
    }
    options = {
        "decimal": decimal, "null_texts": null_texts, "join_quoted_lines": join_quoted_lines,
        "backslash_escapes": backslash_escapes, "keep_stray_qualifiers": keep_stray_qualifiers,
        "names_as_variables": names_as_variables, "integers": _one_or_minus_one(integers),
        "strict": strict, "problem_limit": problem_limit, "workers": workers,
    }
    with _as_path(path, file_options) as name:
        return _table(_native.read_file(name, file_options, options, progress))


def run(
    command: Union[str, "os.PathLike[str]"],
    *,
    code_page: Optional[str] = None,
    locale_code_page: Optional[str] = None,
    decimal: Optional[str] = None,
    null_texts: Optional[Iterable[str]] = None,
    join_quoted_lines: Optional[bool] = None,
    backslash_escapes: Optional[bool] = None,
    keep_stray_qualifiers: Optional[bool] = None,
    integers: Optional[bool] = None,
    strict: Optional[bool] = None,
    problem_limit: Optional[int] = None,
    workers: Optional[int] = None,
    progress: Optional[Progress] = None,
) -> Table:
    """Runs one GET DATA command.

    Args:
        command: its text; or a path (``os.PathLike``) of a file with it, in UTF-8.
        code_page: of the host's text; UTF-8 by default.
        locale_code_page: what ENCODING=LOCALE means; the locale's codeset by default.
        decimal: the host's decimal character, "." (the default) or ",".
        integers: numbers whose format has no decimals become int64; a value that is not whole is
            missing then, and a problem.

    The others, and what is raised, are those of ``read``; a ``CommandError`` has the number of the
    message, and line and column of what is wrong in the command. Bytes of ``progress`` are -1.
    """
    if isinstance(command, os.PathLike):
        with open(command, encoding="utf-8-sig", newline="") as file:
            command = file.read()
    if not isinstance(command, str):
        raise TypeError(f"a command is a text, not {type(command).__name__}")
    if "\0" in command:
        raise SettingError("the command has a character of code 0")
    options = {
        "code_page": code_page, "locale_code_page": locale_code_page, "decimal": decimal,
        "null_texts": null_texts, "join_quoted_lines": join_quoted_lines,
        "backslash_escapes": backslash_escapes, "keep_stray_qualifiers": keep_stray_qualifiers,
        "integers": _one_or_minus_one(integers), "strict": strict,
        "problem_limit": problem_limit, "workers": workers,
    }
    return _table(_native.run_command(command, options, progress))


def sniff(
    path: Source,
    *,
    encoding: Optional[str] = None,
    delimiter: Optional[str] = None,
    qualifier: Optional[str] = None,
    first_line: Optional[int] = None,
    header: Optional[bool] = None,
    fixed: Optional[str] = None,
    sample_lines: Optional[int] = None,
) -> dict[str, Any]:
    """How a text file is built: encoding, line ends, delimiter, qualifier, where data begins, names,
    each with what speaks for it. Reads its beginning only.

    The arguments are those of ``read``, and so are ``FileError`` and ``SettingError``.
    """
    file_options = {
        "encoding": encoding, "delimiter": delimiter, "qualifier": qualifier,
        "first_line": first_line, "header": _one_or_minus_one(header), "fixed": fixed,
        "sample_lines": sample_lines,
    }
    with _as_path(path, file_options) as name:
        return json.loads(_native.sniff_file(name, file_options))


def _table(imported: _native.Imported) -> Table:
    for text in imported.warnings:
        _warnings.warn(text, ImportWarning, stacklevel=3)
    return Table(imported)


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
