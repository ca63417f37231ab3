"""Reads a sheet's declaration table and checks it: cells, inputs, constants, families and tables."""

from __future__ import annotations

import re
import tomllib
from dataclasses import dataclass, field
from pathlib import Path

import cell_patterns
import descriptions
import design_decl
import member_rows
import range_warnings
from braces import expand
from naming import camel
from number_checks import check_message_fields, is_flag, resolve_number_cells
from sheet_error import SheetError

TYPES = ("int", "float", "string")
CATEGORIES = ("inputs", "outputs", "intermediates")
MARKER = {"inputs": "UI", "outputs": "MO", "intermediates": "IC"}
CPP_TYPE = {"int": "int", "float": "float", "string": "std::string"}
NOT_SET = {"int": "prsm::kIntNotSet", "float": "prsm::kFloatNotSet", "string": "prsm::kStringNotSet"}
TABLE_TYPES = {"float": "float", "int": "int", "bool": "bool", "string": "std::string",
               "list": "std::vector<std::string>"}


def _lists(doc: dict) -> dict[str, list[str]]:
    """The [lists] section: NAME = [patterns]; a list may use the lists written before it."""
    lists: dict[str, list[str]] = {}
    for name, patterns in doc.get("lists", {}).items():
        if not re.fullmatch(r"[A-Z][A-Z0-9_]*", name):
            raise SheetError(f"lists: {name!r} is not an UPPER_SNAKE_CASE name", ("lists", name))
        if isinstance(patterns, dict):  # { from = "{RAILS}", without = ["VCCME"] }: a list less some members
            if set(patterns) - {"from", "without"}:
                raise SheetError(f"lists.{name}: a derived list has only `from` and `without`", ("lists", name))
            if "from" not in patterns:
                raise SheetError(f"lists.{name}: a derived list names the list it is `from`", ("lists", name))
            source = expand(patterns["from"], lists)
            dropped = {m for p in patterns.get("without", []) for m in expand(p, lists)}
            if dropped - set(source):
                raise SheetError(f"lists.{name}: {sorted(dropped - set(source))} are not members of {patterns['from']}",
                                 ("lists", name, "without"))
            patterns = [m for m in source if m not in dropped]
        if isinstance(patterns, str):
            patterns = [patterns]
        members = [m for p in patterns for m in expand(str(p), lists)]
        if len(set(members)) != len(members):
            raise SheetError(f"lists.{name}: a member is listed twice", ("lists", name))
        lists[name] = members
    return lists


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
    unit: str = ""
    warnings: dict = field(default_factory=dict)  # WARNING_KINDS -> message ({value}, {unit} left)
    outside: tuple | None = None  # (low, high, message): bounds as a number's text or a cell's name
    description: str = ""

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
    check: bool = True              # false: a list input with its choices but no validity function

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


def _delegate(text: str, at: tuple) -> Delegate:
    m = re.fullmatch(r"\s*([A-Za-z_][\w:]*)\s*(?:\((.*)\))?\s*", text)
    if m is None:
        raise SheetError(f"formulas: {text!r} is not a function name with optional (arguments)", at)
    return Delegate(m[1], (m[2] or "").strip())


@dataclass
class Family:
    name: str
    members: list[str]
    patterns: list[str]
    # pattern -> the members that have its cell; every member unless the pattern is optional
    present: dict[str, list[str]] = field(default_factory=dict)

    def enumerator(self, member: str) -> str:
        return member if re.fullmatch(r"[A-Za-z_]\w*", member) else "N" + member

    def pattern_camel(self, pattern: str) -> str:
        """The CamelCase part of a pattern's functions; the bare pattern "{}" takes the family's name."""
        return camel(pattern) or self.name


@dataclass
class Table:
    settings: list[str]
    type: str
    map: str
    member: str
    getter: str
    keys: list[str]
    fixed: list[str] = field(default_factory=list)  # constant keys, parts joined with "."
    # Families whose members name the second key part, read at load into their cells' type:
    # cell type ("int", "float", "string") -> the family's members, in member order.
    columns: dict[str, list[str]] = field(default_factory=dict)
    column_families: object = None  # the entry's `columns` as written, read once families are known
    columns_at: tuple = ()  # where it is written, for errors

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
    methods: list[str] = field(default_factory=list)  # "type name": hand-written public members
    design: object = None  # design_decl.DesignDecl: rails, region and static-sheet declarations
    derived: list[str] = field(default_factory=list)  # shared values computed once per evaluation
    lists: dict[str, list[str]] = field(default_factory=dict)  # the [lists] section: name -> members
    rows: list = field(default_factory=list)  # member_rows.Rows: the attributes of a family's members

    @property
    def prefix(self) -> str:
        return "PRSM" + self.stem

    def all_cells(self):
        for t in TYPES:
            for cat in self.cells[t]:
                yield from cat

    def range_cells(self, cell_prefix: str, input_name: str) -> Cell | None:
        return self.by_name.get(cell_prefix + input_name)


def _cells(doc: dict, lists: dict[str, list[str]]) -> tuple[dict, dict]:
    cells: dict[str, list[list[Cell]]] = {}
    by_name: dict[str, Cell] = {}
    for t in TYPES:
        section = doc.get("cells", {}).get(t, {})
        unknown = set(section) - set(CATEGORIES)
        if unknown:
            raise SheetError(f"cells.{t}: unknown categories {sorted(unknown)}", ("cells", t, min(unknown)))
        cells[t] = []
        # Enumerators: FirstUI<T>, inputs, LastUI<T>, FirstMO<T>, ..., LastIC<T>, Last<T>.
        index = 0
        for cat in CATEGORIES:
            index += 1  # the First marker
            members = []
            # each name with the index of the pattern that declares it, for errors
            names = [(n, i) for i, pattern in enumerate(section.get(cat, [])) for n in expand(pattern, lists)]
            if cat == "inputs":  # user inputs are enumerated in alphabetical order
                names.sort()
            for name, declared in names:
                # Upper case, except for unit suffixes such as the capacitor values of 0p1uF.
                if not re.fullmatch(r"[A-Z][A-Za-z0-9_]*", name):
                    raise SheetError(f"cell name {name!r} is not UPPER_SNAKE_CASE", ("cells", t, cat, declared))
                if name in by_name:
                    raise SheetError(f"cell {name} declared twice", ("cells", t, cat, declared))
                cell = Cell(name, t, cat, index)
                by_name[name] = cell
                members.append(cell)
                index += 1
            cells[t].append(members)
            index += 1  # the Last marker
    return cells, by_name


def _units(doc: dict, by_name: dict[str, Cell], lists: dict[str, list[str]]) -> None:
    """Gives every cell its unit (cell_patterns.place); a cell that nothing names keeps "". Patterns
    pass over the validity flags (IS_VALID_*), which have no unit."""
    section = doc.get("units", {})
    if not isinstance(section, dict):
        raise SheetError("units: expected a table of unit = [cell name patterns]", ("units",))
    entries = []
    for unit, patterns in section.items():
        if not isinstance(patterns, list) or not all(isinstance(p, str) for p in patterns):
            raise SheetError(f"units.{unit}: expected a list of cell name patterns (strings)", ("units", unit))
        entries += [(pattern, unit) for pattern in patterns]
    try:
        placed = cell_patterns.place(entries, by_name, lambda _, name: not is_flag(name),
                                     lambda pattern: expand(pattern, lists))
    except cell_patterns.PatternError as error:
        raise SheetError(f"units: {error}", ("units", error.entry[1])) from None
    for name, unit in placed.items():
        by_name[name].unit = unit.value


WARNING_KINDS = ("below_zero", "above_zero", "no_value")
_WARNING_FIELDS = ("cell", "*", "value", "unit")


def _warnings(doc: dict, by_name: dict[str, Cell], lists: dict[str, list[str]]) -> None:
    """The [warnings] section: below_zero / above_zero / no_value = { cell name pattern = message }. A
    host gives the message when a number cell's calculated value is below 0, above 0, or the reserved
    "no value" (a result that did not fit its cell). The message may hold {cell} (the cell's name) and
    {*} (what the pattern's first "*" matched; the whole name for an exact one), filled in here, and
    {value} and {unit}, which the host fills in. The `outside` check is read by range_warnings."""
    section = doc.get("warnings", {})
    if not isinstance(section, dict):
        raise SheetError("warnings: expected a table of checks", ("warnings",))
    known = WARNING_KINDS + ("outside",)
    unknown = set(section) - set(known)
    if unknown:
        raise SheetError(f"warnings: unknown checks {sorted(unknown)} ({', '.join(known)})",
                         ("warnings", min(unknown)))
    for kind in WARNING_KINDS:
        entries = section.get(kind, {})
        if not isinstance(entries, dict) or not all(isinstance(m, str) for m in entries.values()):
            raise SheetError(f"warnings.{kind}: expected a table of cell name pattern = message", ("warnings", kind))
        for pattern, message in entries.items():
            check_message_fields(("warnings", kind, pattern), message, _WARNING_FIELDS)
        for name, placed in resolve_number_cells(("warnings", kind), entries, by_name, lists).items():
            by_name[name].warnings[kind] = placed.value.replace("{cell}", name).replace("{*}", placed.starred)
    range_warnings.read(section.get("outside", {}), by_name, lists)


def _tables(doc: dict, lists: dict[str, list[str]]) -> tuple[list[Table], list[tuple[str, Table]]]:
    maps: dict[str, Table] = {}
    order = []
    fixed_at: dict[str, tuple] = {}  # map -> the entry that gave it constant keys, for errors
    for index, entry in enumerate(doc.get("tables", [])):
        if "setting" not in entry:
            raise SheetError("tables: each table names its setting", ("tables", index))
        setting = entry["setting"]
        type_ = entry.get("type", "float")
        if type_ not in TABLE_TYPES:
            raise SheetError(f"table {setting}: unknown type {type_}", ("tables", index, "type"))
        map_name = entry.get("map", camel(setting))
        table = maps.get(map_name)
        if table is None:
            keys = entry.get("keys", ["name"] if type_ == "list" else ["key"])
            table = Table([], type_, map_name, entry.get("member", "m_" + map_name),
                          entry.get("getter", "get" + map_name), keys)
            maps[map_name] = table
        elif table.type != type_:
            raise SheetError(f"table {setting}: map {map_name} already holds {table.type}", ("tables", index, "type"))
        table.settings.append(setting)
        table.fixed += [k for p in entry.get("fixed", []) for k in expand(p, lists) if k not in table.fixed]
        if "fixed" in entry:
            fixed_at.setdefault(map_name, ("tables", index, "fixed"))
        if "columns" in entry:
            table.column_families, table.columns_at = entry["columns"], ("tables", index, "columns")
        order.append((setting, table))
    for table in maps.values():
        _check_fixed(table, fixed_at.get(table.map, ("tables",)))
    return list(maps.values()), order


def _read_columns(table: Table, families: list[Family], by_name: dict) -> None:
    """A string table's columns: the families whose own cells ("{}") its second key part names."""
    names, at = table.column_families, table.columns_at
    if not isinstance(names, list) or not all(isinstance(n, str) for n in names):
        raise SheetError(f"table {table.map}: columns is a list of family names", at)
    if table.type != "string" or len(table.keys) != 2:
        raise SheetError(f"table {table.map}: columns are for a string table of two key parts", at)
    by_family = {f.name: f for f in families}
    owner: dict[str, str] = {}  # cell type -> the family that gave it
    for name in names:
        family = by_family.get(name)
        if family is None:
            raise SheetError(f"table {table.map}: columns: no family {name}", at)
        if "{}" not in family.patterns:
            raise SheetError(f"table {table.map}: columns: family {name} has no cells of its own (\"{{}}\")", at)
        type_ = by_name[family.members[0]].type
        if type_ in owner:
            raise SheetError(f"table {table.map}: columns: families {owner[type_]} and {name} are both {type_}", at)
        owner[type_] = name
        table.columns[type_] = family.members


def fixed_enumerator(key: str) -> str:
    """The enumerator of a constant key: "DEFAULT.CLE_LOGIC_VCCINT" -> DEFAULT_CLE_LOGIC_VCCINT."""
    name = re.sub(r"[^A-Za-z0-9_]", "_", key)
    return "N" + name if name[:1].isdigit() else name


def _check_fixed(table: Table, at: tuple) -> None:
    if table.fixed and table.type == "list":
        raise SheetError(f"table {table.map}: constant keys are for scalar tables", at)
    names = {}
    for key in table.fixed:
        if key.count(".") != len(table.keys) - 1 or "" in key.split("."):
            raise SheetError(f"table {table.map}: constant key {key!r} must have {len(table.keys)} parts", at)
        name = fixed_enumerator(key)
        if name in names:
            raise SheetError(f"table {table.map}: constant keys {names[name]!r} and {key!r} share a name", at)
        names[name] = key


def load(path: Path, source_root: Path) -> Sheet:
    """Reads a table and checks it; a refusal names the table's file and the line at fault."""
    text = path.read_bytes().decode()
    doc = tomllib.loads(text)
    try:
        return _checked(doc, path, source_root)
    except SheetError as error:
        error.located(path, text)
        raise


def _checked(doc: dict, path: Path, source_root: Path) -> Sheet:
    meta = doc.get("sheet", {})
    lists = _lists(doc)
    cells, by_name = _cells(doc, lists)
    _units(doc, by_name, lists)
    _warnings(doc, by_name, lists)
    descriptions.place(doc, by_name, lambda pattern: expand(pattern, lists))
    tables, load_order = _tables(doc, lists)

    families = []
    for index, fam in enumerate(doc.get("families", [])):
        at = ("families", index)
        if "name" not in fam or "members" not in fam:
            raise SheetError("families: a family has a name and members", at)
        members = fam["members"]
        members = [members] if isinstance(members, str) else members
        family = Family(fam["name"], [m for p in members for m in expand(str(p), lists)],
                        [c for p in fam.get("cells", []) for c in expand(p, lists)])
        optional = [c for p in fam.get("optional", []) for c in expand(p, lists)]
        family.patterns += optional
        for pattern in family.patterns:
            if "{}" not in pattern:
                raise SheetError(f"family {family.name}: pattern {pattern} has no {{}}",
                                 at + ("optional" if pattern in optional else "cells",))
            kinds = set()
            family.present[pattern] = []
            for member in family.members:
                name = pattern.replace("{}", member)
                cell = by_name.get(name)
                if cell is None and pattern in optional:
                    continue
                if cell is None:
                    raise SheetError(f"family {family.name}: no cell {name}", at + ("cells",))
                if cell.family is not None:
                    raise SheetError(f"cell {name} belongs to two families", at + ("cells",))
                cell.family, cell.pattern, cell.member = family, pattern, member
                family.present[pattern].append(member)
                # A pattern's cells may be outputs for some members and intermediates for others.
                kinds.add((cell.type, cell.is_input))
            if len(kinds) != 1:
                raise SheetError(f"family {family.name}: cells of {pattern} differ in type or category",
                                 at + ("cells",))
        families.append(family)
    for table in tables:
        if table.columns_at:
            _read_columns(table, families, by_name)

    inputs = {}
    for cell in by_name.values():
        if cell.is_input:
            inputs[cell.name] = Input(cell)
    for pattern, entry in doc.get("inputs", {}).items():
        names = [pattern.replace("{}", m) for f in families if pattern in f.patterns for m in f.present[pattern]] \
            if "{}" in pattern else expand(pattern, lists)
        for name in names:
            if name not in inputs:
                raise SheetError(f"inputs.{pattern}: {name} is not an input cell", ("inputs", pattern))
            _read_input(inputs[name], entry, tables, ("inputs", pattern))
            inputs[name].family_default = "{}" in pattern
    _check_inputs(by_name, inputs)

    constants = {}
    for pattern, value in doc.get("constants", {}).items():
        for name in expand(pattern, lists):
            cell = by_name.get(name)
            if cell is None or cell.is_input:
                raise SheetError(f"constants: {name} is not a computed cell", ("constants", pattern))
            _literal(value, cell.type, f"constants.{name}", ("constants", pattern))
            constants[name] = value

    formulas = {}
    for pattern, text in doc.get("formulas", {}).items():
        if "{}" in pattern:
            if not any(pattern in f.patterns for f in families):
                raise SheetError(f"formulas: {pattern} is not a family's pattern", ("formulas", pattern))
            formulas[pattern] = _delegate(text, ("formulas", pattern))
            continue
        for name in expand(pattern, lists):
            cell = by_name.get(name)
            if cell is None or (cell.is_input and inputs[name].computed_default is None):
                raise SheetError(f"formulas: {name} is neither a computed cell nor an input with a computed default",
                                 ("formulas", pattern))
            formulas[name] = _delegate(text, ("formulas", pattern))
    if formulas and not meta.get("formula_header"):
        raise SheetError("sheet.formula_header names the header of the shared formulas", ("sheet", "formula_header"))

    calculate = [n for p in meta.get("calculate", []) for n in expand(p, lists)]
    for name in calculate:
        if name not in by_name or by_name[name].is_input:
            raise SheetError(f"calculate: {name} is not a computed cell", ("sheet", "calculate"))
    if len(set(calculate)) != len(calculate):
        raise SheetError("calculate: a cell is named twice", ("sheet", "calculate"))
    if meta.get("calculate_all_outputs", False):  # the outputs the order leaves out, in enumeration order
        named = set(calculate)
        calculate += [c.name for t in TYPES for c in cells[t][1] if c.name not in named]

    derived = list(doc.get("derived", {}))
    for name in derived:
        if not re.fullmatch(r"[A-Z][A-Z0-9_]*", name) or name in by_name:
            raise SheetError(f"derived: {name} must be an UPPER_SNAKE_CASE name that no cell has", ("derived", name))

    has_model = meta.get("model", True)
    if tables and not meta.get("data_file"):
        raise SheetError("sheet.data_file is required when the sheet has tables", ("sheet", "data_file"))
    methods = meta.get("methods", [])
    for method in methods:
        if not re.fullmatch(r"(int|float|std::string|bool) [a-z]\w*", method):
            raise SheetError(f"sheet.methods: {method!r} is not 'type name'", ("sheet", "methods"))
    subdir = path.parent.resolve().relative_to(source_root.resolve()).as_posix()
    sheet = Sheet(path.stem, subdir, meta.get("description", ""), meta.get("data_file"), has_model,
                  cells, by_name, inputs, constants, families, tables, load_order, calculate, formulas,
                  meta.get("formula_header"), methods, derived=derived, lists=lists)
    sheet.design = design_decl.load(doc, sheet)
    sheet.rows = member_rows.load(doc, sheet)  # rows name the families and cells above
    return sheet


def _read_input(inp: Input, entry: dict, tables: list[Table], at: tuple) -> None:
    """One input's entry of [inputs]; `at` is its key path, for errors."""
    known = {"default", "computed_default", "above", "range", "list", "list_map", "rule", "check"}
    where = f"input {inp.cell.name}"
    if unknown := set(entry) - known:
        raise SheetError(f"{where}: unknown keys {sorted(unknown)}", at + (min(unknown),))
    if "default" in entry:
        inp.default = entry["default"]
        _literal(inp.default, inp.cell.type, f"{where}: default", at + ("default",))
    inp.computed_default = entry.get("computed_default")
    inp.above = entry.get("above")
    if inp.above is not None:
        _literal(inp.above, inp.cell.type, f"{where}: above", at + ("above",))
    inp.range = entry.get("range")
    if inp.range is not None:
        if not isinstance(inp.range, list) or len(inp.range) != 2:
            raise SheetError(f"{where}: range is [low, high]", at + ("range",))
        for bound in inp.range:
            _literal(bound, inp.cell.type, f"{where}: range", at + ("range",))
    inp.rule = entry.get("rule")
    inp.check = bool(entry.get("check", True))
    if not inp.check and ("list" not in entry or inp.rule or inp.range or inp.above is not None):
        raise SheetError(f"{where}: check = false is for a list without other rules", at + ("check",))
    if "list" in entry:
        inp.list_name = entry["list"]
        if inp.list_name != "computed":
            lists = [t for t in tables if t.type == "list"]
            wanted = entry.get("list_map")
            candidates = [t for t in lists if wanted in (None, t.map)]
            if len(candidates) != 1:
                raise SheetError(f"{where}: name the list table with list_map", at + ("list_map",))
            inp.list_table = candidates[0]


def _literal(value, type_: str, where: str, at: tuple) -> None:
    """Checks that a value of the table can be written as a C++ literal of its cell's type."""
    try:
        cpp_literal(value, type_)
    except SheetError as error:
        raise SheetError(f"{where}: {error}", at) from None


def _check_inputs(by_name: dict[str, Cell], inputs: dict[str, Input]) -> None:
    """Every input has a default, and each validity flag IS_VALID_<NAME> is an int cell that stores the
    rule of input NAME."""
    for cell in by_name.values():
        at = ("cells", cell.type, cell.category)
        if cell.is_input and inputs[cell.name].default is None and inputs[cell.name].computed_default is None:
            raise SheetError(f"input {cell.name} has no default", at)
        if not cell.is_input and cell.name.startswith("IS_VALID_"):
            target = inputs.get(cell.name[len("IS_VALID_"):])
            if target is None or not target.validated:
                raise SheetError(f"{cell.name}: declare a rule for input {cell.name[len('IS_VALID_'):]}", at)
            if cell.type != "int":
                raise SheetError(f"{cell.name} must be an int cell", at)
