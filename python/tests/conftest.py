# The package under test is the one on PYTHONPATH (ctest points it at the build tree's python/ folder).
import os
import subprocess
import sys

import pytest


@pytest.fixture
def run_python():
    """Runs a snippet in a fresh interpreter with extra environment; returns the completed process."""

    def run(code, **env):
        environment = dict(os.environ, **env)
        return subprocess.run([sys.executable, "-c", code], env=environment, capture_output=True, text=True,
                              timeout=120)

    return run
