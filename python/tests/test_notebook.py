# The module in a notebook: reports and sweeps as tables (pandas when installed), HTML views, a design
# swept like `prsm sweep` sweeps it, and invalid inputs as warnings worded as the command line words them.
import json
import os
import subprocess
import warnings

import pytest

import prsm

HOST = os.environ.get("PRSM_HOST")

LOGIC = {
    "schema_version": 1,
    "device": {"part": "ZQVC1902"},
    "thermal": {"junction_temperature": 85},
    "blocks": [{"name": "logic", "model": "TalvexCleLogic",
                "inputs": {"INSTANCE_TYPE": "REG_FF", "INSTANCE_COUNT": 50000, "CLOCK_FREQ": 300}}],
}


def test_design_sweep_is_linear_in_the_clock_and_agrees_with_single_estimates():
    design = prsm.Design.from_dict(LOGIC)
    swept = design.sweep({"logic.CLOCK_FREQ": [100, 200, 300]}, outputs=["dynamic_power", "total_power"])
    dynamic = swept["dynamic_power"]
    assert dynamic.shape == (3,)
    # Switching power is C V^2 f: equal steps of clock give equal steps of dynamic power (to the
    # single precision the sheets compute in).
    assert dynamic[2] - dynamic[1] == pytest.approx(dynamic[1] - dynamic[0], rel=1e-5)
    assert dynamic[0] > 0
    # The file's own clock is 300 MHz: the last point is the design's estimate.
    assert swept["total_power"][2] == pytest.approx(design.estimate()["totals"]["total_power"], rel=1e-12)
    with pytest.raises(prsm.InputError, match="Design.outputs lists them"):
        design.sweep({"logic.CLOCK_FREQ": [100]}, outputs=["no_such_figure"])

    design.set("theta_ja", 1.0)
    with pytest.raises(prsm.InputError, match="junction_temperature"):
        design.sweep({"junction_temperature": [25, 50]})
    design.reset()

    # Two variables broadcast as NumPy arrays do: a 2 x 3 grid.
    grid = design.sweep({"logic.CLOCK_FREQ": [[100], [200]], "junction_temperature": [25, 50, 85]},
                        outputs=["static_power"])
    assert grid["static_power"].shape == (2, 3)


def test_tables_are_dataframes_with_pandas_and_plain_rows_without(run_python):
    pandas = pytest.importorskip("pandas")
    report = prsm.Design.from_dict(LOGIC).estimate()
    blocks = report.blocks
    assert isinstance(blocks, pandas.DataFrame)
    assert list(blocks["name"]) == ["logic"]
    # One block: its per-rail powers add up to its power, and it is all the dynamic power there is.
    rail_columns = [c for c in blocks.columns if c.startswith("rails.")]
    assert rail_columns and blocks[rail_columns].sum(axis=1)[0] == pytest.approx(blocks["power"][0])
    assert blocks["power"][0] == pytest.approx(report.totals["dynamic_power"])
    assert set(report.rails["rail"]) >= {"VCCINT"}

    frame = prsm.Design.from_dict(LOGIC).sweep({"logic.CLOCK_FREQ": [100, 200]}, outputs=["total_power"]).to_dataframe()
    assert list(frame.columns) == ["logic.CLOCK_FREQ", "total_power"] and list(frame["logic.CLOCK_FREQ"]) == [100, 200]

    # Without pandas the same tables are lists of dicts, and to_dataframe says what it needs.
    done = run_python(
        "import sys; sys.modules['pandas'] = None\n"
        "import prsm\n"
        f"design = prsm.Design.from_dict({LOGIC!r})\n"
        "rows = design.estimate().blocks\n"
        "assert isinstance(rows, list) and rows[0]['name'] == 'logic', rows\n"
        "try:\n"
        "    design.sweep({'logic.CLOCK_FREQ': [100]}).to_dataframe()\n"
        "except ImportError as error:\n"
        "    assert 'python3-pandas' in str(error)\n"
        "else:\n"
        "    raise AssertionError('to_dataframe without pandas')\n")
    assert done.returncode == 0, done.stderr


def test_html_views_escape_names_and_show_every_table():
    report = prsm.Design.from_dict(LOGIC, source="<lab> & bench").estimate()
    page = report._repr_html_()
    assert "&lt;lab&gt; &amp; bench" in page and "<lab>" not in page
    for caption in ("totals", "rails", "regions", "blocks"):
        assert f"<caption>{caption}</caption>" in page
    swept = prsm.Sheet("TalvexCleLogic").sweep({"CLOCK_FREQ": list(range(1, 61))}, outputs=["LOGIC_POWER"])
    view = swept._repr_html_()
    assert "the first 50 of 60 points" in view and view.count("<tr>") == 51  # the header and 50 rows


def test_invalid_inputs_warn_as_the_command_line_prints_them(tmp_path):
    sheet = prsm.Sheet("TalvexCleLogic")
    sheet["CLOCK_FREQ"] = -5
    with pytest.warns(prsm.InputWarning, match=r"CLOCK_FREQ = -5.* is invalid"):
        sheet.calculate()
    sheet["CLOCK_FREQ"] = 250
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        sheet.calculate()  # a valid input warns of nothing

    data = json.loads(json.dumps(LOGIC))
    data["blocks"][0]["inputs"]["CLOCK_FREQ"] = -5
    with pytest.warns(prsm.InputWarning) as caught:
        prsm.Design.from_dict(data).estimate()
    texts = [str(w.message) for w in caught]
    assert any(t.startswith('block "logic": cell CLOCK_FREQ: ') for t in texts), texts
    if HOST:
        path = tmp_path / "invalid.json"
        path.write_text(json.dumps(data))
        done = subprocess.run([HOST, "estimate", str(path), "--json"], capture_output=True, text=True, timeout=120)
        printed = [line.removeprefix("prsm: warning: ") for line in done.stderr.splitlines()
                   if line.startswith("prsm: warning: ")]
        assert printed == texts


# The logic block alone at 85 degC, no leakage sheet: VCCINT carries the block's power and the PHY's.
SUPPLIED = dict(LOGIC,
                loads=[{"name": "phy", "rail": "VCCINT", "power": 0.5, "region": "io"}],
                regulators=[{"name": "CORE", "rails": ["VCCINT"], "rating": 0.7, "efficiency": 0.9}],
                budget={"total_power": 0.9})


def test_supplies_are_tables_and_a_load_swept_moves_its_regulator(run_python):
    design = prsm.Design.from_dict(SUPPLIED)
    report = design.estimate()
    logic = report["blocks"][0]["rails"]["VCCINT"]  # W, the block's own figure
    supplies = report.supplies
    # CORE carries (logic + 0.5 W) / 0.8 V; at 0.9 it draws its output over 0.9 from the board.
    current = (logic + 0.5) / 0.8
    (core,) = supplies.regulators.to_dict("records") if hasattr(supplies.regulators, "to_dict") \
        else supplies.regulators
    assert core["name"] == "CORE" and core["rails"] == ["VCCINT"]
    assert core["load"] == pytest.approx(current, rel=1e-9)
    assert core["margin"] == pytest.approx(0.7 - current, rel=1e-9)
    assert supplies.input_power == pytest.approx(0.8 * current / 0.9, rel=1e-9)
    rails = supplies.rails.to_dict("records") if hasattr(supplies.rails, "to_dict") else supplies.rails
    assert [r["rail"] for r in rails] == [r["rail"] for r in report["rails"]]
    assert all(r["counted_in"] is None for r in rails)  # no leakage sheet holds one rail in another

    # The load stepping by 0.5 W moves CORE by 0.5 / 0.8 = 0.625 A and its input by 0.5 / 0.9 W; the
    # 0.9 W budget holds the total (logic + load) until the load passes 0.9 W - logic.
    steps = [0.5, 1.0, 1.5]
    swept = design.sweep({"load.phy.power": steps},
                         outputs=["regulator.CORE.load", "regulator.CORE.input_power", "supplies.input_power",
                                  "budget.total_power", "budget.exceeded"])
    for i, power in enumerate(steps):
        assert swept["regulator.CORE.load"][i] == pytest.approx((logic + power) / 0.8, rel=1e-6)
        assert swept["supplies.input_power"][i] == pytest.approx((logic + power) / 0.9, rel=1e-6)
        assert swept["budget.total_power"][i] == pytest.approx(logic + power, rel=1e-6)
        assert swept["budget.exceeded"][i] == (1 if logic + power > 0.9 else 0)
    assert swept["regulator.CORE.input_power"][1] - swept["regulator.CORE.input_power"][0] == \
        pytest.approx(0.5 / 0.9, rel=1e-5)
    with pytest.raises(prsm.InputError, match=r'load "phy": it is given as a power'):
        design.set("load.phy.current", 1)

    page = report._repr_html_()
    for caption in ("regulators", "supplies"):
        assert f"<caption>{caption}</caption>" in page
    assert "<td>CORE</td><td>VCCINT</td>" in page  # a regulator with its rails as text

    # Without pandas the supplies are lists of dicts.
    done = run_python(
        "import sys; sys.modules['pandas'] = None\n"
        "import prsm\n"
        f"supplies = prsm.Design.from_dict({SUPPLIED!r}).estimate().supplies\n"
        "assert isinstance(supplies.regulators, list) and supplies.regulators[0]['name'] == 'CORE'\n"
        "assert isinstance(supplies.rails, list) and supplies.unregulated_power is not None\n")
    assert done.returncode == 0, done.stderr
