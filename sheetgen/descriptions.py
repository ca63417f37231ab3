"""The [descriptions] section: one line per cell, in a user's words, for listings and user interfaces.

    [descriptions]
    INSTANCE_COUNT = "Number of identical blocks of this configuration"
    "*_STATIC_CURRENT" = "Leakage current of {*} at the junction temperature"

Names and patterns resolve as units do (cell_patterns.place). In the text, {*} is what the pattern's
first "*" matched (the whole name for an exact one) and {cell} the cell's name. Every user input and
output needs one; the validity flags, the limits of an input and the intermediates may have one.
"""

from __future__ import annotations

import re
from typing import Callable

from cell_patterns import PatternError, place as place_by_pattern
from sheet_error import SheetError

MAX_LENGTH = 160
_FIELDS = ("*", "cell")
# Cells about an input's validity: only a pattern that starts like them ("IS_VALID_*", "GET_*_FREQ")
# reaches them, so that "*_FREQ" does not describe GET_MAX_CLOCK_FREQ as a frequency of its own.
_CHECK_PREFIXES = ("IS_VALID_", "GET_MIN_", "GET_MAX_")


def _is_check(name: str) -> bool:
    return name.startswith(_CHECK_PREFIXES)


def _admits(pattern: str, name: str) -> bool:
    return not _is_check(name) or pattern.startswith(("IS_VALID_", "GET_"))


def needs_description(cell) -> bool:
    return cell.category in ("inputs", "outputs") and not _is_check(cell.name)


def place(doc: dict, by_name: dict, expand: Callable[[str], list[str]]) -> None:
    """Sets `description` on every cell the section reaches; raises SheetError for what it refuses."""
    section = doc.get("descriptions", {})
    if not isinstance(section, dict):
        raise SheetError("descriptions: expected a table of cell name pattern = one line", ("descriptions",))
    for pattern, text in section.items():
        at = ("descriptions", pattern)
        if not isinstance(text, str):
            raise SheetError(f"descriptions.{pattern}: expected a string", at)
        if any(c in text for c in "\n\r"):
            raise SheetError(f"descriptions.{pattern}: a description is one line", at)
        for used in re.findall(r"\{([^{}]*)\}", text):
            if used not in _FIELDS:
                raise SheetError(f"descriptions.{pattern}: unknown field {{{used}}} (use {{*}}, {{cell}})", at)
    try:
        placed = place_by_pattern(section.items(), by_name, _admits, expand)
    except PatternError as error:
        raise SheetError(f"descriptions: {error}", ("descriptions", error.entry[0])) from None
    for name, entry in placed.items():
        text = entry.value.replace("{cell}", name).replace("{*}", entry.starred)
        if len(text) > MAX_LENGTH:
            raise SheetError(f"descriptions: the description of {name} has {len(text)} characters "
                             f"(at most {MAX_LENGTH})", ("descriptions", entry.pattern))
        by_name[name].description = text
    missing = [cell for cell in by_name.values() if needs_description(cell) and not cell.description]
    if missing:
        shown = ", ".join(c.name for c in missing[:6]) + (f" and {len(missing) - 6} more" if len(missing) > 6 else "")
        raise SheetError(f"descriptions: no description for the user input or output {shown}",
                         ("cells", missing[0].type, missing[0].category))
