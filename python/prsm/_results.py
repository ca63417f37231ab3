"""Results that read well in a notebook: tables as pandas DataFrames when pandas is installed, as
lists of dicts otherwise, and an HTML view (`_repr_html_`) either way."""

import html as _html
import typing as _typing
import warnings as _warnings


class InputWarning(UserWarning):
    """An input the model calls invalid, or a value its table warns about; calculated anyway."""


def _pandas():
    try:
        import pandas
    except ImportError:
        return None
    return pandas


def _table(rows):
    """`rows` (a list of flat dicts) as a DataFrame when pandas is importable, else as they are."""
    pandas = _pandas()
    return pandas.DataFrame(rows) if pandas is not None else rows


def _cell(value):
    if value is None:
        return ""
    if isinstance(value, list):  # a regulator's rails
        return _html.escape(" ".join(str(v) for v in value))
    return _html.escape(f"{value:.6g}" if isinstance(value, float) else str(value))


def _html_table(rows, caption):
    if not rows:
        return ""
    columns = []
    for row in rows:
        columns += [c for c in row if c not in columns]
    head = "".join(f"<th>{_html.escape(c)}</th>" for c in columns)
    body = "".join("<tr>" + "".join(f"<td>{_cell(row.get(c))}</td>" for c in columns) + "</tr>" for row in rows)
    return f"<table><caption>{_html.escape(caption)}</caption><tr>{head}</tr>{body}</table>"


def warn_invalid(lines, stacklevel):
    for line in lines:
        _warnings.warn(line, InputWarning, stacklevel=stacklevel + 1)


def design_warning_text(warning):
    """A design's warning as `prsm estimate` prints it (after "prsm: warning: ")."""
    if not warning["block"]:  # the design itself: the cell is a JSON pointer
        return f'{warning["cell"]}: {warning["message"]}'
    cell = f'cell {warning["cell"]}: ' if warning["cell"] else ""
    return f'block "{warning["block"]}": {cell}{warning["message"]}'


class Supplies(_typing.NamedTuple):
    """How the design is supplied: its declared regulators (a table: name, rails, rating, load, margin,
    over_rating, powerup_current, output_power, efficiency, input_power, loss), each rail as a supply
    (a table: rail, voltage, total_current, powerup_current, counted_in) and what the board draws for
    the regulators and for the rails none of them feeds (W; None when the design declares none)."""

    regulators: object
    rails: object
    input_power: _typing.Optional[float]
    unregulated_power: _typing.Optional[float]


_SUPPLY_RAIL_KEYS = ("rail", "voltage", "total_current", "powerup_current", "counted_in")


class Report(dict):
    """A design's report: the object `prsm estimate --json` prints, with its tables at hand.

    `rails`, `blocks` and `regions` are DataFrames when pandas is installed (lists of dicts otherwise);
    a block's per-rail power becomes one column per rail, "rails.VCCINT". `supplies` gathers the
    regulators and the rails as supplies.
    """

    def _rows(self, section):
        rows = []
        for entry in self.get(section, []):
            row = {k: v for k, v in entry.items() if not isinstance(v, dict)}
            for key, nested in entry.items():
                if isinstance(nested, dict):
                    row.update({f"{key}.{name}": value for name, value in nested.items()})
            rows.append(row)
        return rows

    @property
    def rails(self):
        return _table(self._rows("rails"))

    @property
    def blocks(self):
        return _table(self._rows("blocks"))

    @property
    def regions(self):
        return _table(self._rows("regions"))

    @property
    def totals(self):
        return self["totals"]

    def _supply_rows(self):
        return [{key: rail.get(key) for key in _SUPPLY_RAIL_KEYS} for rail in self.get("rails", [])]

    @property
    def supplies(self):
        declared = self.get("supplies", {})
        return Supplies(regulators=_table([dict(r) for r in declared.get("regulators", [])]),
                        rails=_table(self._supply_rows()), input_power=declared.get("input_power"),
                        unregulated_power=declared.get("unregulated_power"))

    def _repr_html_(self):
        totals = [{"quantity": name, "W": value} for name, value in self["totals"].items()]
        warnings = [{"warning": design_warning_text(w)} for w in self["warnings"]]
        failures = [{"failure": f} for f in self["failures"]]
        declared = self.get("supplies", {})
        supply_totals = [{"quantity": name, "W": declared[name]}
                         for name in ("input_power", "unregulated_power") if name in declared]
        # Only the rails a supply must know more about: a power-up current, or leakage held elsewhere.
        supply_rails = [row for row in self._supply_rows()
                        if row["powerup_current"] or row["counted_in"] is not None]
        return "".join([
            f"<p><b>{_html.escape(str(self['design']))}</b>, junction "
            f"{self['thermal']['junction_temperature']:.1f} degC</p>",
            _html_table(failures, "failures"), _html_table(totals, "totals"), _html_table(warnings, "warnings"),
            _html_table(self._rows("rails"), "rails"), _html_table(self._rows("regions"), "regions"),
            _html_table(self._rows("blocks"), "blocks"),
            _html_table(declared.get("regulators", []), "regulators"), _html_table(supply_totals, "supplies"),
            _html_table(supply_rails, "rails as supplies")])


class SweepResult(dict):
    """{output: array} over the swept points, every array of the points' shape; `inputs` holds the
    swept inputs' values broadcast to that shape. to_dataframe() gives one row per point."""

    def __init__(self, outputs, inputs):
        super().__init__(outputs)
        self.inputs = inputs

    def _columns(self):
        columns = {name: values.reshape(-1) for name, values in self.inputs.items()}
        columns.update({name: values.reshape(-1) for name, values in self.items()})
        return columns

    def to_dataframe(self):
        """One row per point: the swept inputs, then the outputs. Needs pandas."""
        pandas = _pandas()
        if pandas is None:
            raise ImportError("SweepResult.to_dataframe needs pandas (Debian: apt-get install python3-pandas)")
        return pandas.DataFrame(self._columns())

    def _repr_html_(self, shown=50):
        columns = self._columns()
        count = len(next(iter(columns.values()))) if columns else 0
        rows = [{name: values[i].item() if hasattr(values[i], "item") else values[i]
                 for name, values in columns.items()} for i in range(min(count, shown))]
        caption = f"{count} points" if count <= shown else f"the first {shown} of {count} points"
        return _html_table(rows, caption)
