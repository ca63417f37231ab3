"""What the warning checks of a table share: entries placed on the number cells, message fields."""

from __future__ import annotations

import re

import cell_patterns
from braces import expand
from sheet_error import SheetError


def is_flag(name: str) -> bool:
    return name.startswith("IS_VALID_")


def resolve_number_cells(section: tuple, entries: dict, by_name: dict,
                         lists: dict[str, list[str]]) -> dict[str, cell_patterns.Placed]:
    """Places `entries` (cell name pattern -> what is declared for it) on the number cells of the sheet
    (cell_patterns.place): patterns pass over string cells and the validity flags, and a string cell named
    exactly is an error. Names may use the sheet's member `lists`; `section` is the entries' key path."""
    def is_number(name: str) -> bool:
        return by_name[name].type != "string"

    try:
        return cell_patterns.place(entries.items(), by_name, lambda _, name: is_number(name) and not is_flag(name),
                                   lambda pattern: expand(pattern, lists),
                                   refuses=lambda name: "" if is_number(name) else "is a string cell",
                                   reachable="number cell", values="entries")
    except cell_patterns.PatternError as error:
        raise SheetError(f"{'.'.join(section)}: {error}", section + (error.entry[0],)) from None


def check_message_fields(at: tuple, message: str, fields: tuple[str, ...]) -> None:
    """Refuses a {field} of the message at key path `at` that is not one of `fields`."""
    for used in re.findall(r"\{([^{}]*)\}", message):
        if used not in fields:
            raise SheetError(f"{'.'.join(at)}: unknown field {{{used}}} in the message "
                             f"(use {', '.join('{' + f + '}' for f in fields)})", at)
