#!/usr/bin/env python3
"""Writes a static-power data file from a compact description of an architecture's devices.

Usage: static_data.py DESCRIPTION.toml OUTPUT.cfg [--check]
With --check nothing is written: the exit status says whether OUTPUT.cfg is what the description gives.

Every leakage follows I(T) = I25 * 2^((T - 25) / D): subthreshold leakage doubling every D degrees. The
sheet evaluates a fifth-order polynomial in T, so the law is fitted by least squares on the relative
error over the description's fit range, and the fit's error is reported on standard error. Voltage
follows I(V) = I(Vref) * exp(k * (V - Vref)), written as V_C1 = exp(-k * Vref), V_C2 = k.

Python 3.11 standard library only. The description names the data class, the rails, the leaking
blocks and the devices; another architecture's static sheet writes its own description, and
[sheet] grades = "bin" selects the tables of a sheet whose grades select a bin (BinnedGenerator).
"""

from __future__ import annotations

import math
import sys
from pathlib import Path

from cfg_writer import data_file, description_command_line, spread_to, write_or_check

LETTERS = ("A", "B", "C", "D", "E", "CONST")  # coefficients of T^5 .. T^0


# ---- The fit ----

def _solve(matrix: list[list[float]], rhs: list[float]) -> list[float]:
    """Gaussian elimination with partial pivoting."""
    n = len(rhs)
    a = [row[:] + [rhs[i]] for i, row in enumerate(matrix)]
    for col in range(n):
        pivot = max(range(col, n), key=lambda r: abs(a[r][col]))
        a[col], a[pivot] = a[pivot], a[col]
        for r in range(col + 1, n):
            f = a[r][col] / a[col][col]
            for c in range(col, n + 1):
                a[r][c] -= f * a[col][c]
    x = [0.0] * n
    for r in reversed(range(n)):
        x[r] = (a[r][n] - sum(a[r][c] * x[c] for c in range(r + 1, n))) / a[r][r]
    return x


def fit_doubling(d: float, lo: float, hi: float) -> tuple[dict[str, float], float]:
    """Coefficients A..E, CONST of the polynomial closest (relative error) to 2^((T-25)/d) on [lo, hi],
    and the largest relative error there. The fit runs in x = T/100 for conditioning."""
    points = [lo + i * (hi - lo) / 330 for i in range(331)]
    n = 6
    ata = [[0.0] * n for _ in range(n)]
    atb = [0.0] * n
    for t in points:
        g = 2.0 ** ((t - 25.0) / d)
        w = 1.0 / (g * g)
        x = t / 100.0
        powers = [x**k for k in range(n)]
        for i in range(n):
            atb[i] += w * powers[i] * g
            for j in range(n):
                ata[i][j] += w * powers[i] * powers[j]
    a = _solve(ata, atb)
    coefficient = {LETTERS[5 - k]: a[k] / 100.0**k for k in range(n)}
    worst = max(abs(poly(coefficient, t) / 2.0 ** ((t - 25.0) / d) - 1.0) for t in points)
    return coefficient, worst


def poly(c: dict[str, float], t: float) -> float:
    return c["A"] * t**5 + c["B"] * t**4 + c["C"] * t**3 + c["D"] * t**2 + c["E"] * t + c["CONST"]


# ---- The tables ----

class Generator:
    def __init__(self, desc: dict):
        self.desc = desc
        self.lo, self.hi = desc["sheet"]["fit_range"]
        self.fits: dict[float, tuple[dict[str, float], float]] = {}
        self.rails = desc["rails"]
        self.devices = desc["devices"]
        self.processes = desc["processes"]

    def fit(self, d: float) -> dict[str, float]:
        if d not in self.fits:
            self.fits[d] = fit_doubling(d, self.lo, self.hi)
        return self.fits[d][0]

    def rail_present(self, device: dict, rail: dict) -> bool:
        scale = rail["scale"]
        return scale in ("size", "fixed") or scale in device["features"]

    def rail_current(self, device: dict, rail: dict) -> float:
        """Own leakage at 25 degC, typical process, reference voltage."""
        grows = rail["scale"] in ("size", "aie")
        return rail["i25"] * (device["size"] if grows else 1.0)

    def coefficients(self, i25: float, d: float, k: float, vref: float) -> dict[str, float]:
        unit = self.fit(d)
        out = {letter: unit[letter] * i25 for letter in LETTERS}
        out["V_C1"] = math.exp(-k * vref)
        out["V_C2"] = k
        return out

    def skus(self) -> list[tuple[str, str, str, str]]:
        """(SKU, voltage grade, power screen, over-drive) for every combination."""
        s, lists = self.desc["sku"], self.desc["lists"]
        return [(f"{g}_{s['screen_code'][p]}{s['over_drive_suffix'][o]}", g, p, o)
                for g in lists["VOLTAGE_GRADE_LIST"] for p in lists["POWER_SCREEN_LIST"] for o in lists["OD_LIST"]]

    def nominal(self, rail_name: str, grade: str, over_drive: str) -> float:
        s = self.desc["sku"]
        if rail_name in s["graded_rails"]:
            step = s["over_drive_step"] if over_drive == "OD_YES" else 0.0
            return s["grade_voltage"][grade] + step
        return self.rails[rail_name]["v"]

    def vt_coefficient(self) -> dict:
        pd = self.desc.get("powered_down")  # optional: a rail with a second set while the logic is off
        table = {}
        for dev_name, dev in self.devices.items():
            per_process = {}
            for proc, p in self.processes.items():
                rows = {}
                for name, rail in self.rails.items():
                    if not self.rail_present(dev, rail):
                        continue
                    i25 = self.rail_current(dev, rail) * p["leakage"]
                    rows[name] = self.coefficients(i25, rail["d"], rail["k"], rail["v"])
                if pd:  # the auxiliary rail: two supplies, and its own set with the logic powered down
                    two = pd["two_supply"]
                    aux = self.rails[pd["rail"]]
                    i25 = self.rail_current(dev, aux) * p["leakage"]
                    rows[pd["rail"]].update({
                        "V_C1": math.exp(-two["k_aux"] * aux["v"] - two["k_int"] * two["vint"]),
                        "V_C2": two["k_aux"], "V_C3": two["k_int"], "V_C4": two["c4"], "V_C5": two["c5"],
                        "V_C6": two["c6"]})
                    down = self.coefficients(i25 * pd["share"], aux["d"], two["k_aux"], aux["v"])
                    down.update({"V_C3": 0.0, "V_C4": 0.0, "V_C5": 0.0, "V_C6": 1.0})
                    rows[pd["component"]] = down
                for core, blk in self.desc.get("blocks", {}).items():
                    if "needs" in blk and blk["needs"] not in dev["features"]:
                        continue
                    for rail_name, (component, per_instance) in blk["rails"].items():
                        rail = self.rails[rail_name]
                        current = per_instance * p["leakage"]
                        if blk.get("grows") == "size":  # one block per device, as large as its logic array
                            current *= dev["size"]
                        if core.startswith("BRAM") and dev.get("bram_core_rev", 1) > 1:
                            component += f"_REV{dev['bram_core_rev']}"
                            current *= 0.8  # the later core revision leaks a fifth less
                        rows[component] = self.coefficients(current, blk.get("d", rail["d"]), rail["k"], rail["v"])
                per_process[proc] = rows
            table[dev_name] = per_process
        return table

    def binning_factors(self) -> dict:
        s = self.desc["sku"]
        by_sku = {sku: s["grade_binning"][g] * s["screen_binning"][p] for sku, g, p, _ in self.skus()}
        return {dev: {proc: {c: dict(by_sku) for c in s["binned"]} for proc in self.processes}
                for dev in self.devices}

    def voltage_range(self) -> dict:
        corners = self.desc["voltage_range"]
        return {corner: {rail: {sku: round(self.nominal(rail, g, o) * m, 4) for sku, g, _, o in self.skus()}
                         for rail in self.rails}
                for corner, m in corners.items()}

    def voltage_scaling(self) -> dict:
        """Informational: each binned rail's leakage at a corner against the reference voltage."""
        corners = self.desc["voltage_range"]
        out = {}
        for dev in self.devices:
            out[dev] = {proc: {r: {c: math.exp(self.rails[r]["k"] * self.rails[r]["v"] * (m - 1.0))
                                   for c, m in corners.items() if not c.startswith("VALID")}
                               for r in self.desc["sku"]["binned"] if r in self.rails}
                        for proc in self.processes}
        return out

    def sku_list(self) -> dict:
        s, lists = self.desc["sku"], self.desc["lists"]
        tree = {}
        for speed in lists["SPEED_GRADE_LIST"]:
            tree[f"S{speed}"] = {g: {p: {t: {o: f"{g}_{s['screen_code'][p]}{s['over_drive_suffix'][o]}"
                                             for o in lists["OD_LIST"]}
                                         for t in lists["TEMP_GRADE_LIST"]}
                                     for p in lists["POWER_SCREEN_LIST"]}
                                 for g in lists["VOLTAGE_GRADE_LIST"]}
        return tree

    def gt(self, key: str) -> dict:
        out = {}
        for dev_name, dev in self.devices.items():
            out[dev_name] = {}
            for package, quads in dev["packages"].items():
                source = quads.get("unbonded", {}) if key == "unbonded" else quads
                out[dev_name][package] = {kind: int(source.get(kind, 0)) for kind in ("GTY", "GTYP", "GTM")}
        return out

    def tables(self) -> dict:
        """Every setting of the file, in file order. A second architecture with other tables subclasses
        Generator and edits this dictionary."""
        th = self.desc["thermal"]
        lists = dict(self.desc["lists"])
        lists["TOTAL_POWER_FACTORS_LIST"] = list(self.rails)
        logic_rails = {"VCCINT", "VCCRAM"}
        return {
            "DROPDOWN_LISTS": lists,
            "INT_TO_EXT_DEV_MAP": {d: d for d in self.devices},
            "SKU_LIST": self.sku_list(),
            "SUPPLY_LIST": {d: {r: self.rails[r]["group"] for r in self.rails} for d in self.devices},
            "VT_COEFFICIENT": self.vt_coefficient(),
            "BINNING_FACTORS": self.binning_factors(),
            "VOLTAGE_SCALING": self.voltage_scaling(),
            "VOLTAGE_RANGE": self.voltage_range(),
            "TOTAL_POWER_FACTORS": {d: {r: float(self.rails[r]["tpf"]) for r in self.rails} for d in self.devices},
            "HBM2E_STACK_INFO": {d: dict(dev.get("hbm_stacks", {"STACKS_4H": 0, "STACKS_8H": 0}))
                                 for d, dev in self.devices.items()},
            "LUT_CRAM_INFO": {d: dict(self.desc.get("lut_cram", {})) for d in self.devices},
            "RAM_CORE_INFO": {d: {"BRAM_CORE_REV": dev.get("bram_core_rev", 1), "URAM_CORE_REV": 1}
                              for d, dev in self.devices.items()},
            "POWERUP_CURRENT": {d: {r: float(rail["pu"] * (dev["size"] if rail["scale"] == "size" else 1.0))
                                    for r, rail in self.rails.items() if self.rail_present(dev, rail)}
                                for d, dev in self.devices.items()},
            "PART_STATUS": {d: {"STATUS": dev.get("status", "PRODUCTION")} for d, dev in self.devices.items()},
            "PART_POWER_DISABLED": {d: "NO" for d in self.devices},
            "GT_INFO": self.gt("bonded"),
            "UNBONDED_GT_INFO": self.gt("unbonded"),
            "MAX_CURRENT": {d: int(round(60 * dev["size"])) for d, dev in self.devices.items()},
            "ACCURACY_FACTOR": {d: {p: float(v["accuracy"]) for p, v in self.processes.items()}
                                for d in self.devices},
            "POWER_MANAGEMENT_FACTOR": {d: dict(self.desc["power_modes"]) for d in self.devices},
            "TEMPERATURE_GRADIENT": {d: {"PL_TRISE_SLOPE": th["PL_TRISE_SLOPE"], "PL_TRISE_OFFSET": th["PL_TRISE_OFFSET"],
                                         "AIE_TRISE_SLOPE": th["AIE_TRISE_SLOPE"],
                                         "AIE_TRISE_OFFSET": th["AIE_TRISE_OFFSET"],
                                         "ENABLE_TJ_MODEL": th["ENABLE_TJ_MODEL"],
                                         "MAX_DEVICE_POWER": th["max_power_per_size"] * dev["size"],
                                         "PASS1_STATIC_SCALE_FACTOR": th["PASS1_STATIC_SCALE_FACTOR"]}
                                     for d, dev in self.devices.items()},
            # Blocks of the logic array leak a little more per instance on larger dies.
            "DEVICE_DEPENDENT_SCALE": {
                d: {core: {r: (round(1.0 + 0.1 * (dev["size"] - 1.0), 4) if r in logic_rails else 1.0)
                           for r in blk["rails"]}
                    for core, blk in self.desc.get("blocks", {}).items()
                    if blk.get("needs", "") in ("", *dev["features"])}
                for d, dev in self.devices.items()},
        }

    def report(self) -> str:
        lines = ["fit of 2^((T-25)/D) by the fifth-order polynomial over "
                 f"{self.lo:g}..{self.hi:g} degC (largest relative error):"]
        for d, (c, worst) in sorted(self.fits.items()):
            at100 = poly(c, 100.0) / 2.0 ** (75.0 / d) - 1.0
            lines.append(f"  D = {d:g} degC: {worst * 100:.2f} % (at 25 degC {(poly(c, 25.0) - 1) * 100:+.3f} %, "
                         f"at 100 degC {at100 * 100:+.3f} %)")
        lines.append("own-rail static power at reference voltages (blocks not counted):")
        for name, dev in self.devices.items():
            p25 = sum(self.rail_current(dev, r) * r["v"] for r in self.rails.values() if self.rail_present(dev, r))
            worst = self.processes["MAX"]["leakage"] if "MAX" in self.processes else 1.0
            p100 = sum(self.rail_current(dev, r) * r["v"] * poly(self.fit(r["d"]), 100.0) * worst
                       for r in self.rails.values() if self.rail_present(dev, r))
            lines.append(f"  {name}: {p25:.2f} W at 25 degC typical, {p100:.1f} W at 100 degC worst process")
        return "\n".join(lines)


class BinnedGenerator(Generator):
    """An architecture whose grades select a bin (BIN_NAMES) rather than a SKU, without a thermal step,
    whose memory stacks are scaled per device, and whose tables are those of its static sheet."""

    def bins(self) -> dict[tuple[str, str], str]:
        b, lists = self.desc["bins"], self.desc["lists"]
        return {(s, t): f"B{s}{b['temp_code'][t]}" for s in lists["SPEED_GRADE_LIST"] for t in lists["TEMP_GRADE_LIST"]}

    def tables(self) -> dict:
        b, lists = self.desc["bins"], self.desc["lists"]
        corners = self.desc["voltage_range"]
        factor = {name: b["speed_binning"][s] * b["temp_binning"][t] for (s, t), name in self.bins().items()}
        present = {d: [r for r, rail in self.rails.items() if self.rail_present(dev, rail)]
                   for d, dev in self.devices.items()}
        return {
            "DROPDOWN_LISTS": dict(lists),
            "DEVICE_TYPE": {d: {"CLASS": dev["class"], **{f.upper(): ("YES" if f in dev["features"] else "NO")
                                                          for f in self.desc["device_type_features"]}}
                            for d, dev in self.devices.items()},
            "BIN_NAMES": {f"S{s}": {t: self.bins()[(s, t)] for t in lists["TEMP_GRADE_LIST"]}
                          for s in lists["SPEED_GRADE_LIST"]},
            "DEVICE_NAMES": {d: d for d in self.devices},
            "VT_COEFFICIENT": self.vt_coefficient(),
            "BINNING_FACTORS": {d: {proc: {c: dict(factor) for c in b["binned"]} for proc in self.processes}
                                for d in self.devices},
            "VOLTAGE_SCALING": {d: {r: {c: math.exp(self.rails[r]["k"] * self.rails[r]["v"] * (m - 1.0))
                                        for c, m in corners.items()}
                                    for r in b["binned"]}
                                for d in self.devices},
            "VOLTAGE_RANGE": {c: {r: round(rail["v"] * m, 4) for r, rail in self.rails.items()}
                              for c, m in corners.items()},
            "POWER_GATING": {d: dict(self.desc["power_gating"]) for d in self.devices},
            "HBM_SCALE_FACTORS": {d: float(dev.get("hbm_scale", 0.0)) for d, dev in self.devices.items()},
            "SYSMON": {d: dict(self.desc["sysmon"]) for d in self.devices},
            "POWERUP_CURRENT": {d: {r: float(self.rails[r]["pu"] * (dev["size"] if self.rails[r]["scale"] == "size"
                                                                    else 1.0))
                                    for r in present[d]}
                                for d, dev in self.devices.items()},
            "TOTAL_POWER_FACTOR": {d: {r: float(rail["tpf"]) for r, rail in self.rails.items()} for d in self.devices},
            "DEVICE_SPECIFIC_DYNAMIC_POWER_SCALE_FACTORS": {d: {r: float(dev.get("dynamic_scale", 1.0))
                                                                for r in present[d]}
                                                            for d, dev in self.devices.items()},
            "MAX_CURRENT": {d: int(round(self.desc["max_current_per_size"] * dev["size"]))
                            for d, dev in self.devices.items()},
        }


GENERATORS = {"sku": Generator, "bin": BinnedGenerator}


# How many levels of a table's groups go over several lines (1 for a table not named here).
SPREAD_DEPTH = {"DROPDOWN_LISTS": 1, "SKU_LIST": 4, "VT_COEFFICIENT": 3, "BINNING_FACTORS": 3, "VOLTAGE_SCALING": 3,
                "VOLTAGE_RANGE": 2, "GT_INFO": 2, "UNBONDED_GT_INFO": 2, "DEVICE_DEPENDENT_SCALE": 2}


def render(desc: dict, tables: dict) -> str:
    return data_file(desc["sheet"]["class"], desc["sheet"]["header"], tables, spread_to(SPREAD_DEPTH), arrays=True)


def main() -> int:
    command = description_command_line(__doc__.splitlines()[2])
    if command is None:
        return 2
    desc, description, out, check = command
    gen = GENERATORS[desc["sheet"].get("grades", "sku")](desc)
    status = write_or_check({out: render(desc, gen.tables())}, check, Path(__file__).name, str(description))
    if not check:
        print(gen.report(), file=sys.stderr)
    return status


if __name__ == "__main__":
    sys.exit(main())
