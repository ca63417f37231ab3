"""Reads a sheet's member rows, [rows.<Family>], and emits them as constant arrays.

A family's members often differ in a few attributes that their shared formula reads (the rail a block
leaks on, its key in a coefficient table, the cell that counts it). Written as rows of the table, the
formulas read `row(member).<column>` instead of restating the attributes in switches:

    [rows.Block.columns]
    rail = "Rail"          # a member of the sheet's family of that name
    core = "text"          # a text; empty where a row leaves it out
    count = "int cell"     # a cell of the sheet (int, float or string; a family member's too), read
                           # through its getter or calculate function; none where a row leaves it out
    rule = ["used", "one"] # one of these choices (an enum of the family and column)

    [rows.Block.members]
    BRAM_VCCINT = { rail = "VCCINT", core = "BRAM_CORE", count = "USED_BRAMS", rule = "used" }
"""

from __future__ import annotations

import re
from dataclasses import dataclass, field

from naming import camel
from sheet_error import SheetError

# Family and Sheet (sheet.py) appear in annotations only: importing them would make a cycle.

CELL_COLUMN = re.compile(r"(int|float|string) cell")
CPP_RESULT = {"int": "int", "float": "float", "string": "std::string"}


@dataclass
class Column:
    name: str
    kind: str  # "text", "cell", "family" or "choice"
    family: Family | None = None  # of a family column
    cell_type: str = ""  # of a cell column
    choices: list[str] = field(default_factory=list)  # of a choice column


@dataclass
class Rows:
    family: Family
    columns: list[Column]
    values: dict[str, dict[str, str]]  # member -> column -> value as written


def load(doc: dict, sheet: Sheet) -> list[Rows]:
    section = doc.get("rows", {})
    if not isinstance(section, dict):
        raise SheetError("rows: a table of family = { columns, members }")
    families = {f.name: f for f in sheet.families}
    loaded = []
    for name, entry in section.items():
        where = f"rows.{name}"
        family = families.get(name)
        if family is None:
            raise SheetError(f"{where}: no family {name}")
        if not isinstance(entry, dict) or set(entry) != {"columns", "members"}:
            raise SheetError(f"{where}: a table of columns and members")
        columns = [_column(f"{where}.columns.{c}", c, kind, families) for c, kind in entry["columns"].items()]
        if not columns:
            raise SheetError(f"{where}.columns: no column")
        values = {}
        for member, row in entry["members"].items():
            if member not in family.members:
                raise SheetError(f"{where}.members: {member} is not a member of {name}")
            values[member] = _row(f"{where}.members.{member}", row, columns, sheet)
        if missing := [m for m in family.members if m not in values]:
            raise SheetError(f"{where}.members: no row for {', '.join(missing)}")
        loaded.append(Rows(family, columns, values))
    _check_rail_terms(loaded, sheet)
    return loaded


def _check_rail_terms(loaded: list[Rows], sheet: Sheet) -> None:
    """A static sheet that writes its rails' sums as RailTerm rows gives every leaking block's rail a term:
    a block on a rail whose sum takes none would leak into no rail's static current. A block reported
    apart, or summed into a cell of several, sits on a rail that has other terms."""
    design = getattr(sheet, "design", None)
    rows = {r.family.name: r for r in loaded}
    blocks, terms = rows.get("Block"), rows.get("RailTerm")
    if not (design and design.temperature and blocks and terms) or \
            not all(any(c.name == "rail" and c.kind == "family" for c in r.columns) for r in (blocks, terms)):
        return
    summed = {row["rail"] for row in terms.values.values()}
    for member, row in blocks.values.items():
        if row["rail"] not in summed:
            raise SheetError(f"rows.Block.members.{member}: no RailTerm row adds to its rail {row['rail']}, so "
                             "its leakage would reach no rail's static current", ("rows", "Block", "members", member))


def _column(where: str, name: str, kind, families: dict[str, Family]) -> Column:
    if not re.fullmatch(r"[a-z][a-z0-9_]*", name):
        raise SheetError(f"{where}: a column is named in lower_snake_case")
    if isinstance(kind, list):
        if not kind or not all(isinstance(c, str) and re.fullmatch(r"[a-z][a-z0-9_]*", c) for c in kind) \
                or len(set(kind)) != len(kind):
            raise SheetError(f"{where}: choices are distinct lower_snake_case words")
        return Column(name, "choice", choices=kind)
    if kind == "text":
        return Column(name, "text")
    if isinstance(kind, str) and (m := CELL_COLUMN.fullmatch(kind)):
        return Column(name, "cell", cell_type=m[1])
    if kind in families:
        return Column(name, "family", family=families[kind])
    raise SheetError(f"{where}: {kind!r} is not \"text\", \"int cell\", \"float cell\", \"string cell\", "
                     "a family's name or a list of choices")


def _row(where: str, row, columns: list[Column], sheet: Sheet) -> dict[str, str]:
    if not isinstance(row, dict):
        raise SheetError(f"{where}: a table of column = value")
    known = {c.name for c in columns}
    if unknown := sorted(set(row) - known):
        raise SheetError(f"{where}: unknown columns {unknown}")
    for column in columns:
        value = row.get(column.name)
        if value is None:
            if column.kind in ("family", "choice"):
                raise SheetError(f"{where}: no {column.name}")
            continue
        if not isinstance(value, str):
            raise SheetError(f"{where}.{column.name}: a text")
        if column.kind == "family" and value not in column.family.members:
            raise SheetError(f"{where}.{column.name}: {value} is not a member of {column.family.name}")
        if column.kind == "choice" and value not in column.choices:
            raise SheetError(f"{where}.{column.name}: {value!r} is not one of {', '.join(column.choices)}")
        if column.kind == "cell":
            cell = sheet.by_name.get(value)
            if cell is None or cell.type != column.cell_type:
                raise SheetError(f"{where}.{column.name}: {value} is not one of the sheet's {column.cell_type} cells")
    return dict(row)


def _struct(rows: Rows) -> str:
    return f"{rows.family.name}Row"


def _choice_enum(rows: Rows, column: Column) -> str:
    return f"{rows.family.name}{camel(column.name.upper())}"


def declarations(sheet: Sheet, cls: str) -> list[str]:
    """The row types and their look-ups, for the model class's public section."""
    lines = []
    if any(c.kind == "cell" for rows in sheet.rows for c in rows.columns):
        lines.append("    // A cell column: the cell's getter or calculate function, called as (model.*cell)(params, data).")
        lines.append(f"    template <typename T>\n    using CellFunction = T ({cls}::*)(Params&, Data const&) const;")
    for rows in sheet.rows:
        fields = []
        for column in rows.columns:
            if column.kind == "choice":
                enum = _choice_enum(rows, column)
                lines.append(f"    enum class {enum} {{ {', '.join(c.upper() for c in column.choices)} }};")
                fields.append(f"{enum} {column.name};")
            elif column.kind == "text":
                fields.append(f"std::string_view {column.name};")
            elif column.kind == "family":
                fields.append(f"{column.family.name} {column.name};")
            else:
                fields.append(f"CellFunction<{CPP_RESULT[column.cell_type]}> {column.name};")
        lines.append(f"    // What the formulas of a {rows.family.name} member read: its row of the table's [rows.{rows.family.name}].")
        lines.append(f"    struct {_struct(rows)} {{")
        lines += [f"        {f}" for f in fields]
        lines.append("    };")
        lines.append(f"    static {_struct(rows)} const& row({rows.family.name} member);")
        lines.append(f"    static constexpr std::size_t k{rows.family.name}Members = {len(rows.family.members)};")
    return lines + [""] if lines else []


def _value(sheet: Sheet, cls: str, rows: Rows, column: Column, value: str | None) -> str:
    if column.kind == "text":
        return '""' if value is None else f'"{value}"'
    if column.kind == "family":
        return f"{cls}::{column.family.name}::{column.family.enumerator(value)}"
    if column.kind == "choice":
        return f"{cls}::{_choice_enum(rows, column)}::{value.upper()}"
    if value is None:
        return "nullptr"
    cell = sheet.by_name[value]
    return f"&{cls}::{'get' if cell.is_input else 'calculate'}{cell.camel}"


def definitions(sheet: Sheet, cls: str) -> str:
    """The rows as constant arrays in member order, and their look-ups."""
    parts = []
    for rows in sheet.rows:
        array = f"k{rows.family.name}Rows"
        body = ",\n".join(
            "    {" + ", ".join(_value(sheet, cls, rows, c, rows.values[m].get(c.name)) for c in rows.columns) + "}"
            for m in rows.family.members)
        parts.append(f"""
namespace {{
constexpr {cls}::{_struct(rows)} {array}[] = {{
{body}}};
}}  // namespace

{cls}::{_struct(rows)} const& {cls}::row({rows.family.name} member) {{
    return {array}[static_cast<std::size_t>(member)];
}}
""")
    return "".join(parts)
