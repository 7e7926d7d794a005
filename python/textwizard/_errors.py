"""What can go wrong, as exceptions."""
from __future__ import annotations


class Error(Exception):
    """An import that failed. ``str()`` is a sentence or several: what, where, and the way out.

    Attributes:
        number: of the message, such as 2265; 0 where it has none.
        line, column: the place in the command's text, from 1; 0 where it is not about the text.
    """

    def __init__(self, text: str, number: int = 0, line: int = 0, column: int = 0) -> None:
        super().__init__(text)
        self.text = text
        self.number = number
        self.line = line
        self.column = column

    def __str__(self) -> str:
        return self.text

    def __reduce__(self):
        return type(self), (self.text, self.number, self.line, self.column)


class CommandError(Error):
    """The command or its data."""


class SettingError(Error, ValueError):
    """An argument or a setting is wrong."""


class FileError(Error, OSError):
    """A file cannot be read."""


class BusyError(Error):
    """Another import of the process is being read with other settings."""


class Cancelled(Error):
    """The import was cancelled."""


class ImportWarning(UserWarning):
    """What an import warns of; it goes on."""


# By the numbers of the C library's textwizard_status.
_KINDS = {1: CommandError, 2: SettingError, 3: FileError, 5: BusyError, 6: Cancelled}
_NO_MEMORY = 4


def error_of(status: int, text: str, number: int, line: int, column: int) -> BaseException:
    """The exception for an error of the C library."""
    if status == _NO_MEMORY:
        return MemoryError(text)
    return _KINDS.get(status, Error)(text, number, line, column)
