"""Devices: those of the tool, simulated."""

import threading

import numpy
import pytest
from conftest import ROOT, tool

import tonewright


@pytest.fixture(autouse=True)
def simulation(monkeypatch):
    monkeypatch.setenv("ZVN_SIMULATION", str(ROOT / "samples/simulation.ini"))


def test_devices_are_the_tools():
    expected = [(device["name"], device["kind"]) for device in tool("devices")]
    assert len(expected) == 2
    assert [(device.name, device.kind) for device in tonewright.devices()] == expected


def test_a_frame_is_the_chart_with_a_little_noise(sample):
    for name in (None, "Simulated_Grabber", "Simulated_Camera_Link"):
        frame = tonewright.grab(name)
        assert frame.shape == sample.shape and frame.dtype == sample.dtype
        assert 0.5 < numpy.abs(frame.astype(int) - sample).mean() < 4
    assert tonewright.calibrate(frame).chart.complete


def test_what_is_no_device_is_told(monkeypatch, tmp_path):
    with pytest.raises(tonewright.Error, match="there is no device Nothing, but\n  Simulated_Grabber\n"):
        tonewright.grab("Nothing")
    with pytest.raises(ValueError, match="device"):
        tonewright.grab("")
    with pytest.raises(TypeError):
        tonewright.grab(7)
    with pytest.raises(TypeError):
        tonewright.grab(config=7)
    (tmp_path / "none.ini").write_text("")
    monkeypatch.setenv("ZVN_SIMULATION", str(tmp_path / "none.ini"))
    assert tonewright.devices() == []
    with pytest.raises(tonewright.Error, match="no acquisition device found"):
        tonewright.grab()


def test_frames_are_averaged_and_corrected_as_by_the_tool(monkeypatch, tmp_path):
    # Red is x, green is y, blue the frame's number: 1 to 4 here, of which the mean is 2.5.
    (tmp_path / "sim.ini").write_text("[Camera]\nwidth = 24\nheight = 8\n")
    monkeypatch.setenv("ZVN_SIMULATION", str(tmp_path / "sim.ini"))
    assert tonewright.grab(average=4)[3, 20].tolist() == [20, 3, 2]
    dark = numpy.full((8, 24, 3), (4, 0, 1), "u1")
    flat = numpy.full((8, 24, 3), 100, "u1")
    flat[:, :12, 0], flat[:, 12:, 0] = 50, 150
    corrected = tonewright.grab(dark=dark, flat=flat)
    assert corrected[3, 8].tolist() == [8, 3, 0]  # (8 - 4) x 100 / 50
    assert corrected[3, 22].tolist() == [12, 3, 0]  # (22 - 4) x 100 / 150
    for name, picture in {"dark": dark, "flat": flat}.items():
        tonewright.save_image(tmp_path / f"{name}.bmp", picture)
    files = tmp_path / "dark.bmp", tmp_path / "flat.bmp"
    tool("grab", tmp_path / "t.zvk", "--average", 3, "--dark", files[0], "--flat", files[1])
    assert (tonewright.grab(None, None, 3, *files) == tonewright.load_image(tmp_path / "t.zvk")).all()
    with pytest.raises(tonewright.Error, match="the dark frame is FormatRgb of 24 x 7, the frames are FormatRgb of 24 x 8"):
        tonewright.grab(dark=dark[1:])
    for arguments in ({"average": 0}, {"average": 10_001}, {"dark": dark, "bits": 10}, {"flat": flat[..., :2]}):
        with pytest.raises(ValueError):
            tonewright.grab(**arguments)


def test_coefficients_go_to_a_device_and_back(monkeypatch, tmp_path, calibration):
    monkeypatch.chdir(tmp_path)
    (tmp_path / "sim.ini").write_text("[Camera]\nfiles = .\n[Grabber]\nkind = frame grabber\n")
    monkeypatch.setenv("ZVN_SIMULATION", str(tmp_path / "sim.ini"))
    (tmp_path / "ColorCorrectionMatrix").write_bytes(b"factory")
    calibration.save_coefficients("c.ccor")
    new = (tmp_path / "c.ccor").read_bytes()
    held = tmp_path / "ColorCorrectionMatrix"
    refused = [
        ({"backup": "c.ccor"}, tonewright.Error, "is to be sent, so it cannot take the backup"),
        ({"way": "features"}, tonewright.Error, "The device has no color transformation features"),
        ({"way": "filter"}, ValueError, "way"),
        ({"device": ""}, ValueError, "device"),
        ({"device": "Other"}, tonewright.Error, "there is no device Other"),
        ({"path": "sim.ini"}, tonewright.Error, "not compatible"),
    ]
    for arguments, error, text in refused:
        with pytest.raises(error, match=text):
            tonewright.send(**{"path": "c.ccor", **arguments})
        assert held.read_bytes() == b"factory" and (tmp_path / "c.ccor").read_bytes() == new
    sent = tonewright.send("c.ccor", backup="before.ccor")
    assert (sent.device, sent.kind, sent.way, sent.verified) == ("Camera", "other", "file", True)
    assert (held.read_bytes(), (tmp_path / "before.ccor").read_bytes()) == (new, b"factory")
    tonewright.receive("back.ccor")
    assert (tmp_path / "back.ccor").read_bytes() == new
    held.unlink()
    with pytest.raises(tonewright.Error, match="Cannot read file from device"):
        tonewright.receive("back.ccor")
    assert (tmp_path / "back.ccor").read_bytes() == new
    assert tonewright.send("c.ccor", "Grabber").way == "filter"


def test_threads_take_turns():
    frames = []
    threads = [threading.Thread(target=lambda: frames.append(tonewright.grab())) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(frames) == 4
