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


def test_threads_take_turns():
    frames = []
    threads = [threading.Thread(target=lambda: frames.append(tonewright.grab())) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(frames) == 4
