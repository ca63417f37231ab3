#!/usr/bin/env python3
"""Writes the shipped tables of the older architecture's processing-system and video-codec sheets from
the laws below:

  dravik/PRSMDravikPsData.cfg         per-block coefficients, pins per peripheral, DDR, device scales
  dravik/PRSMDravikPsPresetData.cfg   the ready-made input sets of DravikPs
  dravik/PRSMDravikVcuData.cfg        the video codec unit's coefficients per codec and direction

Usage: dravik_ps_sheets.py [--check]. With --check nothing is written: the exit status says whether the
committed files are what the laws give. Standard library only. How the figures were chosen:
docs/models/DravikPs.md and docs/models/DravikVcu.md.

The law of a clocked block: its coefficient in W per MHz is the capacitance it switches per clock cycle
at the domain's characterisation voltage, P / f = C * V^2. A block's CLOCK term is its clock tree and the
state it holds while idle; its DYNAMIC term the further capacitance its datapath and memories switch at
full load. A 16 nm-class processing system at 0.85 V switches more capacitance per function than the
newer architecture's at 0.8 V.

The law of a memory pin: a data bit switches its pad and trace capacitance on half the transfers,
C * V^2 * rate / 2, and while data moves its driver pushes current through the far end's termination.

The law of the codec: power grows with the pixels it handles per second, W per Mpixel/s, over a
standing term while a direction is in use.
"""

from __future__ import annotations

import sys
from pathlib import Path

from cfg_writer import data_file, run

OUT = Path(__file__).resolve().parent.parent / "powercfg" / "dravik"

PSIM_VOLTAGE = 0.85  # V: VCCPSINTFP, VCCPSINTLP and VCCPSINTDDR as characterised
PLL_VOLTAGE = 1.2    # V: VCCPSPLL
AUX_VOLTAGE = 1.8    # V: VCCPSAUX and VCCPSDDRPLL
PARTS = ["ZDM5100", "ZDM7100", "ZDM9200"]  # every part carries the same processing system and codec


def w_per_mhz(pf: float, volts: float = PSIM_VOLTAGE) -> float:
    """The law: C * V^2 in W per MHz (pF * V^2 * 1e-6), rounded to what the table keeps."""
    return float(f"{pf * volts * volts * 1e-6:.6g}")


# Switched capacitance per cycle in pF: (idle, further at full load), per core, bank or controller.
# An application core at 1.2 GHz and full load: 190 pF * 0.7225 V^2 * 1200 MHz = 0.165 W.
BLOCKS = {
    "CPU": (40, 150),             # an in-order application core with its L1, its share of the L2
    "GPU": (60, 250),             # a pixel processor with its share of the geometry processor
    "FP_INTERCONNECT": (120, 300),  # the coherent interconnect and the full-power switch
    "RPU": (25, 70),              # a real-time core with its caches
    "TCM_MEMORY": (4, 15),        # one 64 KB bank of tightly coupled memory
    "OCM_MEMORY": (5, 20),        # one 64 KB bank of on-chip memory
    "LP_INTERCONNECT": (40, 100),  # the low-power switch
    "USB": (40, 150),             # a USB 2.0 controller with its DMA
    "ETHERNET": (50, 200),        # a gigabit MAC with its DMA
    "SD": (15, 50),               # an SD/eMMC host controller
    "QSPI": (10, 40),             # a quad-SPI flash controller
    "UART": (3, 10),
    "I2C": (2, 6),
    "SPI": (4, 12),
}

# A peripheral's pins switch at most at its clock times this at full load (ULPI at 60 of 250 MHz, RGMII
# at 125 MHz, SD and quad-SPI at half their clock, UART at 1 Mbaud, I2C at 400 kHz, SPI at 25 MHz).
PIN_ACTIVITY = {"USB": 0.24, "ETHERNET": 1.0, "SD": 0.5, "QSPI": 0.5, "UART": 0.01, "I2C": 0.004,
                "SPI": 0.125}

# One controller's pins (inputs, outputs, both ways) and its bank: the flash and console on bank 0,
# Ethernet and SD on bank 1, USB on bank 2.
PERIPHERAL_PINS = {
    "USB": (3, 1, 8, 2), "ETHERNET": (6, 7, 1, 1), "SD": (1, 1, 5, 1), "QSPI": (0, 2, 4, 0),
    "UART": (1, 1, 0, 0), "I2C": (0, 0, 2, 0), "SPI": (1, 3, 0, 0),
}

# PLLs: the digital part's capacitance (on the domain's supply) and the analog part's (on VCCPSPLL).
PLLS = {"FPD_PLL": (15, 3.0), "LPD_PLL": (12, 2.5)}
PS_AUX_STANDBY = 0.012  # W at 1.8 V: system monitor, oscillators, the boot and security unit's wells

# Multiplexed-I/O pins, as in the newer processor systems: a 16 nm pin's level shifters on the core side,
# at each bank voltage a receiver's input, a driver's pad and 5 pF load, a standing and a bias current.
RX_CORE_PF, TX_CORE_PF, CORE_STATIC_W = 0.4, 0.8, 2.5e-5
RX_PAD_PF, TX_PAD_PF, LOAD_PF = 0.6, 3.5, 5.0
BANKS = {"1V8": (1.8, "4MA", 3.5e-5, 7.0e-5), "2V5": (2.5, "8MA", 4.5e-5, 9.0e-5),
         "3V3": (3.3, "12MA", 6.0e-5, 1.2e-4)}

# The DDR interface per memory type: the controller's and the PHY logic's capacitance per memory clock
# (idle, further at full traffic; the PHY per data bit), the pin voltage, a data bit's pad and trace
# capacitance (strobes, masks and the command bus folded in), the termination power of a data bit while
# data moves, its standing power, the PLL's capacitance, the rates and the widest bus. DDR4 is
# terminated to VDDQ (about 12 mA a pin through 40 + 60 ohm, low half the time); LPDDR4's
# low-swing pins terminate to ground and cost a third of that.
DDR = {
    "DDR4": dict(ctrl=(60, 150), phy=(0.6, 1.6), io_voltage=1.2, io_pf=4.0, term=0.0072, static=5.0e-4,
                 pll=4.0, rates=(1600, 2666), width=64),
    "LPDDR4": dict(ctrl=(50, 130), phy=(0.5, 1.3), io_voltage=1.1, io_pf=3.0, term=0.0024, static=3.0e-4,
                   pll=4.0, rates=(1600, 2400), width=32),
}


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


def ddr_data() -> dict:
    tables = {}
    for kind, d in DDR.items():
        v = d["io_voltage"]
        tables[kind] = {
            "CTRL_IDLE": w_per_mhz(d["ctrl"][0]), "CTRL_ACTIVE": w_per_mhz(d["ctrl"][1]),
            "PHY_IDLE": w_per_mhz(d["phy"][0]), "PHY_ACTIVE": w_per_mhz(d["phy"][1]),
            # C * V^2 per transfer, on half the transfers: W per MT/s per data bit
            "IO_SWITCH": float(f"{d['io_pf'] * v * v * 1e-6 / 2:.6g}"),
            "IO_TERMINATION": d["term"], "IO_STATIC": d["static"], "IO_VOLTAGE": v,
            "PLL": w_per_mhz(d["pll"], AUX_VOLTAGE),
            "MIN_RATE": float(d["rates"][0]), "MAX_RATE": float(d["rates"][1]), "MAX_WIDTH": float(d["width"]),
        }
    return tables


def ps_tables() -> dict:
    blocks = {name: {"CLOCK": w_per_mhz(idle), "DYNAMIC": w_per_mhz(load)} for name, (idle, load) in BLOCKS.items()}
    for name, activity in PIN_ACTIVITY.items():
        blocks[name]["PIN_ACTIVITY"] = activity
    for name, (core, aux) in PLLS.items():
        blocks[name] = {"CORE": w_per_mhz(core), "AUX": w_per_mhz(aux, PLL_VOLTAGE)}
    blocks["PS_AUX"] = {"STANDBY": PS_AUX_STANDBY}
    return {
        "DROPDOWN_LISTS": {"MEMORY_TYPE_LIST": list(DDR)},
        "BLOCK_DATA": blocks,
        "MIO_DATA": mio_data(),
        "SIM_CONDITIONS": {"PSIM_VOLTAGE": PSIM_VOLTAGE, "PLL_VOLTAGE": PLL_VOLTAGE, "AUX_VOLTAGE": AUX_VOLTAGE},
        "PERIPHERAL_PINS": {p: dict(zip(("INPUTS", "OUTPUTS", "BIDIS", "BANK"), pins))
                            for p, pins in PERIPHERAL_PINS.items()},
        "DDR_DATA": ddr_data(),
        "BLOCK_POWER_SCALE": {d: {"PS_FPD": 1.0, "PS_LPD": 1.0, "PS_DDR": 1.0} for d in ["DEFAULT", *PARTS]},
    }


# ---- Presets: every DravikPs input but the rails, the part and the memory fitted (type, rate, width),
# which the design and the board own ----

PERIPHERALS = ["USB", "ETHERNET", "SD", "QSPI", "UART", "I2C", "SPI"]
GATED = ["CPU", "GPU", "FP_INTERCONNECT", "RPU", "TCM_MEMORY", "OCM_MEMORY", "LP_INTERCONNECT"]
MULTI = ["CPU", "GPU", "RPU", "TCM_MEMORY", "OCM_MEMORY"]
CLOCKS = {"CPU": 1200.0, "GPU": 600.0, "FP_INTERCONNECT": 533.0, "RPU": 500.0, "TCM_MEMORY": 500.0,
          "OCM_MEMORY": 500.0, "LP_INTERCONNECT": 500.0, "FPD_PLL": 2400.0, "LPD_PLL": 2400.0, "USB": 250.0,
          "ETHERNET": 125.0, "SD": 200.0, "QSPI": 200.0, "UART": 100.0, "I2C": 100.0, "SPI": 200.0}


def preset(description: str, cores: dict, loads: dict, counts: dict, clock_gated: list[str],
           power_gated: list[str], traffic: tuple[float, float]) -> dict:
    """A full input set: clocks at their usual values, loads 0 and counts 0 unless given."""
    values = {"DESCRIPTION": description}
    values.update({f"{b}_CORES": cores.get(b, 0) for b in MULTI})
    values.update({f"{p}_COUNT": counts.get(p, 0) for p in PERIPHERALS})
    values.update({f"{b}_CLOCK_GATED": int(b in clock_gated) for b in GATED})
    values.update({f"{b}_POWER_GATED": int(b in power_gated) for b in MULTI})
    values.update({f"{p}_ON_OFF": 1 for p in ["FPD_PLL", "LPD_PLL"]})
    values.update({f"{b}_CLK_FREQ": f for b, f in CLOCKS.items()})
    values.update({f"{b}_LOAD": float(loads.get(b, 0.0)) for b in [*GATED, *PERIPHERALS]})
    values.update({"READ_RATE": traffic[0], "WRITE_RATE": traffic[1]})
    return values


CONSOLE = {"UART": 1, "QSPI": 1, "SD": 1}
PRESETS = {
    "IDLE": preset("Booted and idle: one application core in the idle loop, the others, the GPU and the "
                   "real-time cores powered off, idle clocks gated, a console UART and the boot flash",
                   {"CPU": 1, "OCM_MEMORY": 1}, {"CPU": 2, "LP_INTERCONNECT": 2, "OCM_MEMORY": 1},
                   CONSOLE, ["GPU", "FP_INTERCONNECT", "TCM_MEMORY"], ["GPU", "RPU", "TCM_MEMORY"], (0.01, 0.005)),
    "LINUX": preset("Linux with a light load: four application cores at a quarter load, one Ethernet link "
                    "and a USB device with light traffic, the GPU and real-time cores off",
                    {"CPU": 4, "OCM_MEMORY": 2},
                    {"CPU": 25, "FP_INTERCONNECT": 20, "OCM_MEMORY": 5, "LP_INTERCONNECT": 10,
                     "ETHERNET": 10, "USB": 5, "SD": 2, "UART": 1},
                    {**CONSOLE, "ETHERNET": 1, "USB": 1}, ["GPU"], ["GPU", "RPU", "TCM_MEMORY"], (0.15, 0.08)),
    "HEAVY_LOAD": preset("Heavy load: four application cores at 85 %, the GPU rendering, both real-time "
                         "cores busy, Ethernet near line rate, USB and SD transfers, heavy memory traffic",
                         {"CPU": 4, "GPU": 2, "RPU": 2, "TCM_MEMORY": 4, "OCM_MEMORY": 4},
                         {"CPU": 85, "GPU": 70, "FP_INTERCONNECT": 70, "RPU": 60, "TCM_MEMORY": 50, "OCM_MEMORY": 30,
                          "LP_INTERCONNECT": 40, "ETHERNET": 80, "USB": 50, "SD": 40, "QSPI": 5, "UART": 2,
                          "I2C": 5, "SPI": 10},
                         {**CONSOLE, "ETHERNET": 1, "USB": 1, "I2C": 1, "SPI": 1}, [], [], (0.4, 0.25)),
}


# ---- The video codec unit: per codec and direction, a standing W while in use and W per Mpixel/s ----

# The codecs (neutral names for the two generations of block-based video coding it carries), with the
# encoder's and decoder's figures at 0.9 V. Encoding 2160p60 with the newer codec (498 Mpixel/s): 0.09 +
# 498 * 2.1e-3 = 1.14 W; decoding it: 0.05 + 498 * 1.0e-3 = 0.55 W. The older codec's search is simpler.
VCU_VOLTAGE = 0.9  # V: VCCVCUINT as characterised
VCU_AUX_VOLTAGE = 1.8
VCU = {
    "CODEC_B": {"ENCODE": (0.09, 2.1e-3), "DECODE": (0.05, 1.0e-3)},
    "CODEC_A": {"ENCODE": (0.08, 1.8e-3), "DECODE": (0.05, 0.9e-3)},
}
RESOLUTIONS = {"SD_480": (720, 480), "HD_720": (1280, 720), "FHD_1080": (1920, 1080), "QHD_1440": (2560, 1440),
               "UHD_2160": (3840, 2160)}
VCU_CAPACITY = 3840 * 2160 * 60 / 1e6  # Mpixel/s each direction handles: one 2160p60 stream
VCU_AUX_W = 0.025  # W on VCCAUX: the unit's PLL and its clocking while the unit is used


def vcu_tables() -> dict:
    return {
        "DROPDOWN_LISTS": {"CODEC_LIST": list(VCU), "RESOLUTION_LIST": list(RESOLUTIONS),
                           "MODE_LIST": ["ENCODE", "DECODE"]},
        "CODEC_DATA": {codec: {mode: {"STANDING": s, "PER_MPIXEL": k} for mode, (s, k) in modes.items()}
                       for codec, modes in VCU.items()},
        "RESOLUTION_PIXELS": {name: float(w * h) for name, (w, h) in RESOLUTIONS.items()},
        "SIM_CONDITIONS": {"VCU_VOLTAGE": VCU_VOLTAGE, "AUX_VOLTAGE": VCU_AUX_VOLTAGE,
                           "CAPACITY_MPIXELS": float(f"{VCU_CAPACITY:.6g}"), "AUX_POWER": VCU_AUX_W},
        "BLOCK_POWER_SCALE": {d: {"VCU": 1.0} for d in ["DEFAULT", *PARTS]},
    }


def spread(_: tuple[str, ...], group: dict) -> bool:
    """A group of a few numbers goes on one line, a longer one a setting per line."""
    return len(group) > 4 or any(isinstance(v, dict) for v in group.values())


FILES = {
    "PRSMDravikPsData.cfg": data_file(
        "PRSMDravikPsData",
        "Older-architecture processing system: per-block coefficients in W per MHz (CLOCK idle, DYNAMIC at\n"
        "full load; a PLL's CORE and AUX), pin activity, multiplexed-I/O coefficients, the pins and bank of\n"
        "each peripheral, the DDR interface per memory type and the device scales.\n"
        "Written by data/tools/dravik_ps_sheets.py; see docs/models/DravikPs.md.",
        ps_tables(), spread),
    "PRSMDravikPsPresetData.cfg": data_file(
        "PRSMDravikPsPresetData",
        "Ready-made input sets of the older architecture's processing system (docs/models/DravikPs.md).\n"
        "PS_PRESETS.<preset>.<input>: the value of every DravikPs input in that preset, and a DESCRIPTION.\n"
        "Written by data/tools/dravik_ps_sheets.py.",
        {"PS_PRESETS": PRESETS}, spread),
    "PRSMDravikVcuData.cfg": data_file(
        "PRSMDravikVcuData",
        "Video codec unit: per codec and direction a standing power (W) and W per Mpixel/s at VCU_VOLTAGE,\n"
        "the pixels of each resolution, the unit's capacity and its auxiliary power.\n"
        "Written by data/tools/dravik_ps_sheets.py; see docs/models/DravikVcu.md.",
        vcu_tables(), spread),
}


def main() -> int:
    return run(OUT, FILES, Path(__file__).name)


if __name__ == "__main__":
    sys.exit(main())
