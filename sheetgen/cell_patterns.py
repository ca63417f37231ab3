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
    pass


@dataclass(frozen=True)
class Placed:
    value: object
    starred: str  # what the pattern's first "*" matched; the whole name for an exact one


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
    exact: dict[str, object] = {}
    globs: list[tuple[str, object]] = []
    for pattern, value in entries:
        for name in expand(pattern):
            if "*" in name:
                if not any(glob(name).fullmatch(cell) for cell in names if admits(name, cell)):
                    raise PatternError(f"pattern {name} matches no {reachable}")
                globs.append((name, value))
            elif name not in known:
                raise PatternError(f"no cell {name}")
            elif refuses(name):
                raise PatternError(f"{name} {refuses(name)}")
            elif exact.setdefault(name, value) != value:
                raise PatternError(f"cell {name} is given two {values}, {exact[name]!r} and {value!r}")
    placed: dict[str, Placed] = {}
    for name in names:
        if name in exact:
            placed[name] = Placed(exact[name], name)
            continue
        matches = [(len(p), p, v) for p, v in globs if admits(p, name) and glob(p).fullmatch(name)]
        if not matches:
            continue
        longest = max(length for length, _, _ in matches)
        best = [(p, v) for length, p, v in matches if length == longest]
        if any(v != best[0][1] for _, v in best):
            raise PatternError(f"cell {name} matches {', '.join(sorted(p for p, _ in best))} of equal length "
                               f"with different {values}")
        pattern, value = min(best, key=lambda pv: pv[0])
        head, _, tail = pattern.partition("*")
        starred = re.fullmatch(re.escape(head) + "(.*?)" + glob(tail).pattern, name)[1]
        placed[name] = Placed(value, starred)
    return placed
