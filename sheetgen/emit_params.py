"""Emits a sheet's parameter-set class: enumerations, storage, name tables, resets and reflect."""

from sheet import CATEGORIES, MARKER, TYPES, Sheet

TITLE = {"int": "Int", "float": "Float", "string": "String"}
CATEGORY_WORD = {"inputs": "UserInput", "outputs": "ModelOutput", "intermediates": "IntermediateCalculation"}
RESET = {"inputs": "resetUserInputs", "outputs": "resetModelOutputs",
         "intermediates": "resetIntermediateCalculations"}
HEADER_NOTE = "// Generated from {stem}.toml by sheetgen. Do not edit: change the table and rebuild.\n"


def enumerators(sheet: Sheet, t: str) -> list[tuple[str, bool]]:
    """The enumerators of one enumeration in order, each with whether it is a marker."""
    out = []
    for cat, cells in zip(CATEGORIES, sheet.cells[t]):
        out.append((f"First{MARKER[cat]}{TITLE[t]}", True))
        out += [(c.name, False) for c in cells]
        out.append((f"Last{MARKER[cat]}{TITLE[t]}", True))
    out.append((f"Last{TITLE[t]}", True))
    return out


def enum_list_string(sheet: Sheet, t: str) -> str:
    """The enumerator list as written: ", " after a marker, "," after a cell."""
    text = ""
    items = enumerators(sheet, t)
    for i, (name, marker) in enumerate(items):
        text += name
        if i + 1 < len(items):
            text += ", " if marker else ","
    return text


def header(sheet: Sheet) -> str:
    cls = sheet.prefix + "Params"
    enums = []
    for t in TYPES:
        body = ",\n".join(f"        {n}" for n, _ in enumerators(sheet, t))
        # A fixed underlying type: any int is a value of the enum, so a caller's out-of-range cell
        # reaches enum_to_string's "StringError" instead of undefined behaviour.
        enums.append(f"    enum {TITLE[t]}Enum : int {{\n{body}\n    }};")
    lists = "\n".join(f'    static constexpr char const* {TITLE[t]}EnumList =\n        "{enum_list_string(sheet, t)}";'
                      for t in TYPES)
    names = "\n".join(f"    void get{TITLE[t]}{CATEGORY_WORD[c]}Names(std::vector<std::string>& names) const;"
                      for t in TYPES for c in CATEGORIES)
    derived = ""
    if sheet.derived:
        derived = (f"    // Values that several formulas share, computed once per evaluation and cleared with the\n"
                   f"    // intermediate calculations; they are not cells: {', '.join(sheet.derived)}.\n"
                   f"    std::array<float, {len(sheet.derived)}> m_derivedFloats;\n")
    accessors = ""
    for t in TYPES:
        ret = "std::string" if t == "string" else t
        accessors += f"""
// Bounds-checked like std::array::at, and inline so that formulas read cells without a call.
inline {ret}& {cls}::operator[]({TITLE[t]}Enum const& cell) {{ return m_{t}Cells.at(cell); }}
inline {ret} {cls}::operator[]({TITLE[t]}Enum const& cell) const {{ return m_{t}Cells.at(cell); }}
"""
    return f"""{HEADER_NOTE.format(stem=sheet.stem)}#pragma once

#include <prsm/framework/PRSMParams.h>

#include <array>
#include <string>
#include <unordered_map>
#include <vector>

// The cells of the {sheet.stem} sheet: user inputs, model outputs and intermediate calculations.
class {cls} : public PRSMParams {{
public:
{chr(10).join(enums)}

{lists}

    {cls}();

    int& operator[](IntEnum const& cell);
    float& operator[](FloatEnum const& cell);
    std::string& operator[](StringEnum const& cell);
    int operator[](IntEnum const& cell) const;
    float operator[](FloatEnum const& cell) const;
    std::string operator[](StringEnum const& cell) const;

    void reset();
    void resetUserInputs();
    void resetModelOutputs();
    void resetIntermediateCalculations();

{names}

    static std::string enum_to_string(IntEnum cell);
    static std::string enum_to_string(FloatEnum cell);
    static std::string enum_to_string(StringEnum cell);
    static IntEnum string_to_int_enum(std::string const& name);
    static FloatEnum string_to_float_enum(std::string const& name);
    static StringEnum string_to_string_enum(std::string const& name);
    // The cell called `name` in the int, then float, then string enumeration; 0xFFFFFFFF if none.
    static unsigned int string_to_enum(std::string const& name);
    static void populateE2S(std::vector<std::string>& table, std::string list);
    static void populateS2E(std::unordered_map<std::string, unsigned int>& map, std::string list);

    std::string className() const override;
    std::string reflect() const override;

    std::array<int, LastInt> m_intCells;
    std::array<float, LastFloat> m_floatCells;
    std::array<std::string, LastString> m_stringCells;
{derived}}};
{accessors}"""


def source(sheet: Sheet) -> str:
    cls = sheet.prefix + "Params"
    parts = [f"""{HEADER_NOTE.format(stem=sheet.stem)}#include <prsm/{sheet.subdir}/{cls}.h>

#include <prsm/framework/PRSMCellSupport.h>
#include <prsm/framework/PRSMReservedValues.h>

#include <mutex>

namespace {{

std::mutex& nameTableMutex() {{
    static std::mutex mutex;
    return mutex;
}}

std::mutex& nameMapMutex() {{
    static std::mutex mutex;
    return mutex;
}}
"""]
    for t in TYPES:
        title = TITLE[t]
        parts.append(f"""
std::vector<std::string> const& {t}Names() {{
    static std::vector<std::string> const table = [] {{
        std::vector<std::string> names;
        {cls}::populateE2S(names, {cls}::{title}EnumList);
        return names;
    }}();
    return table;
}}

std::unordered_map<std::string, unsigned int> const& {t}Indices() {{
    static std::unordered_map<std::string, unsigned int> const map = [] {{
        std::unordered_map<std::string, unsigned int> indices;
        {cls}::populateS2E(indices, {cls}::{title}EnumList);
        return indices;
    }}();
    return map;
}}
""")
    parts.append(f"""
}}  // namespace

{cls}::{cls}() {{ reset(); }}
""")
    clear_derived = "    m_derivedFloats.fill(prsm::kFloatNotSet);\n" if sheet.derived else ""
    parts.append(f"""

void {cls}::reset() {{
    m_intCells.fill(prsm::kIntNotSet);
    m_floatCells.fill(prsm::kFloatNotSet);
    prsm::cells::fill(m_stringCells, 0, LastString, prsm::kStringNotSet);
{clear_derived}}}
""")
    for cat in CATEGORIES:
        m = MARKER[cat]
        # Int ranges include both markers; float and string ranges stop before the closing marker.
        parts.append(f"""
void {cls}::{RESET[cat]}() {{
    prsm::cells::fill(m_intCells, First{m}Int, Last{m}Int + 1, prsm::kIntNotSet);
    prsm::cells::fill(m_floatCells, First{m}Float, Last{m}Float, prsm::kFloatNotSet);
    prsm::cells::fill(m_stringCells, First{m}String, Last{m}String, prsm::kStringNotSet);
{clear_derived if cat == "intermediates" else ""}}}
""")
    for t in TYPES:
        for cat in CATEGORIES:
            m = MARKER[cat]
            parts.append(f"""
void {cls}::get{TITLE[t]}{CATEGORY_WORD[cat]}Names(std::vector<std::string>& names) const {{
    names.clear();
    prsm::cells::appendNames({t}Names(), First{m}{TITLE[t]}, Last{m}{TITLE[t]}, names);
}}
""")
    for t in TYPES:
        title = TITLE[t]
        parts.append(f"""
std::string {cls}::enum_to_string({title}Enum cell) {{ return prsm::cells::nameAt({t}Names(), cell); }}

{cls}::{title}Enum {cls}::string_to_{t}_enum(std::string const& name) {{
    return static_cast<{title}Enum>(prsm::cells::indexOf({t}Indices(), name, Last{title}));
}}
""")
    reflect_lines = []
    for cat in ("inputs", "intermediates", "outputs"):
        m = MARKER[cat]
        for t in TYPES:
            reflect_lines.append(
                f"    prsm::cells::appendLines(text, {t}Names(), m_{t}Cells, First{m}{TITLE[t]}, Last{m}{TITLE[t]});")
    parts.append(f"""
unsigned int {cls}::string_to_enum(std::string const& name) {{
    if (unsigned int const i = string_to_int_enum(name); i < LastInt) return i;
    if (unsigned int const f = string_to_float_enum(name); f < LastFloat) return f;
    if (unsigned int const s = string_to_string_enum(name); s < LastString) return s;
    return 0xFFFFFFFFu;
}}

void {cls}::populateE2S(std::vector<std::string>& table, std::string list) {{
    prsm::cells::populateNameTable(table, std::move(list), nameTableMutex());
}}

void {cls}::populateS2E(std::unordered_map<std::string, unsigned int>& map, std::string list) {{
    prsm::cells::populateNameMap(map, std::move(list), nameMapMutex());
}}

std::string {cls}::className() const {{ return "{cls}"; }}

// User inputs, then intermediate calculations, then model outputs; ints, floats, strings in each.
std::string {cls}::reflect() const {{
    std::string text;
{chr(10).join(reflect_lines)}
    return text;
}}
""")
    return "".join(parts)
