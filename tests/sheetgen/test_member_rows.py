"""The generator's member rows ([rows.<Family>]): what it accepts, emits and refuses."""

import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "sheetgen"))

import member_rows  # noqa: E402
from sheet import SheetError, load  # noqa: E402

BASE = """
[sheet]
description = "rows"
calculate = ["A_CURRENT", "B_CURRENT"]
[descriptions]
"*" = "A cell of the rows sheet"
[cells.int]
inputs = ["USED_A", "USED_B"]
[cells.float]
inputs = ["VCCINT", "VCCAUX", "TJ"]
outputs = ["A_CURRENT", "B_CURRENT"]
[inputs."{{USED_A,USED_B}}"]
default = 0
[inputs."{{VCCINT,VCCAUX,TJ}}"]
default = 0.0
[[families]]
name = "Rail"
members = ["VCCINT", "VCCAUX"]
cells = ["{{}}"]
[[families]]
name = "Block"
members = ["A", "B"]
cells = ["{{}}_CURRENT"]
{rows}
"""

COLUMNS = """
[rows.Block.columns]
rail = "Rail"
core = "text"
count = "int cell"
rule = ["used", "always"]
"""


def sheet_with(rows: str):
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder) / "Rows.toml"
        path.write_text(BASE.format(rows=rows))
        return load(path, Path(folder))


def with_members(a: str, b: str = 'B = { rail = "VCCAUX", rule = "always" }') -> str:
    return COLUMNS + f"[rows.Block.members]\nA = {a}\n{b}\n"


class MemberRows(unittest.TestCase):
    def test_rows_become_one_constant_array_in_member_order(self):
        sheet = sheet_with(with_members('{ rail = "VCCINT", core = "A_CORE", count = "USED_A", rule = "used" }'))
        declared = "\n".join(member_rows.declarations(sheet, "M"))
        self.assertIn("enum class BlockRule { USED, ALWAYS };", declared)
        self.assertIn("CellFunction<int> count;", declared)
        self.assertIn("static constexpr std::size_t kBlockMembers = 2;", declared)
        defined = member_rows.definitions(sheet, "M")
        # A's row names everything; B's leaves the text empty and the cell out.
        self.assertIn('{M::Rail::VCCINT, "A_CORE", &M::getUsedA, M::BlockRule::USED}', defined)
        self.assertIn('{M::Rail::VCCAUX, "", nullptr, M::BlockRule::ALWAYS}', defined)
        self.assertLess(defined.index("VCCINT"), defined.index("VCCAUX"))

    def test_a_sheet_without_rows_emits_nothing(self):
        sheet = sheet_with("")
        self.assertEqual(member_rows.declarations(sheet, "M"), [])
        self.assertEqual(member_rows.definitions(sheet, "M"), "")

    def test_refusals(self):
        refused = {
            "no such family": ('[rows.Lane.columns]\nx = "text"\n[rows.Lane.members]\n', "no family Lane"),
            "columns and members only": (COLUMNS, "a table of columns and members"),
            "no column": ("[rows.Block.columns]\n[rows.Block.members]\n", "no column"),
            "column name": ('[rows.Block.columns]\nRail = "Rail"\n[rows.Block.members]\n', "lower_snake_case"),
            "choices": ('[rows.Block.columns]\nrule = ["a", "a"]\n[rows.Block.members]\n', "distinct"),
            "column kind": ('[rows.Block.columns]\nx = "number"\n[rows.Block.members]\n', "is not \"text\""),
            "not a member": (with_members('{ rail = "VCCINT", rule = "used" }', 'C = { rail = "VCCINT", rule = "used" }'),
                             "C is not a member of Block"),
            "a member without a row": (COLUMNS + '[rows.Block.members]\nA = { rail = "VCCINT", rule = "used" }\n',
                                       "no row for B"),
            "row not a table": (with_members('"VCCINT"'), "a table of column = value"),
            "unknown column": (with_members('{ rail = "VCCINT", rule = "used", size = "1" }'), "unknown columns"),
            "family column left out": (with_members('{ rule = "used" }'), "no rail"),
            "value not a text": (with_members('{ rail = "VCCINT", rule = "used", core = 3 }'), "a text"),
            "rail not a member": (with_members('{ rail = "VCCO", rule = "used" }'), "VCCO is not a member of Rail"),
            "not a choice": (with_members('{ rail = "VCCINT", rule = "sometimes" }'), "is not one of used, always"),
            "cell of another type": (with_members('{ rail = "VCCINT", rule = "used", count = "TJ" }'),
                                     "TJ is not one of the sheet's int cells"),
        }
        for case, (rows, message) in refused.items():
            with self.subTest(case), self.assertRaises(SheetError) as caught:
                sheet_with(rows)
            self.assertIn(message, str(caught.exception), case)

    def test_a_cell_column_may_name_one_member_of_a_family(self):
        # The member's own function: a row can add up another family's cells (a rail's sum of its blocks).
        rows = '[rows.Block.columns]\nvolts = "float cell"\nshare = "float cell"\n[rows.Block.members]\n' \
               'A = { volts = "VCCINT", share = "B_CURRENT" }\nB = {}\n'
        defined = member_rows.definitions(sheet_with(rows), "M")
        self.assertIn("{&M::getVccint, &M::calculateBCurrent}", defined)
        self.assertIn("{nullptr, nullptr}", defined)

if __name__ == "__main__":
    unittest.main()
