"""The generator's checks of the whole-design declarations ([rails] and [design]) of a sheet table."""

import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "sheetgen"))

import design_decl  # noqa: E402
from sheet import load  # noqa: E402

BASE = """
[sheet]
description = "declarations"
calculate = ["POWER", "AUX_CURRENT"]
{extra}
[descriptions]
"*" = "A cell of the declarations sheet"
[cells.float]
inputs = ["VCCINT", "VCC_SOC", "TJ", "FED"]
outputs = ["POWER", "AUX_CURRENT"]
[cells.string]
inputs = ["DEVICE"]
[inputs."{{VCCINT,VCC_SOC,TJ,FED}}"]
default = 0.0
[inputs.DEVICE]
default = "D"
"""


def sheet_with(extra: str):
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder) / "Decl.toml"
        path.write_text(BASE.format(extra=extra))
        return load(path, Path(folder))


class DesignDeclarations(unittest.TestCase):
    def test_architecture_is_declared_or_the_models_folder(self):
        self.assertEqual(sheet_with('[design]\narchitecture = "DRAVIK"\n').design.architecture, "DRAVIK")
        self.assertEqual(sheet_with("").design.architecture, "")  # a folder of no architecture
        self.assertTrue(design_decl.initializer(sheet_with('[design]\narchitecture = "ARCH"\n').design)
                        .endswith(', "", "ARCH", "", {}}'))
        with tempfile.TemporaryDirectory() as folder:
            tables = Path(folder) / "models" / "dravik"
            tables.mkdir(parents=True)
            (tables / "Decl.toml").write_text(BASE.format(extra=""))
            self.assertEqual(load(tables / "Decl.toml", Path(folder)).design.architecture, "DRAVIK")

    def test_accepted_declarations_reach_the_initialiser(self):
        sheet = sheet_with("""
[rails]
voltage = { VCC_SOC = "VCCSOC" }
power = { POWER = "VCCSOC" }
current = { AUX_CURRENT = "VCCAUX" }
[design]
region = "noc"
device = { DEVICE = "part" }
temperature = "TJ"
feeds = { FED = "rail:VCCINT,VCCSOC !region:aie tag:ip" }
""")
        d = sheet.design
        self.assertEqual(d.voltage, [("VCC_SOC", "VCCSOC")])
        self.assertEqual(d.current, [("AUX_CURRENT", "VCCAUX")])
        self.assertEqual(d.feeds, [("FED", "rail:VCCINT,VCCSOC !region:aie tag:ip")])
        text = design_decl.initializer(d)
        self.assertTrue(text.startswith('prsm::SheetDesign{"noc", {{"VCC_SOC", "VCCSOC"}}'))
        board = sheet_with('[design]\nboard_architecture = "ARCH"\nboard_currents = { FED = "VCCINT" }\n'
                           'board_total = "POWER"\nboard_regulators = { R1 = { load = "AUX_CURRENT", '
                           'over_limit = "POWER" } }\n').design
        self.assertEqual(board.board_currents, [("FED", "VCCINT")])
        self.assertEqual(board.board_regulators, [design_decl.BoardRegulatorDecl("R1", "AUX_CURRENT", "", "", "POWER")])
        self.assertTrue(design_decl.initializer(board).endswith(
            '"ARCH", {{"FED", "VCCINT"}}, "POWER", {{"R1", "AUX_CURRENT", "", "", "POWER", "", "", 0.0, 0.0, "", '
            'false}}, {}, {}, {}, "", "", "", {}}'))
        # What a regulator is: a buck from the input, and an LDO it feeds.
        tree = sheet_with('[design]\nboard_currents = { FED = "VCCINT" }\nboard_regulators = { '
                          'B = { rail = "V3V3", kind = "buck", voltage = 3.3, rating = 2, fed_from = "FED" }, '
                          'L = { kind = "ldo", voltage = 1.8, fed_from = "B", load_includes_fed = true } }\n').design
        self.assertEqual([(r.name, r.rail, r.kind, r.voltage, r.rating, r.fed_from, r.load_includes_fed)
                          for r in tree.board_regulators],
                         [("B", "V3V3", "buck", 3.3, 2.0, "FED", False), ("L", "", "ldo", 1.8, 0.0, "B", True)])
        self.assertIn('{"B", "", "", "", "", "V3V3", "buck", 3.3, 2.0, "FED", false}', design_decl.initializer(tree))
        # The list form: each cell is its rail's name, braces expanded.
        listed = sheet_with('[rails]\nvoltage = ["VCC{INT,_SOC}"]\n').design
        self.assertEqual(listed.voltage, [("VCCINT", "VCCINT"), ("VCC_SOC", "VCC_SOC")])

    def test_counts_and_their_feeds_carry_the_resource_they_take_up(self):
        d = sheet_with('[design]\ntemperature = "TJ"\ncount_feeds = { FED = "bram_active + bram_sleep", '
                       'VCCINT = "luts %" }\n[design.counts]\nluts = { cell = "POWER", when = { DEVICE = '
                       '["LUT*", "SRL"] } }\ndsps = "AUX_CURRENT"\n').design
        self.assertEqual(d.counts, [("luts", "POWER", "LUTS", "DEVICE", ["LUT*", "SRL"]),
                                    ("dsps", "AUX_CURRENT", "DSPS", "", [])])
        self.assertEqual(d.count_feeds, [("FED", ["bram_active", "bram_sleep"], "", False),
                                         ("VCCINT", ["luts"], "LUTS", True)])
        self.assertTrue(design_decl.initializer(d).endswith(
            '{{"luts", "POWER", "LUTS", "DEVICE", {"LUT*", "SRL"}}, {"dsps", "AUX_CURRENT", "DSPS", "", {}}}, '
            '{{"FED", {"bram_active", "bram_sleep"}, "", false}, {"VCCINT", {"luts"}, "LUTS", true}}, "", "", "", {}}'))

    def test_rails_held_in_another_rails_leakage(self):
        sheet = ('[rails]\nvoltage = ["VCCINT", "VCC_SOC"]\n[design]\ntemperature = "TJ"\n'
                 'powerup_current = "{}_POWERUP"\n[design.counted_in]\n')
        d = sheet_with(sheet + 'VCC_SOC = "VCCINT"\n').design
        self.assertEqual(d.counted_in, [("VCC_SOC", "VCCINT")])
        self.assertTrue(design_decl.initializer(d).endswith('"", "{}_POWERUP", {{"VCC_SOC", "VCCINT"}}}'))
        for table, wrong in (('VCC_SOC = "VCCAUX"', "'VCCAUX' is not one of the sheet's voltage rails"),
                             ('VCCINT = "VCCINT"', "may not itself be held"),
                             ('VCCINT = "VCC_SOC"\nVCC_SOC = "VCCINT"', "may not itself be held")):
            with self.assertRaisesRegex(Exception, wrong):
                sheet_with(sheet + table + "\n")


if __name__ == "__main__":
    unittest.main()
