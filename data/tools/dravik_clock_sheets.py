#!/usr/bin/env python3
"""Writes the shipped tables of the older architecture's clocking sheets from the laws below:

  dravik/PRSMDravikMmcmData.cfg          currents of the mixed-mode clock manager by function
  dravik/PRSMDravikPllData.cfg           currents of the I/O-bank PLL by function
  dravik/PRSMDravikLogicClockData.cfg    switched capacitance per clock segment, leaf, slice and load

Usage: dravik_clock_sheets.py [--check]. With --check nothing is written: the exit status says whether
the committed files are what the laws give. Standard library only. How the figures were chosen:
docs/models/DravikMmcm.md, docs/models/DravikPll.md and docs/models/DravikLogicClock.md.

The laws, for a 16 nm-class device (VCCINT 0.85 V nominal, VCCAUX 1.8 V):
  a switched capacitance C = gates * GATE_FF + programmable switches * SWITCH_FF + wire * WIRE_FF_PER_UM,
    which draws C * V * f from its rail: C (pF) * 0.85 V * 1e-6 A per MHz on VCCINT;
  a clock manager's VCO is a ring of RING_STAGES differential stages on a regulator of VCO_SUPPLY volts
    taken from VCCAUX, each stage charging STAGE_PF twice per period;
  the analogue bias (regulator, charge pump, loop-filter driver) is a fixed current per function.
"""

from __future__ import annotations

import math
import sys
from pathlib import Path

from cfg_writer import data_file, run

OUT = Path(__file__).resolve().parent.parent / "powercfg" / "dravik"

GATE_FF = 2.5          # fF per gate input with its local wiring (16 nm-class: larger than 7 nm's 1.5)
SWITCH_FF = 8.0        # fF per programmable-interconnect input
WIRE_FF_PER_UM = 0.2   # fF per um of upper-metal clock wire
VCCINT_NOMINAL = 0.85  # V: the voltage the VCCINT currents are given at
VPOW = 2.0             # dynamic power goes with V^2

# The internal parts and their sizes: logic (LUTs), 36 Kb block RAMs, UltraRAMs and DSPs as the device
# catalogue gives them, the clock-region grid (columns x rows) and the I/O columns that hold a clocking
# tile in every row (one mixed-mode manager and two PLLs per tile).
PARTS = {
    "ZDM5100": {"luts": 117120, "brams": 144, "urams": 64, "dsps": 1248, "grid": (3, 4), "io_columns": 1},
    "ZDM7100": {"luts": 230400, "brams": 312, "urams": 96, "dsps": 1728, "grid": (4, 6), "io_columns": 1},
    "ZDM9200": {"luts": 425280, "brams": 1080, "urams": 80, "dsps": 4272, "grid": (5, 8), "io_columns": 2},
}
DEFAULT_PART = "ZDM9200"
PLLS_PER_TILE = 2  # the device catalogue gives the same counts, and 24 global buffers per tile


def cap(gates: float = 0.0, switches: float = 0.0, wire_um: float = 0.0) -> float:
    """The capacitance law, in pF."""
    return round((gates * GATE_FF + switches * SWITCH_FF + wire_um * WIRE_FF_PER_UM) / 1000.0, 6)


def amps_per_mhz(pf: float, volts: float = VCCINT_NOMINAL) -> float:
    """C * V * f: the current per MHz of a capacitance switched once per period."""
    return pf * volts * 1e-6


def tiles(part: dict) -> int:
    return part["grid"][1] * part["io_columns"]


def device_rows(figures) -> dict:
    """One row per internal part and a DEFAULT row (the default part's), from figures(part)."""
    rows = {name: figures(part) for name, part in PARTS.items()}
    return {"DEFAULT": rows[DEFAULT_PART], **rows}


def unit_scales(keys: list[str]) -> dict:
    return {d: {k: 1.0 for k in keys} for d in ["DEFAULT", *PARTS]}


# ---- Clock managers --------------------------------------------------------------------------------------
RING_STAGES = 4
STAGE_PF = 0.35       # one differential stage with its interpolator taps
VCO_SUPPLY = 1.0      # V: the VCO's regulated supply, taken from VCCAUX


def vco_amps_per_mhz(stages: int) -> float:
    # Each stage's two halves charge STAGE_PF once per period.
    return stages * 2 * STAGE_PF * VCO_SUPPLY * 1e-6


def manager(bias_ma: dict, stages: int, digital_pf: dict, limits: dict, count_key: str, per_tile: int,
            lists: dict) -> dict:
    """The tables of one clock-manager kind."""
    common = {f"IVCCAUX_{k}": round(v / 1000.0, 6) for k, v in bias_ma.items()}
    common["IVCCAUX_VCO_pMHz"] = vco_amps_per_mhz(stages)
    common["IVCCINT_CTRL_LOGIC"] = 0.0008  # A: lock detector, configuration and state machines
    common.update({f"IVCCINT_{k}_pMHz": amps_per_mhz(v) for k, v in digital_pf.items()})
    common.update({"FACTOR_VCCINT": 1.0, "FACTOR_VCCAUX": 1.0, "VCCINT_CHAR": VCCINT_NOMINAL})
    return {
        **lists,
        "DEVICE_LIST": list(PARTS),
        "COMMON_DATA": common,
        "LIMITS": limits,
        "DEVICE_RESOURCES": device_rows(lambda p: {count_key: tiles(p) * per_tile}),
        "BLOCK_POWER_SCALE": unit_scales(["VCCINT", "VCCAUX"]),
    }


# Digital capacitances, pF: a counter bit toggles at its clock; an output driver is the buffer into the
# clock routing; the fractional counter adds a phase interpolator's control at the VCO rate.
MMCM = manager(
    bias_ma={"REGULATOR": 12.0, "CHARGE_PUMP": 4.0, "BIAS": 3.0},
    stages=RING_STAGES,
    digital_pf={"PFD": cap(40), "INPUT_COUNTERS": cap(7 * 4), "OUTPUT_COUNTERS": cap(2 * 4),
                "OUTPUT_DRIVER": cap(60, 0, 1500), "FRACTIONAL": cap(200), "SPREAD_SPECTRUM": cap(400)},
    limits={"FIN_MIN": 10.0, "FIN_MAX": 800.0, "FPFD_MIN": 10.0, "FPFD_MAX": 450.0, "FVCO_MIN": 800.0,
            "FVCO_MAX": 1600.0, "FOUT_MAX": 800.0, "D_MIN": 1, "D_MAX": 106, "M_MIN": 2, "M_MAX": 128,
            "DIVIDE_MIN": 2, "DIVIDE_MAX": 128, "FRACTION_STEP": 0.125},
    count_key="MMCMS", per_tile=1, lists={"ON_OFF": ["ON", "OFF"]})

# The PLL: a smaller regulator, a three-stage ring, two outputs, no fractional counters or modulator.
PLL = manager(
    bias_ma={"REGULATOR": 6.0, "CHARGE_PUMP": 2.0, "BIAS": 1.5},
    stages=3,
    digital_pf={"PFD": cap(30), "INPUT_COUNTERS": cap(4 * 4), "OUTPUT_COUNTERS": cap(2 * 4),
                "OUTPUT_DRIVER": cap(60, 0, 1500)},
    limits={"FIN_MIN": 70.0, "FIN_MAX": 800.0, "FPFD_MIN": 70.0, "FPFD_MAX": 667.5, "FVCO_MIN": 750.0,
            "FVCO_MAX": 1500.0, "FOUT_MAX": 800.0, "D_MIN": 1, "D_MAX": 15, "M_MIN": 1, "M_MAX": 19,
            "DIVIDE_MIN": 2, "DIVIDE_MAX": 128},
    count_key="PLLS", per_tile=PLLS_PER_TILE, lists={})

# ---- Logic clock ------------------------------------------------------------------------------------------
# A clock region is 2,400 um wide and 1,200 um tall, 60 slices high; a leaf driver reaches one column of
# 30 slices (half a region's height). A clock runs from its buffer along routing tracks to its root, down
# and up a vertical distribution spine through the rows of its regions, and across each region it
# reaches on a horizontal distribution track that feeds the leaves.
REGION_W, REGION_H = 2400.0, 1200.0
LEAF_SLICES = 30
TAP = {"gates": 3, "switches": 1}  # one tap into the track: a programmable input and a receiver

SEGMENT_CAP = {
    "ROUTING": cap(12 + 4 * TAP["gates"], 4 * TAP["switches"], REGION_W),  # one region's routing track
    "REGION": cap(24 + 8 * TAP["gates"], 8 * TAP["switches"], REGION_W + REGION_H),  # spine and track
    "LEAF": cap(20, LEAF_SLICES, REGION_H / 2),  # a leaf driver and its column wire
}
LOAD_CAP = {  # a load's own clock pin, on the slice's clock spine; two ports' clock inputs on the memories
    "FF": cap(2), "LUTRAM": cap(3), "SRL": cap(3),
    "BRAM": cap(2 * 10, 2), "URAM": cap(2 * 20, 2), "DSP": cap(20, 1),
}
SLICE_CLOCK_CAP = {
    "CLOCKED_SLICE": cap(6, 8, 60),   # the slice's clock input multiplexer and spine
    "NON_CLE_SITE": cap(0, 4, 100),   # the tap into a block RAM, UltraRAM or DSP column
}
BUFFER_CAP = {"NO_BUFFER": 0.0, "GLOBAL_BUFFER": cap(80, 0, 2000), "GATED_BUFFER": cap(95, 0, 2000)}


def network(part: dict) -> dict:
    columns, rows = part["grid"]
    slices = part["luts"] // 8
    sites = slices + part["brams"] + part["urams"] + part["dsps"]
    return {"REGIONS": columns * rows, "LEAVES": math.ceil(sites / LEAF_SLICES), "SITES": sites,
            # from a buffer at the clocking tiles' column to the centre of the grid, in region widths
            "ROUTING": max(1, columns // 2)}


def clock_tables() -> dict:
    return {
        "BUF_TYPE_LIST": list(BUFFER_CAP),
        "DEVICE_LIST": list(PARTS),
        "SEGMENT_CAP": SEGMENT_CAP,
        "LOAD_CAP": LOAD_CAP,
        "SLICE_CLOCK_CAP": SLICE_CLOCK_CAP,
        "BUFFER_CAP": BUFFER_CAP,
        "CONSTANTS": {"REACH_BASE": 0.5, "REACH_STEEPNESS": 8.0, "VPOW": VPOW},
        "DEVICE_NETWORK": device_rows(network),
        "BLOCK_POWER_SCALE": unit_scales(["CLOCK_VCCINT"]),
    }


FILES = {
    "PRSMDravikMmcmData.cfg": data_file(
        "PRSMDravikMmcmData",
        "Mixed-mode clock manager: currents in A (A per MHz for _pMHz), frequency limits in MHz.\n"
        "Written by data/tools/dravik_clock_sheets.py; see docs/models/DravikMmcm.md.",
        MMCM),
    "PRSMDravikPllData.cfg": data_file(
        "PRSMDravikPllData",
        "I/O-bank PLL: currents in A (A per MHz for _pMHz), frequency limits in MHz.\n"
        "Written by data/tools/dravik_clock_sheets.py; see docs/models/DravikPll.md.",
        PLL),
    "PRSMDravikLogicClockData.cfg": data_file(
        "PRSMDravikLogicClockData",
        "Logic clock network: switched capacitance in pF per segment, leaf, slice, load pin and buffer.\n"
        "Written by data/tools/dravik_clock_sheets.py; see docs/models/DravikLogicClock.md.",
        clock_tables()),
}


def main() -> int:
    return run(OUT, FILES, Path(__file__).name)


if __name__ == "__main__":
    sys.exit(main())
