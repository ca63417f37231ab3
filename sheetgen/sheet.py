"""Reads a sheet's declaration table and checks it: cells, inputs, constants, families and tables."""

from __future__ import annotations

import itertools
import re
import tomllib
from dataclasses import dataclass, field
from pathlib import Path

TYPES = ("int", "float", "string")
CATEGORIES = ("inputs", "outputs", "intermediates")
MARKER = {"inputs": "UI", "outputs": "MO", "intermediates": "IC"}
CPP_TYPE = {"int": "int", "float": "float", "string": "std::string"}
NOT_SET = {"int": "prsm::kIntNotSet", "float": "prsm::kFloatNotSet", "string": "prsm::kStringNotSet"}
TABLE_TYPES = {"float": "float", "int": "int", "bool": "bool", "string": "std::string",
               "list": "std::vector<std::string>"}


class SheetError(Exception):
    pass


def camel(name: str) -> str:
    """CLOCK_FREQ -> ClockFreq, A1_SIG_RATE -> A1SigRate; a family pattern drops its placeholder."""
    parts = [p for p in name.replace("{}", "").split("_") if p]
    return "".join(p[0].upper() + p[1:].lower() for p in parts)


def expand(pattern: str) -> list[str]:
    """Expands braces like a shell: A{1..3}_X -> A1_X A2_X A3_X; COUT{B,D}_F -> COUTB_F COUTD_F."""
    pieces = re.split(r"(\{[^{}]+\})", pattern)
    choices = []
    for piece in pieces:
        if piece.startswith("{") and piece.endswith("}"):
            body = piece[1:-1]
            if m := re.fullmatch(r"(-?\d+)\.\.(-?\d+)", body):
                lo, hi = int(m[1]), int(m[2])
                choices.append([str(i) for i in range(lo, hi + 1)])
            else:
                choices.append(body.split(","))
        else:
            choices.append([piece])
    return ["".join(c) for c in itertools.product(*choices)]


def cpp_literal(value, type_: str) -> str:
    if type_ == "string":
        return '"' + str(value).replace("\\", "\\\\").replace('"', '\\"') + '"'
    if type_ == "int":
        if not isinstance(value, int) or isinstance(value, bool):
            raise SheetError(f"int value expected, found {value!r}")
        return str(value)
    if isinstance(value, bool) or not isinstance(value, (int, float)):
        raise SheetError(f"number expected, found {value!r}")
    text = repr(float(value))
    return text + "f"


@dataclass
class Cell:
    name: str
    type: str
    category: str
    index: int
    family: "Family | None" = None
    pattern: str | None = None
    member: str | None = None

    @property
    def camel(self) -> str:
        return camel(self.name)

    @property
    def cpp_type(self) -> str:
        return CPP_TYPE[self.type]

    @property
    def is_input(self) -> bool:
        return self.category == "inputs"


@dataclass
class Input:
    cell: Cell
    default: object = None          # constant default
    computed_default: str | None = None  # description of a hand-written default
    family_default: bool = False    # the hand-written default serves every member of its family
    above: object = None
    range: list | None = None
    list_name: str | None = None    # dropdown list key, or "computed"
    list_table: "Table | None" = None
    rule: str | None = None         # description of a hand-written rule

    @property
    def validated(self) -> bool:
        return self.above is not None or self.range is not None or self.list_name is not None or self.rule is not None

    def rule_text(self) -> str:
        if self.range is not None:
            return f"{self.range[0]} .. {self.range[1]}"
        if self.above is not None:
            return f"> {self.above}"
        if self.list_name is not None:
            return "one of the valid values" if self.list_name == "computed" else f"one of {self.list_name}"
        return self.rule or ""


@dataclass
class Delegate:
    """A formula written once for several sheets: fn(model, params, data[, member][, args...])."""
    function: str
    args: str

    def call(self, member: str | None = None) -> str:
        extra = ([member] if member else []) + ([self.args] if self.args else [])
        return f"{self.function}(*this, params, data{''.join(', ' + e for e in extra)})"


def _delegate(text: str) -> Delegate:
    m = re.fullmatch(r"\s*([A-Za-z_][\w:]*)\s*(?:\((.*)\))?\s*", text)
    if m is None:
        raise SheetError(f"formulas: {text!r} is not a function name with optional (arguments)")
    return Delegate(m[1], (m[2] or "").strip())


@dataclass
class Family:
    name: str
    members: list[str]
    patterns: list[str]

    def enumerator(self, member: str) -> str:
        return member if re.fullmatch(r"[A-Za-z_]\w*", member) else "N" + member


@dataclass
class Table:
    settings: list[str]
    type: str
    map: str
    member: str
    getter: str
    keys: list[str]
    fixed: list[str] = field(default_factory=list)  # constant keys, parts joined with "."

    @property
    def cpp_type(self) -> str:
        return TABLE_TYPES[self.type]

    @property
    def label(self) -> str:
        return self.settings[0] if len(self.settings) == 1 else self.map


@dataclass
class Sheet:
    stem: str
    subdir: str
    description: str
    data_file: str | None
    has_model: bool
    cells: dict[str, list[list[Cell]]]          # type -> category index -> cells
    by_name: dict[str, Cell]
    inputs: dict[str, Input]
    constants: dict[str, object]
    families: list[Family]
    tables: list[Table]
    load_order: list[tuple[str, Table]]
    calculate: list[str]
    formulas: dict[str, "Delegate"] = field(default_factory=dict)  # pattern or cell -> shared formula
    formula_header: str | None = None
    derived: list[str] = field(default_factory=list)  # shared values computed once per evaluation

    @property
    def prefix(self) -> str:
        return "PRSM" + self.stem

    def all_cells(self):
        for t in TYPES:
            for cat in self.cells[t]:
                yield from cat

    def range_cells(self, cell_prefix: str, input_name: str) -> Cell | None:
        return self.by_name.get(cell_prefix + input_name)


def _cells(doc: dict) -> tuple[dict, dict]:
    cells: dict[str, list[list[Cell]]] = {}
    by_name: dict[str, Cell] = {}
    for t in TYPES:
        section = doc.get("cells", {}).get(t, {})
        unknown = set(section) - set(CATEGORIES)
        if unknown:
            raise SheetError(f"cells.{t}: unknown categories {sorted(unknown)}")
        cells[t] = []
        # Enumerators: FirstUI<T>, inputs, LastUI<T>, FirstMO<T>, ..., LastIC<T>, Last<T>.
        index = 0
        for cat in CATEGORIES:
            index += 1  # the First marker
            members = []
            for pattern in section.get(cat, []):
                for name in expand(pattern):
                    if not re.fullmatch(r"[A-Z][A-Z0-9_]*", name):
                        raise SheetError(f"cell name {name!r} is not UPPER_SNAKE_CASE")
                    if name in by_name:
                        raise SheetError(f"cell {name} declared twice")
                    cell = Cell(name, t, cat, index)
                    by_name[name] = cell
                    members.append(cell)
                    index += 1
            cells[t].append(members)
            index += 1  # the Last marker
    return cells, by_name


def _tables(doc: dict) -> tuple[list[Table], list[tuple[str, Table]]]:
    maps: dict[str, Table] = {}
    order = []
    for entry in doc.get("tables", []):
        setting = entry["setting"]
        type_ = entry.get("type", "float")
        if type_ not in TABLE_TYPES:
            raise SheetError(f"table {setting}: unknown type {type_}")
        map_name = entry.get("map", camel(setting))
        table = maps.get(map_name)
        if table is None:
            keys = entry.get("keys", ["name"] if type_ == "list" else ["key"])
            table = Table([], type_, map_name, entry.get("member", "m_" + map_name),
                          entry.get("getter", "get" + map_name), keys)
            maps[map_name] = table
        elif table.type != type_:
            raise SheetError(f"table {setting}: map {map_name} already holds {table.type}")
        table.settings.append(setting)
        table.fixed += [k for p in entry.get("fixed", []) for k in expand(p) if k not in table.fixed]
        order.append((setting, table))
    for table in maps.values():
        _check_fixed(table)
    return list(maps.values()), order


def fixed_enumerator(key: str) -> str:
    """The enumerator of a constant key: "DEFAULT.CLE_LOGIC_VCCINT" -> DEFAULT_CLE_LOGIC_VCCINT."""
    name = re.sub(r"[^A-Za-z0-9_]", "_", key)
    return "N" + name if name[:1].isdigit() else name


def _check_fixed(table: Table) -> None:
    if table.fixed and table.type == "list":
        raise SheetError(f"table {table.map}: constant keys are for scalar tables")
    names = {}
    for key in table.fixed:
        if key.count(".") != len(table.keys) - 1 or "" in key.split("."):
            raise SheetError(f"table {table.map}: constant key {key!r} must have {len(table.keys)} parts")
        name = fixed_enumerator(key)
        if name in names:
            raise SheetError(f"table {table.map}: constant keys {names[name]!r} and {key!r} share a name")
        names[name] = key


def load(path: Path, source_root: Path) -> Sheet:
    with open(path, "rb") as f:
        doc = tomllib.load(f)
    meta = doc.get("sheet", {})
    cells, by_name = _cells(doc)
    tables, load_order = _tables(doc)

    families = []
    for fam in doc.get("families", []):
        family = Family(fam["name"], [str(m) for m in fam["members"]], fam["cells"])
        for pattern in family.patterns:
            if "{}" not in pattern:
                raise SheetError(f"family {family.name}: pattern {pattern} has no {{}}")
            kinds = set()
            for member in family.members:
                name = pattern.replace("{}", member)
                cell = by_name.get(name)
                if cell is None:
                    raise SheetError(f"family {family.name}: no cell {name}")
                if cell.family is not None:
                    raise SheetError(f"cell {name} belongs to two families")
                cell.family, cell.pattern, cell.member = family, pattern, member
                kinds.add((cell.type, cell.is_input))
            if len(kinds) != 1:
                raise SheetError(f"family {family.name}: cells of {pattern} differ in type or category")
        families.append(family)

    inputs = {}
    for cell in by_name.values():
        if cell.is_input:
            inputs[cell.name] = Input(cell)
    for pattern, entry in doc.get("inputs", {}).items():
        names = [pattern.replace("{}", m) for f in families if pattern in f.patterns for m in f.members] \
            if "{}" in pattern else expand(pattern)
        for name in names:
            if name not in inputs:
                raise SheetError(f"inputs.{pattern}: {name} is not an input cell")
            _read_input(inputs[name], entry, tables)
            inputs[name].family_default = "{}" in pattern

    constants = {}
    for pattern, value in doc.get("constants", {}).items():
        for name in expand(pattern):
            cell = by_name.get(name)
            if cell is None or cell.is_input:
                raise SheetError(f"constants: {name} is not a computed cell")
            constants[name] = value

    formulas = {}
    for pattern, text in doc.get("formulas", {}).items():
        if "{}" in pattern:
            if not any(pattern in f.patterns for f in families):
                raise SheetError(f"formulas: {pattern} is not a family's pattern")
            formulas[pattern] = _delegate(text)
            continue
        for name in expand(pattern):
            cell = by_name.get(name)
            if cell is None or (cell.is_input and inputs[name].computed_default is None):
                raise SheetError(f"formulas: {name} is neither a computed cell nor an input with a computed default")
            formulas[name] = _delegate(text)
    if formulas and not meta.get("formula_header"):
        raise SheetError("sheet.formula_header names the header of the shared formulas")

    calculate = [n for p in meta.get("calculate", []) for n in expand(p)]
    for name in calculate:
        if name not in by_name or by_name[name].is_input:
            raise SheetError(f"calculate: {name} is not a computed cell")

    derived = list(doc.get("derived", {}))
    for name in derived:
        if not re.fullmatch(r"[A-Z][A-Z0-9_]*", name) or name in by_name:
            raise SheetError(f"derived: {name} must be an UPPER_SNAKE_CASE name that no cell has")

    has_model = meta.get("model", True)
    if tables and not meta.get("data_file"):
        raise SheetError("sheet.data_file is required when the sheet has tables")
    subdir = path.parent.resolve().relative_to(source_root.resolve()).as_posix()
    return Sheet(path.stem, subdir, meta.get("description", ""), meta.get("data_file"), has_model,
                 cells, by_name, inputs, constants, families, tables, load_order, calculate, formulas,
                 meta.get("formula_header"), derived)


def _read_input(inp: Input, entry: dict, tables: list[Table]) -> None:
    known = {"default", "computed_default", "above", "range", "list", "list_map", "rule"}
    if unknown := set(entry) - known:
        raise SheetError(f"input {inp.cell.name}: unknown keys {sorted(unknown)}")
    if "default" in entry:
        inp.default = entry["default"]
        cpp_literal(inp.default, inp.cell.type)
    inp.computed_default = entry.get("computed_default")
    inp.above = entry.get("above")
    inp.range = entry.get("range")
    inp.rule = entry.get("rule")
    if "list" in entry:
        inp.list_name = entry["list"]
        if inp.list_name != "computed":
            lists = [t for t in tables if t.type == "list"]
            wanted = entry.get("list_map")
            candidates = [t for t in lists if wanted in (None, t.map)]
            if len(candidates) != 1:
                raise SheetError(f"input {inp.cell.name}: name the list table with list_map")
            inp.list_table = candidates[0]
