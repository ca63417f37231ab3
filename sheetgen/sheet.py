"""Reads a sheet's declaration table and checks it: cells, inputs, constants, families and tables."""

from __future__ import annotations

import itertools
import re
import tomllib
from dataclasses import dataclass, field
from pathlib import Path

import cell_patterns
import descriptions

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


# The member lists of the sheet being read: every expansion during its load knows them.
_current_lists: dict[str, list[str]] = {}


def expand(pattern: str, lists: dict[str, list[str]] | None = None) -> list[str]:
    """Expands braces like a shell: A{1..3}_X -> A1_X A2_X A3_X; COUT{B,D}_F -> COUTB_F COUTD_F.
    A brace holding the name of a member list of the sheet's [lists] section stands for its members:
    {RAILS}_STATIC_CURRENT -> VCCINT_STATIC_CURRENT, VCCAUX_STATIC_CURRENT, ... The empty braces "{}"
    of a family pattern stay as they are."""
    if lists is None:
        lists = _current_lists
    pieces = re.split(r"(\{[^{}]+\})", pattern)
    choices = []
    for piece in pieces:
        if len(piece) > 2 and piece.startswith("{") and piece.endswith("}"):
            body = piece[1:-1]
            if m := re.fullmatch(r"(-?\d+)\.\.(-?\d+)", body):
                lo, hi = int(m[1]), int(m[2])
                choices.append([str(i) for i in range(lo, hi + 1)])
            elif lists and body in lists:
                choices.append(lists[body])
            else:
                choices.append(body.split(","))
        else:
            choices.append([piece])
    return ["".join(c) for c in itertools.product(*choices)]


def _lists(doc: dict) -> dict[str, list[str]]:
    """The [lists] section: NAME = [patterns]; a list may use the lists written before it."""
    lists: dict[str, list[str]] = {}
    for name, patterns in doc.get("lists", {}).items():
        if not re.fullmatch(r"[A-Z][A-Z0-9_]*", name):
            raise SheetError(f"lists: {name!r} is not an UPPER_SNAKE_CASE name")
        if isinstance(patterns, dict):  # { from = "{RAILS}", without = ["VCCME"] }: a list less some members
            if set(patterns) - {"from", "without"}:
                raise SheetError(f"lists.{name}: a derived list has only `from` and `without`")
            source = expand(patterns["from"], lists)
            dropped = {m for p in patterns.get("without", []) for m in expand(p, lists)}
            if dropped - set(source):
                raise SheetError(f"lists.{name}: {sorted(dropped - set(source))} are not members of {patterns['from']}")
            patterns = [m for m in source if m not in dropped]
        if isinstance(patterns, str):
            patterns = [patterns]
        members = [m for p in patterns for m in expand(str(p), lists)]
        if len(set(members)) != len(members):
            raise SheetError(f"lists.{name}: a member is listed twice")
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
            raise SheetError(f"cells.{t}: unknown categories {sorted(unknown)}")
        cells[t] = []
        # Enumerators: FirstUI<T>, inputs, LastUI<T>, FirstMO<T>, ..., LastIC<T>, Last<T>.
        index = 0
        for cat in CATEGORIES:
            index += 1  # the First marker
            members = []
            names = [n for pattern in section.get(cat, []) for n in expand(pattern, lists)]
            if cat == "inputs":  # user inputs are enumerated in alphabetical order
                names.sort()
            for name in names:
                # Upper case, except for unit suffixes such as the capacitor values of 0p1uF.
                if not re.fullmatch(r"[A-Z][A-Za-z0-9_]*", name):
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


def _is_flag(name: str) -> bool:
    return name.startswith("IS_VALID_")


def _units(doc: dict, by_name: dict[str, Cell]) -> None:
    """Gives every cell its unit (cell_patterns.place); a cell that nothing names keeps "". Patterns
    pass over the validity flags (IS_VALID_*), which have no unit."""
    section = doc.get("units", {})
    if not isinstance(section, dict):
        raise SheetError("units: expected a table of unit = [cell name patterns]")
    entries = []
    for unit, patterns in section.items():
        if not isinstance(patterns, list) or not all(isinstance(p, str) for p in patterns):
            raise SheetError(f"units.{unit}: expected a list of cell name patterns (strings)")
        entries += [(pattern, unit) for pattern in patterns]
    try:
        placed = cell_patterns.place(entries, by_name, lambda _, name: not _is_flag(name), expand)
    except cell_patterns.PatternError as error:
        raise SheetError(f"units: {error}") from None
    for name, unit in placed.items():
        by_name[name].unit = unit.value


WARNING_KINDS = ("below_zero", "above_zero", "no_value")
_WARNING_FIELDS = ("cell", "*", "value", "unit")


def resolve_number_cells(where: str, entries: dict, by_name: dict) -> dict[str, cell_patterns.Placed]:
    """Places `entries` (cell name pattern -> what is declared for it) on the number cells of the sheet
    (cell_patterns.place): patterns pass over string cells and the validity flags, and a string cell named
    exactly is an error."""
    def is_number(name: str) -> bool:
        return by_name[name].type != "string"

    try:
        return cell_patterns.place(entries.items(), by_name, lambda _, name: is_number(name) and not _is_flag(name),
                                   expand, refuses=lambda name: "" if is_number(name) else "is a string cell",
                                   reachable="number cell", values="entries")
    except cell_patterns.PatternError as error:
        raise SheetError(f"{where}: {error}") from None


def check_message_fields(where: str, message: str, fields: tuple[str, ...]) -> None:
    for used in re.findall(r"\{([^{}]*)\}", message):
        if used not in fields:
            raise SheetError(f"{where}: unknown field {{{used}}} in the message "
                             f"(use {', '.join('{' + f + '}' for f in fields)})")


def _warnings(doc: dict, by_name: dict[str, Cell]) -> None:
    """The [warnings] section: below_zero / above_zero / no_value = { cell name pattern = message }. A
    host gives the message when a number cell's calculated value is below 0, above 0, or the reserved
    "no value" (a result that did not fit its cell). The message may hold {cell} (the cell's name) and
    {*} (what the pattern's first "*" matched; the whole name for an exact one), filled in here, and
    {value} and {unit}, which the host fills in. The `outside` check is read by range_warnings."""
    section = doc.get("warnings", {})
    if not isinstance(section, dict):
        raise SheetError("warnings: expected a table of checks")
    known = WARNING_KINDS + ("outside",)
    unknown = set(section) - set(known)
    if unknown:
        raise SheetError(f"warnings: unknown checks {sorted(unknown)} ({', '.join(known)})")
    for kind in WARNING_KINDS:
        entries = section.get(kind, {})
        if not isinstance(entries, dict) or not all(isinstance(m, str) for m in entries.values()):
            raise SheetError(f"warnings.{kind}: expected a table of cell name pattern = message")
        for pattern, message in entries.items():
            check_message_fields(f"warnings.{kind}.{pattern}", message, _WARNING_FIELDS)
        for name, placed in resolve_number_cells(f"warnings.{kind}", entries, by_name).items():
            by_name[name].warnings[kind] = placed.value.replace("{cell}", name).replace("{*}", placed.starred)
    import range_warnings  # the `outside` check: bounds that are numbers or cells
    range_warnings.read(section.get("outside", {}), by_name)


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
    lists = _lists(doc)
    _current_lists.clear()
    _current_lists.update(lists)
    cells, by_name = _cells(doc, lists)
    _units(doc, by_name)
    _warnings(doc, by_name)
    try:
        descriptions.place(doc, by_name, expand)
    except cell_patterns.PatternError as error:
        raise SheetError(str(error)) from None
    tables, load_order = _tables(doc)

    families = []
    for fam in doc.get("families", []):
        members = fam["members"]
        members = [members] if isinstance(members, str) else members
        family = Family(fam["name"], [m for p in members for m in expand(str(p), lists)],
                        [c for p in fam.get("cells", []) for c in expand(p, lists)])
        optional = [c for p in fam.get("optional", []) for c in expand(p, lists)]
        family.patterns += optional
        for pattern in family.patterns:
            if "{}" not in pattern:
                raise SheetError(f"family {family.name}: pattern {pattern} has no {{}}")
            kinds = set()
            family.present[pattern] = []
            for member in family.members:
                name = pattern.replace("{}", member)
                cell = by_name.get(name)
                if cell is None and pattern in optional:
                    continue
                if cell is None:
                    raise SheetError(f"family {family.name}: no cell {name}")
                if cell.family is not None:
                    raise SheetError(f"cell {name} belongs to two families")
                cell.family, cell.pattern, cell.member = family, pattern, member
                family.present[pattern].append(member)
                # A pattern's cells may be outputs for some members and intermediates for others.
                kinds.add((cell.type, cell.is_input))
            if len(kinds) != 1:
                raise SheetError(f"family {family.name}: cells of {pattern} differ in type or category")
        families.append(family)

    inputs = {}
    for cell in by_name.values():
        if cell.is_input:
            inputs[cell.name] = Input(cell)
    for pattern, entry in doc.get("inputs", {}).items():
        names = [pattern.replace("{}", m) for f in families if pattern in f.patterns for m in f.present[pattern]] \
            if "{}" in pattern else expand(pattern, lists)
        for name in names:
            if name not in inputs:
                raise SheetError(f"inputs.{pattern}: {name} is not an input cell")
            _read_input(inputs[name], entry, tables)
            inputs[name].family_default = "{}" in pattern

    constants = {}
    for pattern, value in doc.get("constants", {}).items():
        for name in expand(pattern, lists):
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
        for name in expand(pattern, lists):
            cell = by_name.get(name)
            if cell is None or (cell.is_input and inputs[name].computed_default is None):
                raise SheetError(f"formulas: {name} is neither a computed cell nor an input with a computed default")
            formulas[name] = _delegate(text)
    if formulas and not meta.get("formula_header"):
        raise SheetError("sheet.formula_header names the header of the shared formulas")

    calculate = [n for p in meta.get("calculate", []) for n in expand(p, lists)]
    for name in calculate:
        if name not in by_name or by_name[name].is_input:
            raise SheetError(f"calculate: {name} is not a computed cell")
    if len(set(calculate)) != len(calculate):
        raise SheetError("calculate: a cell is named twice")
    if meta.get("calculate_all_outputs", False):  # the outputs the order leaves out, in enumeration order
        named = set(calculate)
        calculate += [c.name for t in TYPES for c in cells[t][1] if c.name not in named]

    derived = list(doc.get("derived", {}))
    for name in derived:
        if not re.fullmatch(r"[A-Z][A-Z0-9_]*", name) or name in by_name:
            raise SheetError(f"derived: {name} must be an UPPER_SNAKE_CASE name that no cell has")

    has_model = meta.get("model", True)
    if tables and not meta.get("data_file"):
        raise SheetError("sheet.data_file is required when the sheet has tables")
    methods = meta.get("methods", [])
    for method in methods:
        if not re.fullmatch(r"(int|float|std::string|bool) [a-z]\w*", method):
            raise SheetError(f"sheet.methods: {method!r} is not 'type name'")
    subdir = path.parent.resolve().relative_to(source_root.resolve()).as_posix()
    sheet = Sheet(path.stem, subdir, meta.get("description", ""), meta.get("data_file"), has_model,
                  cells, by_name, inputs, constants, families, tables, load_order, calculate, formulas,
                  meta.get("formula_header"), methods, derived=derived)
    import design_decl  # the whole-design declarations check against the cells above
    sheet.design = design_decl.load(doc, sheet)
    import member_rows  # rows name the families and cells above
    sheet.rows = member_rows.load(doc, sheet)
    return sheet


def _read_input(inp: Input, entry: dict, tables: list[Table]) -> None:
    known = {"default", "computed_default", "above", "range", "list", "list_map", "rule", "check"}
    if unknown := set(entry) - known:
        raise SheetError(f"input {inp.cell.name}: unknown keys {sorted(unknown)}")
    if "default" in entry:
        inp.default = entry["default"]
        cpp_literal(inp.default, inp.cell.type)
    inp.computed_default = entry.get("computed_default")
    inp.above = entry.get("above")
    inp.range = entry.get("range")
    inp.rule = entry.get("rule")
    inp.check = bool(entry.get("check", True))
    if not inp.check and ("list" not in entry or inp.rule or inp.range or inp.above is not None):
        raise SheetError(f"input {inp.cell.name}: check = false is for a list without other rules")
    if "list" in entry:
        inp.list_name = entry["list"]
        if inp.list_name != "computed":
            lists = [t for t in tables if t.type == "list"]
            wanted = entry.get("list_map")
            candidates = [t for t in lists if wanted in (None, t.map)]
            if len(candidates) != 1:
                raise SheetError(f"input {inp.cell.name}: name the list table with list_map")
            inp.list_table = candidates[0]
