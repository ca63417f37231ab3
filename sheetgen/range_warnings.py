"""The [warnings.outside] check of a sheet table: a number cell whose value lies outside a declared range
is worth a warning (a rate typed as a percent where the sheet wants a fraction, a rail voltage outside
the device's range). Each bound is a number, or the name of a number cell of the sheet that holds it."""

from __future__ import annotations

from number_checks import check_message_fields, resolve_number_cells
from sheet_error import SheetError

FIELDS = ("cell", "*", "value", "unit", "low", "high")


def _bound_text(where: str, at: tuple, bound, name: str, starred: str, by_name: dict) -> str:
    """A bound as the host reads it: a number's text, or the cell named by the pattern with {cell} and
    {*} filled in for this cell."""
    if isinstance(bound, bool):
        raise SheetError(f"{where}: a bound is a number or a cell name, found {bound!r}", at)
    if isinstance(bound, (int, float)):
        return repr(float(bound))
    if not isinstance(bound, str):
        raise SheetError(f"{where}: a bound is a number or a cell name, found {bound!r}", at)
    cell = bound.replace("{cell}", name).replace("{*}", starred)
    if cell not in by_name:
        raise SheetError(f"{where}: bound {bound} gives {cell}, which is no cell of the sheet", at)
    if by_name[cell].type == "string":
        raise SheetError(f"{where}: bound {cell} is a string cell", at)
    return cell


def read(entries: dict, by_name: dict, lists: dict[str, list[str]]) -> None:
    """Gives each cell its (low, high, message) from `entries`: cell name pattern =
    { range = [low, high], message = "..." }. Patterns resolve as the other checks' do."""
    if not isinstance(entries, dict):
        raise SheetError("warnings.outside: expected a table of cell name pattern = { range, message }",
                         ("warnings", "outside"))
    for pattern, entry in entries.items():
        at = ("warnings", "outside", pattern)
        where = ".".join(at)
        if not isinstance(entry, dict) or set(entry) != {"range", "message"}:
            raise SheetError(f"{where}: expected {{ range = [low, high], message = \"...\" }}", at)
        if not isinstance(entry["message"], str):
            raise SheetError(f"{where}: the message is a string", at + ("message",))
        check_message_fields(at, entry["message"], FIELDS)
        bounds = entry["range"]
        if not isinstance(bounds, list) or len(bounds) != 2:
            raise SheetError(f"{where}: range is [low, high]", at + ("range",))
        numbers = [b for b in bounds if isinstance(b, (int, float)) and not isinstance(b, bool)]
        if len(numbers) == 2 and numbers[0] >= numbers[1]:
            raise SheetError(f"{where}: range [{bounds[0]}, {bounds[1]}]: the low bound must be below the high one",
                             at + ("range",))
    for name, placed in resolve_number_cells(("warnings", "outside"), entries, by_name, lists).items():
        where = f"warnings.outside: cell {name}"
        at = ("warnings", "outside", placed.pattern, "range")
        low, high = (_bound_text(where, at, b, name, placed.starred, by_name) for b in placed.value["range"])
        message = placed.value["message"].replace("{cell}", name).replace("{*}", placed.starred)
        by_name[name].outside = (low, high, message)
