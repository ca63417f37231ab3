#!/usr/bin/env python3
"""Writes the shipped tables of the older architecture's sheets at the device's edge from the laws below:

  dravik/PRSMDravikGtData.cfg   per-lane bias and energy per symbol of the GTH, GTY and PS-GTR lanes
  dravik/PRSMDravikGtPresetData.cfg  the transceiver inputs of common protocols' lanes
  dravik/PRSMDravikIoData.cfg   I/O standards, the HPIO and HDIO banks that carry them, their rails and figures
  dravik/PRSMDravikDdrData.cfg  a DDR4/LPDDR4 interface: its controller in the logic, its PHY and its pins

Usage: dravik_io_sheets.py [--check]. With --check nothing is written: the exit status says whether the
committed files are what the laws give. Standard library only. How the figures were chosen:
docs/models/DravikGt.md.

Transceiver law (the newer transceivers', gt_ip_sheets.py): a lane's power on a rail is a bias current
times the rail's nominal voltage, plus, on AVCC, a capacitance switched once a symbol times AVCC^2 (pF x
V^2 = pJ a symbol = mW per GBd). The coding sublayer switches a capacitance per bit on its digital rail.
The 16 nm-class lanes run from higher supplies (0.9 V AVCC, 0.85 V logic) and switch more capacitance a
symbol than the newer ones.

I/O law (the newer I/O's, io_data.py): switched capacitances from gates and wire, a pad's capacitance,
driver impedances, terminations and bias currents per bank type and standard. The older output stages
and receivers are larger for the same function (OLDER_STAGE), and the 3.3 V-tolerant HDIO pad larger
still; the HDIO has no serialisers or I/O clocking of its own.

Memory-interface law (the newer hard controllers', memory_sheets.py): pins by memory type, each pin's
termination current and load; the PHY and the controller switched capacitance, clocked whether data
moves or not, plus a part per bit moved. The controller is built in the logic, so it switches several
times the hard controller's capacitance, at an eighth of the data rate.
"""

from __future__ import annotations

import sys
from pathlib import Path

from cfg_writer import data_file, run
from gt_ip_sheets import ENCODING_FACTOR
from memory_sheets import TYPE_IO as HARD_TYPE_IO
from memory_sheets import TYPE_PINS
from io_data import CMOS, CURRENT_MODE, HSTL, HSUL, POD, SLEW_FACTOR, TERMINATED, cap, differential, figures

OUT = Path(__file__).resolve().parent.parent / "powercfg" / "dravik"
PARTS = ["ZDM5100", "ZDM7100", "ZDM9200"]

# ---- Transceivers ----------------------------------------------------------------------------------------
FAMILIES = ["GTH", "GTY", "PSGTR"]
# Each family's rails by role (AVCC, AVTT, VCCAUX, PCS), with their nominal voltages.
FAMILY_RAILS = {
    "GTH": {"AVCC": "MGTAVCC", "AVTT": "MGTAVTT", "VCCAUX": "MGTVCCAUX", "PCS": "VCCINT"},
    "GTY": {"AVCC": "MGTYAVCC", "AVTT": "MGTYAVTT", "VCCAUX": "MGTYVCCAUX", "PCS": "VCCINT"},
    "PSGTR": {"AVCC": "VCCPSGTA", "AVTT": "VTTPSGTA", "VCCAUX": "VCCPSAUX", "PCS": "VCCPSINTFP"},
}
NOMINAL_VOLTAGE = {"MGTAVCC": 0.9, "MGTAVTT": 1.2, "MGTVCCAUX": 1.8, "MGTYAVCC": 0.9, "MGTYAVTT": 1.2,
                   "MGTYVCCAUX": 1.8, "VCCPSGTA": 0.85, "VTTPSGTA": 1.8, "VCCPSAUX": 1.8, "VCCINT": 0.85,
                   "VCCPSINTFP": 0.85}

# Per family: bias currents in mA (each half lane; PLLs per quad for LC, per lane for ring), switched
# capacitance in pF a symbol on AVCC (serialiser and driver pre-stages; receiver front end and CDR; the
# DFE's taps), the coding sublayer's pF a bit, and the line-rate limits in Gb/s. The PS-GTR has a PLL in
# every lane and no quad PLL (no LC_PLL rows), and a linear equaliser only (no DFE row).
TRANSCEIVERS = {
    "GTH": {"ma": {"TX_AVCC": 10, "RX_AVCC": 16, "TX_AVTT": 18, "RX_AVTT": 4, "TX_VCCAUX": 1.5, "RX_VCCAUX": 1.5,
                   "LC_PLL_AVCC": 40, "LC_PLL_VCCAUX": 5, "RING_PLL_AVCC": 12, "RING_PLL_VCCAUX": 1},
            "pf": {"TX": 2.4, "RX": 3.0, "DFE": 1.0}, "pcs_pf": 0.6,
            "rates": {"MIN": 0.5, "MAX": 16.375, "MAX_RING": 12.5}},
    "GTY": {"ma": {"TX_AVCC": 12, "RX_AVCC": 18, "TX_AVTT": 20, "RX_AVTT": 5, "TX_VCCAUX": 2, "RX_VCCAUX": 2,
                   "LC_PLL_AVCC": 50, "LC_PLL_VCCAUX": 6, "RING_PLL_AVCC": 14, "RING_PLL_VCCAUX": 1.2},
            "pf": {"TX": 2.2, "RX": 2.8, "DFE": 1.0}, "pcs_pf": 0.6,
            "rates": {"MIN": 0.5, "MAX": 32.75, "MAX_RING": 16.375}},
    "PSGTR": {"ma": {"TX_AVCC": 8, "RX_AVCC": 12, "TX_AVTT": 6, "RX_AVTT": 2, "TX_VCCAUX": 0.5, "RX_VCCAUX": 0.5,
                     "RING_PLL_AVCC": 10, "RING_PLL_VCCAUX": 1},
              "pf": {"TX": 2.0, "RX": 2.5}, "pcs_pf": 0.8,
              "rates": {"MIN": 1.25, "MAX": 6.0, "MAX_RING": 6.0}},
}
# Quads of each part by family (the catalogue's GTH_QUADS and GTY_QUADS say the same); every part with a
# processing system has one PS-GTR quad.
QUADS = {
    "ZDM5100": {"GTH": 1, "GTY": 0, "PSGTR": 1},
    "ZDM7100": {"GTH": 4, "GTY": 2, "PSGTR": 1},
    "ZDM9200": {"GTH": 0, "GTY": 8, "PSGTR": 1},
}


def lane_power(family: str) -> dict:
    rails, law = FAMILY_RAILS[family], TRANSCEIVERS[family]
    volts = {role: NOMINAL_VOLTAGE[rail] for role, rail in rails.items()}
    row = {key: round(ma * volts[key.rsplit("_", 1)[1]], 6) for key, ma in law["ma"].items()}
    row.update({f"{part}_AVCC_PER_GBD": round(pf * volts["AVCC"] ** 2, 6) for part, pf in law["pf"].items()})
    row["PCS_PER_GBPS"] = round(law["pcs_pf"] * volts["PCS"] ** 2, 6)
    return row


def gt_tables() -> dict:
    return {
        "GT_TYPE_LIST": FAMILIES,
        "ENCODING_LIST": list(ENCODING_FACTOR),
        "LANE_USE_LIST": ["TX_RX", "TX_ONLY", "RX_ONLY"],
        "PLL_TYPE_LIST": ["LC", "RING"],
        "EQUALIZATION_LIST": ["LPM", "DFE"],
        "LANE_POWER": {f: lane_power(f) for f in FAMILIES},
        "RATE_LIMIT": {f: TRANSCEIVERS[f]["rates"] for f in FAMILIES},
        "ENCODING_FACTOR": ENCODING_FACTOR,
        "QUADS": QUADS,
        "NOMINAL_VOLTAGE": NOMINAL_VOLTAGE,
        "VOLTAGE_SCALING": {"VPOW": 2.0},
        "BLOCK_POWER_SCALE": {d: {f: 1.0 for f in FAMILIES} for d in ["DEFAULT", *PARTS]},
    }


# The lanes of common protocols: family, lanes, line rate (Gb/s), coding, use, PLL, equaliser. The
# processing system's ports run on the PS-GTR with a PLL in every lane; 12G-SDI video is sent raw.
GT_PRESETS = {
    "USB3": ("USB 3 SuperSpeed: one PS-GTR lane at 5 Gb/s, 8b/10b",
             "PSGTR", 1, 5.0, "ENC_8B10B", "TX_RX", "RING", "LPM"),
    "SATA3": ("SATA 3: one PS-GTR lane at 6 Gb/s, 8b/10b", "PSGTR", 1, 6.0, "ENC_8B10B", "TX_RX", "RING", "LPM"),
    "DISPLAYPORT_HBR2_X2": ("DisplayPort out: two PS-GTR lanes at 5.4 Gb/s (HBR2), 8b/10b, transmit only",
                            "PSGTR", 2, 5.4, "ENC_8B10B", "TX_ONLY", "RING", "LPM"),
    "PCIE_GEN2_X4_PS": ("PCIe Gen2 x4 from the processing system: four PS-GTR lanes at 5 GT/s, 8b/10b",
                        "PSGTR", 4, 5.0, "ENC_8B10B", "TX_RX", "RING", "LPM"),
    "PCIE_GEN3_X4": ("PCIe Gen3 x4: four GTH lanes at 8 GT/s, 128b/130b",
                     "GTH", 4, 8.0, "ENC_128B130B", "TX_RX", "LC", "DFE"),
    "ETHERNET_10G": ("10G Ethernet: one GTH lane at 10.3125 Gb/s, 64b/66b, a short channel (LPM)",
                     "GTH", 1, 10.3125, "ENC_64B66B", "TX_RX", "LC", "LPM"),
    "SDI_12G": ("12G-SDI video out: one GTH lane at 11.88 Gb/s, sent raw", "GTH", 1, 11.88, "RAW", "TX_ONLY", "LC",
                "LPM"),
    "ETHERNET_25G": ("25G Ethernet: one GTY lane at 25.78125 Gb/s, 64b/66b",
                     "GTY", 1, 25.78125, "ENC_64B66B", "TX_RX", "LC", "DFE"),
    "PCIE_GEN3_X8": ("PCIe Gen3 x8: eight GTY lanes at 8 GT/s, 128b/130b",
                     "GTY", 8, 8.0, "ENC_128B130B", "TX_RX", "LC", "DFE"),
}
GT_PRESET_INPUTS = ["GT_TYPE", "LANES", "LINE_RATE", "ENCODING", "LANE_USE", "PLL_TYPE", "EQUALIZATION"]


def gt_preset_tables() -> dict:
    rows = {name: {"DESCRIPTION": description, **{k: str(v) for k, v in zip(GT_PRESET_INPUTS, values)}}
            for name, (description, *values) in GT_PRESETS.items()}
    return {"PRESET_LIST": list(GT_PRESETS), "GT_PRESETS": rows}


# ---- General-purpose I/O ---------------------------------------------------------------------------------
# PINS: package pins a bank bonds out. PAD_CAP: pad, ESD and output-stage drains per line, pF. On
# VCCINTIO, per signal: the pre-driver and serialiser of an output, the deserialiser of an input, and the
# I/O clocking at half the bit rate (io_data.py). RECEIVER_RAIL: the auxiliary rail of the receivers.
BANKS = {
    "HPIO": {"PINS": 52, "PAD_CAP": 1.5, "PREDRIVER_CAP": cap(200), "DESER_CAP": cap(120),
             "CLOCK_CAP": cap(25, 120)},
    "HDIO": {"PINS": 24, "PAD_CAP": 3.0, "PREDRIVER_CAP": cap(140), "DESER_CAP": cap(40), "CLOCK_CAP": 0.0},
}
RECEIVER_RAIL = {"HPIO": "VCCAUXIO", "HDIO": "VCCAUX"}
OLDER_STAGE = 1.2  # output stages and receivers against the newer ones'


def older(single: dict) -> dict:
    """A standard's figures with the older, larger output stage and receiver."""
    scaled = {k: round(single[k] * OLDER_STAGE, 6) for k in ("DRIVER_CAP", "DRIVER_CAP_PER_MA", "RX_CAP", "RX_BIAS")}
    return {**single, **scaled}


CMOS_OLD, SSTL_OLD, HSTL_OLD, POD_OLD, HSUL_OLD = (older(s) for s in (CMOS, TERMINATED, HSTL, POD, HSUL))

# name: (rail, VCCO, figures, drive settings in mA with the default first, {bank type: Mb/s})
STANDARDS = {
    "LVCMOS12": ("VCCO12", 1.2, CMOS_OLD, [8, 2, 4, 6], {"HPIO": 300, "HDIO": 200}),
    "LVCMOS15": ("VCCO15", 1.5, CMOS_OLD, [8, 2, 4, 6, 12], {"HPIO": 300, "HDIO": 200}),
    "LVCMOS18": ("VCCO18", 1.8, CMOS_OLD, [8, 2, 4, 6, 12], {"HPIO": 300, "HDIO": 250}),
    "LVCMOS25": ("VCCO25", 2.5, CMOS_OLD, [8, 4, 12, 16], {"HDIO": 250}),
    "LVCMOS33": ("VCCO33", 3.3, CMOS_OLD, [8, 4, 12, 16], {"HDIO": 250}),
    "SSTL12": ("VCCO12", 1.2, SSTL_OLD, [], {"HPIO": 2666}),
    "SSTL135": ("VCCO135", 1.35, SSTL_OLD, [], {"HPIO": 2133, "HDIO": 400}),
    "SSTL15": ("VCCO15", 1.5, SSTL_OLD, [], {"HPIO": 1866, "HDIO": 400}),
    "HSTL_I_12": ("VCCO12", 1.2, HSTL_OLD, [], {"HPIO": 1333}),
    "HSTL_I": ("VCCO15", 1.5, HSTL_OLD, [], {"HPIO": 1333, "HDIO": 250}),
    "HSTL_I_18": ("VCCO18", 1.8, HSTL_OLD, [], {"HPIO": 1333, "HDIO": 250}),
    "POD12": ("VCCO12", 1.2, POD_OLD, [], {"HPIO": 2666}),
    "HSUL12": ("VCCO12", 1.2, HSUL_OLD, [], {"HPIO": 2133, "HDIO": 400}),
    "DIFF_SSTL12": ("VCCO12", 1.2, differential(SSTL_OLD), [], {"HPIO": 2666}),
    "DIFF_SSTL135": ("VCCO135", 1.35, differential(SSTL_OLD), [], {"HPIO": 2133, "HDIO": 400}),
    "DIFF_SSTL15": ("VCCO15", 1.5, differential(SSTL_OLD), [], {"HPIO": 1866, "HDIO": 400}),
    "DIFF_HSTL_I": ("VCCO15", 1.5, differential(HSTL_OLD), [], {"HPIO": 1333, "HDIO": 250}),
    "DIFF_HSTL_I_18": ("VCCO18", 1.8, differential(HSTL_OLD), [], {"HPIO": 1333, "HDIO": 250}),
    "DIFF_POD12": ("VCCO12", 1.2, differential(POD_OLD), [], {"HPIO": 2666}),
    "DIFF_HSUL12": ("VCCO12", 1.2, differential(HSUL_OLD), [], {"HPIO": 2133, "HDIO": 400}),
    # 3.5 mA into the 100-ohm load and 1.5 mA of bias and common-mode control, from 1.8 V on HPIO.
    "LVDS": ("VCCO18", 1.8, {**CURRENT_MODE, "DRIVER_CURRENT": 5.0, "RX_BIAS": 1.0}, [], {"HPIO": 1600}),
    "LVDS25": ("VCCO25", 2.5, {**CURRENT_MODE, "DRIVER_CURRENT": 5.0, "RX_BIAS": 1.0}, [], {"HDIO": 250}),
    # MIPI D-PHY high-speed lanes on HPIO at 1.2 V: 2 mA into 100 ohms (a 200 mV swing) and 0.7 mA of bias.
    "MIPI_DPHY": ("VCCO12", 1.2, {**CURRENT_MODE, "DRIVER_CURRENT": 2.7, "RX_BIAS": 0.8}, [], {"HPIO": 1500}),
}


def io_tables() -> dict:
    return {
        "BANK_TYPE_LIST": list(BANKS),
        "STANDARD_LIST": list(STANDARDS),
        "DIRECTION_LIST": ["OUTPUT", "INPUT", "BIDIR"],
        "SLEW_LIST": list(SLEW_FACTOR),
        "DRIVE_STRENGTHS": {name: [str(d) for d in sorted(s[3])] for name, s in STANDARDS.items() if s[3]},
        "STANDARD_RAIL": {name: s[0] for name, s in STANDARDS.items()},
        "RECEIVER_RAIL": RECEIVER_RAIL,
        "STANDARD": {name: figures(s[1], s[2], s[3]) for name, s in STANDARDS.items()},
        "MAX_DATA_RATE": {bank: {name: float(s[4][bank]) for name, s in STANDARDS.items() if bank in s[4]}
                          for bank in BANKS},
        "BANK": {bank: {k: float(v) for k, v in b.items()} for bank, b in BANKS.items()},
        "SLEW_FACTOR": SLEW_FACTOR,
        "CONSTANTS": {"VCCO_TOLERANCE": 0.05},
        "BLOCK_POWER_SCALE": {d: {"IO_VCCO": 1.0, "IO_VCCAUX": 1.0, "IO_VCCINTIO": 1.0} for d in ["DEFAULT", *PARTS]},
    }


# ---- Memory interface in the logic -------------------------------------------------------------------------
# The memory types' pins and pin electricals are the newer interface's; the older HPIO banks run DDR4 to
# 2666 MT/s and LPDDR4 to 2400 MT/s, and there is no 1.1 V bank rail: LPDDR4's banks are the VCCO12 rail
# run at 1.1 V. The soft controller's logic runs at an eighth of the data rate for both types.
DDR_TYPES = ["DDR4", "LPDDR4"]
DDR_TYPE_IO = {
    "DDR4": {**HARD_TYPE_IO["DDR4"], "MAX_RATE": 2666.0, "CONTROLLER_DIVIDE": 8.0},
    "LPDDR4": {**HARD_TYPE_IO["LPDDR4"], "MAX_RATE": 2400.0, "CONTROLLER_DIVIDE": 8.0},
}
# The HPIO PHY: larger than the newer one per pin (4 pF clocked, 0.7 pF a bit moved), a PLL per bank of
# 52 pins on VCCAUXIO and 0.8 mA a receiving pin.
DDR_PHY = {"PIN_CLOCK_PF": 4.0, "BIT_PF": 0.7, "PLL_MA": 10.0, "PLL_MA_PER_GHZ": 8.0, "RX_MA": 0.8}
# The controller in the logic: scheduler, queues and calibration logic (1,500 pF clocked: some 5,000
# LUTs and flip-flops), a datapath of 16 pF a bit (the 8:1 gearbox of each bit), 60 pF per rank, and
# 3 pF per bit moved through the datapath and ECC.
DDR_CONTROLLER = {"CLOCK_PF": 1500.0, "DATAPATH_CLOCK_PF": 16.0, "RANK_CLOCK_PF": 60.0, "BIT_PF": 3.0}
PART_HPIO_BANKS = {"ZDM5100": 3, "ZDM7100": 6, "ZDM9200": 12}
# The module's base device is of the slowest speed grade the modules carry.
DDR_PART_RATES = {"ZDM5100": {"DDR4": 2400.0, "LPDDR4": 2133.0}}


def ddr_tables() -> dict:
    return {
        "MEMORY_TYPE_LIST": DDR_TYPES,
        "TYPE_PINS": {t: TYPE_PINS[t] for t in DDR_TYPES},
        "TYPE_IO": {t: {k: round(v, 6) for k, v in DDR_TYPE_IO[t].items()} for t in DDR_TYPES},
        "IO_RAIL": {t: "VCCO12" for t in DDR_TYPES},
        "PHY": DDR_PHY,
        "HPIO_BANK": {"PINS": BANKS["HPIO"]["PINS"]},
        "CONTROLLER": DDR_CONTROLLER,
        "VOLTAGE_SCALING": {"VPOW": 2.0},
        "MAX_DATA_RATE": {d: DDR_PART_RATES.get(d, {t: DDR_TYPE_IO[t]["MAX_RATE"] for t in DDR_TYPES})
                          for d in ["DEFAULT", *PARTS]},
        "PART_BANKS": {"DEFAULT": 3, **PART_HPIO_BANKS},
        "BLOCK_POWER_SCALE": {d: {f"DDR_{r}": 1.0 for r in ("VCCINT", "VCCINTIO", "VCCAUXIO", "VCCO")}
                              for d in ["DEFAULT", *PARTS]},
    }


def files() -> dict:
    return {
        "PRSMDravikGtData.cfg": data_file(
            "PRSMDravikGtData",
            "Transceivers of the older architecture: per-lane power in mW at the nominal rail voltages (mW per\n"
            "GBd for *_PER_GBD, per Gb/s for PCS_PER_GBPS), line-rate limits and quads per part. Written by\n"
            "data/tools/dravik_io_sheets.py; see docs/models/DravikGt.md.",
            gt_tables()),
        "PRSMDravikGtPresetData.cfg": data_file(
            "PRSMDravikGtPresetData",
            "Ready-made input sets of the older transceiver sheet: GT_PRESETS.<preset>.<input>, numbers as their\n"
            "text. Written by data/tools/dravik_io_sheets.py; see docs/models/DravikGt.md.",
            gt_preset_tables()),
        "PRSMDravikIoData.cfg": data_file(
            "PRSMDravikIoData",
            "General-purpose I/O of the older architecture: standards (VCCO in V, capacitances in pF, impedances\n"
            "in ohms, currents in mA), the bank types that carry them (Mb/s), bank figures. Written by\n"
            "data/tools/dravik_io_sheets.py; see docs/models/DravikIo.md.",
            io_tables()),
        "PRSMDravikDdrData.cfg": data_file(
            "PRSMDravikDdrData",
            "Memory interface in the logic of the older architecture: pins by memory type, pin electricals (V,\n"
            "ohm, pF, MT/s), PHY (pF, mA) and controller (pF) figures, parts' HPIO banks. Written by\n"
            "data/tools/dravik_io_sheets.py; see docs/models/DravikDdr.md.",
            ddr_tables()),
    }


def main() -> int:
    return run(OUT, files(), Path(__file__).name)


if __name__ == "__main__":
    sys.exit(main())
