"""Every refusal of the table checker, each fed a minimal bad table, and the table's line it names."""

import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "sheetgen"))

from sheet import SheetError, load  # noqa: E402

# A sheet the checker accepts. A case's fragment adds sections; a section it writes itself (a header
# or a top-level key of the same name) replaces the one here.
BASE = {
    "sheet": 'description = "A sheet the checker refuses"',
    "cells.float": 'inputs = ["VCCINT", "TJ", "FED"]\noutputs = ["POWER", "CURRENT"]',
    "cells.string": 'inputs = ["DEVICE"]',
    'inputs."{VCCINT,TJ,FED}"': "default = 0.0",
    "inputs.DEVICE": 'default = "D"',
    "descriptions": '"*" = "A cell of the refused sheet"',
}
MARK = "# <-"  # the line a refusal names; a case without it names the [sheet] header, line 1
HEADER = '[sheet]\ndescription = "x"\n'
HEADED = '[sheet]\ndescription = "x"\nformula_header = "F.h"\n'
STATIC = '[design]\ntemperature = "TJ"\n'
BOARD = '[design]\nboard_currents = { FED = "VCCINT" }\n'
INT_INPUT = '[cells.int]\ninputs = ["N"]\n[inputs.N]\ndefault = 0\n'
OUTSIDE = '[warnings.outside.POWER]\nmessage = "m"\n'
TABLE = '[[tables]]\nsetting = "CAP"\n'
FAMILY = '[[families]]\nname = "Rail"\nmembers = ["VCCINT"]\n'
DATA_SHEET = '[sheet]\ndescription = "x"\ndata_file = "d.cfg"\n'
TEXT_TABLE = f'{DATA_SHEET}[[tables]]\nsetting = "SETS"\ntype = "string"\nkeys = ["set", "cell"]\n'

# (fragment, what the message says), one case per place where the checker refuses a table.
REFUSALS = [
    # [lists]
    (f'[lists]\nrails = ["A"]  {MARK}', "lists: 'rails' is not an UPPER_SNAKE_CASE name"),
    (f'[lists]\nA = ["X"]\nB = {{ from = "{{A}}", but = ["X"] }}  {MARK}', "has only `from` and `without`"),
    (f'[lists]\nB = {{ without = ["X"] }}  {MARK}', "lists.B: a derived list names the list it is `from`"),
    (f'[lists]\nA = ["X"]\nB = {{ from = "{{A}}", without = ["Z"] }}  {MARK}', "lists.B: ['Z'] are not members of {A}"),
    (f'[lists]\nA = ["X", "X"]  {MARK}', "lists.A: a member is listed twice"),
    # [cells]
    (f'[cells.int]\nresults = ["N"]  {MARK}', "cells.int: unknown categories ['results']"),
    (f'[cells.int]\noutputs = ["COUNT", "n"]  {MARK}', "cell name 'n' is not UPPER_SNAKE_CASE"),
    (f'[cells.string]\ninputs = ["DEVICE"]\noutputs = ["POWER"]  {MARK}', "cell POWER declared twice"),
    # [units], and what placing a pattern refuses in every section
    (f'units = 3  {MARK}', "units: expected a table of unit = [cell name patterns]"),
    (f'[units]\nW = "POWER"  {MARK}', "units.W: expected a list of cell name patterns (strings)"),
    (f'[units]\nW = ["*_WATTS"]  {MARK}', "units: pattern *_WATTS matches no cell"),
    (f'[units]\nW = ["WATTS"]  {MARK}', "units: no cell WATTS"),
    (f'[units]\nW = ["POWER", 3]  {MARK}', "units.W: expected a list of cell name patterns (strings)"),
    (f'[units]\nW = ["POWER"]\nmW = ["POWER"]  {MARK}', "units: cell POWER is given two values, 'W' and 'mW'"),
    (f'[units]\nW = ["P*"]\nmW = ["*R"]  {MARK}', "cell POWER matches *R, P* of equal length with different"),
    # [warnings]
    (f'warnings = 1  {MARK}', "warnings: expected a table of checks"),
    (f'[warnings.too_high]  {MARK}\nPOWER = "m"', "warnings: unknown checks ['too_high']"),
    (f'[warnings.below_zero]  {MARK}\nPOWER = 3', "warnings.below_zero: expected a table of cell name"),
    (f'[warnings.below_zero]\nPOWER = "{{power}} is low"  {MARK}', "warnings.below_zero.POWER: unknown field {power}"),
    (f'[warnings.below_zero]\n"D*" = "m"  {MARK}', "warnings.below_zero: pattern D* matches no number cell"),
    (f'[warnings.below_zero]\nVCCX = "m"  {MARK}', "warnings.below_zero: no cell VCCX"),
    (f'[warnings.below_zero]\nDEVICE = "m"  {MARK}', "warnings.below_zero: DEVICE is a string cell"),
    (f'[warnings]\noutside = 3  {MARK}', "warnings.outside: expected a table of cell name"),
    (f'[warnings.outside.POWER]  {MARK}\nrange = [0.0, 1.0]', "warnings.outside.POWER: expected { range = [low, high]"),
    (f'[warnings.outside.POWER]\nrange = [0.0, 1.0]\nmessage = 3  {MARK}', "outside.POWER: the message is a string"),
    (f'{OUTSIDE}range = [0.0]  {MARK}', "warnings.outside.POWER: range is [low, high]"),
    (f'{OUTSIDE}range = [1.0, 1.0]  {MARK}', "range [1.0, 1.0]: the low bound must be below the high one"),
    (f'{OUTSIDE}range = [true, 1.0]  {MARK}', "cell POWER: a bound is a number or a cell name, found True"),
    (f'{OUTSIDE}range = [[0.0], 1.0]  {MARK}', "cell POWER: a bound is a number or a cell name, found [0.0]"),
    (f'{OUTSIDE}range = ["{{*}}_MIN", 1.0]  {MARK}', "bound {*}_MIN gives POWER_MIN, which is no cell of the sheet"),
    (f'{OUTSIDE}range = ["DEVICE", 1.0]  {MARK}', "cell POWER: bound DEVICE is a string cell"),
    # [descriptions]
    (f'descriptions = "x"  {MARK}', "descriptions: expected a table of cell name pattern = one line"),
    (f'[descriptions]\n"*" = 3  {MARK}', "descriptions.*: expected a string"),
    (f'[descriptions]\n"*" = "two\\nlines"  {MARK}', "descriptions.*: a description is one line"),
    (f'[descriptions]\n"*" = "{{value}}"  {MARK}', "descriptions.*: unknown field {value}"),
    (f'[descriptions]\n"*" = "x"\nWATTS = "y"  {MARK}', "descriptions: no cell WATTS"),
    (f'[descriptions]\n"*" = "{"x" * 161}"  {MARK}', "descriptions: the description of FED has 161 characters"),
    (f'[cells.float]\ninputs = ["VCCINT", "TJ", "FED"]  {MARK}\noutputs = ["POWER", "CURRENT"]\n[descriptions]\n'
     'POWER = "x"', "no description for the user input or output FED, TJ, VCCINT, CURRENT, DEVICE"),
    # [[tables]]
    (f'[[tables]]  {MARK}\ntype = "float"', "tables: each table names its setting"),
    (f'{TABLE}type = "double"  {MARK}', "table CAP: unknown type double"),
    (f'{TABLE}map = "M"\n[[tables]]\nsetting = "B"\nmap = "M"\ntype = "int"  {MARK}', "map M already holds float"),
    (f'[[tables]]\nsetting = "L"\ntype = "list"\nfixed = ["X"]  {MARK}', "table L: constant keys are for scalar"),
    (f'{TABLE}fixed = ["A.B"]  {MARK}', "table Cap: constant key 'A.B' must have 1 parts"),
    (f'{TABLE}fixed = ["A-B", "A_B"]  {MARK}', "table Cap: constant keys 'A-B' and 'A_B' share a name"),
    (TABLE, "sheet.data_file is required when the sheet has tables"),
    (f'{TEXT_TABLE}columns = "Rail"  {MARK}\n{FAMILY}cells = ["{{}}"]', "table Sets: columns is a list of family names"),
    (f'{DATA_SHEET}[[tables]]\nsetting = "SETS"\ncolumns = ["Rail"]  {MARK}\n{FAMILY}cells = ["{{}}"]',
     "table Sets: columns are for a string table of two key parts"),
    (f'{TEXT_TABLE}columns = ["Nope"]  {MARK}', "table Sets: columns: no family Nope"),
    (f'{TEXT_TABLE}columns = ["Out"]  {MARK}\n[[families]]\nname = "Out"\nmembers = ["POW"]\ncells = ["{{}}ER"]',
     "table Sets: columns: family Out has no cells of its own"),
    (f'{TEXT_TABLE}columns = ["Rail", "Temp"]  {MARK}\n{FAMILY}cells = ["{{}}"]\n[[families]]\nname = "Temp"\n'
     'members = ["TJ"]\ncells = ["{}"]', "table Sets: columns: families Rail and Temp are both float"),
    # [[families]]
    (f'[[families]]  {MARK}\nname = "Rail"', "families: a family has a name and members"),
    (f'{FAMILY}cells = ["POWER"]  {MARK}', "family Rail: pattern POWER has no {}"),
    (f'{FAMILY}cells = ["{{}}_LOAD"]  {MARK}', "family Rail: no cell VCCINT_LOAD"),
    (f'{FAMILY}cells = ["{{}}"]\n[[families]]\nname = "Again"\nmembers = ["VCCINT"]\ncells = ["{{}}"]  {MARK}',
     "cell VCCINT belongs to two families"),
    (f'[[families]]\nname = "Mixed"\nmembers = ["TJ", "DEVICE"]\ncells = ["{{}}"]  {MARK}',
     "family Mixed: cells of {} differ in type or category"),
    # [inputs]
    (f'[inputs.POWER]  {MARK}\ndefault = 0.0', "inputs.POWER: POWER is not an input cell"),
    (f'[inputs.TJ]\nmaximum = 1.0  {MARK}', "input TJ: unknown keys ['maximum']"),
    (f'[inputs.TJ]\ndefault = "hot"  {MARK}', "input TJ: default: number expected, found 'hot'"),
    (f'[inputs.TJ]\nabove = "cold"  {MARK}', "input TJ: above: number expected, found 'cold'"),
    (f'[inputs.TJ]\nrange = [0.0]  {MARK}', "input TJ: range is [low, high]"),
    (f'{INT_INPUT}range = [0, 2.5]  {MARK}', "input N: range: int value expected, found 2.5"),
    (f'[inputs.TJ]\ncheck = false  {MARK}', "input TJ: check = false is for a list without other rules"),
    (f'[inputs.DEVICE]  {MARK}\ndefault = "D"\nlist = "DEVICES"', "input DEVICE: name the list table with list_map"),
    (f'[cells.int]\ninputs = ["N"]  {MARK}', "input N has no default"),
    (f'[cells.int]\nintermediates = ["IS_VALID_TJ"]  {MARK}', "IS_VALID_TJ: declare a rule for input TJ"),
    (f'[cells.float]\ninputs = ["VCCINT", "TJ", "FED"]\nintermediates = ["IS_VALID_TJ"]  {MARK}\n[inputs.TJ]\n'
     'above = 0.0', "IS_VALID_TJ must be an int cell"),
    # [constants], [formulas], [derived] and [sheet]
    (f'[constants]\nTJ = 0.0  {MARK}', "constants: TJ is not a computed cell"),
    (f'[constants]\nPOWER = "high"  {MARK}', "constants.POWER: number expected, found 'high'"),
    (f'{HEADED}[formulas]\nPOWER = "not a function"  {MARK}', "formulas: 'not a function' is not a function name"),
    (f'{HEADED}[formulas]\n"{{}}_X" = "f"  {MARK}', "formulas: {}_X is not a family's pattern"),
    (f'{HEADED}[formulas]\nTJ = "f"  {MARK}', "formulas: TJ is neither a computed cell nor an input with a computed"),
    ('[formulas]\nPOWER = "f"', "sheet.formula_header names the header of the shared formulas"),
    (f'{HEADER}calculate = ["TJ"]  {MARK}', "calculate: TJ is not a computed cell"),
    (f'{HEADER}calculate = ["POWER", "POWER"]  {MARK}', "calculate: a cell is named twice"),
    (f'[derived]\nPOWER = "shared"  {MARK}', "derived: POWER must be an UPPER_SNAKE_CASE name that no cell has"),
    (f'{HEADER}methods = ["getUsed"]  {MARK}', "sheet.methods: 'getUsed' is not 'type name'"),
    # [rails] and [design]
    (f'[rails]\nwatts = {{ POWER = "VCCINT" }}  {MARK}', "rails: unknown keys ['watts']"),
    (f'[rails]\nvoltage = "VCCINT"  {MARK}', 'rails.voltage: a list of cells or a table of cell = "RAIL"'),
    (f'[rails]\npower = {{ POWER = "vccint" }}  {MARK}', "rails.power.POWER: 'vccint' is not an upper-case rail name"),
    (f'[rails]\npower = {{ NOPE = "VCCINT" }}  {MARK}', "rails.power: no cell NOPE"),
    (f'[rails]\nvoltage = {{ POWER = "VCCINT" }}  {MARK}', "rails.voltage: POWER is not a float input"),
    (f'[design]\ncolour = "red"  {MARK}', "design: unknown keys ['colour']"),
    (f'[design]\nregion = "fabric"  {MARK}', "design.region: unknown region 'fabric'"),
    (f'[design]\nregion = "gt"\ntag = "IP"  {MARK}', "design.tag: 'IP' is not a lower-case word"),
    (f'[design]\ntag = "ip"  {MARK}', "design.tag: a tag sets power apart within a region: declare the region too"),
    (f'[design]\ndevice = {{ DEVICE = "colour" }}  {MARK}', "design.device.DEVICE: unknown field 'colour'"),
    (f'[design]\nrequires = "AIE"  {MARK}', "design.requires: a table of catalogue feature"),
    (f'[design]\narchitecture = "dravik"  {MARK}', "design.architecture: 'dravik' is not an upper-case name"),
    (f'[design]\nrequires = {{ aie = "AIE" }}  {MARK}', "design.requires: 'aie' is not an upper-case feature name"),
    (f'[design]\nrequires = {{ AIE = [] }}  {MARK}', "design.requires.AIE: a value or a non-empty list of values"),
    (f'[design.counts]\nLookup_Tables = "POWER"  {MARK}',
     "design.counts.Lookup_Tables: count 'Lookup_Tables' is not a lower-case word such as \"bram_active\""),
    (f'[design.counts]\nluts = {{ cell = "POWER", if = 1 }}  {MARK}', "design.counts.luts: unknown keys ['if']"),
    (f'[design.counts]\nluts = {{ cell = "POWER", when = {{ DEVICE = "L*", TJ = "T" }} }}  {MARK}',
     "design.counts.luts.when: one string input = a pattern or a list of patterns"),
    (f'[design.counts]\nluts = {{ cell = "POWER", when = {{ DEVICE = "L*T" }} }}  {MARK}',
     "design.counts.luts.when.DEVICE: patterns are texts, a '*' only at the end"),
    (f'[design.counts]\nluts = {{ when = {{ DEVICE = "L*" }} }}  {MARK}', "design.counts.luts: the cell giving one"),
    (f'[design]  {MARK}\nfeeds = {{ FED = "region:noc" }}', "design: a static sheet names its junction-temperature"),
    (f'{STATIC}static_current = "CURRENT"  {MARK}', "design.static_current: a cell pattern with one {} for the rail"),
    (f'{STATIC}static_regions = {{ moon = "POWER" }}  {MARK}', "design.static_regions: unknown region 'moon'"),
    (f'{STATIC}feeds = {{ FED = " " }}  {MARK}', "design.feeds: an empty selector"),
    (f'{STATIC}feeds = {{ FED = "colour:red" }}  {MARK}', "design.feeds: 'colour:red' is not rail:, region: or tag:"),
    (f'{STATIC}feeds = {{ FED = "region:moon" }}  {MARK}', "design.feeds: unknown region 'moon'"),
    (f'{STATIC}count_feeds = {{ FED = 3 }}  {MARK}', 'design.count_feeds.FED: counts joined with " + "'),
    (f'{STATIC}count_feeds = {{ FED = "luts + flip_flops %" }}  {MARK}', "sums counts of one device"),
    (f'{INT_INPUT}{STATIC}count_feeds = {{ N = "luts %" }}  {MARK}', "a share in percent goes into a float input"),
    (f'{STATIC}[[families]]\nname = "Rail"\nmembers = ["VCCINT", "FED"]\ncells = ["{{}}"]\n[[families]]\nname = "Block"\n'
     'members = ["CORE"]\n[[families]]\nname = "RailTerm"\nmembers = ["VCCINT_CORE"]\n'
     '[rows.Block.columns]\nrail = "Rail"\n[rows.Block.members]\n'
     f'CORE = {{ rail = "FED" }}  {MARK}\n[rows.RailTerm.columns]\nrail = "Rail"\ncurrent = "float cell"\n'
     '[rows.RailTerm.members]\nVCCINT_CORE = { rail = "VCCINT", current = "CURRENT" }',
     "rows.Block.members.CORE: no RailTerm row adds to its rail FED"),
    (f'[design]  {MARK}\nboard_total = "POWER"', "design: a module board names the inputs of the device's currents"),
    (f'{STATIC}board_currents = {{ FED = "VCCINT" }}  {MARK}', "either the static-power sheet or a module board"),
    (f'[design]\nboard_currents = {{}}  {MARK}', "design.board_currents: an empty table"),
    (f'{BOARD}board_architecture = "arch"  {MARK}', "design.board_architecture: 'arch' is not an upper-case name"),
    (f'{BOARD}board_regulators = 3  {MARK}', "design.board_regulators: a table of regulator"),
    (f'{BOARD}board_regulators = {{ R = 3 }}  {MARK}', "design.board_regulators.R: a table of load, efficiency"),
    (f'{BOARD}board_regulators = {{ R = {{ volts = "POWER" }} }}  {MARK}', "design.board_regulators.R: unknown keys"),
    (f'{BOARD}board_regulators = {{ R = {{ rail = "v1" }} }}  {MARK}', "design.board_regulators.R.rail: 'v1' is not"),
    (f'{BOARD}board_regulators = {{ R = {{ kind = "boost" }} }}  {MARK}', "R.kind: 'boost' is none of buck, ldo"),
    (f'{BOARD}board_regulators = {{ R = {{ kind = "ldo", loss = "POWER" }} }}  {MARK}', "R.loss: an LDO dissipates"),
    (f'{BOARD}board_regulators = {{ R = {{ voltage = 0 }} }}  {MARK}', "R.voltage: 0 is not a number above 0"),
    (f'{BOARD}board_regulators = {{ R = {{ rating = "2" }} }}  {MARK}', "R.rating: '2' is not a number above 0"),
    (f'{BOARD}board_regulators = {{ R = {{ load_includes_fed = 1 }} }}  {MARK}', "R.load_includes_fed: true or false"),
    (f'{BOARD}board_regulators = {{ R = {{ fed_from = 5 }} }}  {MARK}', "R.fed_from: a regulator of the board"),
    (f'{BOARD}board_regulators = {{ R = {{ fed_from = "NOPE" }} }}  {MARK}', "R.fed_from: no cell NOPE"),
    (f'{BOARD}board_regulators = {{ R = {{ fed_from = "POWER" }} }}  {MARK}', "R.fed_from: POWER is not a float input"),
    (f'{BOARD}board_regulators = {{ R = {{ fed_from = "S" }}, S = {{ fed_from = "R" }} }}  {MARK}',
     "R.fed_from: a regulator fed from itself: R <- S <- R"),
]


def compose(fragment: str) -> str:
    """The fragment's top-level keys, the base sections it does not write, then its own sections."""
    header = re.search(r"^\[", fragment, re.M)
    top, sections = (fragment[:header.start()], fragment[header.start():]) if header else (fragment, "")
    written = {m[1] or m[2] for m in re.finditer(r"^(?:\[+([^\]]+)\]|(\w+) =)", fragment, re.M)}
    base = "".join(f"[{name}]\n{body}\n" for name, body in BASE.items() if name not in written)
    return f"{top.rstrip()}\n{base}{sections}\n".lstrip("\n")


def marked_line(text: str) -> int:
    return next((n for n, line in enumerate(text.split("\n"), 1) if MARK in line), 1)


class Refusals(unittest.TestCase):
    def test_each_refusal_names_the_line_at_fault(self):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "Refused.toml"
            for fragment, message in REFUSALS:
                with self.subTest(fragment=fragment):
                    text = compose(fragment)
                    path.write_text(text)
                    with self.assertRaises(SheetError) as caught:
                        load(path, Path(folder))
                    self.assertEqual(str(caught.exception).split(": ", 1),
                                     [f"{path}:{marked_line(text)}", caught.exception.args[0]])
                    self.assertIn(message, caught.exception.args[0])

    def test_the_base_table_is_accepted(self):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "Accepted.toml"
            path.write_text(compose(""))
            self.assertEqual(sorted(load(path, Path(folder)).by_name), ["CURRENT", "DEVICE", "FED", "POWER", "TJ",
                                                                        "VCCINT"])

    def test_the_command_line_prints_file_and_line(self):
        """What a build shows: the table's path and line, and no C++ written."""
        with tempfile.TemporaryDirectory() as folder:
            table = Path(folder) / "Refused.toml"
            refused = compose(f'[design]\nregion = "fabric"  {MARK}')
            for text, expected in ((refused, f"{table}:{marked_line(refused)}: design.region: unknown region 'fabric'"),
                                   ("[sheet\n", f"{table}: ")):  # not TOML: tomllib's own position follows
                table.write_text(text)
                run = subprocess.run([sys.executable, str(ROOT / "sheetgen" / "prsm_sheetgen.py"), str(table),
                                      "--out", str(Path(folder) / "out"), "--source-root", folder],
                                     capture_output=True, text=True)
                self.assertEqual(run.returncode, 1)
                self.assertTrue(run.stderr.startswith(expected), run.stderr)
                self.assertFalse((Path(folder) / "out").exists())


if __name__ == "__main__":
    unittest.main()
