#!/usr/bin/env python3
"""Writes the shipped tables of the DSP and logic-clock sheets from the law below:

  talvex/PRSMTalvexDspData.cfg          switched capacitance per bit of a DSP slice, per mode
  talvex/PRSMTalvexLogicClockData.cfg   switched capacitance per clock segment, leaf, slice and load

Usage: dsp_clock_sheets.py [--check]. With --check nothing is written: the exit status says whether the
committed files are what the law gives. Standard library only; the output is committed, so the library
never needs this script at run time. How the figures were chosen: docs/models/TalvexDsp.md and
docs/models/TalvexLogicClock.md.

The law: a switched capacitance is built from three 7 nm-class quantities,
  C = gates * GATE_FF + programmable switches * SWITCH_FF + wire length * WIRE_FF_PER_UM,
where a "gate" is one gate input with its local wiring, a "switch" one programmable-interconnect input
(a pass gate and its diffusion), and the wire clock-grade upper metal. Tables hold pF.
"""

from __future__ import annotations

import sys
from pathlib import Path

from cfg_writer import data_file, run

OUT = Path(__file__).resolve().parent.parent / "powercfg" / "talvex"

GATE_FF = 1.5          # fF per gate input with its local wiring
SWITCH_FF = 5.0        # fF per programmable-interconnect input
WIRE_FF_PER_UM = 0.2   # fF per um of upper-metal wire
VPOW = 2.0             # dynamic power goes with V^2

# The parts of the catalogue and their logic arrays against the reference ZQVC1902 (the sizes of the
# static-power description). Every catalogue part has a row, so a part never falls back unnoticed;
# a part the catalogue does not know takes the DEFAULT row.
DEVICE_SIZES = {"ZQVC1204": 0.6, "ZQVC1902": 1.0, "ZQVC2606": 1.4, "ZQVE1408": 0.5, "ZQVE2210": 0.8,
                "ZQVM1606": 0.9, "ZQVM2004": 1.1, "ZQVP1310": 1.6, "ZQVP1502": 1.3}


def cap(gates: float = 0.0, switches: float = 0.0, wire_um: float = 0.0) -> float:
    """The law, in pF."""
    return round((gates * GATE_FF + switches * SWITCH_FF + wire_um * WIRE_FF_PER_UM) / 1000.0, 6)


# ---- DSP ---------------------------------------------------------------------------------------------
# A slice: a 27 x 24 multiplier, a 27-bit pre-adder on A, a 58-bit accumulator, up to four pipeline
# register levels. A complex pair is two slices whose arrays form the four 18 x 18 products of
# (a + jb)(c + jd) (2 x 27 x 24 = 4 x 18 x 18 partial-product bits) with one 58-bit accumulator each.
# The floating-point mode takes 32-bit operands (a 24 x 24 mantissa array) and a 32-bit adder.

MULT_GATES = 12 * 3       # a partial-product bit: a full adder and its AND, glitching about 3 times
FLOAT_MULT_GATES = MULT_GATES * (24 * 24) / (32 * 32) * 1.4  # mantissa array per operand-bit pair,
                                                             # plus exponent, normalising and rounding
DSP_MODES = {
    "FIXED_POINT": {"width": {"A_MIN": 1, "A_MAX": 27, "B_MIN": 1, "B_MAX": 24, "PREADD": 27, "ACC": 58},
                    "count": {"SLICES": 1, "PRODUCTS": 1},
                    "cap": {"MULT": cap(MULT_GATES), "ACC": cap(16 * 1.5)}},  # adder bit, carries 1.5x
    "COMPLEX_MULTIPLY": {"width": {"A_MIN": 1, "A_MAX": 18, "B_MIN": 1, "B_MAX": 18, "PREADD": 18, "ACC": 116},
                         "count": {"SLICES": 2, "PRODUCTS": 4},
                         "cap": {"MULT": cap(MULT_GATES), "ACC": cap(16 * 1.5)}},
    "FLOATING_POINT": {"width": {"A_MIN": 32, "A_MAX": 32, "B_MIN": 32, "B_MAX": 32, "PREADD": 0, "ACC": 32},
                       "count": {"SLICES": 1, "PRODUCTS": 1},
                       # the adder bit with its alignment and normalising shifters and leading-zero count
                       "cap": {"MULT": cap(FLOAT_MULT_GATES), "ACC": cap(40)}},
}
SLICE_CAP = {
    "PREADD": cap(8),                        # a prefix-adder bit
    "REG_DATA": cap(4),                      # a register bit's data side
    "REG_CLOCK": cap(2),                     # a register bit's clock inverters: every cycle
    "CASCADE": cap(4, wire_um=50),           # a dedicated route to the neighbouring slice
    "CLOCK": cap(20, wire_um=400),           # the slice's clock buffers and spine: every cycle
    "VPOW": VPOW,
}


def dsp_tables() -> dict:
    return {
        "DSP_MODE_LIST": list(DSP_MODES),
        "CASCADE_LIST": ["NONE", "IN", "OUT", "IN_OUT"],
        "YES_NO": ["YES", "NO"],
        "MODE_WIDTH": {m: d["width"] for m, d in DSP_MODES.items()},
        "MODE_COUNT": {m: d["count"] for m, d in DSP_MODES.items()},
        "MODE_CAP": {m: d["cap"] for m, d in DSP_MODES.items()},
        "SLICE_CAP": SLICE_CAP,
        "BLOCK_POWER_SCALE": {d: {"DSP_VCCINT": 1.0} for d in ["DEFAULT", *DEVICE_SIZES]},
    }


# ---- Logic clock ------------------------------------------------------------------------------------
# A clock region is 3,000 um wide and 1,500 um tall; a leaf drives half a region's column of slices.
REGION_W, REGION_H = 3000.0, 1500.0
TAP = {"switches": 1, "gates": 3}  # one tap: a programmable input and a small receiver

# A segment or leaf: wire length and taps; a die crossing adds its driver, bump and receiver (~0.8 pF).
DIE_CROSSING_GATES = 800 / GATE_FF
SEGMENTS = {
    "HR": (REGION_W, 8, 0), "HD": (REGION_W, 24, 0), "HD_LOC": (REGION_W / 4, 0, 16),
    "HD_HSR": (REGION_W, 4, 0), "VR": (REGION_H, 8, 0), "VR_SSIT": (REGION_H, 8, DIE_CROSSING_GATES),
    "VD": (REGION_H, 24, 0), "VD_L1": (REGION_H / 2, 12, 0), "VD_L2": (REGION_H / 4, 6, 0),
    "VD_SSIT": (REGION_H, 24, DIE_CROSSING_GATES),
}
LEAF_SLICES = 30  # slices a leaf of strength 1 reaches


def segment(wire: float, taps: int, gates: float) -> float:
    return cap(gates + taps * TAP["gates"], taps * TAP["switches"], wire)


def leaf(strength: int) -> float:
    return round(strength * cap(20, LEAF_SLICES, REGION_H / 2), 6)


LOAD_CAP = {  # a load's own clock pin
    "FF": cap(2, 1), "LUTRAM": cap(3, 1), "SRL": cap(3, 1),
    "BRAM": cap(2 * 10, 2), "URAM": cap(2 * 20, 2), "DSP": cap(20, 1),  # two ports' clock inputs
}
SLICE_CLOCK_CAP = {
    "CLOCKED_SLICE": cap(6, 8, 60),          # the slice's clock input multiplexer and spine
    "CE_GROUP": cap(10),                     # one clock-enable group's gating cell
    "LUTRAM_SLICE": cap(12), "SRL_SLICE": cap(12),  # a memory slice's write-clock generator
    "IMUX_SLICE": cap(6, 4),                 # the interconnect input registers' clock
    "NON_CLE_SITE": cap(0, 4, 100),          # the tap into a block RAM, UltraRAM or DSP column
    "LATCHED_QUAD": cap(16), "BYPASS_QUAD": cap(4),  # a quad's programmable delay, latched or bypassed
}
BUFFER_CAP = {"NO_BUFFER": 0.0, "GLOBAL_BUFFER": cap(60, 0, 2000), "GATED_BUFFER": cap(70, 0, 2000)}
# The reference network: 39 regions, 865 leaf drivers, 115,878 sites (112,480 slices of sixteen
# flip-flops, 967 block RAMs, 463 UltraRAMs, 1,968 DSPs); a part's network grows with its logic array.
REFERENCE_NETWORK = {"HD_SEGMENTS": 39, "LEAVES": 865, "SITES": 115878}


def clock_tables() -> dict:
    network = {d: {k: round(v * size) for k, v in REFERENCE_NETWORK.items()}
               for d, size in {"DEFAULT": 1.0, **DEVICE_SIZES}.items()}
    return {
        "BUF_TYPE_LIST": list(BUFFER_CAP),
        "SEGMENT_CAP": {**{k: segment(*v) for k, v in SEGMENTS.items()},
                        **{f"LEAF_{n}": leaf(n) for n in (1, 2, 4, 8)}},
        "LOAD_CAP": LOAD_CAP,
        "SLICE_CLOCK_CAP": SLICE_CLOCK_CAP,
        "BUFFER_CAP": BUFFER_CAP,
        "CONSTANTS": {"REACH_BASE": 0.5, "REACH_STEEPNESS": 8.0, "VPOW": VPOW},
        "DEVICE_NETWORK": network,
        "BLOCK_POWER_SCALE": {d: {"CLOCK_VCCINT": 1.0, "CLOCK_VCCAUX": 1.0} for d in ["DEFAULT", *DEVICE_SIZES]},
    }


FILES = {
    "PRSMTalvexDspData.cfg": data_file(
        "PRSMTalvexDspData",
        "DSP slices: switched capacitance in pF per bit (per partial-product bit for MULT), operand and\n"
        "accumulator widths per mode. Written by data/tools/dsp_clock_sheets.py; see docs/models/TalvexDsp.md.",
        dsp_tables()),
    "PRSMTalvexLogicClockData.cfg": data_file(
        "PRSMTalvexLogicClockData",
        "Logic clock network: switched capacitance in pF per segment, leaf, slice, load pin and buffer.\n"
        "Written by data/tools/dsp_clock_sheets.py; see docs/models/TalvexLogicClock.md.",
        clock_tables()),
}


def main() -> int:
    return run(OUT, FILES, Path(__file__).name)


if __name__ == "__main__":
    sys.exit(main())
