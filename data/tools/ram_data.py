#!/usr/bin/env python3
"""Writes the block-RAM and UltraRAM data files from a compact description of the memories.

Usage: ram_data.py DESCRIPTION.toml OUTPUT_DIR [--check]
Writes PRSM<Sheet>Data.cfg for every sheet of the description into OUTPUT_DIR. With --check nothing is
written: the exit status says whether the files are what the description gives.

The array energies follow the law stated in the description, at the nominal voltage of the array's rail
(`array_rail`: VCCRAM unless the description names another) (E = C V^2 of the bit lines, sense
amplifiers, word line and decoder an access switches); the port capacitances are stated figures.
Python 3.11 standard library only.
"""

from __future__ import annotations

import math
import sys
from pathlib import Path

from cfg_writer import data_file, description_command_line, spread_to, write_or_check


def array_energy(law: dict, nominal: dict, blk: dict, array_rail: str) -> dict[str, float]:
    """pJ per access and per bit at the nominal voltages, rounded to four significant digits."""
    v2 = nominal[f"{array_rail}_NOMINAL"] ** 2
    rows, columns, banks = blk["rows"], blk["columns"], blk["banks"]
    crossed = banks - 1
    fixed = v2 * (law["c_wordline"] * columns + law["c_decoder"] * math.log2(rows * banks) + law["c_bank"] * crossed)
    energies = {
        "READ": fixed,
        "READ_BIT": v2 * (law["c_cell"] * rows * law["swing"] + law["c_sense"] + law["c_global"] * crossed),
        "WRITE": fixed,
        "WRITE_BIT": v2 * (law["c_cell"] * rows + law["c_driver"] + law["c_global"] * crossed),
    }
    if blk["boost"]:
        energies["WORDLINE_BOOST"] = nominal["VCCAUX_NOMINAL"] ** 2 * law["c_boost"] * columns
    return {key: float(f"{e:.4g}") for key, e in energies.items()}


def max_widths(modes: list[str], blk: dict) -> dict[str, dict[str, int]]:
    """The widest port A and B of every mode."""
    joined = {"SIMPLE_DUAL_PORT", "FIFO"} if blk["joins_ports"] else set()  # one port of twice the width
    width = blk["port_width"]
    out = {}
    for mode in modes:
        a = 2 * width if mode in joined else width
        b = 0 if mode == "SINGLE_PORT" else a
        out[mode] = {"A": a, "B": b}
    return out


def tables(desc: dict, sheet: dict) -> dict:
    blocks = {name: desc["blocks"][name] for name in sheet["blocks"]}
    lists = {"DEVICE_LIST": list(desc["devices"])}
    if "list_name" in sheet:
        lists[sheet["list_name"]] = list(blocks)
    lists["RAM_MODE_LIST"] = sheet["modes"]
    if "write_modes" in sheet:
        lists["WRITE_MODE_LIST"] = sheet["write_modes"]
    lists["YES_NO_LIST"] = ["NO", "YES"]
    prefix = sheet["scale_prefix"]
    scales = {"DEFAULT": {f"{prefix}_{rail}": 1.0 for rail in sheet["rails"]}}
    scales.update({dev: {f"{prefix}_{rail}": float(s) for rail in sheet["rails"]} for dev, s in desc["devices"].items()})
    return {
        **lists,
        "MAX_WIDTH": {name: max_widths(sheet["modes"], blk) for name, blk in blocks.items()},
        "MAX_CASCADE_DEPTH": {name: blk["max_cascade"] for name, blk in blocks.items()},
        "PORT_CAP": {name: {k: float(v) for k, v in blk["port_cap"].items()} for name, blk in blocks.items()},
        "ARRAY_ENERGY": {name: array_energy(desc["law"], desc["nominal"], blk, desc.get("array_rail", "VCCRAM"))
                         for name, blk in blocks.items()},
        "VOLTAGE_SCALING": {k: float(v) for k, v in desc["nominal"].items()
                            if not k.endswith("_NOMINAL") or k.removesuffix("_NOMINAL") in sheet["rails"]},
        "BLOCK_POWER_SCALE": scales,
    }


def render(desc: dict, stem: str, sheet: dict) -> str:
    header = desc["sheet"]["header"].format(title=sheet["title"], page=stem)
    return data_file(sheet["class"], header, tables(desc, sheet), spread_to({"MAX_WIDTH": 2}))


def main() -> int:
    command = description_command_line(__doc__.splitlines()[2])
    if command is None:
        return 2
    desc, description, out, check = command
    files = {out / f"PRSM{stem}Data.cfg": render(desc, stem, sheet) for stem, sheet in desc["sheets"].items()}
    return write_or_check(files, check, Path(__file__).name, str(description))


if __name__ == "__main__":
    sys.exit(main())
