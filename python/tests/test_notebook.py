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
