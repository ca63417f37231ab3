"""The installed data header declares; the tables' indexes are private and every getter is defined
exactly once: beside the formulas for a sheet with a model, in the data source for one without."""

import re
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "sheetgen"))

import emit_data  # noqa: E402
import emit_model  # noqa: E402
from sheet import load  # noqa: E402

# A sheet with constant keys and a two-part table (logic elements), one whose lists and scalars mix (the
# static sheet), and the device catalogue, which has no model.
TABLES = ["models/talvex/TalvexCleLogic.toml", "models/talvex/TalvexStatic.toml", "framework/CommonParamControl.toml"]


def declared_getters(header: str) -> list[str]:
    """Each getter the header declares, with its parameter types ("getLutCap(LutCapKey)")."""
    found = re.findall(r"^    [\w:<>, ]+ (get\w+)\(([^)]*)\) const;", header, re.M)
    return [f"{name}({', '.join(p.rsplit(' ', 1)[0] for p in params.split(', ') if p)})" for name, params in found]


def defined_getters(cls: str, text: str) -> list[str]:
    found = re.findall(rf"^\S[^(]* {cls}::(get\w+)\(([^)]*)\) const \{{", text, re.M)
    return [f"{name}({', '.join(p.rsplit(' ', 1)[0] for p in params.split(', ') if p)})" for name, params in found]


def names(getters: list[str]) -> set[str]:
    return {g[:g.index("(")] for g in getters}


class DataSplit(unittest.TestCase):
    def test_each_getter_is_defined_once_where_its_callers_inline_it(self):
        for table in TABLES:
            with self.subTest(table=table):
                sheet = load(ROOT / table, ROOT)
                cls = sheet.prefix + "Data"
                header = emit_data.header(sheet)
                in_source = defined_getters(cls, emit_data.source(sheet))
                in_cells = defined_getters(cls, emit_model.cells(sheet)) if sheet.has_model else []
                declared = declared_getters(header)
                self.assertTrue(declared, "no declaration found: the pattern no longer reads the header")
                self.assertEqual(sorted(in_source + in_cells), sorted(set(in_source + in_cells)), "defined twice")
                self.assertEqual(set(declared), set(in_source + in_cells))
                # With a model, the scalar getters sit with the formulas; a list getter returns a copy
                # anyway and stays in the data source.
                scalar = {t.getter for t in sheet.tables if t.type != "list"}
                scalar |= {g + "OrError" for g in scalar}
                if sheet.has_model:
                    self.assertEqual(names(in_cells), scalar)
                    self.assertFalse(names(in_source) & scalar)

    def test_the_installed_header_holds_no_index_machinery(self):
        for table in TABLES:
            with self.subTest(table=table):
                sheet = load(ROOT / table, ROOT)
                header = emit_data.header(sheet)
                self.assertNotRegex(header, r"#include <prsm/framework/PRSM(TableIndex|CellSupport|DataSupport)")
                # Only the indexes' base, declared and held through a pointer, is named.
                self.assertNotRegex(header, r"prsm::data::(?!DataIndexes\b)")
                self.assertNotIn("inline ", header)
                # The private header that defines the indexes names every scalar table, once.
                indexes = emit_data.indexes_header(sheet)
                scalars = [t for t in sheet.tables if t.type != "list"]
                self.assertEqual(len(re.findall(r"ResolvedTable<", indexes)), len(scalars))
                for t in scalars:
                    self.assertIn(f"> {t.map};", indexes)


if __name__ == "__main__":
    unittest.main()
