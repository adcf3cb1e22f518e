"""What a program may do to the module: it is told what is wrong, and nothing crashes."""

import gc
import os
import pathlib
import subprocess
import sys
import threading

import numpy
import pytest
from conftest import ROOT, SAMPLE

import tonewright

GOOD = numpy.zeros((4, 5, 3), "u1")


@pytest.mark.parametrize(
    "picture, error",
    [
        (numpy.zeros((0, 5, 3), "u1"), ValueError),
        (numpy.zeros((4, 0), "u1"), ValueError),
        (numpy.zeros((4, 5, 4), "u1"), ValueError),
        (numpy.zeros((4, 5, 2), "u1"), ValueError),
        (numpy.zeros(5, "u1"), ValueError),
        (numpy.zeros((), "u1"), ValueError),
        (numpy.zeros((1, 4, 5, 3), "u1"), ValueError),
        (numpy.zeros((4, 5, 3), "f4"), TypeError),
        (numpy.full((4, 5, 3), numpy.nan), TypeError),
        (numpy.zeros((4, 5, 3), "i2"), TypeError),
        (numpy.zeros((4, 5, 3), ">u2"), TypeError),
        (numpy.zeros((4, 5), bool), TypeError),
        (numpy.zeros((4, 5), complex), TypeError),
        (numpy.zeros((4, 5), object), TypeError),
        (numpy.zeros((4, 5, 3), "S1"), TypeError),
        ([[[1, 2, 3]]], TypeError),
        (None, TypeError),
        (7, TypeError),
        ("no\0name", ValueError),
        ("/no/such/file", tonewright.Error),
        ("/", tonewright.Error),
        ("/dev/zero", tonewright.Error),
        (numpy.broadcast_to(GOOD[:1, :1], (1 << 31, 1, 3)), ValueError),
        (numpy.broadcast_to(GOOD[:1, :1], (1 << 30, 1 << 30, 3)), tonewright.Error),
    ],
)
def test_what_is_no_picture_is_refused(calibration, picture, error):
    for work in (calibration.apply, tonewright.detect, tonewright.find_chart, tonewright.calibrate):
        with pytest.raises(error):
            work(picture)


@pytest.mark.parametrize(
    "arguments, error",
    [
        ({"illuminant": "D60"}, ValueError),
        ({"illuminant": "user"}, ValueError),
        ({"illuminant": "user", "values": numpy.zeros((24, 2)), "white": (1, 1, 1)}, ValueError),
        ({"illuminant": "user", "values": numpy.zeros((23, 3)), "white": (1, 1, 1)}, tonewright.Error),
        ({"white": (1, 1, 1)}, ValueError),
        ({"illuminant": "A", "reference": SAMPLE}, ValueError),
        ({"reference": numpy.zeros((9, 9, 3), "u1")}, tonewright.Error),
        ({"reference_roi": (0, 0, 1, 1)}, ValueError),
        ({"terms": 5}, ValueError),
        ({"terms": None}, TypeError),
        ({"fit": "best"}, ValueError),
        ({"gamma": 0}, ValueError),
        ({"gamma": float("nan")}, ValueError),
        ({"gamma": float("inf")}, ValueError),
        ({"gamma": 1e-60}, ValueError),
        ({"saturation": "some"}, ValueError),
        ({"saturation": (256, 0, 0)}, ValueError),
        ({"saturation": (0, -1, 0)}, ValueError),
        ({"roi": (5, 5, 5, 9)}, tonewright.Error),
        ({"roi": (-1, 0, 50, 50)}, tonewright.Error),
        ({"roi": (0, 0, 2**31, 5)}, TypeError),
        ({"roi": (0, 0, 5)}, TypeError),
        ({"chart": (0, 4)}, ValueError),
        ({"chart": (5, 4)}, tonewright.Error),
        ({"chart": (60000, 60000)}, tonewright.Error),
        ({"chart": (4, 6), "find": True}, ValueError),
        ({"layout": SAMPLE}, tonewright.Error),
        ({"layout": "x", "chart": (6, 4)}, ValueError),
        ({"bits": 10}, ValueError),
        ({"bits": 7}, ValueError),
    ],
)
def test_arguments_that_cannot_be_are_refused(sample, arguments, error):
    with pytest.raises(error):
        tonewright.calibrate(sample, **arguments)


def test_values_that_are_no_numbers_are_found_out(sample):
    values = numpy.full((24, 3), numpy.nan)
    made = tonewright.calibrate(sample, illuminant="user", values=values, white=(1, 1, 1))
    assert "singular" in [finding.code for finding in made.findings]


def test_a_place_for_the_result_must_fit(calibration, sample):
    frozen = sample.copy()
    frozen.flags.writeable = False
    for out, error in [
        (frozen, ValueError),
        (sample[:-1].copy(), ValueError),
        (tonewright.load_image(SAMPLE)[:-1], ValueError),
        (sample.astype("u2"), ValueError),
        (sample[..., 0].copy(), ValueError),
        (numpy.broadcast_to(sample[:1], sample.shape), ValueError),
        ("out.bmp", TypeError),
    ]:
        with pytest.raises(error):
            calibration.apply(sample, out=out)


def test_memory_that_nobody_may_write_to_is_only_read(tmp_path, calibration, sample):
    (tmp_path / "pixels").write_bytes(sample.base.tobytes())
    mapped = numpy.memmap(tmp_path / "pixels", "u1", "r", shape=sample.base.shape)[..., 2::-1]
    for find in (tonewright.detect, tonewright.find_chart):
        assert find(mapped).colors.tolist() == find(sample).colors.tolist()
    assert tonewright.calibrate(mapped, illuminant="D65").transform.tolist() == calibration.transform.tolist()
    numpy.testing.assert_array_equal(calibration.apply(mapped), calibration.apply(sample))
    tonewright.save_image(tmp_path / "x.tif", mapped)
    with pytest.raises(ValueError, match="read-only"):
        calibration.apply(mapped, out=mapped)


def test_files_are_written_whole_or_not_at_all(tmp_path, calibration, sample):
    for save in (
        lambda path: calibration.save_parameters(path / "x.twkp"),
        lambda path: calibration.save_coefficients(path / "x.ccor"),
        lambda path: calibration.report(path / "x.html"),
        lambda path: calibration.export(path / "x.cube"),
        lambda path: tonewright.save_image(path / "x.bmp", sample),
    ):
        with pytest.raises(tonewright.Error, match="missing/x"):
            save(tmp_path / "missing")
    for name in ("x", "x.jpg", ""):
        with pytest.raises(ValueError):
            tonewright.save_image(tmp_path / name, sample)
        with pytest.raises(ValueError):
            calibration.export(tmp_path / name)
    assert list(tmp_path.iterdir()) == []
    # A name that is no UTF-8 is a name like any other, also in the words of a refusal.
    odd = os.fsencode(tmp_path) + b"/\xff\xfe.bmp"
    tonewright.save_image(odd, sample)
    assert tonewright.load_image(pathlib.Path(os.fsdecode(odd))).shape == sample.shape
    with pytest.raises(tonewright.Error, match="\udcff"):
        tonewright.load_image(odd + b".bmp")


def test_broken_files_are_told(tmp_path):
    for seeds, load in (
        ("twkp", tonewright.load_parameters),
        ("ccor", tonewright.load_coefficients),
        ("png", tonewright.load_image),
        ("tiff", tonewright.load_image),
    ):
        for path in sorted((ROOT / "tests/fuzz/seeds" / seeds).iterdir()):
            whole = path.read_bytes()
            for content in (whole, whole[: len(whole) // 2], b"", whole[::-1]):
                (tmp_path / "x").write_bytes(content)
                try:
                    load(tmp_path / "x")
                except tonewright.Error as error:
                    assert str(error)


def test_threads_share_a_calibration_and_hear_of_their_own_failures(calibration, sample):
    expected = calibration.apply(sample)
    wrong = []

    def work(number):
        for _ in range(5):
            if not (calibration.apply(sample) == expected).all():
                wrong.append("pixels")
            try:
                tonewright.load_image(f"/missing-{number}")
                wrong.append("no failure")
            except tonewright.Error as error:
                others = [n for n in range(4) if n != number and f"/missing-{n}" in str(error)]
                if f"/missing-{number}" not in str(error) or others:
                    wrong.append(str(error))
            if tonewright.calibrate(sample, illuminant="D65").transform.tobytes() != calibration.transform.tobytes():
                wrong.append("transform")

    threads = [threading.Thread(target=work, args=(number,)) for number in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert wrong == []


def test_other_threads_run_while_the_library_works(calibration):
    picture = numpy.zeros((3000, 4000, 3), "u1")
    done = threading.Event()
    counted = [0]

    def count():
        while not done.is_set():
            counted[0] += 1

    thread = threading.Thread(target=count)
    thread.start()
    calibration.apply(picture)  # the memory is there from now on
    interval = sys.getswitchinterval()
    sys.setswitchinterval(1)  # the counter gives the lock up long after it could have counted
    try:
        before = counted[0]
        calibration.apply(picture)
        during = counted[0] - before
    finally:
        done.set()
        thread.join()
        sys.setswitchinterval(interval)
    assert during > 0


def test_parts_outlive_the_whole(sample):
    quality = tonewright.calibrate(sample).quality
    summary = quality.delivered.delta_e_2000
    patches = summary.patches
    mean = summary.mean
    del quality
    gc.collect()
    assert summary.mean == mean and patches.mean() == pytest.approx(mean)


def run(program, **environment):
    """A program of its own, with the sample's path as its argument."""
    done = subprocess.run(
        [sys.executable, "-B", "-c", program, SAMPLE], capture_output=True, timeout=60, env={**os.environ, **environment}
    )
    assert done.returncode == 0, done.stderr.decode()


def test_a_fork_works_as_its_parent_does(tmp_path):
    (tmp_path / "c.ini").write_text("[Configuration]\nCPU Thread Count = 0\n")  # a team of all processors
    program = """
import os, sys, tonewright
picture = tonewright.load_image(sys.argv[1]).repeat(4, 0).repeat(4, 1)
expected = tonewright.detect(picture).colors
child = os.fork()
if child == 0:
    os._exit(0 if (tonewright.detect(picture).colors == expected).all() else 1)
sys.exit(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))
"""
    run(program, ZELVAN_PROCESSING_CONFIG=str(tmp_path / "c.ini"))


def test_the_interpreter_ends_with_work_under_way():
    program = """
import threading, tonewright, sys
picture = tonewright.load_image(sys.argv[1])
calibration = tonewright.calibrate(picture)
def work():
    while True: calibration.apply(picture)
for _ in range(3): threading.Thread(target=work, daemon=True).start()
"""
    run(program)
