"""The error by which the generator refuses a table."""

from __future__ import annotations

from pathlib import Path

from table_lines import key_lines, line_of


class SheetError(Exception):
    """A refusal: its message and the key path at fault in the table, ("design", "feeds", "FED") or
    ("families", 0, "members"); a missing key names the section that lacks it. `located` turns the
    path into the table's file and line, which then lead the message."""

    def __init__(self, message: str, at: tuple = ()):
        super().__init__(message)
        self.at = tuple(at)
        self.where = ""

    def located(self, path: Path, text: str) -> None:
        """Places the error in the table at `path`, whose text is `text`."""
        line = line_of(key_lines(text), self.at)
        self.where = f"{path}:{line}" if line is not None else str(path)

    def __str__(self) -> str:
        return f"{self.where}: {self.args[0]}" if self.where else self.args[0]
