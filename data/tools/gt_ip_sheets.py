#!/usr/bin/env python3
"""Writes the shipped tables of the transceiver and hard link-IP sheets from the laws below:

  talvex/PRSMTalvexGtData.cfg       per-lane bias and energy per symbol of each transceiver family
  talvex/PRSMTalvexGtPresetData.cfg the transceiver inputs of common protocols' lanes
  talvex/PRSMTalvexHardIpData.cfg   idle power, energy per bit and rail shares of each link controller

Usage: gt_ip_sheets.py [--check]. With --check nothing is written: the exit status says whether the
committed files are what the laws give. Standard library only; the output is committed, so the library
never needs this script at run time. How the figures were chosen: docs/models/TalvexGt.md and
docs/models/TalvexHardIp.md.

Transceiver law: a lane's power on a rail is a bias current times the rail's nominal voltage, plus, on
AVCC, a capacitance switched once a symbol times AVCC^2 (pF x V^2 = pJ a symbol = mW per GBd). The coding
sublayer switches a capacitance per bit on its digital rail. The bonded quads of each part and package
are read from the static sheet's device description (talvex_static.toml), so the two sheets agree.

Link-IP law: a controller draws an idle power (its clocks and the logic that runs with no traffic: a
base and a part per lane) plus an energy per bit of traffic; an Ethernet RS-FEC codes every bit on the
line. Figures are stated per controller and mode below.
"""

from __future__ import annotations

import sys
import tomllib
from pathlib import Path

from cfg_writer import data_file, run

TOOLS = Path(__file__).resolve().parent
OUT = TOOLS.parent / "powercfg" / "talvex"
FAMILIES = ["GTY", "GTYP", "GTM"]

# ---- Transceivers ----------------------------------------------------------------------------------------
NOMINAL = {"AVCC": 0.88, "AVTT": 1.2, "VCCAUX": 1.5}
RAIL_CODE = {"GTY": "Y", "GTYP": "YP", "GTM": "M"}
PCS_RAIL = {"GTY": "VCCINT", "GTYP": "VCCINT", "GTM": "VCCINTGT"}
PCS_VOLTS = 0.8

# Per family: bias currents in mA (each half lane; PLLs per quad for LC, per lane for ring), switched
# capacitance in pF a symbol on AVCC (serialiser and driver pre-stages; receiver front end and CDR; the
# DFE's taps), the coding sublayer's pF a bit, the rate multiplier of PAM4 symbols, and the line-rate
# limits in Gb/s (MAX_PAM4 0: NRZ only; MAX_RING 0: no ring PLL).
TRANSCEIVERS = {
    "GTY": {"ma": {"TX_AVCC": 9, "RX_AVCC": 14, "TX_AVTT": 15, "RX_AVTT": 3, "TX_VCCAUX": 1, "RX_VCCAUX": 1,
                   "LC_PLL_AVCC": 45, "LC_PLL_VCCAUX": 4, "RING_PLL_AVCC": 14, "RING_PLL_VCCAUX": 0.7},
            "pf": {"TX": 2.0, "RX": 2.6, "DFE": 0.8}, "pcs_pf": 0.4, "pam4": 1.0,
            "rates": {"MIN": 0.5, "MAX_NRZ": 32.75, "MAX_PAM4": 0.0, "MAX_RING": 16.375}},
    # The GTY's sibling beside the CPM: a stronger receiver for PCIe channels, a larger LC PLL.
    "GTYP": {"ma": {"TX_AVCC": 9, "RX_AVCC": 15, "TX_AVTT": 15, "RX_AVTT": 3, "TX_VCCAUX": 1, "RX_VCCAUX": 1,
                    "LC_PLL_AVCC": 48, "LC_PLL_VCCAUX": 4, "RING_PLL_AVCC": 14, "RING_PLL_VCCAUX": 0.7},
             "pf": {"TX": 2.1, "RX": 2.7, "DFE": 0.8}, "pcs_pf": 0.4, "pam4": 1.0,
             "rates": {"MIN": 0.5, "MAX_NRZ": 32.75, "MAX_PAM4": 0.0, "MAX_RING": 16.375}},
    # PAM4 to 58 Gb/s (29 GBd) and NRZ to 29 Gb/s; an ADC-and-DSP receiver; LC PLLs only.
    "GTM": {"ma": {"TX_AVCC": 11, "RX_AVCC": 18, "TX_AVTT": 17, "RX_AVTT": 4, "TX_VCCAUX": 1.5, "RX_VCCAUX": 1.5,
                   "LC_PLL_AVCC": 60, "LC_PLL_VCCAUX": 6},
            "pf": {"TX": 2.4, "RX": 3.4, "DFE": 1.0}, "pcs_pf": 0.5, "pam4": 1.5,
            "rates": {"MIN": 9.8, "MAX_NRZ": 29.0, "MAX_PAM4": 58.0, "MAX_RING": 0.0}},
}
# The coding sublayer's logic per bit against 64b/66b: 8b/10b codes through tables at a tenth of the
# bits, 128b/130b adds PCIe's block alignment and scrambler, RAW is the gearbox alone.
ENCODING_FACTOR = {"ENC_8B10B": 1.2, "ENC_64B66B": 1.0, "ENC_128B130B": 1.1, "RAW": 0.3}


def rail_of(key: str) -> str:
    return key.rsplit("_", 1)[1]


def lane_power(family: dict) -> dict:
    row = {key: round(ma * NOMINAL[rail_of(key)], 6) for key, ma in family["ma"].items()}
    avcc2 = NOMINAL["AVCC"] ** 2
    row.update({f"{part}_AVCC_PER_GBD": round(pf * avcc2, 6) for part, pf in family["pf"].items()})
    row["PCS_PER_GBPS"] = round(family["pcs_pf"] * PCS_VOLTS ** 2, 6)
    row["PAM4_FACTOR"] = family["pam4"]
    return row


def device_quads() -> dict:
    """QUADS.<part>.<package>.<family> from the static description's <part>_<package> keys."""
    static = tomllib.loads((TOOLS / "talvex_static.toml").read_text())
    quads = {}
    for part, device in static["devices"].items():
        for key, bonded in device.get("packages", {}).items():
            package = key.split("_", 1)[1]
            quads.setdefault(part, {})[package] = {f: int(bonded.get(f, 0)) for f in FAMILIES}
    return quads


def nominal_voltages() -> dict:
    rails = {f"MGT{RAIL_CODE[f]}{role}": v for f in FAMILIES for role, v in NOMINAL.items()}
    return {**rails, "VCCINT": PCS_VOLTS, "VCCINTGT": PCS_VOLTS}


def gt_tables(parts: list[str]) -> dict:
    return {
        "GT_TYPE_LIST": FAMILIES,
        "ENCODING_LIST": list(ENCODING_FACTOR),
        "MODULATION_LIST": ["NRZ", "PAM4"],
        "LANE_USE_LIST": ["TX_RX", "TX_ONLY", "RX_ONLY"],
        "PLL_TYPE_LIST": ["LC", "RING"],
        "EQUALIZATION_LIST": ["LPM", "DFE"],
        "LANE_POWER": {f: lane_power(TRANSCEIVERS[f]) for f in FAMILIES},
        "RATE_LIMIT": {f: TRANSCEIVERS[f]["rates"] for f in FAMILIES},
        "ENCODING_FACTOR": ENCODING_FACTOR,
        "QUADS": device_quads(),
        "NOMINAL_VOLTAGE": nominal_voltages(),
        "VOLTAGE_SCALING": {"VPOW": 2.0},
        "BLOCK_POWER_SCALE": {d: {f: 1.0 for f in FAMILIES} for d in ["DEFAULT", *parts]},
    }


# The lanes of common protocols: family, lanes, line rate (Gb/s), coding, modulation, use, PLL,
# equaliser. PCIe runs on the GTYP beside the CPM; Interlaken's 64b/67b is coded like 64b/66b.
PRESETS = {
    "PCIE_GEN3_X8": ("PCIe Gen3 x8: eight GTYP lanes at 8 GT/s, 128b/130b",
                     "GTYP", 8, 8.0, "ENC_128B130B", "NRZ", "TX_RX", "LC", "DFE"),
    "PCIE_GEN4_X16": ("PCIe Gen4 x16: sixteen GTYP lanes at 16 GT/s, 128b/130b",
                      "GTYP", 16, 16.0, "ENC_128B130B", "NRZ", "TX_RX", "LC", "DFE"),
    "PCIE_GEN5_X8": ("PCIe Gen5 x8: eight GTYP lanes at 32 GT/s, 128b/130b",
                     "GTYP", 8, 32.0, "ENC_128B130B", "NRZ", "TX_RX", "LC", "DFE"),
    "ETHERNET_10G": ("10G Ethernet: one GTY lane at 10.3125 Gb/s, 64b/66b, a short channel (LPM)",
                     "GTY", 1, 10.3125, "ENC_64B66B", "NRZ", "TX_RX", "LC", "LPM"),
    "ETHERNET_25G": ("25G Ethernet: one GTY lane at 25.78125 Gb/s, 64b/66b",
                     "GTY", 1, 25.78125, "ENC_64B66B", "NRZ", "TX_RX", "LC", "DFE"),
    "ETHERNET_100G_CAUI4": ("100G Ethernet over four GTY lanes at 25.78125 Gb/s, 64b/66b",
                            "GTY", 4, 25.78125, "ENC_64B66B", "NRZ", "TX_RX", "LC", "DFE"),
    "ETHERNET_400G_PAM4": ("400G Ethernet over eight GTM lanes at 53.125 Gb/s PAM4",
                           "GTM", 8, 53.125, "ENC_64B66B", "PAM4", "TX_RX", "LC", "DFE"),
    "INTERLAKEN_12X25G": ("Interlaken over twelve GTY lanes at 25.78125 Gb/s",
                          "GTY", 12, 25.78125, "ENC_64B66B", "NRZ", "TX_RX", "LC", "DFE"),
    "CHIP_TO_CHIP_8B10B_X4": ("A chip-to-chip link of four GTY lanes at 6.25 Gb/s, 8b/10b, ring PLLs, LPM",
                              "GTY", 4, 6.25, "ENC_8B10B", "NRZ", "TX_RX", "RING", "LPM"),
}
PRESET_INPUTS = ["GT_TYPE", "LANES", "LINE_RATE", "ENCODING", "MODULATION", "LANE_USE", "PLL_TYPE", "EQUALIZATION"]


def preset_tables() -> dict:
    rows = {}
    for name, (description, *values) in PRESETS.items():
        rows[name] = {"DESCRIPTION": description, **{k: str(v) for k, v in zip(PRESET_INPUTS, values)}}
    return {"PRESET_LIST": list(PRESETS), "GT_PRESETS": rows}


# ---- Hard link IP ----------------------------------------------------------------------------------------
# Per controller: idle base in mW, FEC energy per line bit in pJ, lane limits, rail shares, and per mode
# the lane's line rate and data rate after coding (Gb/s), idle mW a lane and pJ per bit of traffic.
# PCIe doubles its rate each generation on a data path twice as wide at the same clock: the energy per
# bit falls, the idle logic per lane grows.
CONTROLLERS = {
    "PCIE": {"idle": 120, "fec": 0.0, "lanes": (1, 16, 1), "share": {"VCCCPM5": 0.85, "VCCINTCPM": 0.15},
             "default": "GEN4",
             "modes": {"GEN1": (2.5, 2.0, 4, 6.0), "GEN2": (5.0, 4.0, 6, 5.0),
                       "GEN3": (8.0, 8.0 * 128 / 130, 10, 4.0), "GEN4": (16.0, 16.0 * 128 / 130, 16, 3.2),
                       "GEN5": (32.0, 32.0 * 128 / 130, 26, 2.6)}},
    "ETHERNET_100G": {"idle": 150, "fec": 1.6, "lanes": (4, 4, 0), "share": {"VCCINT": 1.0}, "default": "NRZ_25G",
                      "modes": {"NRZ_25G": (25.78125, 25.0, 35, 2.0)}},
    "ETHERNET_400G": {"idle": 300, "fec": 1.2, "lanes": (8, 8, 0), "share": {"VCCINT": 1.0}, "default": "PAM4_53G",
                      "modes": {"PAM4_53G": (53.125, 50.0, 45, 1.6)}},
    "INTERLAKEN": {"idle": 100, "fec": 0.0, "lanes": (1, 12, 0), "share": {"VCCINT": 1.0}, "default": "LANE_25G8",
                   "modes": {"LANE_12G5": (12.5, 12.5 * 64 / 67, 12, 2.2),
                             "LANE_25G8": (25.78125, 25.78125 * 64 / 67, 20, 2.2)}},
}
IP_RAILS = ["VCCCPM5", "VCCINTCPM", "VCCINT"]


def link_rows(modes: dict) -> dict:
    return {mode: {"LINE_RATE": rate, "LANE_GBPS": round(gbps, 6), "IDLE_PER_LANE": idle, "PJ_PER_BIT": pj}
            for mode, (rate, gbps, idle, pj) in modes.items()}


def ip_tables(parts: list[str]) -> dict:
    return {
        "IP_TYPE_LIST": list(CONTROLLERS),
        "YES_NO": ["YES", "NO"],
        "MODE_LIST": {ip: list(c["modes"]) for ip, c in CONTROLLERS.items()},
        "DEFAULT_MODE": {ip: c["default"] for ip, c in CONTROLLERS.items()},
        "LINK": {ip: link_rows(c["modes"]) for ip, c in CONTROLLERS.items()},
        "CONTROLLER": {ip: {"IDLE": float(c["idle"]), "FEC_PJ_PER_BIT": c["fec"]} for ip, c in CONTROLLERS.items()},
        "LANE_LIMIT": {ip: dict(zip(("MIN", "MAX", "POW2"), c["lanes"])) for ip, c in CONTROLLERS.items()},
        "RAIL_SHARE": {ip: {r: c["share"].get(r, 0.0) for r in IP_RAILS} for ip, c in CONTROLLERS.items()},
        "NOMINAL_VOLTAGE": {r: 0.8 for r in IP_RAILS},
        "VOLTAGE_SCALING": {"VPOW": 2.0},
        "BLOCK_POWER_SCALE": {d: {ip: 1.0 for ip in CONTROLLERS} for d in ["DEFAULT", *parts]},
    }


def files() -> dict:
    parts = sorted(device_quads())
    return {
        "PRSMTalvexGtData.cfg": data_file(
            "PRSMTalvexGtData",
            "Transceivers: per-lane power in mW at the nominal rail voltages (mW per GBd for *_PER_GBD, per\n"
            "Gb/s for PCS_PER_GBPS), line-rate limits and bonded quads. Written by data/tools/gt_ip_sheets.py;\n"
            "see docs/models/TalvexGt.md.",
            gt_tables(parts)),
        "PRSMTalvexGtPresetData.cfg": data_file(
            "PRSMTalvexGtPresetData",
            "Ready-made input sets of the transceiver sheet: GT_PRESETS.<preset>.<input>, numbers as their text.\n"
            "Written by data/tools/gt_ip_sheets.py; see docs/models/TalvexGt.md.",
            preset_tables()),
        "PRSMTalvexHardIpData.cfg": data_file(
            "PRSMTalvexHardIpData",
            "Hard link IP: idle mW, pJ per bit, lane limits and rail shares of each controller. Written by\n"
            "data/tools/gt_ip_sheets.py; see docs/models/TalvexHardIp.md.",
            ip_tables(parts)),
    }


def main() -> int:
    return run(OUT, files(), Path(__file__).name)


if __name__ == "__main__":
    sys.exit(main())
