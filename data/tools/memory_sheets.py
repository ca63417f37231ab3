#!/usr/bin/env python3
"""Writes the shipped tables of the memory-controller and memory-stack sheets from the laws below:

  talvex/PRSMTalvexDdrmcData.cfg   a hard DDR4/LPDDR4/LPDDR4X controller, its PHY and its I/O
  talvex/PRSMTalvexHbmData.cfg     the memory stacks on the parts that have them

Usage: memory_sheets.py [--check] [--report]. With --check nothing is written: the exit status says
whether the committed files are what the laws give. --report prints the reference interfaces' power.
Standard library only; the output is committed, so the library never needs this script at run time.
The parts, their sizes and their stacks come from the static-power description (talvex_static.toml),
so every file names the same devices. How the figures were chosen: docs/models/TalvexDdrmc.md and
docs/models/TalvexHbm.md.
"""

from __future__ import annotations

import sys
import tomllib
from pathlib import Path

from cfg_writer import data_file, run

TOOLS = Path(__file__).resolve().parent
OUT = TOOLS.parent / "powercfg" / "talvex"
DEVICES = tomllib.loads((TOOLS / "talvex_static.toml").read_text())["devices"]

# ---- DDR memory controller ----------------------------------------------------------------------------
# Pins by standard. A DDR4 interface is one channel of up to 64 data bits (plus 8 check bits) with one
# command bus; an LPDDR4 interface is built of 16-bit channels, each with its own 6-bit command bus and
# clock. Every byte lane has a mask/inversion pin and a differential strobe.
RZQ = 240.0  # ohm: the calibration resistor the drive and termination settings are fractions of
TYPE_PINS = {
    "DDR4": {"MIN_WIDTH": 16, "MAX_WIDTH": 64, "CHANNEL_WIDTH": 64, "ECC_BITS": 8, "ECC_MIN_WIDTH": 32,
             "MAX_RANKS": 2, "CA_PER_CHANNEL": 24,     # A0-A17, BA0-1, BG0-1, ACT_n, PAR
             "RANK_PER_CHANNEL": 3,                      # CS_n, CKE, ODT of each rank
             "CLOCK_PER_CHANNEL": 2, "MISC_PINS": 2,     # CK pair; RESET_n, ALERT_n
             "MASK_PER_BYTE": 1, "STROBE_PER_BYTE": 2},
    "LPDDR4": {"MIN_WIDTH": 16, "MAX_WIDTH": 64, "CHANNEL_WIDTH": 16, "ECC_BITS": 0, "ECC_MIN_WIDTH": 0,
               "MAX_RANKS": 2, "CA_PER_CHANNEL": 6, "RANK_PER_CHANNEL": 2,  # CS, CKE of each rank
               "CLOCK_PER_CHANNEL": 2, "MISC_PINS": 1, "MASK_PER_BYTE": 1, "STROBE_PER_BYTE": 2},
}
TYPE_PINS["LPDDR4X"] = dict(TYPE_PINS["LPDDR4"])

# Electrical law of a pin. DDR4 data lines are terminated to VDDQ (pseudo open drain): a low bit draws
# VDDQ / (driver + termination) from the terminating end's supply, so this side's VCCO pays for the bits
# it receives (reads, through its own termination). LPDDR4 lines are terminated to ground: a high bit
# draws from the driving end, so this side pays for the bits it sends (writes). LPDDR4X swings 0.6 V:
# the bank has no 0.6 V supply, its low-swing drivers are fed from the 1.1 V VCCO11, so the current of a
# 0.6 V swing is drawn at 1.1 V. DDR4 command lines are terminated to VTT = VDDQ / 2 on the board.
# Capacitances: the pad and trace of a pin, a DRAM pin per rank on the data lines, and on the command
# bus a DRAM input per byte (DDR4: a x8 device per byte on one fly-by bus; LPDDR4: one die per channel).
TYPE_IO = {
    "DDR4": {"VCCO_MIN": 1.14, "VCCO_MAX": 1.26, "SWING_RATIO": 1.0, "DRIVE_OHM": RZQ / 7, "ODT_OHM": RZQ / 5,
             "DRAM_DRIVE_OHM": RZQ / 7, "DRAM_ODT_OHM": RZQ / 5, "TERM_TO_VDDQ": 1.0, "CA_TERM_OHM": 40.0,
             "CA_TERM_SPAN": 0.5, "DQ_PF": 3.5, "DQ_RANK_PF": 1.2, "CA_PF": 3.0, "CA_RANK_PF": 1.0,
             "CA_TOGGLE": 0.25, "MIN_RATE": 1600.0, "MAX_RATE": 3200.0, "CONTROLLER_DIVIDE": 4.0},
    "LPDDR4": {"VCCO_MIN": 1.06, "VCCO_MAX": 1.17, "SWING_RATIO": 1.0, "DRIVE_OHM": RZQ / 6, "ODT_OHM": RZQ / 4,
               "DRAM_DRIVE_OHM": RZQ / 6, "DRAM_ODT_OHM": RZQ / 4, "TERM_TO_VDDQ": 0.0, "CA_TERM_OHM": RZQ / 2,
               "CA_TERM_SPAN": 1.0, "DQ_PF": 2.5, "DQ_RANK_PF": 0.8, "CA_PF": 2.5, "CA_RANK_PF": 0.5,
               "CA_TOGGLE": 0.25, "MIN_RATE": 1600.0, "MAX_RATE": 4266.0, "CONTROLLER_DIVIDE": 8.0},
}
TYPE_IO["LPDDR4X"] = {**TYPE_IO["LPDDR4"], "SWING_RATIO": round(0.6 / 1.1, 6)}
IO_RAIL = {"DDR4": "VCCO12", "LPDDR4": "VCCO11", "LPDDR4X": "VCCO11"}

# The PHY: every pin's serialiser, delay line and phase interpolator is clocked at the memory clock
# (half the data rate) whether data moves or not; a bit moved switches its FIFO and serialiser path.
# Each XPIO bank (54 pins) runs a PLL from VCCAUX, and a receiving pin biases its receiver and VREF.
PHY = {"PIN_CLOCK_PF": 3.0, "BIT_PF": 0.5, "PLL_MA": 8.0, "PLL_MA_PER_GHZ": 6.0, "RX_MA": 0.6}
XPIO_BANK = {"PINS": 54}
# The controller on VCCSOC at the data rate / CONTROLLER_DIVIDE: scheduler, queues and its network
# ports (CLOCK_PF), a datapath register per bit of width, the bank state and refresh timers of each
# rank, and its datapath, ECC included, switching per bit moved.
CONTROLLER = {"CLOCK_PF": 400.0, "DATAPATH_CLOCK_PF": 4.0, "RANK_CLOCK_PF": 30.0, "BIT_PF": 1.2}
VPOW = 2.0


def ddr_controllers(size: float) -> int:
    """Hard controllers of a part: four for the reference size, at least two."""
    return max(2, round(4 * size))


def ddr_max_rate(part: str) -> dict[str, float]:
    """The embedded parts' XPIO banks run a speed grade slower."""
    if part.startswith("ZQVE"):
        return {"DDR4": 2933.0, "LPDDR4": 3733.0, "LPDDR4X": 3733.0}
    return {t: io["MAX_RATE"] for t, io in TYPE_IO.items()}


def ddrmc_tables() -> dict:
    parts = sorted(DEVICES)
    return {
        "DEVICE_LIST": parts,
        "MEMORY_TYPE_LIST": list(TYPE_PINS),
        "TYPE_PINS": TYPE_PINS,
        "TYPE_IO": {t: {k: round(v, 6) for k, v in io.items()} for t, io in TYPE_IO.items()},
        "IO_RAIL": IO_RAIL,
        "PHY": PHY,
        "XPIO_BANK": XPIO_BANK,
        "CONTROLLER": CONTROLLER,
        "VOLTAGE_SCALING": {"VPOW": VPOW},
        "MAX_DATA_RATE": {"DEFAULT": ddr_max_rate(""), **{p: ddr_max_rate(p) for p in parts}},
        "CONTROLLERS": {"DEFAULT": 4, **{p: ddr_controllers(DEVICES[p]["size"]) for p in parts}},
        "BLOCK_POWER_SCALE": {d: {f"DDRMC_{r}": 1.0 for r in ("VCCSOC", "VCCINTIO", "VCCAUX", "VCCO")}
                              for d in ["DEFAULT", *parts]},
    }


# ---- Memory stacks ----------------------------------------------------------------------------------------
# A stack: 8 channels of 2 pseudo-channels, each 64 bits wide, at up to 3.2 Gb/s a pin (410 GB/s).
# Energies at the nominal voltages, going with V^2:
#   VCCHBM      the DRAM core: refresh and standby per die, the open banks and command decode of each
#               pseudo-channel in use, and per bit read or written (activate, column access, the through-
#               silicon data path, at a typical row-hit rate)
#   VCCIOHBM    both ends' interposer I/O: per bit sent (a short unterminated line, C V^2 / 2 per
#               transition, half of the bits switching), and each pseudo-channel's clock and strobes
#   VCCINTIOHBM the PHY's serialisers and the hard controllers: per bit moved, and per controller clock
#               (a quarter of the data rate) of each pseudo-channel in use
#   VCCAUXHBM   a stack's PLL, and each pseudo-channel's delay lines, their bias growing with the clock
STACK = {"PSEUDO_CHANNELS": 16, "PC_WIDTH": 64}
STACK_ENERGY = {"DIE_BACKGROUND_MW": 10.0, "PC_ACTIVE_MW": 6.0, "CORE_READ_PJ": 1.4, "CORE_WRITE_PJ": 1.5,
                "IO_BIT_PJ": 0.45, "IO_CLOCK_PJ": 2.0, "LOGIC_BIT_PJ": 0.35, "LOGIC_CLOCK_PJ": 12.0,
                "PLL_MA": 15.0, "PC_DLL_MA_PER_GHZ": 1.5}
HBM_RATE = {"MIN_RATE": 1000.0, "MAX_RATE": 3200.0}
HBM_NOMINAL = {"VPOW": VPOW, "VCCHBM_NOMINAL": 1.2, "VCCIOHBM_NOMINAL": 1.2, "VCCINTIOHBM_NOMINAL": 0.8}


def hbm_tables() -> dict:
    stacked = sorted(p for p, d in DEVICES.items() if "hbm" in d.get("features", []))
    return {
        "DEVICE_LIST": stacked,
        "STACK": STACK,
        "STACK_ENERGY": STACK_ENERGY,
        "RATE_LIMIT": HBM_RATE,
        "VOLTAGE_SCALING": HBM_NOMINAL,
        "STACKS": {p: dict(DEVICES[p]["hbm_stacks"]) for p in stacked},
        "MAX_DATA_RATE": {"DEFAULT": HBM_RATE["MAX_RATE"], **{p: HBM_RATE["MAX_RATE"] for p in stacked}},
        "BLOCK_POWER_SCALE": {d: {f"HBM_{r}": 1.0 for r in ("VCCHBM", "VCCIOHBM", "VCCINTIOHBM", "VCCAUXHBM")}
                              for d in ["DEFAULT", *stacked]},
    }


# ---- The reference interfaces (--report) -------------------------------------------------------------------

def ddr4_report(width: int = 64, rate: float = 3200.0, rd: float = 0.5, wr: float = 0.5) -> dict[str, float]:
    """W per rail of a one-rank DDR4 interface at nominal voltages, as the sheet computes it."""
    pins, io = TYPE_PINS["DDR4"], TYPE_IO["DDR4"]
    v, clock = 1.2, rate / 2
    nbytes = width // 8
    data, strobe = width + nbytes * pins["MASK_PER_BYTE"], nbytes * pins["STROBE_PER_BYTE"]
    command = pins["CA_PER_CHANNEL"] + pins["RANK_PER_CHANNEL"] + pins["MISC_PINS"]
    clk = pins["CLOCK_PER_CHANNEL"]
    s = v * io["SWING_RATIO"]
    i_data = 0.5 * s * (io["TERM_TO_VDDQ"] * rd / (io["DRAM_DRIVE_OHM"] + io["ODT_OHM"])
                        + (1 - io["TERM_TO_VDDQ"]) * wr / (io["DRIVE_OHM"] + io["DRAM_ODT_OHM"]))
    i_cmd = 0.5 * s * io["CA_TERM_SPAN"] / (io["DRIVE_OHM"] + io["CA_TERM_OHM"])
    dc = v * (i_data * (data + strobe) + i_cmd * (command + clk))
    dq_pf, ca_pf = io["DQ_PF"] + io["DQ_RANK_PF"], io["CA_PF"] + nbytes * io["CA_RANK_PF"]
    ac = v * s * 1e-6 * ((data * rate * wr * 0.25 + strobe * clock * wr) * dq_pf
                         + (command * clock * io["CA_TOGGLE"] * (rd + wr) * 0.5 + clk * clock) * ca_pf)
    all_pins = data + strobe + command + clk
    banks = -(-all_pins // XPIO_BANK["PINS"])
    intio = 0.64 * 1e-6 * (all_pins * PHY["PIN_CLOCK_PF"] * clock + data * rate * (rd + wr) * PHY["BIT_PF"])
    aux = 1.5 * 1e-3 * (banks * (PHY["PLL_MA"] + PHY["PLL_MA_PER_GHZ"] * clock / 1000)
                        + (data + strobe) * PHY["RX_MA"] * rd)
    ctrl_clock = rate / io["CONTROLLER_DIVIDE"]
    soc = 0.64 * 1e-6 * (ctrl_clock * (CONTROLLER["CLOCK_PF"] + width * CONTROLLER["DATAPATH_CLOCK_PF"]
                                       + CONTROLLER["RANK_CLOCK_PF"])
                         + width * rate * (rd + wr) * CONTROLLER["BIT_PF"])
    return {"VCCO12": dc + ac, "VCCINTIO": intio, "VCCAUX": aux, "VCCSOC": soc}


def hbm_report(rate: float = 3200.0, rd: float = 0.5, wr: float = 0.5) -> dict[str, float]:
    """W per rail of one 8-high stack with every pseudo-channel in use, at nominal voltages."""
    e, pcs = STACK_ENERGY, STACK["PSEUDO_CHANNELS"]
    bits = pcs * STACK["PC_WIDTH"] * rate  # Mb/s
    core = 8 * e["DIE_BACKGROUND_MW"] + pcs * e["PC_ACTIVE_MW"] + bits * 1e-3 * (
        rd * e["CORE_READ_PJ"] + wr * e["CORE_WRITE_PJ"])
    io = bits * (rd + wr) * 1e-3 * e["IO_BIT_PJ"] + pcs * rate / 2 * 1e-3 * e["IO_CLOCK_PJ"]
    logic = bits * (rd + wr) * 1e-3 * e["LOGIC_BIT_PJ"] + pcs * rate / 4 * 1e-3 * e["LOGIC_CLOCK_PJ"]
    aux = 1.5 * (e["PLL_MA"] + pcs * e["PC_DLL_MA_PER_GHZ"] * rate / 2000)
    return {k: v / 1000 for k, v in
            {"VCCHBM": core, "VCCIOHBM": io, "VCCINTIOHBM": logic, "VCCAUXHBM": aux}.items()}


FILES = {
    "PRSMTalvexDdrmcData.cfg": data_file(
        "PRSMTalvexDdrmcData",
        "DDR memory controllers: pins, drive and termination by memory type, PHY and controller switched\n"
        "capacitance in pF, rate limits per part. Written by data/tools/memory_sheets.py; see\n"
        "docs/models/TalvexDdrmc.md.",
        ddrmc_tables()),
    "PRSMTalvexHbmData.cfg": data_file(
        "PRSMTalvexHbmData",
        "Memory stacks: energies in pJ per bit or per clock and background power in mW at the nominal\n"
        "voltages, stacks per part. Written by data/tools/memory_sheets.py; see docs/models/TalvexHbm.md.",
        hbm_tables()),
}


def main() -> int:
    args = sys.argv[1:]
    if "--report" in args:
        for name, figures in (("DDR4-3200 x64, full bandwidth", ddr4_report()),
                              ("HBM stack, 3.2 Gb/s, full bandwidth", hbm_report())):
            total = sum(figures.values())
            parts = ", ".join(f"{rail} {w:.3f}" for rail, w in figures.items())
            print(f"{name}: {total:.3f} W ({parts})")
        return 0
    return run(OUT, FILES, Path(__file__).name)

if __name__ == "__main__":
    sys.exit(main())
