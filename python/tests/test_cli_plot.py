# `prsm sweep --plot` end to end: a picture through gnuplot, and without gnuplot a script that draws
# the same picture later. Needs the command (PRSM_HOST, set by ctest) and gnuplot.
import os
import shutil
import subprocess

import pytest

HOST = os.environ.get("PRSM_HOST")
pytestmark = [pytest.mark.skipif(not HOST, reason="PRSM_HOST names the prsm command"),
              pytest.mark.skipif(not shutil.which("gnuplot"), reason="gnuplot is not installed")]

ARGS = ["sweep", "TalvexAie", "CORE_LOAD=0:1:0.25", "KERNEL_TYPE=Int8,FFT", "AIE_CORES=100",
        "--outputs", "TOTAL_POWER", "--csv"]


def run(args, **env):
    return subprocess.run([HOST, *args], env=dict(os.environ, **env), capture_output=True, text=True, timeout=120)


def test_plot_draws_the_picture_and_without_gnuplot_leaves_a_script_that_does(tmp_path):
    picture = tmp_path / "aie.svg"
    drawn = run(ARGS + ["--plot", str(picture)])
    assert drawn.returncode == 0, drawn.stderr
    assert drawn.stdout.count("\n") == 1 + 5 * 2  # the header and one row per point
    svg = picture.read_text()
    assert svg.startswith("<?xml") and "TOTAL_POWER against CORE_LOAD for each KERNEL_TYPE" in svg
    assert "held fixed: AIE_CORES=100" in svg and "KERNEL_TYPE=FFT" in svg

    later = tmp_path / "later.png"
    missing = run(ARGS + ["--plot", str(later)], PRSM_GNUPLOT="/nonexistent/gnuplot")
    assert missing.returncode == 0
    assert missing.stdout == drawn.stdout
    assert "gnuplot was not found" in missing.stderr and not later.exists()
    script = tmp_path / "later.gp"
    assert f"`gnuplot {script}` to draw {later}" in missing.stderr
    subprocess.run(["gnuplot", str(script)], check=True, timeout=60)
    assert later.read_bytes().startswith(b"\x89PNG")
