"""Emits a sheet's data class: one map per table, typed getters, loading, listing and reflect.

The installed header declares the class: its maps (the data, which a user may read and edit), its getters
and the keys its formulas name. The tables' indexes are private (<Class>Indexes.h, generated-private):
the class holds them behind one pointer. The scalar getters are defined where the sheet's formulas are
compiled (the model's Cells header), so that the formulas' lookups inline as they would from a header;
a sheet without a model defines them in its data source.
"""

from emit_params import HEADER_NOTE
from sheet import Sheet, Table, fixed_enumerator

ERROR_VALUE = {"float": "prsm::kFloatNotSet", "int": "prsm::kIntNotSet", "string": "prsm::kStringNotSet"}


def _params(table: Table) -> str:
    return ", ".join(f"std::string_view {k}" for k in table.keys)


def _scalar(table: Table) -> bool:
    return table.type != "list"


def _enum(table: Table) -> str:
    return table.map + "Key"


def _index(table: Table) -> str:
    return f"static_cast<Indexes&>(*m_indexes).{table.map}"


def _keys_array(table: Table) -> str:
    return f"k{table.map}Keys"


# A table with columns: per cell type, the getter's suffix and C++ type, and the fallback's parse.
COLUMN_TYPES = {"int": ("Int", "int", "intAt", "prsm::data::TextGrid::parseInt"),
                "float": ("Float", "float", "floatAt", "prsm::data::TextGrid::parseFloat"),
                "string": ("String", "std::string", "textAt", "")}


def _grid(table: Table) -> str:
    return f"static_cast<Indexes&>(*m_indexes).{table.map}Grid"


def _columns_array(table: Table, type_: str) -> str:
    return f"k{table.map}{COLUMN_TYPES[type_][0]}Columns"


def _column_declarations(t: Table) -> list[str]:
    """The typed getters of a table with columns and the column names they read, by position."""
    families = ", ".join(t.column_families)
    out = [f"    // {t.label} read at load into its columns' types (a private text grid): the",
           f"    // entry of row `{t.keys[0]}` in the column at position `column` of its type's list ({families}),",
           f"    // as {t.getter} and s2i/s2f give it, a missing entry's PRSMException included."]
    for type_, (suffix, cpp, _, _) in COLUMN_TYPES.items():
        names = ", ".join(f'"{n}"' for n in t.columns.get(type_, []))
        out.append(f"    static constexpr std::array<std::string_view, {len(t.columns.get(type_, []))}> "
                   f"{_columns_array(t, type_)}{{{names}}};")
    for type_, (suffix, cpp, _, _) in COLUMN_TYPES.items():
        if type_ in t.columns:
            out.append(f"    {cpp} {t.getter}{suffix}(std::string_view {t.keys[0]}, std::size_t column) const;")
    return out + [""]


def _column_getters(cls: str, t: Table) -> str:
    out = ""
    for type_, (suffix, cpp, reader, parse) in COLUMN_TYPES.items():
        if type_ not in t.columns:
            continue
        row = t.keys[0]
        fallback = f"{t.getter}({row}, {_columns_array(t, type_)}[column])"
        out += f"""
{cpp} {cls}::{t.getter}{suffix}(std::string_view {row}, std::size_t column) const {{
    if ({cpp} const* value = {_grid(t)}.{reader}({t.member}, {row}, column)) return *value;
    return {f"{parse}({fallback})" if parse else fallback};
}}
"""
    return out


def header(sheet: Sheet) -> str:
    cls = sheet.prefix + "Data"
    declarations, members, fixed = [], [], []
    for t in sheet.tables:
        declarations.append(f"    {t.cpp_type} {t.getter}({_params(t)}) const;")
        if t.type in ERROR_VALUE:
            declarations.append(f"    // The same, or the type's error value when the table has no such entry.")
            declarations.append(f"    {t.cpp_type} {t.getter}OrError({_params(t)}) const;")
        members.append(f"    std::unordered_map<std::string, {t.cpp_type}> {t.member};  // {', '.join(t.settings)}")
        if not _scalar(t):
            continue
        if t.columns:
            fixed += _column_declarations(t)
        keys = ", ".join(f'"{k}"' for k in t.fixed)
        if t.fixed:
            names = ", ".join(fixed_enumerator(k) for k in t.fixed)
            fixed += [f"    // {t.label}: the keys that the formulas write out, resolved when the file loads. Reading",
                      f"    // one behaves as the lookup by its text does, a missing key included.",
                      f"    enum class {_enum(t)} : std::size_t {{ {names} }};",
                      f"    static constexpr std::array<std::string_view, {len(t.fixed)}> {_keys_array(t)}{{{keys}}};",
                      f"    {t.cpp_type} {t.getter}({_enum(t)} key) const;"]
            if t.type in ERROR_VALUE:
                fixed.append(f"    {t.cpp_type} {t.getter}OrError({_enum(t)} key) const;")
            fixed.append("")
    return f"""{HEADER_NOTE.format(stem=sheet.stem)}#pragma once

#include <prsm/framework/PRSMData.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace prsm::data {{
struct DataIndexes;
}}

// The tables of the {sheet.stem} sheet, loaded once from "{sheet.data_file or ''}".
class {cls} : public PRSMData {{
public:
    {cls}();
    // A copy indexes its own maps.
    {cls}({cls} const& other);
    {cls}& operator=({cls} const& other);
    ~{cls}() override;

    std::string className() const override;
    std::string reflect() const override;

    // Clears every table and loads the file again.
    void reset();
    // Reads the file into the tables, then indexes them (see resolve).
    void loadCfgData();
    // Rebuilds the tables' indexes and resolves the constant keys. Loading does this; call it after
    // adding or erasing entries by hand for the lookups to be fast again (they stay correct without).
    void resolve();
    // The keys of every table, table by table in load order, each table's keys sorted. The first form
    // replaces the contents of `keys`; the second appends to them unless `clear` is set.
    void getCfgKeys(std::vector<std::string>& keys) const;
    void getCfgKeys(std::vector<std::string>& keys, bool clear) const;

{chr(10).join(declarations)}

{"".join(line + chr(10) for line in fixed)}    static {cls}& getMutableGlobal();
    static {cls} const& getGlobal();

{chr(10).join(members)}

private:
    // The scalar tables' indexes, rebuilt by resolve(), are private (an Indexes, defined in the
    // generated <Class>Indexes.h): behind a pointer, so that this header needs none of the index
    // machinery.
    struct Indexes;
    std::unique_ptr<prsm::data::DataIndexes> m_indexes;
}};
"""


def _scalars(sheet: Sheet) -> list[Table]:
    return [t for t in sheet.tables if _scalar(t)]


def indexes_header(sheet: Sheet) -> str:
    """The private definition of the data class's indexes: one per scalar table, with the constant keys
    its formulas name resolved at load."""
    cls = sheet.prefix + "Data"
    fields = "".join(f"    prsm::data::ResolvedTable<{t.cpp_type}, {len(t.fixed)}> {t.map};  // {t.label}\n"
                     for t in _scalars(sheet))
    fields += "".join(f"    prsm::data::TextGrid {t.map}Grid;  // {t.label} by row and typed column\n"
                      for t in _scalars(sheet) if t.columns)
    grid_include = "#include <prsm/framework/PRSMTextGrid.h>\n" if any(t.columns for t in sheet.tables) else ""
    return f"""{HEADER_NOTE.format(stem=sheet.stem)}// The indexes of the data class's tables, for its source and for the file that defines its
// getters. Not installed.
#pragma once

#include <prsm/{sheet.subdir}/{cls}.h>

#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/framework/PRSMTableIndex.h>
{grid_include}
#include <array>
#include <string_view>

struct {cls}::Indexes : prsm::data::DataIndexes {{
{fields}    // The constant keys of a table whose formulas name none.
    static constexpr std::array<std::string_view, 0> kNoKeys{{}};
}};
"""


def getters(sheet: Sheet) -> str:
    """The scalar getters' definitions, for the one translation unit that compiles them (see above)."""
    cls = sheet.prefix + "Data"
    return "".join(_getters(cls, t) + _column_getters(cls, t) for t in _scalars(sheet))


def _getters(cls: str, t: Table) -> str:
    """A scalar table's getters: through the index, or the resolved slot of a constant key."""
    keys = ", ".join(t.keys)
    found = f"{t.cpp_type} const* value"
    out = f"""
{t.cpp_type} {cls}::{t.getter}({_params(t)}) const {{
    if ({found} = {_index(t)}.find({t.member}, {keys})) return *value;
    prsm::data::throwMissing("{t.label}", "{cls}::{t.getter}", {keys});
}}
"""
    if t.type in ERROR_VALUE:
        out += f"""
{t.cpp_type} {cls}::{t.getter}OrError({_params(t)}) const {{
    {found} = {_index(t)}.find({t.member}, {keys});
    return value != nullptr ? *value : {t.cpp_type}({ERROR_VALUE[t.type]});
}}
"""
    if t.fixed:
        slot = f"{_index(t)}.fixed({t.member}, static_cast<std::size_t>(key))"
        out += f"""
{t.cpp_type} {cls}::{t.getter}({_enum(t)} key) const {{
    if ({found} = {slot}) return *value;
    prsm::data::throwMissing("{t.label}", "{cls}::{t.getter}", {_keys_array(t)}[static_cast<std::size_t>(key)]);
}}
"""
    if t.fixed and t.type in ERROR_VALUE:
        out += f"""
{t.cpp_type} {cls}::{t.getter}OrError({_enum(t)} key) const {{
    {found} = {slot};
    return value != nullptr ? *value : {t.cpp_type}({ERROR_VALUE[t.type]});
}}
"""
    return out


def _list_getter(cls: str, t: Table) -> str:
    key = f"prsm::lookupKey({', '.join(t.keys)})"
    return f"""
{t.cpp_type} {cls}::{t.getter}({_params(t)}) const {{
    std::string const& composed = {key};
    auto const it = {t.member}.find(composed);
    if (it == {t.member}.end()) PRSMHelperUtils::throwMissingKey(composed, "{t.label}", "{cls}::{t.getter}");
    return it->second;
}}
"""


def source(sheet: Sheet) -> str:
    cls = sheet.prefix + "Data"
    clears = "\n".join(f"    {t.member}.clear();" for t in sheet.tables)
    scalars = _scalars(sheet)
    grids = [t for t in scalars if t.columns]
    invalidates = "".join(f"    {_index(t)}.invalidate();\n" for t in scalars)
    invalidates += "".join(f"    {_grid(t)}.invalidate();\n" for t in grids)
    resolves = "\n".join(f"    {_index(t)}.resolve({t.member}, {len(t.keys)}, "
                         f"{_keys_array(t) if t.fixed else 'Indexes::kNoKeys'});" for t in scalars)
    resolves += "".join(f"\n    {_grid(t)}.build({t.member}, {', '.join(_columns_array(t, k) for k in COLUMN_TYPES)});"
                        for t in grids)
    # A sheet with a model defines its getters beside its formulas (the Cells header).
    own_getters = "" if sheet.has_model else getters(sheet)
    # The tables' copies, loads, keys and text go through the library's functions for their value type,
    # so that no class instantiates the containers' templates again.
    copies = "".join(f"    prsm::data::copyTable({t.member}, other.{t.member});\n" for t in sheet.tables)
    loads = []
    for setting, t in sheet.load_order:
        load = "loadCfgListSetting" if t.type == "list" else "loadCfgSetting"
        loads.append(f'    PRSMHelperUtils::{load}(&cfg, path, "{setting}", {t.member});')
    keys = "\n".join(f"    PRSMHelperUtils::appendCfgKeys(keys, {t.member});" for t in sheet.tables)
    reflects = "\n".join(f'    prsm::data::appendTable(text, "{t.label}", {t.member});' for t in sheet.tables)
    load_body = (f"""    libconfig::Config cfg;
    readFile(&cfg, "{sheet.data_file}");
    std::vector<std::string> path{{"{cls}"}};
{chr(10).join(loads)}""" if sheet.tables else "")
    return f"""{HEADER_NOTE.format(stem=sheet.stem)}#include <prsm/{sheet.subdir}/{cls}.h>
#include <prsm/{sheet.subdir}/{cls}Indexes.h>

#include <prsm/framework/PRSMCellSupport.h>
#include <prsm/framework/PRSMConfigHelpers.h>
#include <prsm/framework/PRSMDataSupport.h>
#include <prsm/framework/PRSMReservedValues.h>

#include <libconfig.h++>

#include <memory>

{cls}::{cls}() : m_indexes(std::make_unique<Indexes>()) {{ reset(); }}

{cls}::{cls}({cls} const& other) : PRSMData(other), m_indexes(std::make_unique<Indexes>()) {{
    *this = other;
}}

{cls}& {cls}::operator=({cls} const& other) {{
    if (this == &other) return *this;
{copies}    resolve();
    return *this;
}}

{cls}::~{cls}() = default;

std::string {cls}::className() const {{ return "{cls}"; }}

void {cls}::reset() {{
{invalidates}{clears}
    loadCfgData();
}}

void {cls}::loadCfgData() {{
{load_body}
    resolve();
}}

void {cls}::resolve() {{
{resolves}
}}

void {cls}::getCfgKeys(std::vector<std::string>& keys) const {{ getCfgKeys(keys, true); }}

void {cls}::getCfgKeys(std::vector<std::string>& keys, bool clear) const {{
    if (clear) keys.clear();
{keys}
}}

std::string {cls}::reflect() const {{
    std::string text;
{reflects}
    return text;
}}
{own_getters}{"".join(_list_getter(cls, t) for t in sheet.tables if not _scalar(t))}
{cls}& {cls}::getMutableGlobal() {{
    static {cls} data;
    return data;
}}

{cls} const& {cls}::getGlobal() {{ return getMutableGlobal(); }}
"""
