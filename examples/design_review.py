#!/usr/bin/env python3
"""A design review in a notebook: the estimate's tables, a what-if on the clock, and the invalid inputs.

Each `# %%` starts a cell (editors and Jupyter's text-notebook tools open the file as a notebook); run
as a script it prints the tables instead. pandas (Debian `python3-pandas`) makes the tables
DataFrames; without it they are lists of dicts.

    PYTHONPATH=build/python python3 examples/design_review.py [examples/accelerator.json]
"""
# %%
import pathlib
import sys
import warnings

import numpy as np

import prsm

path = sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).with_name("accelerator.json")
design = prsm.Design.load(path)

# %% The estimate: in a notebook the report shows itself as HTML tables.
with warnings.catch_warnings(record=True) as caught:
    warnings.simplefilter("always", prsm.InputWarning)
    report = design.estimate()
for warning in caught:
    print("invalid input:", warning.message)
print(f"total {report.totals['total_power']:.3f} W at {report['thermal']['junction_temperature']:.1f} degC")
print(report.regions)
print(report.rails)

# %% The largest blocks first (with pandas).
blocks = report.blocks
if hasattr(blocks, "sort_values"):
    print(blocks.sort_values("power", ascending=False)[["name", "model", "region", "power"]].head(10))

# %% What if the first block's clock moved? One estimate per clock, the rest of the design as given.
first = report["blocks"][0]["name"]
clock = f"{first}.CLOCK_FREQ"
if clock in design.variables:
    swept = design.sweep({clock: np.linspace(100, 500, 5)}, outputs=["dynamic_power", "total_power"])
    print(swept.to_dataframe() if hasattr(report.blocks, "sort_values") else dict(swept))

# %% The supplies: each rail's power-up current and held leakage, and, for a design that declares its
# regulators, their loads and what the board draws for them as the first block's clock moves.
supplies = report.supplies
print(supplies.rails)
if supplies.input_power is not None:
    print(supplies.regulators)
    print(f"board input {supplies.input_power:.3f} W, rails without a regulator {supplies.unregulated_power:.3f} W")
    if clock in design.variables:
        loads = [name for name in design.outputs if name.startswith("regulator.") and name.endswith(".load")]
        swept = design.sweep({clock: np.linspace(100, 500, 5)}, outputs=loads + ["supplies.input_power"])
        print(swept.to_dataframe() if hasattr(report.blocks, "sort_values") else dict(swept))
