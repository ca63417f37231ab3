#!/usr/bin/env python3
"""Writes the shipped table of the general-purpose I/O sheet from the description below:

  talvex/PRSMTalvexIoData.cfg   I/O standards, the bank types that carry them, their rails and figures

Usage: io_data.py [--check]. With --check nothing is written: the exit status says whether the committed
file is what the description gives. Standard library only; the output is committed, so the library
never needs this script at run time. How the figures were chosen: docs/models/TalvexIo.md.

The law: an internal switched capacitance is built as the other fabric sheets build theirs,
  C = gates * GATE_FF + programmable switches * SWITCH_FF + wire length * WIRE_FF_PER_UM,
with a "gate" one gate input with its local wiring; a pad's capacitance (pad, ESD diodes, the output
stage's drains) and a driver's impedance, termination and bias currents are stated per bank type and
standard. Tables hold pF, ohms, mA, V and Mb/s.
"""

from __future__ import annotations

import sys
from pathlib import Path

from cfg_writer import data_file, run
from dsp_clock_sheets import DEVICE_SIZES

OUT = Path(__file__).resolve().parent.parent / "powercfg" / "talvex"

GATE_FF = 1.5          # fF per gate input with its local wiring
WIRE_FF_PER_UM = 0.2   # fF per um of upper-metal wire


def cap(gates: float = 0.0, wire_um: float = 0.0) -> float:
    """The law, in pF."""
    return round((gates * GATE_FF + wire_um * WIRE_FF_PER_UM) / 1000.0, 6)


# ---- Bank types --------------------------------------------------------------------------------------
# PINS: package pins a bank bonds out. PAD_CAP: pad, ESD and output-stage drains per line, larger on the
# 3.3 V-tolerant HDIO. On VCCINTIO, per signal: the pre-driver and serialiser of an output, the
# deserialiser of an input (switched with the data), and the I/O clocking (a share of the bank's clock
# tree and the signal's own clock pins, cycling at half the bit rate: the I/O logic clocks both edges).
BANKS = {
    "XPIO": {"PINS": 54, "PAD_CAP": 1.2, "PREDRIVER_CAP": cap(160), "DESER_CAP": cap(100),
             "CLOCK_CAP": cap(20, 100)},
    "HDIO": {"PINS": 24, "PAD_CAP": 2.5, "PREDRIVER_CAP": cap(120), "DESER_CAP": cap(60),
             "CLOCK_CAP": cap(10, 50)},
    "X5IO": {"PINS": 48, "PAD_CAP": 0.8, "PREDRIVER_CAP": cap(200), "DESER_CAP": cap(140),
             "CLOCK_CAP": cap(30, 150)},
}

# ---- Standards ---------------------------------------------------------------------------------------
# rail: the VCCO rail the standard's voltage selects. LINES: package pins per signal (2 for a pair).
# SWING: the share of VCCO a line swings with charge drawn from VCCO (1 for a voltage-mode driver, 0
# for a current-mode one, whose constant DRIVER_CURRENT in mA already charges the line).
# DRIVER_CAP: the output stage's own switched capacitance in pF; DRIVER_CAP_PER_MA adds to it per mA of
# a drive setting. DRIVER_OHMS: the output impedance, also taken for the far-end driver of an input.
# TERMINATED: 1 when the standard is terminated; TERM_LEVEL: the termination voltage as a share of
# VCCO (0.5 centre-tapped, 1 to VCCO, 0 to ground). RX_BIAS: the receiver's bias current in mA on
# VCCAUX (a reference-comparing or differential receiver); RX_CAP: its switched capacitance in pF.
CMOS = {"LINES": 1, "SWING": 1.0, "DRIVER_CAP": cap(130), "DRIVER_CAP_PER_MA": cap(40), "DRIVER_OHMS": 0.0,
        "TERMINATED": 0, "TERM_LEVEL": 0.0, "DEFAULT_ODT": 0.0, "ODT_MIN": 0.0, "ODT_MAX": 0.0,
        "DEFAULT_TERMINATION": 0.0, "DRIVER_CURRENT": 0.0, "RX_BIAS": 0.0, "RX_CAP": cap(12)}
TERMINATED = {**CMOS, "DRIVER_CAP": cap(530), "DRIVER_CAP_PER_MA": 0.0, "DRIVER_OHMS": 40.0, "TERMINATED": 1,
              "TERM_LEVEL": 0.5, "DEFAULT_ODT": 40.0, "ODT_MIN": 30.0, "ODT_MAX": 240.0,
              "DEFAULT_TERMINATION": 40.0, "RX_BIAS": 0.4, "RX_CAP": cap(20)}
HSTL = {**TERMINATED, "DRIVER_OHMS": 50.0, "DEFAULT_ODT": 50.0, "DEFAULT_TERMINATION": 50.0}
POD = {**TERMINATED, "TERM_LEVEL": 1.0, "ODT_MIN": 34.0, "DEFAULT_TERMINATION": 48.0}
HSUL = {**TERMINATED, "TERMINATED": 0, "DEFAULT_ODT": 0.0, "ODT_MIN": 0.0, "ODT_MAX": 0.0,
        "DEFAULT_TERMINATION": 0.0}
LVSTL = {**TERMINATED, "TERM_LEVEL": 0.0, "DRIVER_OHMS": 48.0, "DEFAULT_ODT": 48.0, "DEFAULT_TERMINATION": 48.0}
CURRENT_MODE = {**CMOS, "LINES": 2, "SWING": 0.0, "DRIVER_CAP": 0.0, "DRIVER_CAP_PER_MA": 0.0,
                "RX_CAP": cap(30)}


def differential(single: dict) -> dict:
    """Two complementary lines of the single-ended standard with one differential receiver."""
    return {**single, "LINES": 2, "RX_BIAS": 0.6}


# name: (rail, VCCO, figures, drive settings in mA with the default first, {bank type: Mb/s})
STANDARDS = {
    "LVCMOS10": ("VCCO10", 1.0, CMOS, [4, 2, 6], {"XPIO": 200, "X5IO": 200}),
    "LVCMOS12": ("VCCO12", 1.2, CMOS, [8, 2, 4, 6], {"XPIO": 400, "X5IO": 200}),
    "LVCMOS15": ("VCCO15", 1.5, CMOS, [8, 2, 4, 6, 12], {"XPIO": 400}),
    "LVCMOS18": ("VCCO18", 1.8, CMOS, [8, 2, 4, 6, 12, 16], {"HDIO": 250}),
    "LVCMOS25": ("VCCO25", 2.5, CMOS, [8, 4, 12, 16], {"HDIO": 250}),
    "LVCMOS33": ("VCCO33", 3.3, CMOS, [8, 4, 12, 16], {"HDIO": 250}),
    "SSTL12": ("VCCO12", 1.2, TERMINATED, [], {"XPIO": 3200, "X5IO": 4400}),
    "SSTL135": ("VCCO135", 1.35, TERMINATED, [], {"XPIO": 2133}),
    "SSTL15": ("VCCO15", 1.5, TERMINATED, [], {"XPIO": 1866}),
    "HSTL_I_12": ("VCCO12", 1.2, HSTL, [], {"XPIO": 1333}),
    "HSTL_I": ("VCCO15", 1.5, HSTL, [], {"XPIO": 1333}),
    "HSTL_I_18": ("VCCO18", 1.8, HSTL, [], {"HDIO": 250}),
    "POD12": ("VCCO12", 1.2, POD, [], {"XPIO": 3200, "X5IO": 4800}),
    "HSUL12": ("VCCO12", 1.2, HSUL, [], {"XPIO": 2133, "X5IO": 3200}),
    "LVSTL11": ("VCCO11", 1.1, LVSTL, [], {"XPIO": 4266, "X5IO": 6400}),
    "DIFF_SSTL12": ("VCCO12", 1.2, differential(TERMINATED), [], {"XPIO": 3200, "X5IO": 4400}),
    "DIFF_SSTL135": ("VCCO135", 1.35, differential(TERMINATED), [], {"XPIO": 2133}),
    "DIFF_SSTL15": ("VCCO15", 1.5, differential(TERMINATED), [], {"XPIO": 1866}),
    "DIFF_HSTL_I": ("VCCO15", 1.5, differential(HSTL), [], {"XPIO": 1333}),
    "DIFF_POD12": ("VCCO12", 1.2, differential(POD), [], {"XPIO": 3200, "X5IO": 4800}),
    "DIFF_HSUL12": ("VCCO12", 1.2, differential(HSUL), [], {"XPIO": 2133, "X5IO": 3200}),
    "DIFF_LVSTL11": ("VCCO11", 1.1, differential(LVSTL), [], {"XPIO": 4266, "X5IO": 6400}),
    # 3.5 mA into the 100-ohm load and 1 mA of bias and common-mode control.
    "LVDS": ("VCCO15", 1.5, {**CURRENT_MODE, "DRIVER_CURRENT": 4.5, "RX_BIAS": 0.8}, [], {"XPIO": 1800}),
    "LVDS25": ("VCCO25", 2.5, {**CURRENT_MODE, "DRIVER_CURRENT": 4.5, "RX_BIAS": 0.8}, [], {"HDIO": 250}),
    # High-speed lanes: 2 mA into 100 ohms (a 200 mV swing) and 0.5 mA of bias.
    "MIPI_DPHY": ("VCCO12", 1.2, {**CURRENT_MODE, "DRIVER_CURRENT": 2.5, "RX_BIAS": 0.6}, [], {"XPIO": 2500}),
}

SLEW_FACTOR = {"SLOW": 1.0, "FAST": 1.25}  # faster edges: more crowbar current in the output stage


def figures(vcco: float, single: dict, drives: list[int]) -> dict:
    return {"VCCO": vcco, **{k: float(v) for k, v in single.items()}, "DRIVE": float(drives[0] if drives else 0)}


def io_tables() -> dict:
    return {
        "BANK_TYPE_LIST": list(BANKS),
        "STANDARD_LIST": list(STANDARDS),
        "DIRECTION_LIST": ["OUTPUT", "INPUT", "BIDIR"],
        "SLEW_LIST": list(SLEW_FACTOR),
        "DRIVE_STRENGTHS": {name: [str(d) for d in sorted(s[3])] for name, s in STANDARDS.items() if s[3]},
        "STANDARD_RAIL": {name: s[0] for name, s in STANDARDS.items()},
        "STANDARD": {name: figures(s[1], s[2], s[3]) for name, s in STANDARDS.items()},
        "MAX_DATA_RATE": {bank: {name: float(s[4][bank]) for name, s in STANDARDS.items() if bank in s[4]}
                          for bank in BANKS},
        "BANK": {bank: {k: float(v) for k, v in b.items()} for bank, b in BANKS.items()},
        "SLEW_FACTOR": SLEW_FACTOR,
        "CONSTANTS": {"VCCO_TOLERANCE": 0.05},
        "BLOCK_POWER_SCALE": {d: {"IO_VCCO": 1.0, "IO_VCCAUX": 1.0, "IO_VCCINTIO": 1.0}
                              for d in ["DEFAULT", *DEVICE_SIZES, "ZQVP1310"]},
    }


TEXT = data_file(
    "PRSMTalvexIoData",
    "General-purpose I/O: standards (VCCO in V, capacitances in pF, impedances in ohms, currents in mA),\n"
    "the bank types that carry them (Mb/s), bank figures. Written by data/tools/io_data.py; see\n"
    "docs/models/TalvexIo.md.",
    io_tables())


def main() -> int:
    return run(OUT, {"PRSMTalvexIoData.cfg": TEXT}, Path(__file__).name)


if __name__ == "__main__":
    sys.exit(main())
