# Vectorised sweeps: rows against single calculations, broadcasting, threads, fixed inputs, errors.
import numpy as np
import pytest

import prsm


def single(model, **inputs):
    sheet = prsm.Sheet(model)
    for name, value in inputs.items():
        sheet.set(name, value)
    return sheet.calculate()


def test_sweep_rows_equal_single_calculations_over_a_broadcast_grid():
    sheet = prsm.Sheet("TalvexCleLogic")
    sheet.set("INSTANCE_COUNT", 4000)  # held fixed in every point
    clocks = np.array([100.0, 250.5, 400.0])
    kinds = np.array(["LUT_LOGIC", "REG_FF"])
    result = sheet.sweep({"CLOCK_FREQ": clocks[:, None], "INSTANCE_TYPE": kinds[None, :]},
                         outputs=["LOGIC_POWER", "KPE_LOGIC_POWER"])
    assert set(result) == {"LOGIC_POWER", "KPE_LOGIC_POWER"}
    assert result["LOGIC_POWER"].shape == (3, 2) and result["LOGIC_POWER"].dtype == np.float64
    for i, clock in enumerate(clocks):
        for j, kind in enumerate(kinds):
            expected = single("TalvexCleLogic", INSTANCE_COUNT=4000, CLOCK_FREQ=clock, INSTANCE_TYPE=str(kind))
            assert result["LOGIC_POWER"][i, j] == expected["LOGIC_POWER"]
            assert result["KPE_LOGIC_POWER"][i, j] == expected["KPE_LOGIC_POWER"]
    # Proportional to the clock: 400 / 100 = 4 times.
    assert result["LOGIC_POWER"][2, 0] == pytest.approx(4 * result["LOGIC_POWER"][0, 0], rel=1e-6)


def test_threads_give_the_same_arrays_bit_for_bit():
    sheet = prsm.Sheet("TalvexAie")
    sheet.set("AIE_CORES", 100)
    load = np.linspace(0.0, 1.0, 2001)
    one = sheet.sweep({"CORE_LOAD": load}, threads=1)
    two = sheet.sweep({"CORE_LOAD": load}, threads=2)
    assert set(one) == set(two)
    for name in one:
        assert one[name].tobytes() == two[name].tobytes(), name
    # A scalar broadcasts; all outputs come back when none are named.
    scalar = sheet.sweep({"CORE_LOAD": 0.5, "KERNEL_TYPE": ["Int8", "FFT"]})
    assert scalar["TOTAL_POWER"].shape == (2,)
    assert scalar["TOTAL_POWER"][0] == single("TalvexAie", AIE_CORES=100, CORE_LOAD=0.5,
                                              KERNEL_TYPE="Int8")["TOTAL_POWER"]


def test_int_and_string_outputs_keep_their_types():
    sheet = prsm.Sheet("TalvexNoc")
    ints = [c.name for c in sheet.cells if c.category == "output" and c.type == "int"]
    texts = [c.name for c in sheet.cells if c.category == "output" and c.type == "string"]
    floats = [c.name for c in sheet.cells if c.category == "output" and c.type == "float"]
    inputs = [c for c in sheet.cells if c.category == "input" and c.type == "float"]
    result = sheet.sweep({inputs[0].name: np.array([1.0, 2.0])}, outputs=ints + texts + floats[:1])
    for name in ints:
        assert result[name].dtype == np.int64
    for name in texts:
        assert result[name].dtype == object and isinstance(result[name][0], str)


def test_bad_sweeps_are_refused_before_anything_is_calculated():
    sheet = prsm.Sheet("TalvexCleLogic")
    with pytest.raises(prsm.InputError, match="no values for CLOCK_FREQ"):
        sheet.sweep({"CLOCK_FREQ": np.array([])})
    with pytest.raises(prsm.InputError, match="INSTANCE_COUNT takes a whole number, not 1.5"):
        sheet.sweep({"INSTANCE_COUNT": np.array([1.0, 1.5])})
    with pytest.raises(prsm.InputError, match="LOGIC_POWER is an output cell"):
        sheet.sweep({"LOGIC_POWER": [1.0]})
    with pytest.raises(prsm.InputError, match="no output of TalvexCleLogic is called LOGIC_POWR"):
        sheet.sweep({"CLOCK_FREQ": [1.0]}, outputs=["LOGIC_POWR"])
    with pytest.raises(prsm.InputError, match="INSTANCE_TYPE takes text"):
        sheet.sweep({"INSTANCE_TYPE": np.array([1.0, 2.0])})
    with pytest.raises(prsm.InputError, match='CLOCK_FREQ takes a number, not "x"'):
        sheet.sweep({"CLOCK_FREQ": ["100", "x"]})
    with pytest.raises(prsm.InputError, match="takes a finite number"):
        sheet.sweep({"CLOCK_FREQ": np.array([np.nan])})
    with pytest.raises(ValueError):  # shapes that do not broadcast
        sheet.sweep({"CLOCK_FREQ": np.ones(3), "TOGGLE_RATE": np.ones(2)})


def test_a_failing_sweep_names_the_point(run_python):
    done = run_python(
        "import prsm, numpy\n"
        "try:\n"
        "    prsm.Sheet('TalvexNoc').sweep({'VCC_SOC': numpy.array([0.7, 0.8])}, threads=1)\n"
        "except prsm.DataError as e:\n"
        "    print(e)\n",
        QDI_DATADIR="/nonexistent")
    assert done.returncode == 0, done.stderr
    assert done.stdout.startswith("calculating TalvexNoc failed at point 1 of 2 (VCC_SOC=0.7): "), done.stdout
