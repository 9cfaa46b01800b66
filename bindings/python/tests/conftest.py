"""Shared fixtures of the Python tests: where the examples are, and the
velqua program to compare rows with (its tests are skipped without it)."""

import os
import pathlib

import pytest

SOURCE = pathlib.Path(os.environ.get("VELQUA_SOURCE_DIR", pathlib.Path(__file__).parents[3]))
EXAMPLES = SOURCE / "examples"


@pytest.fixture
def program():
    path = os.environ.get("VELQUA_PROGRAM")
    if not path:
        pytest.skip("the velqua program was not built")
    return path


@pytest.fixture
def kx_tda():
    import velqua

    return velqua.Config.load(EXAMPLES / "kx-tda" / "kx-tda.cfg")
