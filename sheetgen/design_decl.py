"""Reads a sheet's whole-design declarations, [rails] and [design], checks them against its cells and
emits the prsm::SheetDesign initialiser that the registration passes on."""

from __future__ import annotations

import re
from dataclasses import dataclass, field

import regions
from braces import expand
from sheet_error import SheetError

REGIONS = tuple(name for name, _ in regions.load())  # design/regions.toml
DEVICE_FIELDS = ("part", "internal_part", "family", "package", "speed_grade", "temperature_grade",
                 "voltage_grade", "power_screen", "process", "voltage_corner")
RAIL = re.compile(r"[A-Z][A-Z0-9_]*")
# The used-block counts that take up a device resource (the catalogue's PARAM_VARS_INT.<part>.<RESOURCE>),
# or "" where none limits them. Any other lower-case word is a count too, of no resource: a new leaking
# block names its count in its own table and the static sheet's count_feeds, and nothing else.
COUNTS = {
    "luts": "LUTS",
    "flip_flops": "FLIP_FLOPS",
    "bram_active": "BRAMS",  # 36 Kb-equivalent block RAMs, active and asleep
    "bram_sleep": "BRAMS",
    "uram_active": "URAMS",
    "uram_sleep": "URAMS",
    "dsps": "DSPS",
    # I/O banks in use per VCCO rail and bank type
    "vcco10_x5io_banks": "X5IO_BANKS",
    "vcco11_x5io_banks": "X5IO_BANKS",
    "vcco12_x5io_banks": "X5IO_BANKS",
    "vcco10_xpio_banks": "XPIO_BANKS",
    "vcco11_xpio_banks": "XPIO_BANKS",
    "vcco12_xpio_banks": "XPIO_BANKS",
    "vcco135_xpio_banks": "XPIO_BANKS",
    "vcco15_xpio_banks": "XPIO_BANKS",
    "vcco18_hdio_banks": "HDIO_BANKS",
    "vcco25_hdio_banks": "HDIO_BANKS",
    "vcco33_hdio_banks": "HDIO_BANKS",
    # I/O pins in use, of every bank type
    "io_pins": "IO_PINS",
    # the older architecture's banks by type (its static sheet counts no banks)
    "hpio_banks": "HPIO_BANKS",
    "hdio_banks": "HDIO_BANKS",
    # transceiver quads powered, per family
    "gth_quads": "GTH_QUADS",
    "gty_quads": "GTY_QUADS",
    "gtyp_quads": "GTYP_QUADS",
    "gtm_quads": "GTM_QUADS",
    # hard memory controllers used
    "ddr_controllers": "DDR_CONTROLLERS",
    # clocking: the older architecture's mixed-mode clock managers and PLLs, and global clock buffers
    "mmcms": "MMCMS",
    "plls": "PLLS",
    "clock_buffers": "CLOCK_BUFFERS",
    # the newer processor system's units powered
    "psxl_cpu": "",
    "psxl_l3_cache": "",
    "psxl_rpu": "",
    "psxl_rpu_ocm": "",
    "psxl_rpu_tcm": "",
}


@dataclass
class BoardRegulatorDecl:
    """One regulator output of a module board: the computed cells of its figures ("" when it has none) and
    what it is: the rail it makes, buck or LDO, its output voltage and rating, and what feeds it (another
    of the board's regulators, or the float input holding the board's input voltage)."""
    name: str
    load: str = ""
    efficiency: str = ""
    loss: str = ""
    over_limit: str = ""
    rail: str = ""
    kind: str = ""
    voltage: float = 0.0
    rating: float = 0.0
    fed_from: str = ""
    load_includes_fed: bool = False  # the load cell already holds what the regulators it feeds draw


REGULATOR_CELLS = ("load", "efficiency", "loss", "over_limit")
REGULATOR_KINDS = ("buck", "ldo")


@dataclass
class DesignDecl:
    region: str = ""
    tag: str = ""  # what sets the block's power apart within its region: "ip" for hard IP
    voltage: list[tuple[str, str]] = field(default_factory=list)
    power: list[tuple[str, str]] = field(default_factory=list)
    current: list[tuple[str, str]] = field(default_factory=list)
    device: list[tuple[str, str]] = field(default_factory=list)
    temperature: str = ""
    static_current: str = ""
    max_current: str = ""
    powerup_current: str = ""
    counted_in: list[tuple[str, str]] = field(default_factory=list)  # rail -> the rail whose leakage holds it
    static_total: str = ""
    static_regions: list[tuple[str, str]] = field(default_factory=list)
    feeds: list[tuple[str, str]] = field(default_factory=list)
    board_architecture: str = ""
    board_currents: list[tuple[str, str]] = field(default_factory=list)
    board_total: str = ""
    board_regulators: list["BoardRegulatorDecl"] = field(default_factory=list)
    requires: list[tuple[str, list[str]]] = field(default_factory=list)  # catalogue feature -> its values
    # (count, cell of one instance's share, resource, string input that gates it, the values it counts at)
    counts: list[tuple[str, str, str, str, list[str]]] = field(default_factory=list)
    # (input, counts summed into it, resource of a share, whether it is a share in percent)
    count_feeds: list[tuple[str, list[str], str, bool]] = field(default_factory=list)
    architecture: str = ""  # the catalogue architecture of the parts the sheet models ("TALVEX")


def parse_selector(text: str, at: tuple = ("design", "feeds")) -> list[tuple[str, bool, list[str]]]:
    """A selector is terms separated by blanks, all of which must hold: rail:A[,B], region:r[,s],
    tag:t[,u], each optionally negated with a leading "!". Gives (key, negated, names) per term; `at` is
    its key path, for errors."""
    terms = text.split()
    if not terms:
        raise SheetError("design.feeds: an empty selector", at)
    parsed = []
    for term in terms:
        m = re.fullmatch(r"(!?)(rail|region|tag):([A-Za-z0-9_]+(?:,[A-Za-z0-9_]+)*)", term)
        if m is None:
            raise SheetError(f"design.feeds: {term!r} is not rail:, region: or tag: followed by names", at)
        names = m[3].split(",")
        if m[2] == "region":
            for region in names:
                if region not in REGIONS:
                    raise SheetError(f"design.feeds: unknown region {region!r}; one of {', '.join(REGIONS)}", at)
        parsed.append((m[2], bool(m[1]), names))
    return parsed


def _at(where: str) -> tuple:
    """The key path of an error's dotted `where` ("design.counts.luts")."""
    return tuple(where.split("."))


def _known_count(name: str, where: str) -> str:
    """The resource of a count: a vocabulary count's, else none."""
    if not re.fullmatch(r"[a-z][a-z0-9_]*", name):
        raise SheetError(f"{where}: count {name!r} is not a lower-case word such as \"bram_active\"", _at(where))
    return COUNTS.get(name, "")


def load_counts(design: dict, cell) -> list[tuple[str, str, str, str, list[str]]]:
    """[design.counts]: count = "CELL", or { cell = "CELL", when = { INPUT = "PATTERN" or [...] } } for a
    share that counts only while a string input holds one of the patterns ("LUT*": a prefix)."""
    counts = []
    for name, entry in design.get("counts", {}).items():
        where = f"design.counts.{name}"
        resource = _known_count(name, where)
        when_cell, when_values = "", []
        if isinstance(entry, dict):
            if unknown := set(entry) - {"cell", "when"}:
                raise SheetError(f"{where}: unknown keys {sorted(unknown)}", _at(where))
            when = entry.get("when", {})
            if not isinstance(when, dict) or len(when) > 1:
                raise SheetError(f"{where}.when: one string input = a pattern or a list of patterns",
                                 _at(where) + ("when",))
            for when_cell, patterns in when.items():
                cell(when_cell, f"{where}.when", ("string",), True)
                when_values = [patterns] if isinstance(patterns, str) else list(patterns)
                if not when_values or any(not isinstance(p, str) or "*" in p[:-1] for p in when_values):
                    raise SheetError(f"{where}.when.{when_cell}: patterns are texts, a '*' only at the end",
                                     _at(where) + ("when", when_cell))
            entry = entry.get("cell", "")
        if not isinstance(entry, str) or not entry:
            raise SheetError(f"{where}: the cell giving one instance's share, or {{ cell, when }}", _at(where))
        found = cell(entry, where, ("int", "float"), None)
        counts.append((name, found.name, resource, when_cell, when_values))
    return counts


def load_count_feeds(design: dict, cell) -> list[tuple[str, list[str], str, bool]]:
    """[design.count_feeds]: input = "count + count", or "count %" for the count as a percentage of the
    device's resource of it."""
    feeds = []
    for name, text in design.get("count_feeds", {}).items():
        where = f"design.count_feeds.{name}"
        found = cell(name, where, ("int", "float"), True)
        if not isinstance(text, str):
            raise SheetError(f"{where}: counts joined with \" + \", optionally followed by \" %\"", _at(where))
        share = text.rstrip().endswith("%")
        names = [part.strip() for part in text.rstrip().rstrip("%").split("+")]
        resources = {_known_count(n, where) for n in names}
        resource = ""
        if share:
            if len(resources) != 1 or "" in resources:
                raise SheetError(f"{where}: a share in percent sums counts of one device resource", _at(where))
            if found.type != "float":
                raise SheetError(f"{where}: a share in percent goes into a float input", _at(where))
            resource = resources.pop()
        feeds.append((name, names, resource, share))
    return feeds


def load_counted_in(design: dict, rails: set[str]) -> list[tuple[str, str]]:
    """design.counted_in: rail = the rail whose leakage current already holds it; both of the sheet's
    voltage rails, no rail inside itself and no chain (a holding rail is not held)."""
    table = design.get("counted_in", {})
    at = ("design", "counted_in")
    if not isinstance(table, dict):
        raise SheetError("design.counted_in: a table of rail = the rail whose leakage holds it", at)
    pairs = [(rail, holder) for rail, holder in table.items()]
    for rail, holder in pairs:
        for name in (rail, holder):
            if not isinstance(name, str) or name not in rails:
                raise SheetError(f"design.counted_in.{rail}: {name!r} is not one of the sheet's voltage rails",
                                 at + (rail,))
        if rail == holder or holder in table:
            raise SheetError(f"design.counted_in.{rail}: {holder!r} may not itself be held by a rail",
                             at + (rail,))
    return pairs


def _pairs(section: dict, at: tuple, lists: dict[str, list[str]], value_is_rail: bool = True) -> list[tuple[str, str]]:
    """Cell = rail (or device field) pairs of the section at key path `at`."""
    key = at[-1]
    value = section.get(key, {})
    if isinstance(value, list):  # cell names that are also the rails' names
        return [(name, name) for pattern in value for name in expand(pattern, lists)]
    if not isinstance(value, dict):
        raise SheetError(f"rails.{key}: a list of cells or a table of cell = \"RAIL\"", at)
    pairs = []
    for pattern, target in value.items():
        for name in expand(pattern, lists):
            if value_is_rail and not RAIL.fullmatch(str(target)):
                raise SheetError(f"rails.{key}.{name}: {target!r} is not an upper-case rail name", at + (pattern,))
            pairs.append((name, str(target)))
    return pairs


def load(doc: dict, sheet) -> DesignDecl:
    rails = doc.get("rails", {})
    design = doc.get("design", {})
    if unknown := set(rails) - {"voltage", "power", "current"}:
        raise SheetError(f"rails: unknown keys {sorted(unknown)}", ("rails", min(unknown)))
    known = {"region", "device", "temperature", "static_current", "max_current", "powerup_current", "counted_in",
             "static_total", "static_regions",
             "feeds", "board_architecture", "board_currents", "board_total", "board_regulators", "requires", "counts",
             "count_feeds", "tag", "architecture"}
    if unknown := set(design) - known:
        raise SheetError(f"design: unknown keys {sorted(unknown)}", ("design", min(unknown)))
    decl = DesignDecl()
    decl.region = design.get("region", "")
    if decl.region and decl.region not in REGIONS:
        raise SheetError(f"design.region: unknown region {decl.region!r}; one of {', '.join(REGIONS)}",
                         ("design", "region"))
    decl.tag = design.get("tag", "")
    if not isinstance(decl.tag, str) or (decl.tag and not re.fullmatch(r"[a-z][a-z0-9_]*", decl.tag)):
        raise SheetError(f"design.tag: {decl.tag!r} is not a lower-case word such as \"ip\"", ("design", "tag"))
    if decl.tag and not decl.region:
        raise SheetError("design.tag: a tag sets power apart within a region: declare the region too",
                         ("design", "tag"))

    def cell(name: str, where: str, types: tuple[str, ...], want_input: bool):
        at = _at(where) + (name,)  # the cell's own key, else the key that names it
        c = sheet.by_name.get(name)
        if c is None:
            raise SheetError(f"{where}: no cell {name}", at)
        if c.type not in types or (want_input is not None and c.is_input != want_input):
            kind = "cell" if want_input is None else "input" if want_input else "computed cell"
            raise SheetError(f"{where}: {name} is not a {'/'.join(types)} {kind}", at)
        return c

    decl.architecture = _architecture(design, sheet)
    decl.voltage = _pairs(rails, ("rails", "voltage"), sheet.lists)
    for name, _ in decl.voltage:
        cell(name, "rails.voltage", ("float",), True)
    for kind in ("power", "current"):
        pairs = _pairs(rails, ("rails", kind), sheet.lists)
        for name, _ in pairs:
            cell(name, f"rails.{kind}", ("float",), False)
        setattr(decl, kind, pairs)
    decl.requires = _requires(design.get("requires", {}))
    decl.device = _pairs(design, ("design", "device"), sheet.lists, value_is_rail=False)
    for name, fld in decl.device:
        cell(name, "design.device", ("string",), True)
        if fld not in DEVICE_FIELDS:
            raise SheetError(f"design.device.{name}: unknown field {fld!r}; one of {', '.join(DEVICE_FIELDS)}",
                             ("design", "device", name))

    decl.counts = load_counts(design, cell)
    static_keys = {"temperature", "static_current", "max_current", "powerup_current", "counted_in", "static_total",
                   "static_regions", "feeds", "count_feeds"} & set(design)
    if static_keys and "temperature" not in design:
        raise SheetError("design: a static sheet names its junction-temperature input in design.temperature",
                         ("design",))
    if "temperature" in design:
        decl.temperature = design["temperature"]
        cell(decl.temperature, "design.temperature", ("float",), True)
        def rail_pattern(key: str) -> str:
            """A per-rail cell pattern with one {}; each rail's cell it names, where there is one, is a
            float computed cell."""
            pattern = design.get(key, "")
            if pattern and pattern.count("{}") != 1:
                raise SheetError(f"design.{key}: a cell pattern with one {{}} for the rail", ("design", key))
            for _, rail in decl.voltage if pattern else ():
                name = pattern.replace("{}", rail)
                if name in sheet.by_name:
                    cell(name, f"design.{key}", ("float",), False)
            return pattern

        decl.static_current = rail_pattern("static_current")
        decl.max_current = rail_pattern("max_current")
        decl.powerup_current = rail_pattern("powerup_current")
        decl.counted_in = load_counted_in(design, {rail for _, rail in decl.voltage})
        decl.static_total = design.get("static_total", "")
        if decl.static_total:
            cell(decl.static_total, "design.static_total", ("float",), False)
        for region, name in design.get("static_regions", {}).items():
            if region not in REGIONS:
                raise SheetError(f"design.static_regions: unknown region {region!r}",
                                 ("design", "static_regions", region))
            cell(name, f"design.static_regions.{region}", ("float",), False)
            decl.static_regions.append((region, name))
        for name, selector in design.get("feeds", {}).items():
            cell(name, "design.feeds", ("float",), True)
            parse_selector(selector, ("design", "feeds", name))  # refused here, with the table's line
            decl.feeds.append((name, selector))
        decl.count_feeds = load_count_feeds(design, cell)

    board_keys = {"board_architecture", "board_currents", "board_total", "board_regulators"} & set(design)
    if board_keys and "board_currents" not in design:
        raise SheetError("design: a module board names the inputs of the device's currents in design.board_currents",
                         ("design",))
    if "board_currents" in design:
        if "temperature" in design:
            raise SheetError("design: a sheet is either the static-power sheet or a module board, not both",
                             ("design", "board_currents"))
        decl.board_currents = _pairs(design, ("design", "board_currents"), sheet.lists)
        if not decl.board_currents:
            raise SheetError("design.board_currents: an empty table", ("design", "board_currents"))
        for name, _ in decl.board_currents:
            cell(name, "design.board_currents", ("float",), True)
        decl.board_architecture = str(design.get("board_architecture", ""))
        if decl.board_architecture and not RAIL.fullmatch(decl.board_architecture):
            raise SheetError(f"design.board_architecture: {decl.board_architecture!r} is not an upper-case name",
                             ("design", "board_architecture"))
        decl.board_total = design.get("board_total", "")
        if decl.board_total:
            cell(decl.board_total, "design.board_total", ("float",), False)
        decl.board_regulators = _board_regulators(design.get("board_regulators", {}), cell)
    return decl


def _board_regulators(regulators, cell) -> list[BoardRegulatorDecl]:
    """design.board_regulators = { REG = { load, efficiency, loss, over_limit, rail, kind, voltage, rating,
    fed_from, load_includes_fed } }: each output's computed cells and what it is."""
    at = ("design", "board_regulators")
    if not isinstance(regulators, dict):
        raise SheetError("design.board_regulators: a table of regulator = { load, efficiency, loss, over_limit, "
                         "rail, kind, voltage, rating, fed_from }", at)
    declared = []
    for reg, figures in regulators.items():
        where = f"design.board_regulators.{reg}"
        if not isinstance(figures, dict) or not figures:
            raise SheetError(f"{where}: a table of load, efficiency, loss, over_limit, rail, kind, voltage, rating, "
                             "fed_from", at + (reg,))
        if unknown := set(figures) - set(REGULATOR_CELLS) - {"rail", "kind", "voltage", "rating", "fed_from",
                                                               "load_includes_fed"}:
            raise SheetError(f"{where}: unknown keys {sorted(unknown)}", at + (reg, min(unknown)))
        for key in REGULATOR_CELLS:
            if key in figures:
                cell(figures[key], f"{where}.{key}", ("float",), False)
        r = BoardRegulatorDecl(reg, *(figures.get(key, "") for key in REGULATOR_CELLS))
        r.rail = figures.get("rail", "")
        if r.rail and not (isinstance(r.rail, str) and RAIL.fullmatch(r.rail)):
            raise SheetError(f"{where}.rail: {r.rail!r} is not an upper-case rail name", at + (reg, "rail"))
        r.kind = figures.get("kind", "")
        if r.kind and r.kind not in REGULATOR_KINDS:
            raise SheetError(f"{where}.kind: {r.kind!r} is none of {', '.join(REGULATOR_KINDS)}", at + (reg, "kind"))
        if r.kind == "ldo" and r.loss:
            raise SheetError(f"{where}.loss: an LDO dissipates its drop times its load; it declares no loss cell",
                             at + (reg, "loss"))
        for key in ("voltage", "rating"):
            value = figures.get(key, 0.0)
            if key in figures and (isinstance(value, bool) or not isinstance(value, (int, float)) or not value > 0):
                raise SheetError(f"{where}.{key}: {value!r} is not a number above 0", at + (reg, key))
            setattr(r, key, float(value))
        includes = figures.get("load_includes_fed", False)
        if not isinstance(includes, bool):
            raise SheetError(f"{where}.load_includes_fed: true or false", at + (reg, "load_includes_fed"))
        r.load_includes_fed = includes
        r.fed_from = figures.get("fed_from", "")
        if not isinstance(r.fed_from, str):
            raise SheetError(f"{where}.fed_from: a regulator of the board or its input-voltage cell",
                             at + (reg, "fed_from"))
        declared.append(r)
    names = {r.name for r in declared}
    for r in declared:
        where = f"design.board_regulators.{r.name}.fed_from"
        if r.fed_from and r.fed_from not in names:
            cell(r.fed_from, where, ("float",), True)  # the board's input voltage
        chain, upstream = [r.name], r.fed_from
        while upstream in names:
            chain.append(upstream)
            if upstream in chain[:-1]:
                raise SheetError(f"{where}: a regulator fed from itself: {' <- '.join(chain)}",
                                 at + (r.name, "fed_from"))
            upstream = next(u.fed_from for u in declared if u.name == upstream)
    return declared


def _architecture(design: dict, sheet: Sheet) -> str:
    """design.architecture, else the folder of an architecture's models: models/dravik/ gives DRAVIK. A
    sheet of neither (the common settings, the tests' small sheets) has none."""
    architecture = design.get("architecture")
    if architecture is None:
        parts = sheet.subdir.split("/")
        return parts[1].upper() if len(parts) == 2 and parts[0] == "models" else ""
    if not isinstance(architecture, str) or not RAIL.fullmatch(architecture):
        raise SheetError(f"design.architecture: {architecture!r} is not an upper-case name",
                         ("design", "architecture"))
    return architecture


def _requires(value) -> list[tuple[str, list[str]]]:
    """design.requires = { FEATURE = "VALUE" or ["VALUE", ...] }: the device catalogue's features a part
    must have for the sheet to apply to it (FEATURE.<part>.<FEATURE> is one of the values)."""
    if not isinstance(value, dict):
        raise SheetError('design.requires: a table of catalogue feature = "value" or ["value", ...]',
                         ("design", "requires"))
    features = []
    for feature, values in value.items():
        values = [values] if isinstance(values, str) else values
        if not RAIL.fullmatch(feature):
            raise SheetError(f"design.requires: {feature!r} is not an upper-case feature name",
                             ("design", "requires", feature))
        if not isinstance(values, list) or not values or not all(isinstance(v, str) and v for v in values):
            raise SheetError(f"design.requires.{feature}: a value or a non-empty list of values",
                             ("design", "requires", feature))
        features.append((feature, values))
    return features


def _cpp_pairs(pairs: list[tuple[str, str]]) -> str:
    return "{" + ", ".join(f'{{"{a}", "{b}"}}' for a, b in pairs) + "}"


def _cpp_tuples(rows: list[tuple[str, ...]]) -> str:
    return "{" + ", ".join("{" + ", ".join(f'"{x}"' for x in row) + "}" for row in rows) + "}"


def _cpp_number(value: float) -> str:
    return repr(float(value))


def _cpp_board_regulators(regulators: list[BoardRegulatorDecl]) -> str:
    """Each as prsm::BoardRegulator, member by member in declaration order."""
    return "{" + ", ".join(
        f'{{"{r.name}", "{r.load}", "{r.efficiency}", "{r.loss}", "{r.over_limit}", "{r.rail}", "{r.kind}", '
        f'{_cpp_number(r.voltage)}, {_cpp_number(r.rating)}, "{r.fed_from}", '
        f'{"true" if r.load_includes_fed else "false"}}}' for r in regulators) + "}"


def _cpp_requires(features: list[tuple[str, list[str]]]) -> str:
    return "{" + ", ".join(f'{{"{f}", {_cpp_tuples([tuple(values)])[1:-1]}}}' for f, values in features) + "}"


def _cpp_strings(items: list[str]) -> str:
    return "{" + ", ".join(f'"{x}"' for x in items) + "}"


SELECTOR_KEY = {"rail": "Rail", "region": "Region", "tag": "Tag"}


def _cpp_selectors(feeds: list[tuple[str, str]]) -> str:
    """Each feed's selector as prsm::Selector terms: {key, negated, {names}}."""
    return "{" + ", ".join(
        "{" + ", ".join(f"{{prsm::SelectorTerm::Key::{SELECTOR_KEY[key]}, {'true' if negate else 'false'}, "
                        f"{_cpp_strings(names)}}}" for key, negate, names in parse_selector(selector)) + "}"
        for _, selector in feeds) + "}"


def initializer(decl: DesignDecl) -> str:
    """The prsm::SheetDesign aggregate, member by member in declaration order."""
    return (f'prsm::SheetDesign{{"{decl.region}", {_cpp_pairs(decl.voltage)}, {_cpp_pairs(decl.power)}, '
            f'{_cpp_pairs(decl.current)}, {_cpp_pairs(decl.device)}, "{decl.temperature}", '
            f'"{decl.static_current}", "{decl.max_current}", "{decl.static_total}", {_cpp_pairs(decl.static_regions)}, '
            f'{_cpp_pairs(decl.feeds)}, {_cpp_selectors(decl.feeds)}, "{decl.board_architecture}", {_cpp_pairs(decl.board_currents)}, '
            f'"{decl.board_total}", {_cpp_board_regulators(decl.board_regulators)}, {_cpp_requires(decl.requires)}, '
            "{" + ", ".join(f'{{"{c}", "{cell}", "{r}", "{w}", {_cpp_strings(v)}}}'
                            for c, cell, r, w, v in decl.counts) + "}, "
            "{" + ", ".join(f'{{"{i}", {_cpp_strings(n)}, "{r}", {"true" if share else "false"}}}'
                            for i, n, r, share in decl.count_feeds) + f'}}, "{decl.tag}", "{decl.architecture}", '
            f'"{decl.powerup_current}", {_cpp_pairs(decl.counted_in)}}}')
