# A whole design from Python: loaded from a file or a dict, estimated as `prsm estimate --json` reports
# it, changed with set(), and refused or failing with InputError and DataError.
import copy
import json
import os
import pathlib
import subprocess

import pytest

import prsm

EXAMPLE = pathlib.Path(__file__).resolve().parents[2] / "examples" / "accelerator.json"
HOST = os.environ.get("PRSM_HOST")

SMALL = {
    "schema_version": 1,
    "device": {"part": "ZQVC1902"},
    "thermal": {"junction_temperature": 85},
    "blocks": [{"name": "logic", "model": "TalvexCleLogic",
                "inputs": {"INSTANCE_TYPE": "REG_FF", "INSTANCE_COUNT": 50000, "CLOCK_FREQ": 300}}],
}


def host_estimate(path):
    done = subprocess.run([HOST, "estimate", str(path), "--json"], capture_output=True, text=True, timeout=120)
    assert done.returncode == 0, done.stderr
    return json.loads(done.stdout)


@pytest.mark.skipif(not HOST, reason="PRSM_HOST names the prsm command")
def test_estimate_is_the_report_of_prsm_estimate_json(tmp_path):
    report = prsm.Design.load(EXAMPLE).estimate()
    assert report == host_estimate(EXAMPLE)
    assert isinstance(report["totals"]["total_power"], float) and report["complete"] is True
    # The same design given as a dict; only the name it goes by differs.
    data = json.loads(EXAMPLE.read_text())
    from_dict = prsm.Design.from_dict(data, source="accelerator").estimate()
    assert from_dict["design"] == "accelerator"
    assert dict(from_dict, design=report["design"]) == report

    # set() is a what-if on top of the file: the same as a file holding the value.
    design = prsm.Design.load(EXAMPLE)
    design.set("front end LUTs.CLOCK_FREQ", 500)
    design.set("rail.VCCINT", 0.85)
    changed = copy.deepcopy(data)
    changed["blocks"][0]["inputs"]["CLOCK_FREQ"] = 500
    changed["rails"]["VCCINT"] = 0.85
    path = tmp_path / "changed.json"
    path.write_text(json.dumps(changed))
    assert design.estimate()["totals"] == host_estimate(path)["totals"]
    assert design.settings == {"front end LUTs.CLOCK_FREQ": 500.0, "rail.VCCINT": 0.85}
    # A rail the file leaves to its default, set and dropped again: the report is the file's again.
    design.set("rail.VCCAUXPMC", 1.6)
    assert design.estimate() != report
    design.reset()
    assert design.estimate() == report


def test_a_small_design_adds_up_by_its_blocks():
    design = prsm.Design.from_dict(SMALL)
    report = design.estimate()
    assert report["thermal"]["junction_temperature"] == 85.0 and "static" not in report
    (block,) = report["blocks"]
    # VCCINT, which the design leaves out, is the catalogue's nominal 0.8 V (not the sheet's own default).
    (vccint,) = [rail for rail in report["rails"] if rail["rail"] == "VCCINT"]
    assert (vccint["voltage"], vccint["voltage_source"]) == (0.8, "catalogue_nominal")
    sheet = prsm.Sheet("TalvexCleLogic")
    for cell, value in SMALL["blocks"][0]["inputs"].items():
        sheet.set(cell, value)
    sheet.set("VCCINT", 0.8)
    # No leakage sheet: the total is the block's power, the sheet's own figure on its rails.
    assert report["totals"]["total_power"] == pytest.approx(block["power"], rel=1e-12)
    assert block["power"] == pytest.approx(sheet.calculate()["LOGIC_POWER"], rel=1e-6)
    # Twice the clock, twice the dynamic power.
    design.set("logic.CLOCK_FREQ", 600)
    assert design.estimate()["totals"]["total_power"] == pytest.approx(2 * block["power"], rel=1e-5)
    design.unset("logic.CLOCK_FREQ")
    assert design.estimate() == report
    assert "logic.CLOCK_FREQ" in design.variables and "block.logic.power" in design.outputs


def test_an_input_taken_from_another_block_follows_it():
    data = copy.deepcopy(SMALL)
    data["blocks"].append({"name": "twin", "model": "TalvexCleLogic",
                           "inputs": {"INSTANCE_TYPE": "REG_FF", "INSTANCE_COUNT": 50000,
                                      "CLOCK_FREQ": {"from": "logic"}}})
    design = prsm.Design.from_dict(data)
    assert "logic.CLOCK_FREQ" in design.variables and "twin.CLOCK_FREQ" not in design.variables
    logic, twin = design.estimate()["blocks"]
    assert twin["power"] == pytest.approx(logic["power"], rel=1e-12)  # the same block at the same clock
    # The source's clock doubled doubles both blocks' dynamic power.
    design.set("logic.CLOCK_FREQ", 600)
    assert design.estimate()["totals"]["total_power"] == pytest.approx(4 * logic["power"], rel=1e-5)


def test_refused_designs_and_settings_raise_input_error():
    bad = copy.deepcopy(SMALL)
    bad["blocks"][0]["inputs"]["CLOCK_FREQ"] = "fast"
    bad["blocks"].append({"name": "logic", "model": "TalvexCleLogic"})
    with pytest.raises(prsm.InputError) as refused:
        prsm.Design.from_dict(bad)
    lines = str(refused.value).splitlines()
    assert '<dict>: /blocks/0/inputs/CLOCK_FREQ: block "logic": cell CLOCK_FREQ takes a number, found a string' in lines
    assert any(line.startswith("<dict>: /blocks/1/name:") for line in lines)
    with pytest.raises(prsm.InputError, match="takes a dict|is a dict"):
        prsm.Design.from_dict([SMALL])
    with pytest.raises(prsm.InputError):
        prsm.Design.load("/no/such/design.json")
    assert issubclass(prsm.InputError, ValueError)

    design = prsm.Design.from_dict(SMALL)
    with pytest.raises(prsm.InputError, match=r"block \"logic\" \(TalvexCleLogic\) has no input CLOK_FREQ \(did you mean CLOCK_FREQ\?\)"):
        design.set("logic.CLOK_FREQ", 1)
    with pytest.raises(prsm.InputError, match="is the voltage of rail VCCINT: sweep rail.VCCINT"):
        design.set("logic.VCCINT", 0.9)
    with pytest.raises(prsm.InputError, match="takes a whole number"):
        design.set("logic.INSTANCE_COUNT", 1.5)
    design.set("ambient_temperature", 30)
    with pytest.raises(prsm.InputError, match="cannot be set together"):
        design.set("junction_temperature", 50)
    assert design.settings == {"ambient_temperature": 30.0}


def test_a_design_that_fails_raises_data_error_unless_partial_is_asked_for():
    design = prsm.Design.load(EXAMPLE)
    # 100 degC/W: leakage grows faster with temperature than the package sheds it.
    design.set("theta_ja", 100)
    with pytest.raises(prsm.DataError, match="thermal runaway"):
        design.estimate()
    partial = design.estimate(partial=True)
    assert partial["complete"] is False and partial["totals"]["total_power"] is None
    assert any("thermal runaway" in failure for failure in partial["failures"])
    assert issubclass(prsm.DataError, RuntimeError)
