"""Where each key of a TOML text is written, so that a refusal can name the table's line.

tomllib answers values without positions. This scanner reads the text as TOML lays it out (table
and array-of-tables headers, dotted and quoted keys, strings of every kind, arrays and inline tables
that span lines, comments) and answers the line of every key path: ("design", "feeds", "FED"),
("families", 1, "members"), ("lists", "RAILS", 2) for an array's element. It runs only when a table
is refused, on text that tomllib has already accepted, so it checks nothing itself.
"""

from __future__ import annotations

import tomllib

_BARE_KEY = frozenset("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-")
_BLANKS = " \t"


def line_of(lines: dict[tuple, int], path: tuple) -> int | None:
    """The line of `path`, or of its longest prefix that the text writes: a key the table lacks is
    placed at its section's header."""
    for end in range(len(path), 0, -1):
        if path[:end] in lines:
            return lines[path[:end]]
    return None


def key_lines(text: str) -> dict[tuple, int]:
    """Every key path of the text -> the line (from 1) where it is first written. A header also
    gives its enclosing tables a line, so that ("inputs",) is where the first [inputs.X] is."""
    return _Scanner(text).document()


class _Scanner:
    def __init__(self, text: str):
        self.text = text
        self.pos = 0
        self.line = 1
        self.lines: dict[tuple, int] = {}
        self.arrays: dict[tuple, int] = {}  # array of tables -> how many of its tables came so far

    def document(self) -> dict[tuple, int]:
        table: tuple = ()
        while self._skip_blanks(across_lines=True):
            line = self.line
            if self._take("[["):
                key = self._key()
                self._take("]]")
                array = self._resolve(key[:-1]) + key[-1:]
                index = self.arrays.get(array, 0)
                self.arrays[array] = index + 1
                table = array + (index,)
                self._record(table, line)
            elif self._take("["):
                table = self._resolve(self._key())
                self._take("]")
                self._record(table, line)
            else:
                self._key_value(table)
        return self.lines

    def _record(self, path: tuple, line: int) -> None:
        for end in range(1, len(path) + 1):
            self.lines.setdefault(path[:end], line)

    def _resolve(self, key: tuple) -> tuple:
        """A header's key, each array of tables it passes through standing for its latest table."""
        path: tuple = ()
        for part in key:
            path += (part,)
            if path in self.arrays:
                path += (self.arrays[path] - 1,)
        return path

    def _key_value(self, table: tuple) -> None:
        line = self.line
        path = table + self._key()
        self._record(path, line)
        self._skip_blanks()
        self._take("=")
        self._skip_blanks()
        self._value(path)

    def _key(self) -> tuple:
        parts = []
        while True:
            self._skip_blanks()
            start = self.pos
            if self._peek() in "\"'":
                self._string()
                parts.append(tomllib.loads("k = " + self.text[start:self.pos])["k"])
            else:
                while self._peek() in _BARE_KEY:
                    self.pos += 1
                parts.append(self.text[start:self.pos])
            self._skip_blanks()
            if not self._take("."):
                return tuple(parts)

    def _value(self, path: tuple) -> None:
        first = self._peek()
        if first in "\"'":
            self._string()
        elif first == "[":
            self._sequence(path, "]", lambda index: self._value(path + (index,)))
        elif first == "{":
            self._sequence(path, "}", lambda _: self._key_value(path))
        else:  # a number, boolean or date: up to what closes or separates it
            while self._peek() and self._peek() not in ",]}#\n":
                self.pos += 1

    def _sequence(self, path: tuple, close: str, item) -> None:
        """An array or an inline table: items separated by commas; an array's elements get their
        index and line."""
        self.pos += 1
        index = 0
        while self._skip_blanks(across_lines=close == "]") and not self._take(close):
            if close == "]":
                self._record(path + (index,), self.line)
            item(index)
            index += 1
            self._skip_blanks(across_lines=close == "]")
            self._take(",")

    def _string(self) -> None:
        quote = self._peek()
        if self.text.startswith(quote * 3, self.pos):
            self.pos += 3
            while not self.text.startswith(quote * 3, self.pos):
                self._step(escapes=quote == '"')
            self.pos += 3
            while self._peek() == quote:  # up to two quotes of the text just before the delimiter
                self.pos += 1
        else:
            self.pos += 1
            while self._peek() != quote:
                self._step(escapes=quote == '"')
            self.pos += 1

    def _step(self, escapes: bool) -> None:
        if escapes and self._peek() == "\\":
            self.pos += 1
        if self._peek() == "\n":
            self.line += 1
        self.pos += 1

    def _skip_blanks(self, across_lines: bool = False) -> bool:
        """Skips blanks (and line ends and comments when `across_lines`); answers whether text is left."""
        while self.pos < len(self.text):
            char = self._peek()
            if char in _BLANKS or char == "\r":
                self.pos += 1
            elif across_lines and char == "\n":
                self.pos += 1
                self.line += 1
            elif across_lines and char == "#":
                while self._peek() and self._peek() != "\n":
                    self.pos += 1
            elif char == "#":  # a comment after a key's value: the line end comes next
                while self._peek() and self._peek() != "\n":
                    self.pos += 1
                return True
            else:
                return True
        return False

    def _peek(self) -> str:
        return self.text[self.pos:self.pos + 1]

    def _take(self, token: str) -> bool:
        if self.text.startswith(token, self.pos):
            self.pos += len(token)
            return True
        return False
