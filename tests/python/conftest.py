"""What the module's tests share: the tool built beside it, and pictures."""

import json
import os
import pathlib
import subprocess

import numpy
import pytest

import tonewright

ROOT = pathlib.Path(__file__).parents[2]
SAMPLE = ROOT / "samples/Tonewright/Images/chart.bmp"
HEAD_BYTES = 64  # of a native image file


@pytest.fixture(scope="session")
def sample():
    return tonewright.load_image(SAMPLE)


@pytest.fixture(scope="session")
def calibration(sample):
    return tonewright.calibrate(sample, illuminant="D65")


def tool(*arguments, status=0):
    """Runs the batch tool. Returns its document."""
    run = subprocess.run([os.environ["TONEWRIGHT_TOOL"], *map(str, arguments)], capture_output=True, timeout=60)
    assert run.returncode == status, run.stderr.decode()
    return json.loads(run.stdout) if run.stdout else None


def chart_picture(scale, dtype):
    """A chart of 24 patches that all differ, drawn upright; the white one is the 19th, the brightest."""
    picture = numpy.full((210, 310, 3), 10 * scale, dtype)
    for i in range(24):
        row, column = divmod(i, 6)
        color = (240, 241, 242) if i == 18 else (100 + 3 * i, 110 + i * 7 % 90, 120 + i * 5 % 80)
        y, x = 10 + 50 * row, 10 + 50 * column
        picture[y : y + 40, x : x + 40] = numpy.array(color) * scale
    return picture


def native_pixels(path):
    """The bytes of a native image file behind its head."""
    return path.read_bytes()[HEAD_BYTES:]
