"""The generator's [descriptions] section: how a cell's line is found (its refusals are in test_refusals)."""

import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "sheetgen"))

from sheet import load  # noqa: E402

BASE = """
[sheet]
description = "descriptions"
calculate = ["CORE_POWER", "AUX_POWER"]

[cells.int]
intermediates = ["IS_VALID_CLOCK_FREQ"]
[cells.float]
inputs = ["CLOCK_FREQ", "VCCINT"]
outputs = ["CORE_POWER", "AUX_POWER"]
intermediates = ["GET_MAX_CLOCK_FREQ", "CORE_SCALE"]
[inputs.CLOCK_FREQ]
default = 100.0
range = [0.0, 500.0]
[inputs.VCCINT]
default = 0.8

[descriptions]
"""


def descriptions(entries: dict) -> dict:
    """Loads BASE with the [descriptions] entries (TOML key -> TOML value, both as written); answers
    cell name -> description."""
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder) / "Described.toml"
        path.write_text(BASE + "".join(f"{key} = {value}\n" for key, value in entries.items()))
        return {name: cell.description for name, cell in load(path, Path(folder)).by_name.items()}


EVERY_CELL = {"CLOCK_FREQ": '"Clock"', "VCCINT": '"Core voltage"', '"*_POWER"': '"Power of {*}"'}


class Descriptions(unittest.TestCase):
    def test_exact_names_beat_patterns_and_longer_patterns_beat_shorter_ones(self):
        found = descriptions({'"*"': '"Any {cell}"', '"*_FREQ"': '"Frequency: {*}"', "CLOCK_FREQ": '"Clock of {*}"',
                              '"C*_POWER"': '"Power of C{*}"', '"*_POWER"': '"Power of {*}"'})
        self.assertEqual(found["CLOCK_FREQ"], "Clock of CLOCK_FREQ")  # exact: {*} is the whole name
        self.assertEqual(found["CORE_POWER"], "Power of CORE")  # "C*_POWER" is longer than "*_POWER"
        self.assertEqual(found["AUX_POWER"], "Power of AUX")
        self.assertEqual(found["VCCINT"], "Any VCCINT")
        self.assertEqual(found["CORE_SCALE"], "Any CORE_SCALE")  # an intermediate may have one
        # "*" and "*_FREQ" pass over the validity flag and the limit, which need none.
        self.assertEqual(found["IS_VALID_CLOCK_FREQ"], "")
        self.assertEqual(found["GET_MAX_CLOCK_FREQ"], "")
        # 160 characters are still one line.
        self.assertEqual(len(descriptions(EVERY_CELL | {"CLOCK_FREQ": '"' + "x" * 160 + '"'})["CLOCK_FREQ"]), 160)

    def test_patterns_that_start_like_a_check_reach_it(self):
        found = descriptions(EVERY_CELL | {'"GET_*_CLOCK_FREQ"': '"{*} clock allowed"',
                                           "IS_VALID_CLOCK_FREQ": '"1 when the clock is allowed"'})
        self.assertEqual(found["GET_MAX_CLOCK_FREQ"], "MAX clock allowed")
        self.assertEqual(found["IS_VALID_CLOCK_FREQ"], "1 when the clock is allowed")


if __name__ == "__main__":
    unittest.main()
