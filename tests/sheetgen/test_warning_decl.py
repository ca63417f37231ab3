"""The generator's reading of declared warnings ([warnings.outside], [warnings.no_value]) and of the
catalogue features a sheet requires ([design] requires)."""

import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "sheetgen"))

import design_decl  # noqa: E402
from sheet import SheetError, load  # noqa: E402

BASE = """
[sheet]
description = "warnings"
calculate = ["COUNT", "VCCINT_MIN", "VCCINT_MAX"]
[units]
V = ["VCC*"]
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
"""


def sheet_with(extra: str):
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder) / "Warned.toml"
        path.write_text(BASE.format(extra=extra))
        return load(path, Path(folder))


class OutsideRanges(unittest.TestCase):
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
""")
        cells = sheet.by_name
        # Numbers reach the host as their text; {cell} and {*} are filled in here, the rest by the host.
        self.assertEqual(cells["TOGGLE_RATE"].outside, ("0.0", "1.0", "TOGGLE_RATE = {value} outside {low} .. {high} (TOGGLE)"))
        self.assertEqual(cells["ENABLE_RATE"].outside[2], "ENABLE_RATE = {value} outside {low} .. {high} (ENABLE)")
        self.assertEqual(cells["VCCINT"].outside, ("VCCINT_MIN", "VCCINT_MAX", "{value} {unit}"))
        self.assertIsNone(cells["VCCINT_MIN"].outside)
        self.assertEqual(cells["COUNT"].warnings, {"no_value": "COUNT did not fit"})

    def test_refuses_each_kind_of_mistake(self):
        cases = {
            '[warnings.outside.NOPE]\nrange = [0, 1]\nmessage = "m"\n': "no cell NOPE",
            '[warnings.outside.DEVICE]\nrange = [0, 1]\nmessage = "m"\n': "DEVICE is a string cell",
            '[warnings.outside."X_*"]\nrange = [0, 1]\nmessage = "m"\n': "pattern X_* matches no number cell",
            '[warnings.outside.VCCINT]\nrange = [1, 1]\nmessage = "m"\n': "must be below the high one",
            '[warnings.outside.VCCINT]\nrange = [0]\nmessage = "m"\n': "range is [low, high]",
            '[warnings.outside.VCCINT]\nrange = [0, 1]\n': "expected { range = [low, high]",
            '[warnings.outside.VCCINT]\nrange = [0, 1]\nmessage = "m"\nlimit = 2\n': "expected { range",
            '[warnings.outside.VCCINT]\nrange = [0, 1]\nmessage = "{volts}"\n': "unknown field {volts}",
            '[warnings.outside.VCCINT]\nrange = [0, true]\nmessage = "m"\n': "a bound is a number or a cell name",
            '[warnings.outside.VCCINT]\nrange = ["{*}_LOW", 1]\nmessage = "m"\n': "gives VCCINT_LOW, which is no cell",
            '[warnings.outside.VCCINT]\nrange = ["DEVICE", 1]\nmessage = "m"\n': "bound DEVICE is a string cell",
            '[warnings.outside."*_RATE"]\nrange = [0, 1]\nmessage = "a"\n'
            '[warnings.outside."*E_RATE"]\nrange = [0, 2]\nmessage = "b"\n'
            '[warnings.outside."T*_RATE"]\nrange = [0, 3]\nmessage = "c"\n': "of equal length with different entries",
            '[warnings.no_value]\nCOUNT = "{low}"\n': "unknown field {low}",
            '[warnings.too_high]\nCOUNT = "m"\n': "unknown checks ['too_high']",
        }
        for extra, message in cases.items():
            with self.subTest(extra=extra):
                with self.assertRaises(SheetError) as caught:
                    sheet_with(extra)
                self.assertIn(message, str(caught.exception))


class RequiredFeatures(unittest.TestCase):
    def test_one_value_or_a_list_reaches_the_initialiser(self):
        decl = sheet_with('[design]\nrequires = { AIE = "AIE", NOC = ["NOC", "NOC2"] }\n').design
        self.assertEqual(decl.requires, [("AIE", ["AIE"]), ("NOC", ["NOC", "NOC2"])])
        self.assertTrue(design_decl.initializer(decl).endswith('{{"AIE", {"AIE"}}, {"NOC", {"NOC", "NOC2"}}}}'))

    def test_refuses_each_kind_of_mistake(self):
        cases = {
            '[design]\nrequires = "AIE"\n': "design.requires: a table",
            '[design]\nrequires = { aie = "AIE" }\n': "not an upper-case feature name",
            '[design]\nrequires = { AIE = [] }\n': "a value or a non-empty list",
            '[design]\nrequires = { AIE = 2 }\n': "a value or a non-empty list",
            '[design]\nrequires = { AIE = "" }\n': "a value or a non-empty list",
        }
        for extra, message in cases.items():
            with self.subTest(extra=extra):
                with self.assertRaises(SheetError) as caught:
                    sheet_with(extra)
                self.assertIn(message, str(caught.exception))


if __name__ == "__main__":
    unittest.main()
