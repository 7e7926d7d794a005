"""A folder into which several write the parts of one import."""
from __future__ import annotations

import hashlib
import json
import os
import shutil
import uuid
from typing import Any, Optional

from ._errors import FileError

MANIFEST = "manifest.json"
_UNFINISHED = ".parts"
_VERSION = 1


def part_name(number: int, ending: str) -> str:
    return f"part-{number:05}.{ending}"


def _write(path: str, value: dict[str, Any]) -> None:
    """Under a temporary name, and safely on the disk before it gets its own."""
    temporary = f"{path}.{uuid.uuid4().hex}"
    with open(temporary, "w", encoding="utf-8") as file:
        json.dump(value, file, ensure_ascii=False, indent=1)
        file.write("\n")
        file.flush()
        os.fsync(file.fileno())
    os.replace(temporary, path)


def _read(path: str) -> Optional[dict[str, Any]]:
    try:
        with open(path, encoding="utf-8") as file:
            value = json.load(file)
    except (FileNotFoundError, ValueError):
        return None
    return value if isinstance(value, dict) else None


def key_of(recipe: str, first: int, last: Optional[int], ending: str) -> str:
    """What the content of a part depends on: the recipe names file, size and time of change."""
    return hashlib.sha256(f"{first}-{last} {ending} {recipe}".encode()).hexdigest()


class Folder:
    """Pure names and small files: any process that sees the folder can take part."""

    def __init__(self, path: str) -> None:
        self.path = path
        self._unfinished = os.path.join(path, _UNFINISHED)

    def prepare(self) -> None:
        """Raises FileError where it cannot be made, or where something else lies in it."""
        try:
            os.makedirs(self._unfinished, exist_ok=True)
            found = sorted(os.listdir(self.path))
        except OSError as error:
            raise FileError(f"{self.path}: {error.strerror}") from error
        for name in found:
            if name not in (_UNFINISHED, MANIFEST) and not name.startswith("part-"):
                raise FileError(f"{self.path} holds {name}, which is no part of an import: "
                                "give a folder of its own")

    def manifest(self) -> Optional[dict[str, Any]]:
        """None where the import is not finished."""
        return _read(os.path.join(self.path, MANIFEST))

    def temporary(self, number: int, ending: str) -> str:
        """A name that no other process gives."""
        return os.path.join(self._unfinished, f"{number:05}.{uuid.uuid4().hex}.{ending}")

    def finished_part(self, number: int, ending: str, key: str) -> Optional[dict[str, Any]]:
        """What is known of a part that was written before from the same data; else None."""
        account = _read(os.path.join(self._unfinished, f"{number:05}.json"))
        if account is None or account.get("key") != key:
            return None
        try:
            size = os.path.getsize(os.path.join(self.path, part_name(number, ending)))
        except OSError:
            return None
        return account if size == account["bytes"] else None

    def publish_part(self, temporary: str, number: int, ending: str, account: dict[str, Any]) -> None:
        """Gives a part that is written its name, and notes what is known of it."""
        account["bytes"] = os.path.getsize(temporary)
        os.replace(temporary, os.path.join(self.path, part_name(number, ending)))
        _write(os.path.join(self._unfinished, f"{number:05}.json"), account)

    def finish(self, manifest: dict[str, Any]) -> None:
        """Removes parts of another import, writes the manifest, and then what only an unfinished
        folder needs."""
        wanted = {part["file"] for part in manifest["parts"]}
        for name in os.listdir(self.path):
            if name.startswith("part-") and name not in wanted:
                os.unlink(os.path.join(self.path, name))
        _write(os.path.join(self.path, MANIFEST), {"textwizard_manifest": _VERSION, **manifest})
        shutil.rmtree(self._unfinished, ignore_errors=True)
