"""Emits a sheet's model class: getters, memoised cells, validity, dispatch tables, calculate and the
registration that makes the sheet reachable by name. Formulas stay hand-written."""

import design_decl
import emit_data
import member_rows
from emit_params import HEADER_NOTE
from sheet import CPP_TYPE, NOT_SET, TYPES, Cell, Family, Sheet, camel, cpp_literal

SIG = "(Params& params, Data const& data) const"
CELL_TYPE = {"int": "prsm::CellType::Int", "float": "prsm::CellType::Float", "string": "prsm::CellType::String"}
CELL_CATEGORY = {"inputs": "prsm::CellCategory::UserInput", "outputs": "prsm::CellCategory::ModelOutput",
                 "intermediates": "prsm::CellCategory::IntermediateCalculation"}


class Plan:
    """Decides, once, how each cell of a sheet gets its value."""

    def __init__(self, sheet: Sheet):
        self.sheet = sheet
        self.validated = {n: i for n, i in sheet.inputs.items() if i.validated}
        self.bounds = {}     # GET_MIN_/GET_MAX_ cell -> (input, "MIN"|"MAX")
        self.validity = {}   # IS_VALID_ cell -> input
        for cell in sheet.all_cells():
            if cell.is_input:
                continue
            for prefix, fn in (("GET_MIN_", "MIN"), ("GET_MAX_", "MAX")):
                target = cell.name[len(prefix):]
                if cell.name.startswith(prefix) and target in self.validated and self.validated[target].range:
                    self.bounds[cell.name] = (self.validated[target], fn)
            if cell.name.startswith("IS_VALID_"):  # an int flag of a validated input: the table is checked
                self.validity[cell.name] = self.validated[cell.name[len("IS_VALID_"):]]

    def kind(self, cell: Cell) -> str:
        if cell.is_input:
            return "input"
        if cell.name in self.validity:
            return "validity"
        if cell.name in self.bounds:
            return "bound"
        if cell.name in self.sheet.constants:
            return "constant"
        if cell.family is not None:
            return "family"
        return "formula"

    def validity_key(self, name: str) -> str:
        return f"IS_VALID_{name}" if f"IS_VALID_{name}" in self.sheet.by_name else f"calculateIsValid{name}"


def _fn(cell: Cell) -> str:
    return ("get" if cell.is_input else "calculate") + cell.camel


def _family_fn(cell: Cell) -> str:
    return ("get" if cell.is_input else "calculate") + cell.family.pattern_camel(cell.pattern)


def header(sheet: Sheet) -> str:
    plan = Plan(sheet)
    cls, p, d = sheet.prefix + "Model", sheet.prefix + "Params", sheet.prefix + "Data"
    public, private = [], []
    for fam in sheet.families:
        members = ", ".join(fam.enumerator(m) for m in fam.members)
        public.append(f"    enum class {fam.name} {{ {members} }};")
        public.append(f"    static std::string_view memberName({fam.name} member);")
    if sheet.families:
        public.append("")
    public += member_rows.declarations(sheet, cls)
    public.append("    // Input getters: the cell's value, or its default, which is stored into the cell.")
    for cell in sheet.all_cells():
        if cell.is_input:
            public.append(f"    {cell.cpp_type} {_fn(cell)}{SIG};")
            inp = sheet.inputs[cell.name]
            if inp.computed_default is not None:
                if cell.family is not None and inp.family_default:
                    if cell.pattern in sheet.formulas:
                        continue
                    private.append(f"    {cell.cpp_type} default{cell.family.pattern_camel(cell.pattern)}(Params& params, Data const& data, "
                                   f"{cell.family.name} member) const;")
                elif cell.name not in sheet.formulas:
                    private.append(f"    {cell.cpp_type} default{cell.camel}{SIG};")
    strings = [c for c in sheet.all_cells() if c.type == "string"]
    if strings:
        public.append("    // String cells without a copy: the cell itself, after its function gave it a value.")
        public += [f"    std::string const& ref{c.camel}{SIG};" for c in strings]
    if sheet.derived:
        public.append("    // Values that several formulas share, computed once per evaluation (not cells).")
        public += [f"    float derived{camel(n)}{SIG};" for n in sheet.derived]
        private += [f"    float compute{camel(n)}{SIG};" for n in sheet.derived]
    public.append("")
    public.append("    // Cell functions: the cached value, or the formula's result, which is stored into the cell.")
    for cell in sheet.all_cells():
        kind = plan.kind(cell)
        if kind in ("input", "validity"):
            continue
        public.append(f"    {cell.cpp_type} {_fn(cell)}{SIG};")
        if kind == "formula" and cell.name not in sheet.formulas:
            private.append(f"    {cell.cpp_type} compute{cell.camel}{SIG};")
    seen = set()
    family_lines = []
    for cell in sheet.all_cells():
        if cell.family is None or (cell.family.name, cell.pattern) in seen:
            continue
        seen.add((cell.family.name, cell.pattern))
        family_lines.append(f"    {cell.cpp_type} {_family_fn(cell)}(Params& params, Data const& data, "
                            f"{cell.family.name} member) const;")
        if plan.kind(cell) == "family" and cell.pattern not in sheet.formulas:
            private.append(f"    {cell.cpp_type} compute{cell.family.pattern_camel(cell.pattern)}(Params& params, Data const& data, "
                           f"{cell.family.name} member) const;")
    if family_lines:
        public += ["", "    // Families: the cell of one member."] + family_lines
    if sheet.methods:
        public += ["", "    // Written by hand beside the sheet's table."]
        public += [f"    {m}{SIG};" for m in sheet.methods]
    public += ["", "    // Validity of the inputs that have a rule, and the choices of those with a list."]
    for name, inp in plan.validated.items():
        if inp.check:
            public.append(f"    bool calculateIsValid{inp.cell.camel}{SIG};")
        if inp.list_name is not None:
            public.append(f"    std::string calculateValidValues{inp.cell.camel}{SIG};")
        if inp.rule is not None:
            private.append(f"    bool isValid{inp.cell.camel}{SIG};")
        if inp.list_name == "computed":
            private.append(f"    std::vector<std::string> validList{inp.cell.camel}{SIG};")
    private = list(dict.fromkeys(private))  # a family's default is declared once for all its members
    private_block = ("\nprivate:\n    // Formulas, written by hand beside the sheet's table.\n" + "\n".join(private)) if private else ""
    return f"""{HEADER_NOTE.format(stem=sheet.stem)}#pragma once

#include <prsm/framework/PRSMModel.h>
#include <prsm/{sheet.subdir}/{p}.h>
#include <prsm/{sheet.subdir}/{d}.h>

#include <string>
#include <string_view>
#include <vector>

// {sheet.description}
class {cls} : public PRSMModel {{
public:
    using Params = {p};
    using Data = {d};

{chr(10).join(public)}

    std::string className() const override;
    // Resets intermediate calculations and model outputs, then evaluates the outputs in a fixed order.
    void calculate(Params& params) const;

    // A cell by name, evaluated; an unknown name gives 0, 0.0 or the empty string.
    float floatDispatchTable(Params& params, Data const& data, std::string const& name) const;
    int intDispatchTable(Params& params, Data const& data, std::string const& name) const;
    std::string stringDispatchTable(Params& params, Data const& data, std::string const& name) const;

    static {cls}& getMutableGlobal();
    static {cls} const& getGlobal();
{private_block}
}};
"""


def cells(sheet: Sheet) -> str:
    """The bodies of the cell functions and calculate, for the one translation unit that defines them:
    the sheet's formulas file, or the generated source of a sheet that has none. The formulas call the
    cell functions thousands of times per calculate; defined in their translation unit, those calls
    inline to a cached-value test, while the installed header only declares what a user calls. The data
    class's getters are defined here too, for the same reason: the formulas' table lookups inline."""
    plan = Plan(sheet)
    cls = sheet.prefix + "Model"
    shared = f"#include <prsm/{sheet.subdir}/{sheet.formula_header}>\n" if sheet.formula_header else ""
    return f"""{HEADER_NOTE.format(stem=sheet.stem)}// The cell functions and calculate of the model and the getters of its data class, defined by the
// one file that includes this: the sheet's formulas file, or the generated model source of a sheet
// that has none. Not installed.
#pragma once

#include <prsm/{sheet.subdir}/{cls}.h>
#include <prsm/{sheet.subdir}/{sheet.prefix}DataIndexes.h>

#include <prsm/framework/PRSMCellSupport.h>
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>
{shared}
#include <cstddef>
#include <string>
{emit_data.getters(sheet)}{"".join(_definitions(sheet, plan, cls))}{_calculate(sheet, cls)}"""


def _calculate(sheet: Sheet, cls: str) -> str:
    """calculate, beside the cell functions, so that its calls to the outputs inline as well."""
    calls = "\n".join(f"    {_fn(sheet.by_name[n])}(params, data);" for n in sheet.calculate)
    return f"""
void {cls}::calculate(Params& params) const {{
    Data const& data = Data::getGlobal();
    params.resetIntermediateCalculations();
    params.resetModelOutputs();
{calls}
    (void)data;
}}
"""


def _args(uses_params: bool, uses_data: bool) -> str:
    return f"(Params&{' params' if uses_params else ''}, Data const&{' data' if uses_data else ''}) const"


def _memo(cls: str, cell: Cell, expr: str, uses_data: bool = True) -> str:
    enum = f"Params::{cell.name}"
    cached = "std::string const&" if cell.type == "string" else cell.cpp_type
    return f"""
{cell.cpp_type} {cls}::{_fn(cell)}{_args(True, uses_data)} {{
    {cached} cached = params[{enum}];
    if ({f"!prsm::cells::isNotSet(cached)" if cell.type == "string" else f"cached != {NOT_SET[cell.type]}"}) return cached;
    return params[{enum}] = {expr};
}}
"""


def _input(cls: str, sheet: Sheet, cell: Cell) -> str:
    inp = sheet.inputs[cell.name]
    if inp.computed_default is not None:
        if cell.family is not None and inp.family_default:
            fam = cell.family
            member = f"{fam.name}::{fam.enumerator(cell.member)}"
            shared = sheet.formulas.get(cell.pattern)
            expr = shared.call(member) if shared else f"default{fam.pattern_camel(cell.pattern)}(params, data, {member})"
        else:
            shared = sheet.formulas.get(cell.name)
            expr = shared.call() if shared else f"default{cell.camel}(params, data)"
        return _memo(cls, cell, expr)
    return _memo(cls, cell, cpp_literal(inp.default, cell.type), uses_data=False)


def _membership(inp, value: str) -> str:
    text = value if inp.cell.type == "string" else f"std::to_string({value})"
    return f"prsm::isListed(list, {text})"


def _list_expr(inp) -> str:
    if inp.list_name == "computed":
        return f"validList{inp.cell.camel}(params, data)"
    return f'data.{inp.list_table.getter}("{inp.list_name}")'


def _validity(cls: str, sheet: Sheet, plan: Plan, inp) -> str:
    c = inp.cell
    value = f"{_fn(c)}(params, data)"
    if inp.range is not None:
        lo, hi = (cpp_literal(v, c.type) for v in inp.range)
        if c.type == "int":  # one unsigned comparison: negative values wrap and fail
            test = (f"static_cast<unsigned>(value) - static_cast<unsigned>({lo}) <= "
                    f"static_cast<unsigned>({hi}) - static_cast<unsigned>({lo})")
        else:
            test = f"value >= {lo} && value <= {hi}"
        body = f"    {c.cpp_type} const value = {value};\n    bool const valid = {test};"
    elif inp.above is not None:
        body = f"    bool const valid = {value} > {cpp_literal(inp.above, c.type)};"
    elif inp.list_name is not None:
        body = (f"    {c.cpp_type} const value = {value};\n    std::vector<std::string> const list = {_list_expr(inp)};\n"
                f"    bool const valid = {_membership(inp, 'value')};")
    else:
        body = f"    bool const valid = isValid{c.camel}(params, data);"
    store = f"\n    params[Params::IS_VALID_{c.name}] = valid ? 1 : 0;" if f"IS_VALID_{c.name}" in sheet.by_name else ""
    out = "" if not inp.check else f"""
bool {cls}::calculateIsValid{c.camel}{SIG} {{
{body}{store}
    return valid;
}}
"""
    if inp.list_name is not None:
        out += f"""
std::string {cls}::calculateValidValues{c.camel}{_args(inp.list_name == "computed", True)} {{
    return prsm::joinList({_list_expr(inp)});
}}
"""
    return out


def _family_accessor(cls: str, sheet: Sheet, plan: Plan, cell: Cell) -> str:
    fam = cell.family
    present = fam.present[cell.pattern]
    cells = [sheet.by_name[cell.pattern.replace("{}", m)] for m in present]
    if all(plan.kind(c) == "family" for c in cells):
        return _family_memo(cls, sheet, cell)
    cases = "\n".join(f"        case {fam.name}::{fam.enumerator(m)}: return "
                      f"{'get' if cell.is_input else 'calculate'}{camel(cell.pattern.replace('{}', m))}(params, data);"
                      for m in present)
    # A pattern that only some members have answers the not-set value for the others.
    default = "    default:\n        break;\n" if len(present) < len(fam.members) else ""
    return f"""
{cell.cpp_type} {cls}::{_family_fn(cell)}(Params& params, Data const& data, {fam.name} member) const {{
    switch (member) {{
{cases}
{default}    }}
    return {NOT_SET[cell.type]};
}}
"""


def _family_memo(cls: str, sheet: Sheet, cell: Cell) -> str:
    """The memoised cell of one member: the member's cell is found in a table indexed by the member, so
    the formula and the cache test are written once for the whole family (each member's own cell
    function delegates here). Members without the pattern's cell answer the not-set value."""
    fam = cell.family
    title = {"int": "Int", "float": "Float", "string": "String"}[cell.type]
    enum = f"Params::{title}Enum"
    present = set(fam.present[cell.pattern])
    rows = "\n".join(f"        Params::{cell.pattern.replace('{}', m)}," if m in present else f"        Params::Last{title},"
                     for m in fam.members)
    shared = sheet.formulas.get(cell.pattern)
    expr = shared.call("member") if shared else f"compute{fam.pattern_camel(cell.pattern)}(params, data, member)"
    cached = "std::string const&" if cell.type == "string" else cell.cpp_type
    missing = ""
    if len(present) < len(fam.members):
        missing = f"    if (cell == Params::Last{title}) return {NOT_SET[cell.type]};\n"
    return f"""
{cell.cpp_type} {cls}::{_family_fn(cell)}(Params& params, Data const& data, {fam.name} member) const {{
    static constexpr {enum} cells[] = {{
{rows}
    }};
    {enum} const cell = cells[static_cast<std::size_t>(member)];
{missing}    {cached} cached = params[cell];
    if (cached != {NOT_SET[cell.type]}) return cached;
    return params[cell] = {expr};
}}
"""


def _dispatch(cls: str, sheet: Sheet, plan: Plan, t: str) -> str:
    """A name -> cell table. Cells are reached through member pointers (one table row each, no closure
    type per cell), so that a sheet of thousands of cells compiles quickly; validity functions return
    bool and are reached through one small adapter each."""
    ret = CPP_TYPE[t]
    entries, wrapped = [], []
    for cell in sheet.all_cells():
        if cell.type != t:
            continue
        if cell.name in plan.validity:
            wrapped.append((cell.name, f"calculateIsValid{plan.validity[cell.name].cell.camel}"))
        else:
            entries.append((cell.name, _fn(cell)))
    if t == "int":
        for name, inp in plan.validated.items():
            if f"IS_VALID_{name}" not in sheet.by_name and inp.check:
                wrapped.append((f"calculateIsValid{name}", f"calculateIsValid{inp.cell.camel}"))
    fallback = {"int": "0", "float": "0.0f", "string": "std::string()"}[t]
    head = f"{ret} {cls}::{t}DispatchTable(Params& params, Data const& data, std::string const& name) const {{"
    if not entries and not wrapped:
        return f"""
{head}
    (void)params, (void)data, (void)name;
    return {fallback};
}}
"""
    arrays, fills = [], []
    if entries:
        rows = "\n".join(f'        {{"{n}", &Self::{fn}}},' for n, fn in entries)
        arrays.append(f"""    static std::pair<char const*, Member> const cells[] = {{
{rows}
    }};""")
        fills.append("        for (auto const& [key, member] : cells) map.emplace(key, Cell{member, nullptr});")
    if wrapped:
        rows = "\n".join(f'        {{"{n}", [](Self const& m, Params& p, Data const& d) -> {ret} {{ return m.{fn}(p, d); }}}},'
                         for n, fn in wrapped)
        arrays.append(f"""    static std::pair<char const*, Adapter> const adapters[] = {{
{rows}
    }};""")
        fills.append("        for (auto const& [key, adapter] : adapters) map.emplace(key, Cell{nullptr, adapter});")
    nl = "\n"
    return f"""
{head}
    using Self = {cls};
    using Member = {ret} (Self::*)(Params&, Data const&) const;
    using Adapter = {ret} (*)(Self const&, Params&, Data const&);
    struct Cell {{
        Member member;
        Adapter adapter;
    }};
{nl.join(arrays)}
    static std::unordered_map<std::string, Cell> const table = [] {{
        std::unordered_map<std::string, Cell> map;
{nl.join(fills)}
        return map;
    }}();
    auto const it = table.find(name);
    if (it == table.end()) return {fallback};
    if (it->second.adapter != nullptr) return it->second.adapter(*this, params, data);
    return (this->*(it->second.member))(params, data);
}}
"""


def _cell_info(sheet: Sheet, plan: Plan, cell: Cell) -> str:
    default, rule, key, listed = "", "", "", "false"
    if cell.is_input:
        inp = sheet.inputs[cell.name]
        if inp.computed_default is not None:
            default = inp.computed_default
        elif inp.default is not None:
            default = str(inp.default)
        if inp.validated and inp.check:
            rule, key = inp.rule_text(), plan.validity_key(cell.name)
        listed = "true" if inp.list_name is not None else "false"
    esc = lambda s: s.replace("\\", "\\\\").replace('"', '\\"')
    return (f'    {{"{cell.name}", {CELL_TYPE[cell.type]}, {CELL_CATEGORY[cell.category]}, "{esc(default)}", '
            f'"{esc(rule)}", "{key}", {listed}, "{esc(cell.unit)}", '
            f'"{esc(cell.warnings.get("below_zero", ""))}", "{esc(cell.warnings.get("above_zero", ""))}", '
            f'"{esc(cell.warnings.get("no_value", ""))}", {_outside_row(cell, esc)}, "{esc(cell.description)}"}},')


def _outside_row(cell: Cell, esc) -> str:
    low, high, message = cell.outside or ("", "", "")
    return f'"{low}", "{high}", "{esc(message)}"'


def _rows_lacking(sheet: Sheet) -> str:
    """Per string input that may select table rows (a key whose name is part of the input's: "device" for
    DEVICE and INTERNAL_DEVICE_NAME), the check that the value it holds has a row in each table whose
    keys hold the input's default at that place."""
    def plain(name: str) -> str:
        return name.replace("_", "").lower()
    blocks = []
    for cell in sheet.all_cells():
        default = sheet.inputs[cell.name].default if cell.is_input else None
        if cell.type != "string" or not isinstance(default, str):
            continue
        checks = [f'        prsm::appendIfNoRow(data.{t.member}, "{t.label}", {i}, {cpp_literal(default, "string")}, '
                  f'value, missing);'
                  for t in sheet.tables if t.type != "list"
                  for i, key in enumerate(t.keys) if plain(key) in plain(cell.name)]
        if checks:
            blocks.append(f'    if (input == "{cell.name}") {{\n' + "\n".join(checks) + "\n    }")
    return "\n".join(blocks)


def _definitions(sheet: Sheet, plan: Plan, cls: str) -> list[str]:
    """The cell functions: memoised inputs and formulas, constants, bounds, the string-cell references, the
    derived values and the family accessors."""
    out: list[str] = []
    for cell in sheet.all_cells():
        kind = plan.kind(cell)
        if kind == "input":
            out.append(_input(cls, sheet, cell))
        elif kind == "formula":
            shared = sheet.formulas.get(cell.name)
            out.append(_memo(cls, cell, shared.call() if shared else f"compute{cell.camel}(params, data)"))
        elif kind == "family":  # the family's accessor holds the cache test and the formula
            fam = cell.family
            member = f"{fam.name}::{fam.enumerator(cell.member)}"
            out.append(f"""
{cell.cpp_type} {cls}::{_fn(cell)}{SIG} {{ return {_family_fn(cell)}(params, data, {member}); }}
""")
        elif kind == "constant":  # stored without looking at the cache
            out.append(f"""
{cell.cpp_type} {cls}::{_fn(cell)}{_args(True, False)} {{
    return params[Params::{cell.name}] = {cpp_literal(sheet.constants[cell.name], cell.type)};
}}
""")
        elif kind == "bound":
            inp, fn = plan.bounds[cell.name]
            lo, hi = (cpp_literal(float(v), "float") for v in inp.range)
            out.append(f"""
{cell.cpp_type} {cls}::{_fn(cell)}{_args(True, False)} {{
    return params[Params::{cell.name}] = PRSMHelperUtils::{fn}({lo}, {hi});
}}
""")
    for cell in sheet.all_cells():
        if cell.type == "string":
            out.append(f"""
std::string const& {cls}::ref{cell.camel}{SIG} {{
    std::string const& cell = params[Params::{cell.name}];
    if (prsm::cells::isNotSet(cell)) {_fn(cell)}(params, data);
    return cell;
}}
""")
    for i, name in enumerate(sheet.derived):
        out.append(f"""
float {cls}::derived{camel(name)}{SIG} {{
    float& value = params.m_derivedFloats[{i}];  // {name}
    if (value != prsm::kFloatNotSet) return value;
    return value = compute{camel(name)}(params, data);
}}
""")
    seen = set()
    for cell in sheet.all_cells():
        if cell.family is not None and (cell.family.name, cell.pattern) not in seen:
            seen.add((cell.family.name, cell.pattern))
            out.append(_family_accessor(cls, sheet, plan, cell))
    return out


def source(sheet: Sheet, formulas_file: bool = True) -> str:
    """The model's source. A sheet without a formulas file defines its cell functions here."""
    plan = Plan(sheet)
    cls = sheet.prefix + "Model"
    cell_bodies = "" if formulas_file else f"#include <prsm/{sheet.subdir}/{sheet.prefix}Cells.h>\n"
    parts = [f"""{HEADER_NOTE.format(stem=sheet.stem)}#include <prsm/{sheet.subdir}/{cls}.h>
{cell_bodies}
#include <prsm/framework/PRSMCellSupport.h>
#include <prsm/framework/PRSMModelSupport.h>
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/framework/PRSMSheetAdapter.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>
"""]
    for fam in sheet.families:
        cases = "\n".join(f'        case {fam.name}::{fam.enumerator(m)}: return "{m}";' for m in fam.members)
        parts.append(f"""
std::string_view {cls}::memberName({fam.name} member) {{
    switch (member) {{
{cases}
    }}
    return {{}};
}}
""")
    parts.append(member_rows.definitions(sheet, cls))
    for inp in plan.validated.values():
        parts.append(_validity(cls, sheet, plan, inp))
    parts.append(f"""
std::string {cls}::className() const {{ return "{cls}"; }}
""")
    for t in TYPES:
        parts.append(_dispatch(cls, sheet, plan, t))
    listed = [i for i in plan.validated.values() if i.list_name is not None]
    vv = "\n".join(f'    if (input == "{i.cell.name}") return model.calculateValidValues{i.cell.camel}(params, data);'
                   for i in listed)
    infos = "\n".join(_cell_info(sheet, plan, c) for c in sheet.all_cells())
    esc_desc = sheet.description.replace('"', '\\"')
    parts.append(f"""
{cls}& {cls}::getMutableGlobal() {{
    static {cls} model;
    return model;
}}

{cls} const& {cls}::getGlobal() {{ return getMutableGlobal(); }}

namespace {{

std::string validValuesByName({cls} const& model, {cls}::Params& params, {cls}::Data const& data,
                              std::string const& input) {{
{vv}
    (void)model, (void)params, (void)data, (void)input;
    return std::string();
}}

constexpr prsm::CellRow cellRows[] = {{
{infos}
}};

std::vector<prsm::MissingRow> rowsLacking({cls}::Data const& data, std::string const& input,
                                          std::string const& value) {{
    std::vector<prsm::MissingRow> missing;
{_rows_lacking(sheet)}
    (void)data, (void)input, (void)value;
    return missing;
}}

prsm::GeneratedSheet<{cls}> const registration("{sheet.stem}", "{esc_desc}", prsm::describeCells(cellRows), &validValuesByName,
                                                &rowsLacking, {design_decl.initializer(sheet.design)});

}}  // namespace
""")
    return "".join(parts)
