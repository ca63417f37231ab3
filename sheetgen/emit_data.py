"""Emits a sheet's data class: one map per table, typed getters, loading, listing and reflect."""

from emit_params import HEADER_NOTE
from sheet import Sheet, Table

ERROR_VALUE = {"float": "prsm::kFloatNotSet", "int": "prsm::kIntNotSet", "string": "prsm::kStringNotSet"}


def _params(table: Table) -> str:
    return ", ".join(f"std::string_view {k}" for k in table.keys)


def header(sheet: Sheet) -> str:
    cls = sheet.prefix + "Data"
    getters, members = [], []
    for t in sheet.tables:
        getters.append(f"    {t.cpp_type} {t.getter}({_params(t)}) const;")
        if t.type in ERROR_VALUE:
            getters.append(f"    // The same, or the type's error value when the table has no such entry.")
            getters.append(f"    {t.cpp_type} {t.getter}OrError({_params(t)}) const;")
        members.append(f"    std::unordered_map<std::string, {t.cpp_type}> {t.member};  // {', '.join(t.settings)}")
    return f"""{HEADER_NOTE.format(stem=sheet.stem)}#pragma once

#include <prsm/framework/PRSMData.h>

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The tables of the {sheet.stem} sheet, loaded once from "{sheet.data_file or ''}".
class {cls} : public PRSMData {{
public:
    {cls}();

    std::string className() const override;
    std::string reflect() const override;

    // Clears every table and loads the file again.
    void reset();
    void loadCfgData();
    // The keys of every table, table by table in load order, each table's keys sorted. The first form
    // replaces the contents of `keys`; the second appends to them unless `clear` is set.
    void getCfgKeys(std::vector<std::string>& keys) const;
    void getCfgKeys(std::vector<std::string>& keys, bool clear) const;

{chr(10).join(getters)}

    static {cls}& getMutableGlobal();
    static {cls} const& getGlobal();

{chr(10).join(members)}
}};
"""


def _getter(cls: str, t: Table) -> str:
    key = f"prsm::lookupKey({', '.join(t.keys)})"
    out = f"""
{t.cpp_type} {cls}::{t.getter}({_params(t)}) const {{
    std::string const& composed = {key};
    auto const it = {t.member}.find(composed);
    if (it == {t.member}.end()) PRSMHelperUtils::throwMissingKey(composed, "{t.label}", "{cls}::{t.getter}");
    return it->second;
}}
"""
    if t.type in ERROR_VALUE:
        out += f"""
{t.cpp_type} {cls}::{t.getter}OrError({_params(t)}) const {{
    auto const it = {t.member}.find({key});
    return it == {t.member}.end() ? {t.cpp_type}({ERROR_VALUE[t.type]}) : it->second;
}}
"""
    return out


def source(sheet: Sheet) -> str:
    cls = sheet.prefix + "Data"
    clears = "\n".join(f"    {t.member}.clear();" for t in sheet.tables)
    loads = []
    for setting, t in sheet.load_order:
        call = ("PRSMHelperUtils::loadCfgDataToList(&cfg, path, " if t.type == "list"
                else "PRSMHelperUtils::loadCfgDataToVar(&cfg, path, ")
        loads.append(f'    path.emplace_back("{setting}");\n    {call}{t.member}, true);\n    path.pop_back();')
    keys = "\n".join(f"    append(PRSMHelperUtils::getCfgKeyVectorFromList({t.member}));" for t in sheet.tables)
    reflects = "\n".join(f'    prsm::data::appendTable(text, "{t.label}", {t.member});' for t in sheet.tables)
    load_body = (f"""    libconfig::Config cfg;
    readFile(&cfg, "{sheet.data_file}");
    std::vector<std::string> path{{"{cls}"}};
{chr(10).join(loads)}""" if sheet.tables else "")
    return f"""{HEADER_NOTE.format(stem=sheet.stem)}#include <prsm/{sheet.subdir}/{cls}.h>

#include <prsm/framework/PRSMCellSupport.h>
#include <prsm/framework/PRSMConfigHelpers.h>
#include <prsm/framework/PRSMDataSupport.h>
#include <prsm/framework/PRSMReservedValues.h>

#include <libconfig.h++>

{cls}::{cls}() {{ reset(); }}

std::string {cls}::className() const {{ return "{cls}"; }}

void {cls}::reset() {{
{clears}
    loadCfgData();
}}

void {cls}::loadCfgData() {{
{load_body}
}}

void {cls}::getCfgKeys(std::vector<std::string>& keys) const {{ getCfgKeys(keys, true); }}

void {cls}::getCfgKeys(std::vector<std::string>& keys, bool clear) const {{
    if (clear) keys.clear();
    auto const append = [&keys](std::vector<std::string> const& more) {{
        keys.insert(keys.end(), more.begin(), more.end());
    }};
{keys}
    (void)append;
}}

std::string {cls}::reflect() const {{
    std::string text;
{reflects}
    return text;
}}
{"".join(_getter(cls, t) for t in sheet.tables)}
{cls}& {cls}::getMutableGlobal() {{
    static {cls} data;
    return data;
}}

{cls} const& {cls}::getGlobal() {{ return getMutableGlobal(); }}
"""
