"""The generator's reading of [warnings.outside], [warnings.no_value] and [design] requires."""

import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "sheetgen"))

import design_decl  # noqa: E402
from sheet import load  # noqa: E402

BASE = """
[sheet]
description = "warnings"
calculate = ["COUNT", "VCCINT_MIN", "VCCINT_MAX"]
{extra}
[cells.int]
outputs = ["COUNT"]
[cells.float]
inputs = ["TOGGLE_RATE", "ENABLE_RATE", "VCCINT"]
outputs = ["VCCINT_MIN", "VCCINT_MAX"]
[cells.string]
inputs = ["DEVICE"]
[inputs."{{TOGGLE_RATE,ENABLE_RATE,VCCINT}}"]
default = 0.0
[inputs.DEVICE]
default = "D"
[descriptions]
"*" = "A cell of the warnings sheet"
"""


def sheet_with(extra: str):
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder) / "Warned.toml"
        path.write_text(BASE.format(extra=extra))
        return load(path, Path(folder))


class DeclaredChecks(unittest.TestCase):
    def test_bounds_are_numbers_or_the_cells_a_pattern_names(self):
        sheet = sheet_with("""
[warnings.outside."*_RATE"]
range = [0, 1.0]
message = "{cell} = {value} outside {low} .. {high} ({*})"
[warnings.outside.VCCINT]
range = ["{*}_MIN", "{cell}_MAX"]
message = "{value} {unit}"
[warnings.no_value]
COUNT = "{cell} did not fit"
[design]
requires = { AIE = "AIE", NOC = ["NOC", "NOC2"] }
""")
        cells = sheet.by_name
        # {cell} and {*} are filled in here, {value}, {unit}, {low} and {high} by the host.
        self.assertEqual(cells["TOGGLE_RATE"].outside, ("0.0", "1.0", "TOGGLE_RATE = {value} outside {low} .. {high} (TOGGLE)"))
        self.assertEqual(cells["VCCINT"].outside, ("VCCINT_MIN", "VCCINT_MAX", "{value} {unit}"))
        self.assertIsNone(cells["VCCINT_MIN"].outside)
        self.assertEqual(cells["COUNT"].warnings, {"no_value": "COUNT did not fit"})
        self.assertEqual(sheet.design.requires, [("AIE", ["AIE"]), ("NOC", ["NOC", "NOC2"])])
        self.assertTrue(design_decl.initializer(sheet.design).endswith('{{"AIE", {"AIE"}}, {"NOC", {"NOC", "NOC2"}}}, {}, {}, "", "", "", {}}'))


if __name__ == "__main__":
    unittest.main()
