"""libconfig text for the data generators, and writing or checking the committed files they give.

A setting's value is a string, an int, a float, a list or a group (a dict). A group goes on one line,
{ A = 1; B = 2; }, unless the generator's `spread` rule puts it over several lines, a setting per line
two spaces further in; a list is written ( "a", "b" ), or ["a", "b"] where a file keeps arrays.
Standard library only.
"""

from __future__ import annotations

import sys
import tomllib
from pathlib import Path
from typing import Callable

# Whether a group goes over several lines, given the names from the file's top setting down to it.
Spread = Callable[[tuple[str, ...], dict], bool]


def nested(_: tuple[str, ...], group: dict) -> bool:
    """The usual rule: a group that holds groups or lists goes over several lines."""
    return any(isinstance(v, (dict, list)) for v in group.values())


def spread_to(depth: dict[str, int]) -> Spread:
    """Groups that hold groups go over several lines down to depth[top setting] levels (1 where the
    top setting is not named); deeper groups go on one line each."""
    return lambda path, group: (len(path) <= depth.get(path[0], 1)
                                and any(isinstance(v, dict) for v in group.values()))


def number(x: float) -> str:
    """Seven significant digits, with a point or an exponent so that libconfig reads a float."""
    text = f"{x:.7g}"
    return text if any(ch in text for ch in ".e") else text + ".0"


def value(v, arrays: bool = False) -> str:
    """A value on one line."""
    if isinstance(v, bool):
        raise TypeError("booleans are not written")  # libconfig's true/false are read by no sheet
    if isinstance(v, str):
        return f'"{v}"'
    if isinstance(v, int):
        return str(v)
    if isinstance(v, float):
        return number(v)
    if isinstance(v, list):
        items = ", ".join(value(x, arrays) for x in v)
        return f"[{items}]" if arrays else f"( {items} )"
    if isinstance(v, dict):
        return "{ " + " ".join(f"{k} = {value(x, arrays)};" for k, x in v.items()) + " }"
    raise TypeError(f"cannot write {v!r}")


def setting(path: tuple[str, ...], v, spread: Spread, arrays: bool = False) -> list[str]:
    """The lines of the setting named path[-1], indented by its depth."""
    pad = "  " * len(path)
    if isinstance(v, dict) and spread(path, v):
        lines = [f"{pad}{path[-1]} = {{"]
        for key, sub in v.items():
            lines += setting((*path, key), sub, spread, arrays)
        return lines + [f"{pad}}};"]
    return [f"{pad}{path[-1]} = {value(v, arrays)};"]


def data_file(cls: str, header: str, tables: dict, spread: Spread = nested, arrays: bool = False) -> str:
    """A data file: the header as comment lines, then the class's group of the tables."""
    lines = [f"// {line}" for line in header.splitlines()] + [f"{cls} = {{"]
    for name, tree in tables.items():
        lines += setting((name,), tree, spread, arrays)
    return "\n".join(lines + ["};"]) + "\n"


def write_or_check(files: dict[Path, str], check: bool, script: str, source: str = "") -> int:
    """Writes every file; with `check` writes nothing and names each file that differs from its text.
    Answers the exit status."""
    if not check:
        for path, text in files.items():
            path.write_text(text)
        return 0
    stale = [path for path, text in files.items() if not path.exists() or path.read_text() != text]
    given = f"{script} gives from {source}" if source else f"{script} gives"
    for path in stale:
        print(f"{path} is not what {given}: run it again", file=sys.stderr)
    return 1 if stale else 0


def run(out: Path, files: dict[str, str], script: str, argv: list[str] | None = None) -> int:
    """The command line of a tool that writes fixed files, `[--check]`: each of `files` (name to text)
    written into `out`, or with --check compared with it. Answers the exit status."""
    args = sys.argv[1:] if argv is None else argv
    return write_or_check({out / name: text for name, text in files.items()}, "--check" in args, script)


def description_command_line(usage: str, argv: list[str] | None = None) -> tuple[dict, Path, Path, bool] | None:
    """The command line of a tool that renders a TOML description, `DESCRIPTION.toml OUTPUT [--check]`:
    the description as loaded, its path, the output and whether to check. None, with `usage` on standard
    error, for any other command line."""
    args = sys.argv[1:] if argv is None else argv
    paths = [a for a in args if a != "--check"]
    if len(paths) != 2:
        print(usage, file=sys.stderr)
        return None
    with open(paths[0], "rb") as f:
        description = tomllib.load(f)
    return description, Path(paths[0]), Path(paths[1]), "--check" in args
