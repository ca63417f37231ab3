#!/usr/bin/env python3
"""Writes the I/O and transceiver rails' maximum currents into the device catalogue from the laws below:

  common/PRSMCommonParamControlData.cfg   PARAM_VARS_FLOAT.<part>.<RAIL>_MAX_CURRENT of those rails

Usage: rail_limits.py [--check]. With --check nothing is written: the exit status says whether the
committed catalogue holds what the laws give. Standard library only. The rest of the catalogue, the core
rails' maxima included, is written by hand and kept as it is; only the settings named here are replaced.

Law: a power ball carries about an ampere. A bank rail may feed every bank that carries its voltage, so
its maximum is the amperes per bank (the bank's VCCO balls) times the banks of the kinds that carry it;
a transceiver rail's is the amperes per quad times the part's quads of its family. The bank and quad
counts are the catalogue's own (PARAM_VARS_INT.<part>, and <part>_<package> for a package that bonds out
fewer), so the two tables agree. A kind the part lacks gives no figure: its rails are not checked (the
resource check already warns of any use). How the magnitudes were chosen: data/README.md.
"""

from __future__ import annotations

import re
import sys
from pathlib import Path

from cfg_writer import number, write_or_check

CATALOGUE = Path(__file__).resolve().parent.parent / "powercfg" / "common" / "PRSMCommonParamControlData.cfg"

# Amperes per bank: two VCCO balls on a wide bank (52 to 54 pins), one on a 24-pin bank.
BANK_AMPERES = {"XPIO": 2.0, "X5IO": 2.0, "HPIO": 2.0, "HDIO": 1.0}

# Newer parts: the bank kinds that carry each bank rail's voltage (the I/O standards' table), and the
# rails of the fixed banks beside the platform controller, one bank of 1 A each.
NEWER_BANK_RAILS = {"VCCO10": ["XPIO", "X5IO"], "VCCO11": ["XPIO", "X5IO"], "VCCO12": ["XPIO", "X5IO"],
                    "VCCO135": ["XPIO"], "VCCO15": ["XPIO"],
                    "VCCO18": ["HDIO"], "VCCO25": ["HDIO"], "VCCO33": ["HDIO"]}
NEWER_FIXED = {"VCCOFIO": 1.0, "VCCOPMIO0": 1.0, "VCCOPMIO1": 1.0, "VCCOPMIO2": 1.0}
# Older parts: the wide banks reach 1.8 V, the 24-pin ones 3.3 V; their auxiliary rail feeds each wide
# bank's PLL and receivers (0.15 A a bank). The processor's memory bank is a wide one, its
# multiplexed-I/O banks 1 A each.
OLDER_BANK_RAILS = {"VCCO12": ["HPIO", "HDIO"], "VCCO135": ["HPIO", "HDIO"], "VCCO15": ["HPIO", "HDIO"],
                    "VCCO18": ["HPIO", "HDIO"], "VCCO25": ["HDIO"], "VCCO33": ["HDIO"]}
OLDER_PER_BANK = {"VCCAUXIO": ("HPIO", 0.15)}
OLDER_FIXED = {"VCCOPSDDR12": 2.0, "VCCOPSIO0500": 1.0, "VCCOPSIO1501": 1.0, "VCCOPSIO2502": 1.0,
               "VCCOPSIO3503": 1.0}

# Amperes per quad of each family's rails (analogue supply, termination supply, auxiliary supply). AVCC
# is about twice what a quad's four lanes draw at the family's top rate (0.8 A for a newer GTY quad);
# AVTT and VCCAUX, which draw tens of milliamperes a quad, are held to their share of the balls.
NEWER_QUADS = {"GTY": ("MGTY", 1.5, 0.5, 0.1), "GTYP": ("MGTYP", 1.5, 0.5, 0.1),
               "GTM": ("MGTM", 2.0, 0.6, 0.15)}
OLDER_QUADS = {"GTH": ("MGT", 1.2, 0.5, 0.1), "GTY": ("MGTY", 1.5, 0.6, 0.1)}

LINE = re.compile(r"^    (\w+) = \{ (.*) \};$")


def settings(body: str) -> dict[str, str]:
    """`A = 1; B = 2.0;` as {A: "1", B: "2.0"}."""
    pairs = [item.split("=") for item in body.split(";") if item.strip()]
    return {key.strip(): text.strip() for key, text in pairs}


def block(lines: list[str], name: str) -> range:
    """The lines inside the top-level table `name`."""
    start = lines.index(f"  {name} = {{") + 1
    return range(start, lines.index("  };", start))


def limits(counts: dict[str, int]) -> dict[str, float]:
    """Each rail's maximum in A from a part's bank and quad counts; a rail no bank or quad feeds has none."""
    older = "HPIO_BANKS" in counts
    bank_rails, fixed = (OLDER_BANK_RAILS, OLDER_FIXED) if older else (NEWER_BANK_RAILS, NEWER_FIXED)
    out: dict[str, float] = {}
    for rail, kinds in bank_rails.items():
        amperes = sum(BANK_AMPERES[kind] * counts.get(f"{kind}_BANKS", 0) for kind in kinds)
        if amperes > 0:
            out[rail] = amperes
    if older:
        for rail, (kind, amperes) in OLDER_PER_BANK.items():
            if counts.get(f"{kind}_BANKS", 0) > 0:
                out[rail] = amperes * counts[f"{kind}_BANKS"]
    out.update(fixed)
    for family, (prefix, avcc, avtt, aux) in (OLDER_QUADS if older else NEWER_QUADS).items():
        quads = counts.get(f"{family}_QUADS", 0)
        if quads > 0:
            out.update({f"{prefix}AVCC": avcc * quads, f"{prefix}AVTT": avtt * quads,
                        f"{prefix}VCCAUX": aux * quads})
    return {f"{rail}_MAX_CURRENT": round(amperes, 6) for rail, amperes in out.items()}


def owned(key: str) -> bool:
    """Whether the laws here write `key`."""
    rails = {*NEWER_BANK_RAILS, *NEWER_FIXED, *OLDER_BANK_RAILS, *OLDER_PER_BANK, *OLDER_FIXED}
    prefixes = [p for p, *_ in [*NEWER_QUADS.values(), *OLDER_QUADS.values()]]
    rails |= {f"{p}{r}" for p in prefixes for r in ("AVCC", "AVTT", "VCCAUX")}
    return key.endswith("_MAX_CURRENT") and key[: -len("_MAX_CURRENT")] in rails


def catalogue(text: str) -> str:
    lines = text.split("\n")
    counts: dict[str, dict[str, int]] = {}
    for i in block(lines, "PARAM_VARS_INT"):
        m = LINE.match(lines[i])
        if m and re.search(r"_(BANKS|QUADS) =", m[2]):  # a part's or a package's resources
            counts[m[1]] = {k: int(v) for k, v in settings(m[2]).items()}
    packages = {name for name in counts for part in counts if name.startswith(part + "_")}
    floats = block(lines, "PARAM_VARS_FLOAT")
    out: list[str] = []
    for i, line in enumerate(lines):
        m = LINE.match(line) if i in floats else None
        if m and m[1] in packages:
            continue  # written again after its part
        if not (m and m[1] in counts):
            out.append(line)
            continue
        part = m[1]
        whole = limits(counts[part])
        kept = {k: v for k, v in settings(m[2]).items() if not owned(k)}
        out.append(write(part, {**kept, **{k: number(v) for k, v in whole.items()}}))
        # A package that bonds out fewer banks or quads: the rails whose figure differs.
        for package in sorted(n for n in packages if n.startswith(part + "_")):
            bonded = limits({**counts[part], **counts[package]})
            differ = {k: number(v) for k, v in bonded.items() if whole.get(k) != v}
            if differ:
                out.append(write(package, differ))
    return "\n".join(out)


def write(name: str, values: dict[str, str]) -> str:
    return f"    {name} = {{ " + " ".join(f"{k} = {v};" for k, v in values.items()) + " };"


def main(argv: list[str]) -> int:
    text = catalogue(CATALOGUE.read_text())
    return write_or_check({CATALOGUE: text}, "--check" in argv, "data/tools/rail_limits.py")


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
