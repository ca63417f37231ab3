#!/usr/bin/env python3
"""Writes the shipped tables of the larger processor system's sheets from the law below:

  talvex/PRSMTalvexPsxlData.cfg         per-block coefficients, pins per peripheral, device scales
  talvex/PRSMTalvexPsxlPresetData.cfg   the ready-made input sets of TalvexPsxl

Usage: psxl_sheets.py [--check]. With --check nothing is written: the exit status says whether the
committed files are what the law gives. Standard library only. How the figures were chosen:
docs/models/TalvexPsxl.md.

The law: a block's coefficient in W per MHz is the capacitance it switches per clock cycle at the
domain's characterisation voltage, P / f = C * V^2. A block's CLOCK term is its clock tree and the
state it holds while idle; its DYNAMIC term the further capacitance its datapath and memories switch at
full load. A pin's switching term is its pad and load capacitance at the bank voltage.
"""

from __future__ import annotations

import sys
from pathlib import Path

from cfg_writer import data_file, run

OUT = Path(__file__).resolve().parent.parent / "powercfg" / "talvex"

PSIM_VOLTAGE = 0.8  # V: VCCFPD and VCCLPD as characterised
AUX_VOLTAGE = 1.5   # V: VCCAUXLPD as characterised


def w_per_mhz(pf: float, volts: float = PSIM_VOLTAGE) -> float:
    """The law: C * V^2 in W per MHz (pF * V^2 * 1e-6), rounded to what the table keeps."""
    return float(f"{pf * volts * volts * 1e-6:.6g}")


# Switched capacitance per cycle in pF: (idle clock tree and state, further at full load), per core,
# bank or controller. An application core at 2 GHz and full load: 380 pF * 0.64 V^2 * 2000 MHz = 0.49 W.
BLOCKS = {
    "CPU": (80, 300),             # an out-of-order application core with its L1 and L2
    "L3_CACHE": (60, 200),        # the shared cache and its snoop filter
    "FP_INTERCONNECT": (50, 150),  # the coherent full-power interconnect
    "RPU": (20, 60),              # an in-order real-time core with its caches
    "TCM_MEMORY": (5, 20),        # one bank of tightly coupled memory
    "OCM_MEMORY": (6, 25),        # one bank of on-chip memory
    "LP_INTERCONNECT": (25, 80),  # the low-power interconnect
    "USB": (40, 150),             # a USB 2.0 controller with its DMA
    "ETHERNET": (50, 200),        # a gigabit MAC with its DMA and timestamping
    "SD": (15, 50),               # an SD/eMMC host controller
    "QSPI": (10, 40),             # a quad-SPI flash controller
    "UART": (3, 10),
    "I2C": (2, 6),
    "SPI": (4, 12),
}

# A peripheral's pins switch at most at its clock times this at full load: ULPI at 60 MHz of a 250 MHz
# controller, RGMII at the 125 MHz clock, SD and quad-SPI at half their clock, UART at 1 Mbaud, I2C at
# 400 kHz and SPI at 25 MHz of their 100-200 MHz clocks.
PIN_ACTIVITY = {"USB": 0.24, "ETHERNET": 1.0, "SD": 0.5, "QSPI": 0.5, "UART": 0.01, "I2C": 0.004,
                "SPI": 0.125}

# One controller's pins on the bank: ULPI (clock, direction, next in; stop out; eight data both ways),
# RGMII with its management pins, a four-bit SD card with its detect, a quad-SPI flash, a UART, an I2C
# bus and a single-select SPI.
PERIPHERAL_PINS = {
    "USB": (3, 1, 8), "ETHERNET": (6, 7, 1), "SD": (1, 1, 5), "QSPI": (0, 2, 4),
    "UART": (1, 1, 0), "I2C": (0, 0, 2), "SPI": (1, 3, 0),
}

# PLLs: the core part's digital capacitance (on the domain's supply) and the analog part's (on VCCAUXLPD).
PLLS = {"FPD_PLL": (15, 2.2), "LPD_PLL": (12, 1.8)}

# Multiplexed-I/O pins. Core side: a receiver's and a driver's level shifter, and a standing current.
# Bank side, per standard voltage at its default drive: a receiver's input capacitance, a driver's pad
# and 5 pF load, the pin's standing current and the bank's bias share per pin.
RX_CORE_PF, TX_CORE_PF, CORE_STATIC_W = 0.3, 0.6, 2.0e-5
RX_PAD_PF, TX_PAD_PF, LOAD_PF = 0.5, 3.0, 5.0
BANKS = {"1V8": (1.8, "4MA", 3.0e-5, 6.0e-5), "2V5": (2.5, "8MA", 4.0e-5, 8.0e-5),
         "3V3": (3.3, "12MA", 5.0e-5, 1.0e-4)}

# The parts with this processor system. Both carry the same one: the device scale is 1.
PSXL_PARTS = ["ZQVC2606", "ZQVE2210"]


def mio_data() -> dict:
    data = {"MIO_IOB_VCCINT_RX_DYNAMIC": w_per_mhz(RX_CORE_PF), "MIO_IOB_VCCINT_TX_DYNAMIC": w_per_mhz(TX_CORE_PF),
            "MIO_IOB_VCCINT_STATIC": CORE_STATIC_W}
    for tag, (volts, drive, static, bias) in BANKS.items():
        data[f"MIO_IOB_VCCO_PMIO_{tag}_RX_DYNAMIC"] = w_per_mhz(RX_PAD_PF, volts)
        data[f"MIO_IOB_VCCO_PMIO_{tag}_TX_{drive}_F_DYNAMIC"] = w_per_mhz(TX_PAD_PF + LOAD_PF, volts)
        data[f"MIO_IOB_{tag}_TX_{drive}_CLOAD_SCALE_FACTOR"] = 1.0
        data[f"MIO_IOB_VCCO_PMIO_{tag}_STATIC"] = static
        data[f"MIO_BIAS_VCCO_PMIO_{tag}_STATIC"] = bias
    return data


def psxl_tables() -> dict:
    blocks = {name: {"CLOCK": w_per_mhz(idle), "DYNAMIC": w_per_mhz(load)} for name, (idle, load) in BLOCKS.items()}
    for name, activity in PIN_ACTIVITY.items():
        blocks[name]["PIN_ACTIVITY"] = activity
    for name, (core, aux) in PLLS.items():
        blocks[name] = {"CORE": w_per_mhz(core), "AUX": w_per_mhz(aux, AUX_VOLTAGE)}
    return {
        "BLOCK_DATA": blocks,
        "MIO_DATA": mio_data(),
        "SIM_CONDITIONS": {"PSIM_VOLTAGE": PSIM_VOLTAGE, "AUX_VOLTAGE": AUX_VOLTAGE},
        "PERIPHERAL_PINS": {p: dict(zip(("INPUTS", "OUTPUTS", "BIDIS"), pins)) for p, pins in PERIPHERAL_PINS.items()},
        "BLOCK_POWER_SCALE": {d: {"PSXL_VCCFPD": 1.0, "PSXL_VCCLPD": 1.0} for d in ["DEFAULT", *PSXL_PARTS]},
    }


# ---- Presets: every TalvexPsxl input but the rails and the part, which a design owns ----------------

PERIPHERALS = ["USB", "ETHERNET", "SD", "QSPI", "UART", "I2C", "SPI"]
GATED = ["CPU", "L3_CACHE", "FP_INTERCONNECT", "RPU", "TCM_MEMORY", "OCM_MEMORY", "LP_INTERCONNECT"]
POWER_GATED = ["CPU", "L3_CACHE", "RPU", "TCM_MEMORY", "OCM_MEMORY"]
CLOCKS = {"CPU": 2000.0, "L3_CACHE": 1200.0, "FP_INTERCONNECT": 800.0, "RPU": 1000.0, "TCM_MEMORY": 1000.0,
          "OCM_MEMORY": 800.0, "LP_INTERCONNECT": 600.0, "FPD_PLL": 2000.0, "LPD_PLL": 2000.0, "USB": 250.0,
          "ETHERNET": 125.0, "SD": 200.0, "QSPI": 200.0, "UART": 100.0, "I2C": 100.0, "SPI": 200.0}


def preset(description: str, cores: dict, loads: dict, counts: dict, clock_gated: list[str],
           power_gated: list[str], plls_off: tuple[str, ...] = ()) -> dict:
    """A full input set: clocks at their usual values, loads 0 and counts 0 unless given."""
    values = {"DESCRIPTION": description}
    values.update({f"{b}_CORES": cores.get(b, 0) for b in ["CPU", "RPU", "TCM_MEMORY", "OCM_MEMORY"]})
    values.update({f"{p}_COUNT": counts.get(p, 0) for p in PERIPHERALS})
    values.update({f"{b}_CLOCK_GATED": int(b in clock_gated) for b in GATED})
    values.update({f"{b}_POWER_GATED": int(b in power_gated) for b in POWER_GATED})
    values.update({f"{p}_ON_OFF": int(p not in plls_off) for p in ["FPD_PLL", "LPD_PLL"]})
    values.update({f"{b}_CLK_FREQ": f for b, f in CLOCKS.items()})
    values.update({f"{b}_LOAD": float(loads.get(b, 0.0)) for b in [*GATED, *PERIPHERALS]})
    return values


CONSOLE = {"UART": 1, "QSPI": 1, "SD": 1}
PRESETS = {
    "IDLE": preset("Booted and idle: one application core in the idle loop, the others and the real-time "
                   "cores powered off, idle clocks gated, a console UART and the boot flash",
                   {"CPU": 1, "TCM_MEMORY": 2, "OCM_MEMORY": 2}, {"CPU": 2, "LP_INTERCONNECT": 2, "OCM_MEMORY": 1},
                   CONSOLE, ["L3_CACHE", "FP_INTERCONNECT", "TCM_MEMORY"], ["RPU", "TCM_MEMORY"]),
    "LINUX_LIGHT": preset("Light Linux load: four application cores at a fifth of full load, one Ethernet "
                          "link and a USB device with light traffic, real-time cores off",
                          {"CPU": 4, "TCM_MEMORY": 2, "OCM_MEMORY": 2},
                          {"CPU": 20, "L3_CACHE": 15, "FP_INTERCONNECT": 15, "OCM_MEMORY": 5, "LP_INTERCONNECT": 10,
                           "ETHERNET": 10, "USB": 5, "SD": 2, "UART": 1},
                          {**CONSOLE, "ETHERNET": 1, "USB": 1}, [], ["RPU", "TCM_MEMORY"]),
    "LINUX_HEAVY": preset("Heavy Linux load: eight application cores at 80 %, the L3 cache and interconnect "
                          "busy, two Ethernet links near line rate, USB and SD transfers",
                          {"CPU": 8, "TCM_MEMORY": 2, "OCM_MEMORY": 4},
                          {"CPU": 80, "L3_CACHE": 70, "FP_INTERCONNECT": 60, "OCM_MEMORY": 30, "LP_INTERCONNECT": 40,
                           "ETHERNET": 80, "USB": 50, "SD": 40, "QSPI": 5, "UART": 2, "I2C": 5, "SPI": 10},
                          {**CONSOLE, "ETHERNET": 2, "USB": 2, "I2C": 1, "SPI": 1}, [], ["RPU", "TCM_MEMORY"]),
    "REAL_TIME": preset("Real-time control: four real-time cores at 60 % from their tightly coupled memory, "
                        "the application cores and their PLL off, one Ethernet link, SPI and I2C sensors",
                        {"RPU": 4, "TCM_MEMORY": 4, "OCM_MEMORY": 2},
                        {"RPU": 60, "TCM_MEMORY": 60, "OCM_MEMORY": 20, "LP_INTERCONNECT": 30, "ETHERNET": 30,
                         "SPI": 40, "I2C": 20, "UART": 2},
                        {**CONSOLE, "ETHERNET": 1, "SPI": 2, "I2C": 1}, ["FP_INTERCONNECT"],
                        ["CPU", "L3_CACHE"], plls_off=("FPD_PLL",)),
}


def spread(_: tuple[str, ...], group: dict) -> bool:
    """A group of a few numbers goes on one line, a longer one a setting per line."""
    return len(group) > 4 or any(isinstance(v, dict) for v in group.values())


FILES = {
    "PRSMTalvexPsxlData.cfg": data_file(
        "PRSMTalvexPsxlData",
        "Larger processor system: per-block coefficients in W per MHz (CLOCK idle, DYNAMIC at full load;\n"
        "a PLL's CORE and AUX), pin activity, multiplexed-I/O coefficients, the pins of each peripheral and\n"
        "the device scales. Written by data/tools/psxl_sheets.py; see docs/models/TalvexPsxl.md.",
        psxl_tables(), spread),
    "PRSMTalvexPsxlPresetData.cfg": data_file(
        "PRSMTalvexPsxlPresetData",
        "Ready-made input sets of the larger processor system (see docs/models/TalvexPsxl.md, \"Presets\").\n"
        "PSXL_PRESETS.<preset>.<input>: the value of every TalvexPsxl input in that preset, and a DESCRIPTION.\n"
        "Written by data/tools/psxl_sheets.py.",
        {"PSXL_PRESETS": PRESETS}, spread),
}


def main() -> int:
    return run(OUT, FILES, Path(__file__).name)


if __name__ == "__main__":
    sys.exit(main())
