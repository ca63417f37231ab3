#!/usr/bin/env python3
"""Writes the shipped data files of the two module-board sheets:

    data/powercfg/dravik/PRSMDravikS26Data.cfg   (larger board, DDR4)
    data/powercfg/dravik/PRSMDravikS24Data.cfg   (smaller board, LPDDR4)

Run from anywhere: python3 data/tools/som_boards.py [--out DIR] [--check]. With --check nothing is
written: the exit status says whether the files are what the script gives. Standard library only.

Efficiency tables. Every switching regulator output gets a row for every key its load can round to
(the sheets round a buck's load to 10 mA below 200 mA, 25 mA below 1000 mA and 100 mA above; the MPS3805A
outputs to 10 mA below 50 mA and 50 mA above; the DA9130 and DA9131 to 50 mA), from 0
to well beyond the output's rating. The figures follow a converter loss model

    efficiency(I) = V I / (V I + P0 + k I + R I^2)

with a fixed loss P0 (switching and quiescent), a loss k I that grows with the current (gate drive,
diode-like drops) and a resistive loss R I^2. Efficiency is low at light load, peaks where P0 = R I^2
(placed at about 60 % of the rating, the upper middle of the range) and falls again beyond it. The
parameters follow from the peak efficiency and the share of the peak loss that is fixed. Key 0 stands
for every load that rounds to it and is evaluated at half of the first step.

The memory, storage and part figures are plausible values for parts of this kind (see the pages
docs/models/DravikS26.md and DravikS24.md); none is a measurement of a particular part.
"""

import argparse
import sys
from pathlib import Path

from cfg_writer import setting, write_or_check


def steps(kind, limit_ma):
    """Every key a load can round to, up to limit_ma."""
    if kind == "buck":
        keys = list(range(0, 200, 10)) + list(range(200, 1000, 25)) + list(range(1000, limit_ma + 1, 100))
    elif kind == "module":
        keys = list(range(0, 50, 10)) + list(range(50, limit_ma + 1, 50))
    elif kind == "fifty":
        keys = list(range(0, limit_ma + 1, 50))
    else:
        raise ValueError(kind)
    return keys


FIRST_STEP = {"buck": 10, "module": 10, "fifty": 50}


class Converter:
    """One regulator output's loss model: nominal volts, rating (A), peak efficiency."""

    FIXED_SHARE = 0.3   # share of the loss at the peak that does not depend on the load
    PEAK_AT = 0.6       # the peak, as a fraction of the rating

    def __init__(self, volts, rating, peak):
        self.volts = volts
        i_peak = self.PEAK_AT * rating
        loss_at_peak = volts * i_peak * (1.0 / peak - 1.0)
        self.p0 = self.FIXED_SHARE * loss_at_peak / 2.0
        self.r = self.p0 / (i_peak * i_peak)
        self.k = (loss_at_peak - 2.0 * self.p0) / i_peak

    def efficiency(self, amperes):
        out = self.volts * amperes
        return out / (out + self.p0 + self.k * amperes + self.r * amperes * amperes)


def efficiency_table(name, kind, limit_ma, columns):
    """A table setting: one group per key string, one efficiency per column."""
    lines = [f"  {name} = {{"]
    for key in steps(kind, limit_ma):
        amperes = (key if key > 0 else FIRST_STEP[kind] / 2.0) / 1000.0
        cells = " ".join(f"{col} = {conv.efficiency(amperes):.3f};" for col, conv in columns)
        lines.append(f"    KEY_LOAD_{key} = {{ {cells} }};")
    lines.append("  };")
    return lines


def group(name, rows):
    """A two-level table: a line per row of {column: value}."""
    return setting((name,), {row: dict(values) for row, values in rows}, lambda path, _: len(path) == 1)


# Storage, both boards: 3.3 V core and 1.8 V interface. Idle in W; read and write in W per MB/s
# (a read stream of 300 MB/s draws about 60 mA core and 130 mA interface current, a write stream of
# 150 MB/s about 100 mA and 70 mA).
EMMC = [
    ("IDLE", [("VCC", 0.00033), ("VCCQ", 0.00036)]),
    ("READ", [("VCC", 0.00066), ("VCCQ", 0.00078)]),
    ("WRITE", [("VCC", 0.0022), ("VCCQ", 0.00084)]),
]

# Fixed loads in A: a serial EEPROM while read, the boot flash's average read current, the TPM active.
SUPPLY = [
    ("EEPROM", [("VCC", 0.001)]),
    ("QSPI", [("VCC", 0.015)]),
    ("TPM", [("VDD", 0.02)]),
]


def access(read, write):
    return [("READ", read), ("WRITE", write)]


# DDR4 on the larger board: four x16 devices at 1200 MHz (2400 MT/s); W for the whole memory.
# VDD 1.2 V: 35 mA standby and about 150 mA reading, 140 mA writing per device; VPP 2.5 V: 3 mA
# standby and 10 mA active per device; VDDQ: output drivers when reading, little when writing;
# VTT 0.6 V: the command and address termination, always on.
DDR4 = [
    ("KEY_CLOCK_FREQ", access(1200.0, 1200.0)),
    ("KEY_MAX_VDD_POWER", access(0.72, 0.672)),
    ("KEY_IDLE_VDD_POWER", access(0.168, 0.168)),
    ("KEY_MAX_VDDQ_POWER", access(0.3, 0.1)),
    ("KEY_IDLE_VDDQ_POWER", access(0.02, 0.02)),
    ("KEY_MAX_VPP_POWER", access(0.1, 0.1)),
    ("KEY_IDLE_VPP_POWER", access(0.03, 0.03)),
    ("KEY_MAX_VTT_POWER", access(0.18, 0.18)),
    ("KEY_IDLE_VTT_POWER", access(0.12, 0.12)),
]

# LPDDR4 on the smaller board: one x32 package at 1600 MHz (3200 MT/s); W for the whole memory. The
# core rail (VDD, 1.1 V) and the 1.8 V rail (VPP) by temperature grade: the industrial grade leaks
# more. VDDQ (1.1 V) is low-swing I/O.
LPDDR4 = [
    ("KEY_CLOCK_FREQ", access(1600.0, 1600.0)),
    ("KEY_MAX_VDD_POWER_CGRADE", access(0.38, 0.36)),
    ("KEY_IDLE_VDD_POWER_CGRADE", access(0.045, 0.045)),
    ("KEY_MAX_VDD_POWER_IGRADE", access(0.4, 0.38)),
    ("KEY_IDLE_VDD_POWER_IGRADE", access(0.06, 0.06)),
    ("KEY_MAX_VPP_POWER_CGRADE", access(0.045, 0.04)),
    ("KEY_IDLE_VPP_POWER_CGRADE", access(0.009, 0.009)),
    ("KEY_MAX_VPP_POWER_IGRADE", access(0.05, 0.045)),
    ("KEY_IDLE_VPP_POWER_IGRADE", access(0.012, 0.012)),
    ("KEY_MAX_VDDQ_POWER", access(0.12, 0.05)),
    ("KEY_IDLE_VDDQ_POWER", access(0.005, 0.005)),
]

HEADER = """// Generated by data/tools/som_boards.py: change the script, not this file.
// {what}
// Efficiency tables: <table>.<key string>.<output> = efficiency (fraction), a row for every key a load
// can round to, up to beyond each output's rating. DDR4_TABLE_TABLE in W (clock in MHz),
// EMMC_TABLE_TABLE in W and W per MB/s, SUPPLY_TABLE_TABLE in A. Illustrative values (see
// docs/models/{page}.md).
"""


def s26():
    out = [HEADER.format(what="Larger module board: DDR4 memory, eleven switching outputs.", page="DravikS26"),
           "PRSMDravikS26Data = {"]
    out += efficiency_table("BUCK_DATA_TABLE", "buck", 3000, [
        ("BUCK1", Converter(1.2, 2.5, 0.87)),
        ("BUCK2", Converter(0.85, 0.35, 0.82)),
        ("BUCK3", Converter(3.3, 2.0, 0.92)),
        ("BUCK4", Converter(1.8, 0.6, 0.89)),
    ])
    out += efficiency_table("DA913X_DATA_TABLE", "fifty", 8000, [
        ("DA9130", Converter(0.72, 6.5, 0.86)),
        ("DA9131_CH1", Converter(0.85, 3.5, 0.87)),
        ("DA9131_CH2", Converter(0.9, 3.2, 0.87)),
    ])
    out += efficiency_table("MPM_DATA_TABLE", "module", 1000, [
        ("MPM_A", Converter(0.85, 0.3, 0.80)),
        ("MPM_B", Converter(1.2, 0.6, 0.84)),
    ])
    out += group("DDR4_TABLE_TABLE", DDR4)
    out += group("EMMC_TABLE_TABLE", EMMC)
    out += group("SUPPLY_TABLE_TABLE", SUPPLY)
    out.append("};")
    return "\n".join(out) + "\n"


def s24():
    out = [HEADER.format(what="Smaller module board: LPDDR4 memory, six switching outputs.", page="DravikS24"),
           "PRSMDravikS24Data = {"]
    out += efficiency_table("BUCK_DATA_TABLE", "buck", 3000, [
        ("BUCK1", Converter(1.1, 2.5, 0.86)),
        ("BUCK2", Converter(1.2, 1.0, 0.87)),
        ("BUCK3", Converter(3.3, 2.0, 0.92)),
        ("BUCK4", Converter(1.8, 0.6, 0.89)),
    ])
    out += efficiency_table("DA913X_DATA_TABLE", "fifty", 5000, [
        ("DA9131_CH1", Converter(0.85, 3.5, 0.87)),
        ("DA9131_CH2", Converter(0.72, 3.2, 0.86)),
    ])
    out += group("DDR4_TABLE_TABLE", LPDDR4)
    out += group("EMMC_TABLE_TABLE", EMMC)
    out += group("SUPPLY_TABLE_TABLE", SUPPLY)
    out.append("};")
    return "\n".join(out) + "\n"


def main():
    root = Path(__file__).resolve().parents[2]
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--out", type=Path, default=root / "data" / "powercfg" / "dravik")
    parser.add_argument("--check", action="store_true", help="write nothing; fail when a file differs")
    args = parser.parse_args()
    if not args.check:
        args.out.mkdir(parents=True, exist_ok=True)
    files = {args.out / "PRSMDravikS26Data.cfg": s26(), args.out / "PRSMDravikS24Data.cfg": s24()}
    return write_or_check(files, args.check, Path(__file__).name)


if __name__ == "__main__":
    sys.exit(main())
