#!/usr/bin/env python3
"""Writes the shipped tables of the older architecture's logic-element and DSP sheets from the law below:

  dravik/PRSMDravikCleLogicData.cfg   switched capacitance per logic element, by kind
  dravik/PRSMDravikDspData.cfg        switched capacitance per bit of a DSP slice, per mode

Usage: dravik_fabric_sheets.py [--check]. With --check nothing is written: the exit status says whether
the committed files are what the law gives. Standard library only; the output is committed, so the
library never needs this script at run time. How the figures were chosen: docs/models/DravikCleLogic.md
and docs/models/DravikDsp.md.

The law is the one of dsp_clock_sheets.py with 16 nm-class quantities: a switched capacitance is
  C = gates * GATE_FF + programmable switches * SWITCH_FF + wire length * WIRE_FF_PER_UM,
a "gate" one gate input with its local wiring, a "switch" one programmable-interconnect input (a pass
gate and its diffusion). The larger transistors of the older node make a gate and a switch about 1.6
times the 7 nm-class figures; wire capacitance per um is about the same. Tables hold pF.
"""

from __future__ import annotations

import sys
from pathlib import Path

from cfg_writer import data_file, run

OUT = Path(__file__).resolve().parent.parent / "powercfg" / "dravik"

GATE_FF = 2.5          # fF per gate input with its local wiring
SWITCH_FF = 8.0        # fF per programmable-interconnect input
WIRE_FF_PER_UM = 0.22  # fF per um of wire
VPOW = 2.0             # dynamic power goes with V^2

# The catalogue's parts by internal name (a module is its base device), against the reference ZDM9200:
# a smaller die has shorter average routes. Every part has a row; a part the catalogue does not know
# takes the DEFAULT row.
DEVICE_SCALES = {"ZDM5100": 0.95, "ZDM7100": 0.98, "ZDM9200": 1.0}


def cap(gates: float = 0.0, switches: float = 0.0, wire_um: float = 0.0) -> float:
    """The law, in pF."""
    return round((gates * GATE_FF + switches * SWITCH_FF + wire_um * WIRE_FF_PER_UM) / 1000.0, 6)


def device_rows(key: str) -> dict:
    return {d: {key: s} for d, s in {"DEFAULT": 1.0, **DEVICE_SCALES}.items()}


# ---- Logic elements ---------------------------------------------------------------------------------
# An element's SIGNAL capacitance is what one full cycle of its data switches: each used input (its pin,
# a gate and the input multiplexer's switch, and the branch of the net that reaches it, three switches
# and 200 um of wire), its internal nodes and the driver of its output onto the interconnect. A LUT
# uses five of its six inputs on average; a carry chain is eight bits, each a carry multiplexer and sum
# gate with its pin, fed by the same slice's LUTs and landing in its registers (no nets of its own).
# WRITE is one write of a LUT memory (64 cells and the write decoder) or one shift of a 32-bit shift
# register. Clock pins are the clock network's (its own sheet).
PIN = cap(1, 1)
INPUT = round(PIN + cap(0, 3, 200), 6)
DRIVER = cap(4, 1)
LUT_SIGNAL = round(5 * INPUT + cap(16) + DRIVER, 6)
ELEMENT_CAP = {
    "LUT_LOGIC": {"SIGNAL": LUT_SIGNAL},
    "LUT_DRAM": {"SIGNAL": LUT_SIGNAL, "WRITE": cap(30)},
    "LUT_SRL": {"SIGNAL": LUT_SIGNAL, "WRITE": cap(40)},
    "REG_FF": {"SIGNAL": round(INPUT + cap(4) + DRIVER, 6)},
    "REG_LATCH": {"SIGNAL": round(INPUT + cap(3) + DRIVER, 6)},
    "CARRY8": {"SIGNAL": round(8 * (cap(6) + PIN), 6)},
}


def cle_tables() -> dict:
    return {
        "DEVICE_LIST": list(DEVICE_SCALES),
        "INSTANCE_TYPE_LIST": list(ELEMENT_CAP),
        "ELEMENT_CAP": ELEMENT_CAP,
        "MISC": {"VPOW": VPOW},
        "BLOCK_POWER_SCALE": device_rows("CLE_LOGIC_VCCINT"),
    }


# ---- DSP ---------------------------------------------------------------------------------------------
# A slice: a 27 x 18 multiplier, a 27-bit pre-adder on A, a 48-bit accumulator (post-adder), up to four
# pipeline register levels. The complex multiplier is three slices forming (a + jb)(c + jd) from three
# 18 x 18 products (c(a + b), a(d - c), b(c + d)), the pre-adders forming the sums, each slice's 48-bit
# post-adder combining them.
MULT_GATES = 12 * 3  # a partial-product bit: a full adder and its AND, glitching about 3 times
DSP_MODES = {
    "FIXED_POINT": {"width": {"A_MIN": 1, "A_MAX": 27, "B_MIN": 1, "B_MAX": 18, "PREADD": 27, "ACC": 48},
                    "count": {"SLICES": 1, "PRODUCTS": 1},
                    "cap": {"MULT": cap(MULT_GATES), "ACC": cap(16 * 1.5)}},  # adder bit, carries 1.5x
    "COMPLEX_MULTIPLY": {"width": {"A_MIN": 1, "A_MAX": 18, "B_MIN": 1, "B_MAX": 18, "PREADD": 18, "ACC": 144},
                         "count": {"SLICES": 3, "PRODUCTS": 3},
                         "cap": {"MULT": cap(MULT_GATES), "ACC": cap(16 * 1.5)}},
}
SLICE_CAP = {
    "PREADD": cap(8),                        # a prefix-adder bit
    "REG_DATA": cap(4),                      # a register bit's data side
    "REG_CLOCK": cap(2),                     # a register bit's clock inverters: every cycle
    "CASCADE": cap(4, wire_um=60),           # a dedicated route to the neighbouring slice
    "CLOCK": cap(20, wire_um=500),           # the slice's clock buffers and spine: every cycle
    "VPOW": VPOW,
}


def dsp_tables() -> dict:
    return {
        "DEVICE_LIST": list(DEVICE_SCALES),
        "DSP_MODE_LIST": list(DSP_MODES),
        "CASCADE_LIST": ["NONE", "IN", "OUT", "IN_OUT"],
        "YES_NO": ["YES", "NO"],
        "MODE_WIDTH": {m: d["width"] for m, d in DSP_MODES.items()},
        "MODE_COUNT": {m: d["count"] for m, d in DSP_MODES.items()},
        "MODE_CAP": {m: d["cap"] for m, d in DSP_MODES.items()},
        "SLICE_CAP": SLICE_CAP,
        "BLOCK_POWER_SCALE": device_rows("DSP_VCCINT"),
    }


FILES = {
    "PRSMDravikCleLogicData.cfg": data_file(
        "PRSMDravikCleLogicData",
        "Older-architecture logic elements: switched capacitance in pF per data cycle (SIGNAL) and per\n"
        "write or shift (WRITE). Written by data/tools/dravik_fabric_sheets.py; see docs/models/DravikCleLogic.md.",
        cle_tables()),
    "PRSMDravikDspData.cfg": data_file(
        "PRSMDravikDspData",
        "Older-architecture DSP slices: switched capacitance in pF per bit (per partial-product bit for MULT),\n"
        "operand and accumulator widths per mode. Written by data/tools/dravik_fabric_sheets.py; see\n"
        "docs/models/DravikDsp.md.",
        dsp_tables()),
}


def main() -> int:
    return run(OUT, FILES, Path(__file__).name)


if __name__ == "__main__":
    sys.exit(main())
