"""The generated model header declares; the cell functions' bodies go to the private Cells header, and
every function is defined exactly once, by the generator or by the sheet's formulas."""

import re
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "sheetgen"))

import emit_model  # noqa: E402
from sheet import load  # noqa: E402

# The shipped tables cover the kinds of generated function: formulas and constants (the logic-element
# sheet), derived values and string references (the same), families (the static sheet) and cells bound to
# a shared formula template (a clock manager).
TABLES = ["models/talvex/TalvexCleLogic.toml", "models/talvex/TalvexStatic.toml", "models/talvex/TalvexMmcm.toml"]
HAND_WRITTEN = ("compute", "default", "isValid", "validList")


def declared(header: str) -> set[str]:
    return set(re.findall(r"^    [^(/]* (\w+)\((?:Params&|Model const&)", header, re.M))


def defined(cls: str, text: str) -> list[str]:
    """The functions a text defines, each with its parameters (memberName is one overload per family)."""
    return re.findall(rf"^\S[^(]* {cls}::(\w+\([^)]*\))", text, re.M)


def names(functions) -> set[str]:
    return {f[:f.index("(")] for f in functions}


class ModelSplit(unittest.TestCase):
    def test_each_function_is_defined_once_and_never_in_the_installed_header(self):
        for table in TABLES:
            with self.subTest(table=table):
                sheet = load(ROOT / table, ROOT)
                cls = sheet.prefix + "Model"
                header, cells = emit_model.header(sheet), emit_model.cells(sheet)
                source = emit_model.source(sheet, formulas_file=True)
                # No definition (Cls::name); a member-pointer type (Cls::*) of the member rows is fine.
                self.assertNotRegex(header, rf"{cls}::(?!\*)")
                in_cells, in_source = defined(cls, cells), defined(cls, source)
                everywhere = in_cells + in_source
                self.assertEqual(len(everywhere), len(set(everywhere)), "a function defined twice")
                generated = {name for name in declared(header) if not name.startswith(HAND_WRITTEN)}
                self.assertTrue(generated, "no declaration found: the pattern no longer reads the header")
                self.assertEqual(generated - names(everywhere), set(), "declared but never defined")
                self.assertFalse({n for n in names(everywhere) if n.startswith(HAND_WRITTEN)}, "a formula generated")
                # The functions the formulas call (getters, cells, references, derived values) are in the
                # Cells header; the source keeps validity, dispatch and calculate.
                self.assertEqual(names(in_cells) & names(in_source), set())
                self.assertFalse({n for n in names(in_source) if n.startswith(("get", "ref", "derived"))
                                  and n not in ("getGlobal", "getMutableGlobal")})

    def test_the_generated_source_defines_the_cells_only_without_a_formulas_file(self):
        sheet = load(ROOT / TABLES[0], ROOT)
        include = f"#include <prsm/{sheet.subdir}/{sheet.prefix}Cells.h>"
        self.assertNotIn(include, emit_model.source(sheet, formulas_file=True))
        self.assertIn(include, emit_model.source(sheet, formulas_file=False))
        self.assertIn(include, (ROOT / TABLES[0]).with_suffix(".cpp").read_text())


if __name__ == "__main__":
    unittest.main()
