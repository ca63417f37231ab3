#!/usr/bin/env python3
"""Writes the shipped tables of the board design sheets from the compact description below:

  talvex/PRSMTalvexPowerRailGroupingData.cfg   regulator group of every rail, arrangement pictures
  talvex/PRSMTalvexDecouplingCapXqData.cfg     capacitor counts per ampere of load step
  talvex/PRSMTalvexDecouplingCapXcData.cfg     the same for the other package class

Run from anywhere: python3 data/tools/board_sheets.py [--check]. With --check nothing is written: the
exit status says whether the committed files are what the description gives. Standard library only;
the output is committed, so the library never needs this script at run time. How the figures were
chosen is told in docs/models/TalvexPowerRailGrouping.md and docs/models/TalvexDecouplingCap.md.
"""

from __future__ import annotations

import sys
from pathlib import Path

from cfg_writer import run, value

OUT = Path(__file__).resolve().parent.parent / "powercfg" / "talvex"

# ---------------------------------------------------------------------------------------------------
# Power-rail grouping

FAMILIES = {  # the catalogue's Talvex families and the blocks with supply rails of their own
    "TALVEX_COMPUTE": {"GTY", "CPM5"},
    "TALVEX_EMBEDDED": {"GTY", "RF"},
    "TALVEX_CORE": {"GTY", "CPM5"},
    "TALVEX_PERFORMANCE": {"GTY", "GTM", "HBM", "CPM5"},
}
DEVICE_GRADES = {"EXTENDED": "ext", "INDUSTRIAL": "ind"}  # the temperature grades of the catalogue
STRATEGIES = {"FULL_POWER_MANAGEMENT": "full_pm", "MINIMUM_RAILS": "min_rails"}
VOLTAGE_GRADES = ["H", "M", "M_OD", "L", "L_OD", "L_DVS", "L_DVS_OD"]
IO_VOLTAGES = ["3.3 V", "2.5 V", "1.8 V"]
DC_TOLERANCES = ["0.5%", "1%", "2%", "3%"]

RAILS = ["ADCAVCC", "ADCAVCCAUX", "DACAVCC", "DACAVCCAUX", "DACAVTT", "MGTMAVCC", "MGTMAVTT", "MGTMVCCAUX",
         "MGTYAVCC", "MGTYAVTT", "MGTYVCCAUX", "VCCAUX", "VCCAUXHBM", "VCCAUXPMC", "VCCAUXSMON", "VCCBATT",
         "VCCCPM5", "VCCFUSE", "VCCHBM", "VCCHSAMS", "VCCINT", "VCCINTGT", "VCCINTIO", "VCCINTIOHBM",
         "VCCIOHBM", "VCCO10", "VCCO11", "VCCO12", "VCCO135", "VCCO15", "VCCO18", "VCCO25", "VCCO33",
         "VCCOFIO", "VCCOPMIO0", "VCCOPMIO1", "VCCOPMIO2", "VCCPMC", "VCCPSFP", "VCCPSLP", "VCCRAM", "VCCSOC"]

BLOCK_OF_RAIL = {
    "ADCAVCC": "RF", "ADCAVCCAUX": "RF", "DACAVCC": "RF", "DACAVCCAUX": "RF", "DACAVTT": "RF", "VCCHSAMS": "RF",
    "MGTMAVCC": "GTM", "MGTMAVTT": "GTM", "MGTMVCCAUX": "GTM",
    "MGTYAVCC": "GTY", "MGTYAVTT": "GTY", "MGTYVCCAUX": "GTY",
    "VCCAUXHBM": "HBM", "VCCHBM": "HBM", "VCCINTIOHBM": "HBM", "VCCIOHBM": "HBM",
    "VCCCPM5": "CPM5",
}
NO_REGULATOR = "N/A"

VCCO_LABELS = {"VCCO33": "VR_VCCO_3V3", "VCCO25": "VR_VCCO_2V5", "VCCO18": "VR_VCCO_1V8",
               "VCCO15": "VR_VCCO_1V5", "VCCO135": "VR_VCCO_1V35", "VCCO12": "VR_VCCO_1V2",
               "VCCO11": "VR_VCCO_1V1", "VCCO10": "VR_VCCO_1V0"}

# Under full power management every power domain has regulators of its own.
FULL_PM = {
    **VCCO_LABELS,
    "VCCRAM": "VR_PL_VCCRAM",
    "VCCOFIO": "VR_PMC_VCCO_FIO", "VCCOPMIO0": "VR_PMC_VCCO_MIO0", "VCCOPMIO1": "VR_PMC_VCCO_MIO1",
    "VCCPMC": "VR_PMC_VCCPMC", "VCCAUXPMC": "VR_PMC_VCCAUX", "VCCAUXSMON": "VR_PMC_VCCAUX",
    "VCCFUSE": "VR_PMC_VCCFUSE", "VCCBATT": "BATTERY_BACKUP",
    "VCCOPMIO2": "VR_LPD_VCCO_MIO2", "VCCPSLP": "VR_LPD_VCCPSLP", "VCCPSFP": "VR_FPD_VCCPSFP",
    "VCCSOC": "VR_SYS_VCCSOC", "VCCINTIO": "VR_SYS_VCCSOC", "VCCINTIOHBM": "VR_SYS_VCCSOC",
    "VCCAUX": "VR_SYS_VCCAUX", "VCCAUXHBM": "VR_SYS_VCCAUXHBM", "VCCHBM": "VR_SYS_VCCHBM",
    "VCCIOHBM": "VR_SYS_VCCHBM",
    "MGTYAVCC": "VR_GTY_AVCC", "MGTYVCCAUX": "VR_GTY_VCCAUX", "MGTYAVTT": "VR_GTY_AVTT",
    "MGTMAVCC": "VR_GTM_AVCC", "MGTMVCCAUX": "VR_GTM_VCCAUX", "MGTMAVTT": "VR_GTM_AVTT",
    "ADCAVCC": "VR_RF_AVCC", "DACAVCC": "VR_RF_AVCC", "ADCAVCCAUX": "VR_RF_AVCCAUX",
    "DACAVCCAUX": "VR_RF_AVCCAUX", "DACAVTT": "VR_RF_DACAVTT", "VCCHSAMS": "VR_RF_VCCHSAMS",
}

# Under minimum rails the core rails share the PMC's regulator as far as the voltage grade allows, the
# auxiliary rails share one 1.5 V regulator, and the transceivers of both kinds share their three.
MIN_RAILS = {
    **VCCO_LABELS,
    "VCCOFIO": "VR_PMC_IO", "VCCOPMIO0": "VR_PMC_IO", "VCCOPMIO1": "VR_PMC_IO", "VCCOPMIO2": "VR_PMC_IO",
    "VCCPMC": "VR_CORE", "VCCPSLP": "VR_CORE", "VCCPSFP": "VR_CORE", "VCCSOC": "VR_CORE",
    "VCCINTIO": "VR_CORE", "VCCINTIOHBM": "VR_CORE",
    "VCCAUX": "VR_AUX_1V5", "VCCAUXPMC": "VR_AUX_1V5", "VCCAUXSMON": "VR_AUX_1V5",
    "VCCFUSE": "VR_VCCO_1V8", "VCCBATT": "BATTERY_BACKUP",
    "VCCAUXHBM": "VR_HBM_VCCAUX", "VCCHBM": "VR_HBM_VCC", "VCCIOHBM": "VR_HBM_VCC",
    "MGTYAVCC": "VR_GT_AVCC", "MGTMAVCC": "VR_GT_AVCC", "MGTYVCCAUX": "VR_GT_VCCAUX",
    "MGTMVCCAUX": "VR_GT_VCCAUX", "MGTYAVTT": "VR_GT_AVTT", "MGTMAVTT": "VR_GT_AVTT",
    "ADCAVCC": "VR_RF_AVCC", "DACAVCC": "VR_RF_AVCC", "ADCAVCCAUX": "VR_RF_AVCCAUX",
    "DACAVCCAUX": "VR_RF_AVCCAUX", "DACAVTT": "VR_RF_DACAVTT", "VCCHSAMS": "VR_RF_VCCHSAMS",
}


def arrangement(grade: str) -> str:
    """As the sheet's formulas decide it: shared core (H, M), own VCCINT (L, M_OD), own VCCINT and
    VCCRAM (L_OD and the DVS grades)."""
    if "DVS" in grade or grade == "L_OD":
        return "own_vccint_and_vccram"
    if grade in ("L", "M_OD"):
        return "own_vccint"
    return "shared_core"


def label(strategy: str, grade: str, rail: str) -> str:
    vccint = "VR_PL_VCCINT_DVS" if "DVS" in grade else "VR_PL_VCCINT"
    if strategy == "FULL_POWER_MANAGEMENT":
        # A scaled VCCINT cannot carry the transceiver and integrated-block interconnect.
        if rail == "VCCINT":
            return vccint
        if rail in ("VCCINTGT", "VCCCPM5"):
            return "VR_SYS_VCCSOC" if "DVS" in grade else vccint
        return FULL_PM[rail]
    a = arrangement(grade)
    if rail in ("VCCINT", "VCCINTGT", "VCCCPM5"):
        if a == "shared_core":
            return "VR_CORE"
        if rail != "VCCINT" and "DVS" in grade:
            return "VR_CORE"
        return "VR_VCCINT_DVS" if "DVS" in grade else "VR_VCCINT"
    if rail == "VCCRAM":
        return "VR_VCCRAM" if a == "own_vccint_and_vccram" else "VR_CORE"
    return MIN_RAILS[rail]


def cfg_list(names) -> str:
    return value(list(names))


def rail_grouping() -> str:
    lines = ["// Power-rail grouping: generated by data/tools/board_sheets.py; edit the script, not this file.",
             "// POWER_RAIL_GROUP.<family>.<strategy>_<voltage grade>.<rail> names the regulator that feeds",
             f'// the rail; a rail the family does not have reads "{NO_REGULATOR}". IMAGE_NAME.<device grade>.<key> is the',
             "// arrangement picture below prs/images/.",
             "PRSMTalvexPowerRailGroupingData = {",
             "  DROPDOWN_LISTS = {",
             f"    DEVICE_FAMILY = {cfg_list(FAMILIES)};",
             f"    DEVICE_GRADE = {cfg_list(DEVICE_GRADES)};",
             f"    POWER_RAIL_CONSOLIDATION = {cfg_list(STRATEGIES)};",
             f"    VOLTAGE_GRADE = {cfg_list(VOLTAGE_GRADES)};",
             f"    REG_DC_TOLERANCE_PERCENTAGE = {cfg_list(DC_TOLERANCES)};",
             f"    IO_VOLTAGE = {cfg_list(IO_VOLTAGES)};",
             "  };",
             "  POWER_RAIL_GROUP = {"]
    for family, blocks in FAMILIES.items():
        lines.append(f"    {family} = {{")
        for strategy in STRATEGIES:
            for grade in VOLTAGE_GRADES:
                entries = []
                for rail in RAILS:
                    block = BLOCK_OF_RAIL.get(rail)
                    regulator = NO_REGULATOR if block and block not in blocks else label(strategy, grade, rail)
                    entries.append(f'{rail} = "{regulator}";')
                lines.append(f"      {strategy}_{grade} = {{")
                lines += _wrap(entries, "        ")
                lines.append("      };")
        lines.append("    };")
    lines.append("  };")
    lines.append("  IMAGE_NAME = {")
    for device_grade, short in DEVICE_GRADES.items():
        lines.append(f"    {device_grade} = {{")
        for strategy, prefix in STRATEGIES.items():
            for grade in VOLTAGE_GRADES:
                lines.append(f'      {strategy}_{grade} = "rail_grouping_{prefix}_{grade.lower()}_{short}.png";')
        lines.append("    };")
    lines.append("  };")
    lines.append("};")
    return "\n".join(lines) + "\n"


def _wrap(entries, indent, width=110):
    out, line = [], indent
    for e in entries:
        if len(line) + len(e) + 1 > width and line.strip():
            out.append(line.rstrip())
            line = indent
        line += e + " "
    if line.strip():
        out.append(line.rstrip())
    return out


# ---------------------------------------------------------------------------------------------------
# Decoupling capacitors: count = M * step current + B, per rail and capacitor value. A rail class gives
# (M per ampere, B) for each capacitor value; transceiver rails count per quad in use instead of per
# ampere.

XQ_CAPS = ["0p1", "0p47", "2p2", "22", "47", "330"]
XC_CAPS = ["1", "10", "47", "100", "330"]

# Xq: small ceramics close to the balls, bulk further out. The large core rail leans on the package's
# own capacitance for the fastest edges, so it takes no 0.1 uF parts.
XQ_CLASSES = {
    "core_pl":  {"0p1": (0, 0), "0p47": (0.2, 4), "2p2": (0.2, 2), "22": (0.2, 2), "47": (0.1, 2), "330": (0.1, 1)},
    "core_aie": {"0p1": (0, 0), "0p47": (0.2, 2), "2p2": (0.2, 1), "22": (0.2, 1), "47": (0.1, 1), "330": (0.1, 0)},
    "core":     {"0p1": (0, 2), "0p47": (1, 2), "2p2": (1, 1), "22": (0.5, 1), "47": (0.25, 0), "330": (0, 0)},
    "aux":      {"0p1": (2, 1), "0p47": (2, 1), "2p2": (1, 1), "22": (0.5, 1), "47": (0, 0), "330": (0, 0)},
    "io":       {"0p1": (2, 2), "0p47": (2, 1), "2p2": (1, 1), "22": (1, 1), "47": (0, 0), "330": (0, 0)},
    "analog":   {"0p1": (2, 2), "0p47": (2, 2), "2p2": (1, 1), "22": (0.5, 1), "47": (0, 0), "330": (0, 0)},
    "small":    {"0p1": (0, 1), "0p47": (10, 0), "2p2": (0, 0), "22": (0, 0), "47": (0, 0), "330": (0, 0)},
    "gt":       {"0p1": (0, 0), "0p47": (1, 1), "2p2": (0.5, 1), "22": (0.25, 1), "47": (0, 0), "330": (0, 0)},
}
XC_CLASSES = {
    "core_pl":  {"1": (0.2, 4), "10": (0.2, 2), "47": (0.2, 2), "100": (0.1, 1), "330": (0.1, 1)},
    "core_aie": {"1": (0.2, 2), "10": (0.2, 1), "47": (0.2, 1), "100": (0.1, 0), "330": (0.1, 0)},
    "core":     {"1": (1, 2), "10": (1, 1), "47": (0.5, 1), "100": (0.25, 0), "330": (0, 0)},
    "aux":      {"1": (2, 2), "10": (1, 1), "47": (0.5, 1), "100": (0, 0), "330": (0, 0)},
    "io":       {"1": (2, 2), "10": (1, 1), "47": (1, 1), "100": (0, 0), "330": (0, 0)},
    "analog":   {"1": (2, 2), "10": (1, 1), "47": (0.5, 1), "100": (0, 0), "330": (0, 0)},
    "small":    {"1": (10, 1), "10": (0, 0), "47": (0, 0), "100": (0, 0), "330": (0, 0)},
    "gt":       {"1": (1, 1), "10": (0.5, 1), "47": (0.25, 1), "100": (0, 0), "330": (0, 0)},
}

RAIL_CLASS = {
    "ADCAVCC": "analog", "ADCAVCCAUX": "analog", "DACAVCC": "analog", "DACAVCCAUX": "analog",
    "DACAVTT": "analog", "VCCHSAMS": "analog",
    "VCCAUX": "aux", "VCCAUXHBM": "aux", "VCCAUXPMC": "aux", "VCCHBM": "aux", "VCCIOHBM": "aux",
    "VCCAUXSMON": "small", "VCCBATT": "small", "VCCFUSE": "small",
    "VCCCPM5": "core", "VCCINTGT": "core", "VCCINTIO": "core", "VCCINTIOHBM": "core", "VCCPMC": "core",
    "VCCPSFP": "core", "VCCPSLP": "core", "VCCRAM": "core", "VCCSOC": "core",
    **{r: "io" for r in ["VCCO10", "VCCO11", "VCCO12", "VCCO135", "VCCO15", "VCCO18", "VCCO25", "VCCO33",
                         "VCCOFIO", "VCCOPMIO0", "VCCOPMIO1", "VCCOPMIO2"]},
    **{r: "gt" for r in ["MGTYAVCC", "MGTYAVTT", "MGTYVCCAUX", "MGTMAVCC", "MGTMAVTT", "MGTMVCCAUX"]},
}
RF_RAILS = ["ADCAVCC", "ADCAVCCAUX", "DACAVCC", "DACAVCCAUX", "DACAVTT", "VCCHSAMS"]

# The package classes: the smaller package has less capacitance of its own, so its VCCINT slopes are a
# quarter steeper. VSVA2197 is the large footprint of the static sheet's default part.
XQ_PACKAGES = {"TQA1596": 1.25, "TQA2197": 1.0, "VSVA2197": 1.0}
XC_PACKAGES = {"TQD1760": 1.0}


def _num(x: float) -> str:
    text = f"{x:.4f}".rstrip("0").rstrip(".")
    return text if "." in text else text + ".0"


def decoupling(stem: str, caps, classes, packages, rails, gt_lists) -> str:
    lines = [f"// Decoupling capacitors ({', '.join(c.replace('p', '.') for c in caps)} uF): generated by",
             "// data/tools/board_sheets.py; edit the script, not this file.",
             "// COEFF.<rail>.<M_<C>uF | B_<C>uF>.<package>: count = M * step current in A + B (transceiver",
             "// rails: per quad in use). VCCINT's two parts, VCCINTAIE and VCCINTPL, are keyed by package.",
             f"PRSMTalvex{stem}Data = {{",
             "  DROPDOWN_LISTS = {",
             f"    PACKAGE_TYPE = {cfg_list(packages)};"]
    for name, values in gt_lists.items():
        lines.append(f"    {name} = {cfg_list(values)};")
    lines += ["  };", "  COEFF = {"]
    rows = [(r, RAIL_CLASS[r], {"ALL_PACKAGES": 1.0}) for r in rails]
    rows += [("VCCINTAIE", "core_aie", packages), ("VCCINTPL", "core_pl", packages)]
    for rail, cls, pkgs in sorted(rows):
        lines.append(f"    {rail} = {{")
        for cap in caps:
            m, b = classes[cls][cap]
            ms = " ".join(f"{p} = {_num(m * f)};" for p, f in pkgs.items())
            bs = " ".join(f"{p} = {_num(b)};" for p in pkgs)
            lines.append(f"      M_{cap}uF = {{ {ms} }}; B_{cap}uF = {{ {bs} }};")
        lines.append("    };")
    lines += ["  };", "};"]
    return "\n".join(lines) + "\n"


STEP_RAILS = ["ADCAVCC", "ADCAVCCAUX", "DACAVCC", "DACAVCCAUX", "DACAVTT", "VCCAUX", "VCCAUXHBM", "VCCAUXPMC",
              "VCCAUXSMON", "VCCBATT", "VCCCPM5", "VCCFUSE", "VCCHBM", "VCCHSAMS", "VCCINTGT", "VCCINTIO",
              "VCCINTIOHBM", "VCCIOHBM", "VCCO10", "VCCO11", "VCCO12", "VCCO135", "VCCO15", "VCCO18", "VCCO25",
              "VCCO33", "VCCOFIO", "VCCOPMIO0", "VCCOPMIO1", "VCCOPMIO2", "VCCPMC", "VCCPSFP", "VCCPSLP",
              "VCCRAM", "VCCSOC"]
GT_RAILS = ["MGTMAVCC", "MGTMAVTT", "MGTMVCCAUX", "MGTYAVCC", "MGTYAVTT", "MGTYVCCAUX"]
# Channels in use, by fours: a quad's capacitors are placed as soon as one of its channels is used.
GT_LISTS = {
    "GTY_CHANNELS_USED": ["0", "4", "8", "12", "16", "24", "32", "48"],
    "GTYP_CHANNELS_USED": ["0", "4", "8", "12", "16", "24", "32"],
    "GTM_CHANNELS_USED": ["0", "4", "8", "12", "16", "24", "32"],
}


def main() -> int:
    files = {
        "PRSMTalvexPowerRailGroupingData.cfg": rail_grouping(),
        "PRSMTalvexDecouplingCapXqData.cfg":
            decoupling("DecouplingCapXq", XQ_CAPS, XQ_CLASSES, XQ_PACKAGES, STEP_RAILS + GT_RAILS, GT_LISTS),
        "PRSMTalvexDecouplingCapXcData.cfg":
            decoupling("DecouplingCapXc", XC_CAPS, XC_CLASSES, XC_PACKAGES,
                       [r for r in STEP_RAILS if r not in RF_RAILS] + GT_RAILS, GT_LISTS),
    }
    return run(OUT, files, Path(__file__).name)


if __name__ == "__main__":
    sys.exit(main())
