"""The generator's reading of [warnings.outside], [warnings.no_value] and [design] requires."""

import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "sheetgen"))

import design_decl  # noqa: E402
from sheet import SheetError, load  # noqa: E402

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
        self.assertTrue(design_decl.initializer(sheet.design).endswith('{{"AIE", {"AIE"}}, {"NOC", {"NOC", "NOC2"}}}, {}, {}, "", ""}'))

    def test_refuses_each_kind_of_mistake(self):
        outside = '[warnings.outside.{}]\nrange = {}\nmessage = "{}"\n'
        cases = {
            outside.format("NOPE", "[0, 1]", "m"): "no cell NOPE",
            outside.format("DEVICE", "[0, 1]", "m"): "DEVICE is a string cell",
            outside.format('"X_*"', "[0, 1]", "m"): "pattern X_* matches no number cell",
            outside.format("VCCINT", "[1, 1]", "m"): "must be below the high one",
            outside.format("VCCINT", "[0]", "m"): "range is [low, high]",
            outside.format("VCCINT", "[0, 1]", "{volts}"): "unknown field {volts}",
            outside.format("VCCINT", "[0, true]", "m"): "a bound is a number or a cell name",
            outside.format("VCCINT", '["{*}_LOW", 1]', "m"): "gives VCCINT_LOW, which is no cell",
            outside.format("VCCINT", '["DEVICE", 1]', "m"): "bound DEVICE is a string cell",
            '[warnings.outside.VCCINT]\nrange = [0, 1]\n': "expected { range = [low, high]",
            outside.format('"*E_RATE"', "[0, 2]", "b") + outside.format('"T*_RATE"', "[0, 3]", "c"):
                "of equal length with different entries",
            '[warnings.no_value]\nCOUNT = "{low}"\n': "unknown field {low}",
            '[warnings.too_high]\nCOUNT = "m"\n': "unknown checks ['too_high']",
            '[design]\nrequires = "AIE"\n': "design.requires: a table",
            '[design]\nrequires = { aie = "AIE" }\n': "not an upper-case feature name",
            '[design]\nrequires = { AIE = [] }\n': "a value or a non-empty list",
            '[design]\nrequires = { AIE = 2 }\n': "a value or a non-empty list",
        }
        for extra, message in cases.items():
            with self.subTest(extra=extra):
                with self.assertRaises(SheetError) as caught:
                    sheet_with(extra)
                self.assertIn(message, str(caught.exception))


if __name__ == "__main__":
    unittest.main()
