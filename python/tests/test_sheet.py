# A sheet from Python: listing, cells, set and get by name, calculate, reflect, errors.
import pytest

import prsm


def test_models_and_cells_describe_every_sheet():
    models = prsm.models()
    assert list(models) == sorted(models)
    assert "TalvexCleLogic" in models and models["TalvexCleLogic"]
    sheet = prsm.Sheet("TalvexCleLogic")
    assert sheet.name == "TalvexCleLogic" and sheet.description == models["TalvexCleLogic"]
    clock = sheet.cell("CLOCK_FREQ")
    assert (clock.type, clock.category, clock.default, clock.valid_values) == ("float", "input", "200", "> 0.0")
    assert isinstance(clock.unit, str)
    assert clock.description == "Clock frequency of the logic"
    kind = sheet.cell("INSTANCE_TYPE")
    assert kind.type == "string" and "REG_FF" in kind.valid_values.split(", ")
    assert sheet.cell("LOGIC_POWER").category == "output"
    categories = {cell.category for cell in sheet.cells}
    assert categories == {"input", "output", "intermediate"}
    assert all(cell.description for cell in sheet.cells if cell.category != "intermediate")


def test_set_get_and_calculate_follow_computed_defaults():
    sheet = prsm.Sheet("TalvexCleLogic")
    sheet["CLOCK_FREQ"] = 250
    assert sheet["CLOCK_FREQ"] == 250.0
    # A1_SIG_RATE defaults to CLOCK_FREQ x TOGGLE_RATE (0.125): 31.25, then 50 at 400 MHz.
    assert sheet.get("A1_SIG_RATE") == 31.25
    first = sheet.calculate()
    assert set(first) == {c.name for c in sheet.cells if c.category == "output"}
    sheet["CLOCK_FREQ"] = 400
    assert sheet.get("A1_SIG_RATE") == 50.0
    second = sheet.calculate()
    # Logic power is proportional to the clock: 400 / 250 = 1.6 times.
    assert second["LOGIC_POWER"] == pytest.approx(1.6 * first["LOGIC_POWER"], rel=1e-6)
    assert sheet.outputs == second
    assert "CLOCK_FREQ = 400\n" in sheet.reflect()
    assert sheet.inputs == {"CLOCK_FREQ": 400.0}
    sheet.set("INSTANCE_COUNT", 3.0)  # a whole float is a whole number
    assert sheet["INSTANCE_COUNT"] == 3 and isinstance(sheet["INSTANCE_COUNT"], int)
    sheet.reset()
    assert sheet.inputs == {} and sheet["CLOCK_FREQ"] == 200.0


def test_rejected_names_and_values_raise_input_errors():
    sheet = prsm.Sheet("TalvexCleLogic")
    with pytest.raises(prsm.InputError, match=r"has no cell CLOCK_FRQ \(did you mean CLOCK_FREQ\?\)"):
        sheet.set("CLOCK_FRQ", 1)
    with pytest.raises(ValueError, match="LOGIC_POWER is an output cell of TalvexCleLogic"):
        sheet.set("LOGIC_POWER", 1)
    with pytest.raises(prsm.InputError, match=r"INSTANCE_COUNT takes a whole number, not 1\.5"):
        sheet.set("INSTANCE_COUNT", 1.5)
    with pytest.raises(prsm.InputError, match="INSTANCE_TYPE takes text, not 3"):
        sheet.set("INSTANCE_TYPE", 3)
    with pytest.raises(prsm.InputError, match="not a bool"):
        sheet.set("CLOCK_FREQ", True)
    with pytest.raises(prsm.InputError, match='CLOCK_FREQ takes a number, not "fast"'):
        sheet.set("CLOCK_FREQ", "fast")
    with pytest.raises(prsm.Error, match=r"unknown model talvexclelogic \(did you mean TalvexCleLogic\?\)"):
        prsm.Sheet("talvexclelogic")
    assert sheet.inputs == {}  # nothing was set


def test_data_failures_raise_data_errors_with_the_library_message(run_python):
    done = run_python(
        "import prsm\n"
        "try:\n"
        "    prsm.Sheet('TalvexNoc').calculate()\n"
        "except prsm.DataError as e:\n"
        "    print('DataError', isinstance(e, RuntimeError), e)\n",
        QDI_DATADIR="/nonexistent")
    assert done.returncode == 0, done.stderr
    assert done.stdout.startswith("DataError True calculating TalvexNoc failed: data file "
                                  "powercfg/talvex/PRSMTalvexNocData.cfg not found in the data directories")
