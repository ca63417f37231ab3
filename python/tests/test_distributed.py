# The distributed example on a local two-worker cluster (loopback only) gives the single-process
# sweep's arrays bit for bit.
import importlib
import pathlib
import sys

import numpy as np
import pytest

import prsm

distributed = pytest.importorskip("distributed")
pytestmark = pytest.mark.filterwarnings("ignore::DeprecationWarning")  # from the event-loop library

EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "examples"


def load_example():
    if str(EXAMPLES) not in sys.path:
        sys.path.insert(0, str(EXAMPLES))
    return importlib.import_module("distributed_sweep")


def test_a_sweep_split_over_two_workers_equals_the_single_process_sweep():
    example = load_example()
    clocks = np.linspace(50.0, 800.0, 3001)[:, None]
    kinds = np.array(["LUT_LOGIC", "REG_FF"])[None, :]
    inputs = {"CLOCK_FREQ": clocks, "INSTANCE_TYPE": kinds}
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, host="127.0.0.1", dashboard_address=None,
                                  processes=True) as cluster, distributed.Client(cluster) as client:
        assert len(client.scheduler_info()["workers"]) == 2
        spread = example.distributed_sweep(client, "TalvexCleLogic", inputs, ["LOGIC_POWER", "BYP_POWER"],
                                           fixed={"INSTANCE_COUNT": 500}, chunk_points=1000, timeout=120)
    sheet = prsm.Sheet("TalvexCleLogic")
    sheet.set("INSTANCE_COUNT", 500)
    local = sheet.sweep(inputs, outputs=["LOGIC_POWER", "BYP_POWER"])
    assert set(spread) == set(local)
    for name in local:
        assert spread[name].shape == (3001, 2)
        assert spread[name].tobytes() == local[name].tobytes(), name
