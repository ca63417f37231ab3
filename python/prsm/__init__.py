"""Power models of programmable-logic blocks, from Python.

    >>> import prsm
    >>> sheet = prsm.Sheet("TalvexCleLogic")
    >>> sheet.set("CLOCK_FREQ", 250)
    >>> sheet.calculate()["LOGIC_POWER"]
    >>> sheet.sweep({"CLOCK_FREQ": numpy.linspace(100, 500, 5)}, outputs=["LOGIC_POWER"])
    >>> design = prsm.Design.load("examples/accelerator.json")
    >>> design.estimate()["totals"]["total_power"]
    >>> design.estimate().blocks            # a pandas DataFrame when pandas is installed
    >>> design.sweep({"rail.VCCINT": [0.78, 0.8, 0.82]}, outputs=["total_power"]).to_dataframe()

Errors are prsm.InputError (a name or value the model refuses; also a ValueError) and prsm.DataError
(data that cannot be loaded, a calculation that fails; also a RuntimeError), both prsm.Error. An input
the model calls invalid is calculated anyway and reported as a prsm.InputWarning, with the text the
command line prints.
"""

from ._core import Cell, DataError, Error, InputError, _Design, _Sheet, data_dir, models
from ._results import InputWarning, Report, Supplies, SweepResult, design_warning_text, warn_invalid

__all__ = ["Cell", "DataError", "Design", "Error", "InputError", "InputWarning", "Report", "Sheet", "Supplies",
           "SweepResult", "data_dir", "models"]


class Sheet(_Sheet):
    """One parameter set of a model: set inputs by name, calculate, read outputs, sweep."""

    def __getitem__(self, name):
        return self.get(name)

    def __setitem__(self, name, value):
        self.set(name, value)

    def __repr__(self):
        return f"<prsm.Sheet {self.name}: {self.description}>"

    def cell(self, name):
        """The Cell called `name`."""
        for cell in self.cells:
            if cell.name == name:
                return cell
        raise InputError(f"{self.name} has no cell {name}")

    def calculate(self):
        """Calculates the sheet and returns {output: value}; invalid inputs give an InputWarning."""
        outputs = super().calculate()
        warn_invalid(self._warnings(), stacklevel=2)
        return outputs

    def sweep(self, inputs, outputs=None, threads=None):
        """Calculates the sheet at every point of `inputs` and returns a SweepResult, {output: array}.

        `inputs` maps input names to arrays (or scalars, or lists of strings for string inputs);
        they broadcast together as NumPy arrays do, and every result has the broadcast shape. Inputs
        set on the sheet and not swept hold their values; the others take their defaults. `outputs`
        lists the outputs to return (all when None). `threads` defaults to one per core; the GIL is
        released while the points are calculated, and Ctrl-C stops the sweep.
        """
        return _sweep(self, inputs, outputs, threads)


class Design:
    """A whole design: its blocks, rails and thermal conditions, estimated together.

    Make one with Design.load(path) or Design.from_dict(dict) (the layout of a design file).
    """

    def __init__(self, core):
        self._core = core

    @classmethod
    def load(cls, path):
        """Reads and checks a design file; InputError lists every problem."""
        return cls(_Design._load(str(path)))

    @classmethod
    def from_dict(cls, data, source="<dict>"):
        """A design from a dict laid out as a design file; `source` names it in messages."""
        import json as _json

        if not isinstance(data, dict):
            raise InputError(f"{source}: a design is a dict, not {type(data).__name__}")
        try:
            text = _json.dumps(data, allow_nan=False)
        except (TypeError, ValueError) as error:
            raise InputError(f"{source}: not a design: {error}") from None
        return cls(_Design._from_text(text, source))

    @property
    def source(self):
        """The file name, or the `source` given to from_dict."""
        return self._core.source

    @property
    def variables(self):
        """The names set() takes: BLOCK.CELL, *.CELL, static.CELL, rail.RAIL, junction_temperature, ..."""
        return self._core.variables

    @property
    def outputs(self):
        """The report's figures by the names `prsm sweep` uses for a design."""
        return self._core.outputs

    @property
    def settings(self):
        """The settings made with set(), by name."""
        return self._core.settings

    def set(self, name, value):
        """Changes one quantity on top of the design as given (for the next estimate)."""
        self._core.set(name, value)

    def unset(self, name):
        """Drops a setting: the quantity is as the design gives it again."""
        self._core.unset(name)

    def reset(self):
        """Drops every setting."""
        self._core.reset()

    def estimate(self, partial=False):
        """The report: the object `prsm estimate --json` prints, as a Report (a dict with tables).

        A block that fails or a thermal runaway raises DataError, unless `partial` is true: the report
        is then returned with "complete": False, its failures listed and no totals. Each invalid input
        gives an InputWarning naming the block and the cell, as `prsm estimate` prints it.
        """
        report = Report(self._core.estimate(partial))
        warn_invalid([design_warning_text(w) for w in report["warnings"]], stacklevel=2)
        return report

    def sweep(self, inputs, outputs=None, threads=None):
        """Estimates the design at every point of `inputs` and returns a SweepResult, {output: array}.

        `inputs` maps the names of `variables` (BLOCK.CELL, rail.RAIL, junction_temperature, ...) to
        arrays that broadcast together, as Sheet.sweep takes them; settings made with set() and not
        swept hold. `outputs` names figures of `outputs` (the totals when None).
        """
        return _sweep(self._core, inputs, outputs, threads)

    def __repr__(self):
        return f"<prsm.Design {self.source}>"


def _sweep(core, inputs, outputs, threads):
    import numpy as _np

    if not inputs:
        raise InputError("a sweep needs at least one input with values")
    names = list(inputs)
    arrays = []
    for name in names:
        value = inputs[name]
        array = _np.asarray(value, dtype=object if _is_text(value) else None)
        arrays.append(array)
    shaped = _np.broadcast_arrays(*arrays)
    shape = shaped[0].shape
    columns = []
    for name, array in zip(names, shaped):
        flat = array.reshape(-1)
        if array.dtype.kind in "OUS":
            columns.append([str(v) if array.dtype.kind in "US" else v for v in flat.tolist()])
        elif array.dtype.kind in "biuf":
            if array.dtype.kind == "b":
                raise InputError(f"{name} takes numbers, not booleans")
            columns.append(_np.ascontiguousarray(flat, dtype=_np.float64))
        else:
            raise InputError(f"{name} takes numbers or text, not an array of {array.dtype}")
    if any(len(c) == 0 for c in columns):
        raise InputError(f"no values for {names[0]}: an empty array")
    results = core._sweep_flat(names, columns, None if outputs is None else list(outputs), threads or 0)
    return SweepResult({name: values.reshape(shape) for name, values in results.items()},
                       {name: array for name, array in zip(names, shaped)})


def _is_text(value):
    import numpy as _np

    if isinstance(value, str):
        return True
    if isinstance(value, _np.ndarray):
        return value.dtype.kind in "USO"
    if isinstance(value, (list, tuple)) and value:
        return any(isinstance(v, str) for v in value)
    return False
