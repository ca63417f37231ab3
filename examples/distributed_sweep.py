#!/usr/bin/env python3
"""A sweep too large for one machine, split over a Dask distributed cluster.

Every worker needs the prsm Python module (install it on each worker machine with
`cmake --install build`, or put a shared build's python/ folder on the workers' PYTHONPATH) and the
data (QDI_DATADIR, as on one machine). The points are broadcast and flattened here, cut into chunks,
each chunk is swept by one worker with prsm's own threaded sweep, and the pieces are put back
together in order: the result is the same array, bit for bit, as one process's `Sheet.sweep`.

    # a local cluster of two worker processes on this machine
    PYTHONPATH=build/python python3 examples/distributed_sweep.py --workers 2
    # an existing cluster
    PYTHONPATH=build/python python3 examples/distributed_sweep.py --scheduler tcp://10.0.0.5:8786
"""
import argparse
import time

import numpy as np


def sweep_chunk(model, fixed, names, columns, outputs, threads):
    """Runs on a worker: one chunk of flat columns through the module's own sweep."""
    import prsm

    sheet = prsm.Sheet(model)
    for name, value in fixed.items():
        sheet.set(name, value)
    return sheet.sweep(dict(zip(names, columns)), outputs=outputs, threads=threads)


def distributed_sweep(client, model, inputs, outputs=None, fixed=None, chunk_points=50_000, threads=1,
                      timeout=None):
    """Like `prsm.Sheet(model).sweep(inputs, outputs)` after setting `fixed`, on the cluster of `client`.

    `inputs` maps input names to arrays that broadcast together; the result maps each output to an
    array of the broadcast shape. Each chunk of at most `chunk_points` points is one task; `threads` is
    the number of threads each task's sweep uses on its worker.
    """
    names = list(inputs)
    arrays = [np.asarray(inputs[name], dtype=object if _is_text(inputs[name]) else None) for name in names]
    shaped = np.broadcast_arrays(*arrays)
    shape = shaped[0].shape
    flat = [np.ascontiguousarray(a.reshape(-1)) for a in shaped]
    total = flat[0].size
    pieces = max(1, -(-total // chunk_points))
    bounds = np.linspace(0, total, pieces + 1).astype(int)
    futures = []
    for start, stop in zip(bounds[:-1], bounds[1:]):
        columns = [column[start:stop] for column in flat]
        columns = [list(c) if c.dtype == object else c for c in columns]
        futures.append(client.submit(sweep_chunk, model, dict(fixed or {}), names, columns,
                                     None if outputs is None else list(outputs), threads, pure=False))
    parts = client.gather(futures) if timeout is None else [f.result(timeout=timeout) for f in futures]
    return {name: np.concatenate([part[name] for part in parts]).reshape(shape) for name in parts[0]}


def _is_text(value):
    if isinstance(value, str):
        return True
    if isinstance(value, np.ndarray):
        return value.dtype.kind in "USO"
    return isinstance(value, (list, tuple)) and any(isinstance(v, str) for v in value)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--scheduler", help="address of an existing scheduler; a local cluster when left out")
    parser.add_argument("--workers", type=int, default=2, help="workers of the local cluster")
    parser.add_argument("--points", type=int, default=200_000, help="clock frequencies per instance type")
    args = parser.parse_args()

    from dask.distributed import Client, LocalCluster

    if args.scheduler:
        client = Client(args.scheduler)
    else:
        cluster = LocalCluster(n_workers=args.workers, threads_per_worker=1, host="127.0.0.1",
                               dashboard_address=None)
        client = Client(cluster)
    clocks = np.linspace(50.0, 800.0, args.points)[:, None]
    kinds = np.array(["LUT_LOGIC", "REG_FF", "LUT_SRL"])[None, :]
    inputs = {"CLOCK_FREQ": clocks, "INSTANCE_TYPE": kinds}
    fixed = {"INSTANCE_COUNT": 10000}

    start = time.perf_counter()
    result = distributed_sweep(client, "TalvexCleLogic", inputs, ["LOGIC_POWER"], fixed)
    spread = time.perf_counter() - start

    import prsm

    sheet = prsm.Sheet("TalvexCleLogic")
    sheet.set("INSTANCE_COUNT", 10000)
    start = time.perf_counter()
    local = sheet.sweep(inputs, outputs=["LOGIC_POWER"])
    alone = time.perf_counter() - start
    same = result["LOGIC_POWER"].tobytes() == local["LOGIC_POWER"].tobytes()
    print(f"{result['LOGIC_POWER'].size} points: cluster {spread:.2f} s, one process {alone:.2f} s, "
          f"same bits: {same}")
    client.close()
    return 0 if same else 1


if __name__ == "__main__":
    raise SystemExit(main())
