"""Places values on cells by name pattern, as the [units] and [descriptions] sections of a table do.

A pattern is a cell name in which "*" matches any run of characters (none included); braces and
[lists] names are expanded first. A cell named exactly takes that entry's value; otherwise the longest
pattern that matches it decides, and two equally long patterns that give it different values are an
error. A section may keep patterns off some cells (`admits(pattern, cell)`: the validity flags have no
unit) and refuse some cells even by name (`refuses(cell)` says why: a warning needs a number cell); a
name or pattern that reaches no cell is an error too.
"""

from __future__ import annotations

import re
from dataclasses import dataclass
from typing import Callable, Iterable


class PatternError(Exception):
    """An entry that cannot be placed; `entry` is its (pattern, value) as the section gave it."""

    def __init__(self, message: str, entry: tuple[str, object]):
        super().__init__(message)
        self.entry = entry


@dataclass(frozen=True)
class Placed:
    value: object
    starred: str  # what the pattern's first "*" matched; the whole name for an exact one
    pattern: str  # the entry's own pattern, as the section wrote it


def glob(pattern: str) -> "re.Pattern[str]":
    return re.compile(".*".join(re.escape(part) for part in pattern.split("*")))


def place(entries: Iterable[tuple[str, object]], cells: Iterable[str], admits: Callable[[str, str], bool],
          expand: Callable[[str], list[str]], *, refuses: Callable[[str], str] = lambda _: "",
          reachable: str = "cell", values: str = "values") -> dict[str, Placed]:
    """Resolves (pattern, value) entries over the cell names; answers cell name -> Placed for every cell
    that an entry reaches. An exact name must be a cell that `refuses` has no reason against; `admits`
    filters what patterns reach. `reachable` and `values` name what a section places, in its errors."""
    names = list(cells)
    known = set(names)
    exact: dict[str, tuple[object, str]] = {}  # name -> (value, entry pattern)
    globs: list[tuple[str, object, str]] = []  # (expanded pattern, value, entry pattern)
    for pattern, value in entries:
        for name in expand(pattern):
            if "*" in name:
                if not any(glob(name).fullmatch(cell) for cell in names if admits(name, cell)):
                    raise PatternError(f"pattern {name} matches no {reachable}", (pattern, value))
                globs.append((name, value, pattern))
            elif name not in known:
                raise PatternError(f"no cell {name}", (pattern, value))
            elif refuses(name):
                raise PatternError(f"{name} {refuses(name)}", (pattern, value))
            elif exact.setdefault(name, (value, pattern))[0] != value:
                raise PatternError(f"cell {name} is given two {values}, {exact[name][0]!r} and {value!r}",
                                   (pattern, value))
    placed: dict[str, Placed] = {}
    for name in names:
        if name in exact:
            placed[name] = Placed(exact[name][0], name, exact[name][1])
            continue
        matches = [(len(p), p, v, origin) for p, v, origin in globs if admits(p, name) and glob(p).fullmatch(name)]
        if not matches:
            continue
        longest = max(length for length, _, _, _ in matches)
        best = [(p, v, origin) for length, p, v, origin in matches if length == longest]
        if differing := [(origin, v) for _, v, origin in best if v != best[0][1]]:
            raise PatternError(f"cell {name} matches {', '.join(sorted(p for p, _, _ in best))} of equal length "
                               f"with different {values}", differing[0])
        pattern, value, origin = min(best, key=lambda entry: entry[0])
        head, _, tail = pattern.partition("*")
        starred = re.fullmatch(re.escape(head) + "(.*?)" + glob(tail).pattern, name)[1]
        placed[name] = Placed(value, starred, origin)
    return placed
