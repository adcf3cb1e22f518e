"""Calibrations equal the batch tool's, bit for bit."""

import re

import numpy
import pytest
from conftest import ROOT, SAMPLE, chart_picture, native_pixels, tool

import tonewright


def differences(summary):
    return {
        "mean": summary.mean,
        "median": summary.median,
        "max": summary.max,
        "patches": summary.patches.tolist(),
    }


def both(value):
    return {"deltaE00": differences(value.delta_e_2000), "deltaE76": differences(value.delta_e_76)}


def assert_same_chart(chart, document):
    assert chart.colors.tolist() == document["colors"]
    assert list(chart.roi) == document["roi"] and list(chart.size) == document["chart"]
    for name, values in {
        "center": chart.centers,
        "corners": chart.corners,
        "mean": chart.mean,
        "deviation": chart.deviation,
        "clipped": chart.clipped,
    }.items():
        assert values.tolist() == [patch[name] for patch in document["patches"]], name
    told = [(f.code, f.severity, f.text, f.patches) for f in chart.findings]
    assert told == [tuple(f.values()) for f in document["findings"]]


def test_the_grid_is_the_tools(sample):
    document = tool("detect", SAMPLE)
    chart = tonewright.detect(sample)
    assert_same_chart(chart, document)
    assert (chart.orientation, chart.complete, chart.saturated) == ("normal", True, False)
    assert chart.rotation is None
    assert_same_chart(tonewright.detect(SAMPLE, roi=(0, 0, 608, 423)), tool("detect", SAMPLE, "--roi", "0,0,608,423"))


def test_a_turned_chart_is_found(sample, tmp_path):
    turned = numpy.rot90(sample)
    tonewright.save_image(tmp_path / "t.zvk", turned)
    document = tool("detect", tmp_path / "t.zvk", "--find")
    chart = tonewright.find_chart(turned)
    assert_same_chart(chart, document)
    assert (chart.rotation, chart.confidence) == (document["rotation"], document["confidence"])
    assert chart.mirrored is False and chart.rotation == pytest.approx(-90, abs=1)
    with pytest.raises(tonewright.ChartNotFound) as failure:
        tonewright.find_chart(turned[:60])
    tonewright.save_image(tmp_path / "t.zvk", turned[:60])
    reason = tool("detect", tmp_path / "t.zvk", "--find", status=1)["reason"]
    assert (failure.value.reason, failure.value.seen) == (reason["code"], reason["seen"])


VALUES = numpy.stack([0.2 + 0.01 * numpy.arange(24), 0.3 + 0.02 * numpy.arange(24) % 7, numpy.full(24, 0.1)], 1)

OPTIONS = {
    "as it starts": ({}, []),
    "D65": ({"illuminant": "D65", "terms": 7, "gamma": 0.6}, ["--illuminant", "D65", "--terms", 7, "--gamma", 0.6]),
    "auto": ({"illuminant": "D50", "terms": "auto"}, ["--illuminant", "D50", "--terms", "auto"]),
    "perceptual": ({"fit": "perceptual", "terms": 10}, ["--fit", "perceptual", "--terms", 10]),
    "saturation": ({"saturation": (250, 240, 230)}, ["--saturation", "250,240,230"]),
    "found": ({"find": True, "saturation": "none"}, ["--find", "--saturation", "none"]),
    "user": (
        {"illuminant": "user", "values": VALUES, "white": (0.9, 0.88, 0.7)},
        ["--illuminant", "user", "--values", "values.csv", "--white", "0.9,0.88,0.7"],
    ),
    "relative": ({"reference": SAMPLE, "reference_roi": (0, 0, 608, 423)}, ["--reference", SAMPLE, "--reference-roi", "0,0,608,423"]),
}


def without_dates(path):
    """The bytes of an export without what tells when it was made."""
    content = bytearray(path.read_bytes())
    if path.suffix == ".icc":
        content[24:36] = bytes(12)
    return re.sub(rb"\d{4}-\d\d-\d\d \d\d:\d\d(:\d\d)?", b"", bytes(content))


@pytest.mark.parametrize("arguments, options", OPTIONS.values(), ids=OPTIONS.keys())
def test_calibrations_equal_the_tools(tmp_path, monkeypatch, arguments, options):
    monkeypatch.chdir(tmp_path)
    numpy.savetxt("values.csv", VALUES, "%.9g", ",")
    exports = ["x.cube", "x.icc", "x.ti3", "x.csv"]
    files = ["--coefficients", "t.ccor", "--corrected", "t.zvk", "--report", "t.html"]
    is_whole = arguments.get("fit") != "perceptual"
    if is_whole:
        files += ["--parameters", "t.twkp"]
    document = tool("calibrate", SAMPLE, *options, *files, *[w for e in exports for w in ("--export", e)])
    expected = [without_dates(tmp_path / e) for e in [*exports, "t.html"]]

    made = tonewright.calibrate(SAMPLE, **arguments)
    assert_same_chart(made.chart, {**document, "findings": tool("detect", SAMPLE, *options[:1] * ("find" in arguments))["findings"]})
    assert [f.text for f in made.findings] == [f["text"] for f in document["findings"]]
    assert made.transform.tolist() == numpy.array(document["transform"], "f4").tolist()
    assert (made.terms, list(made.saturation)) == (document["terms"], document["saturation"])
    assert made.illuminant == document["illuminant"]
    assert numpy.float32(made.gamma) == numpy.float32(document["gamma"])
    quality = document["quality"]
    assert both(made.quality.fitted) == {k: quality[k] for k in ("deltaE00", "deltaE76")}
    for name in ("delivered", "picture", "unseen", "before"):
        assert both(getattr(made.quality, name)) == quality[name], name
    assert [(c.terms, c.fitted, c.delivered, c.unseen) for c in made.quality.candidates] == [
        tuple(c.values()) for c in quality["candidates"]
    ]
    assert made.quality.white == quality["white"]
    assert made.quality.noise_before.tolist() == [n["before"] for n in quality["noise"]]
    assert made.quality.noise_after.tolist() == [n["after"] for n in quality["noise"]]

    made.save_coefficients("p.ccor")
    assert (tmp_path / "p.ccor").read_bytes() == (tmp_path / "t.ccor").read_bytes()
    if is_whole:
        made.save_parameters("p.twkp")
        assert (tmp_path / "p.twkp").read_bytes() == (tmp_path / "t.twkp").read_bytes()
    else:
        with pytest.raises(tonewright.Error, match="perceptual"):
            made.save_parameters("p.twkp")
    tonewright.save_image("p.zvk", made.apply(SAMPLE))
    assert (tmp_path / "p.zvk").read_bytes() == (tmp_path / "t.zvk").read_bytes()
    for name in exports:
        made.export(name)
    made.report("t.html")
    assert [without_dates(tmp_path / e) for e in [*exports, "t.html"]] == expected


VERIFIED = {
    "as calibrated": ("t.twkp", {}, []),
    "under another light": ("t.twkp", {"illuminant": "F2", "find": True}, ["--illuminant", "F2", "--find"]),
    "user": (
        "t.twkp",
        {"illuminant": "user", "values": VALUES, "white": (0.9, 0.88, 0.7)},
        ["--illuminant", "user", "--values", "values.csv", "--white", "0.9,0.88,0.7"],
    ),
    "against a picture": ("t.ccor", {"reference": SAMPLE}, ["--reference", SAMPLE]),
    "coefficients": ("t.ccor", {}, []),
}


@pytest.mark.parametrize("file, arguments, options", VERIFIED.values(), ids=VERIFIED.keys())
def test_verifying_equals_the_tools(tmp_path, monkeypatch, file, arguments, options):
    monkeypatch.chdir(tmp_path)
    numpy.savetxt("values.csv", VALUES, "%.9g", ",")
    tool("calibrate", SAMPLE, "--illuminant", "D50", "--terms", 7, "--coefficients", "t.ccor", "--parameters", "t.twkp")
    other = SAMPLE.parent / "chart-coded.bmp"
    document = tool("verify", other, "--parameters" if file == "t.twkp" else "--coefficients", file, *options)
    load = tonewright.load_parameters if file == "t.twkp" else tonewright.load_coefficients
    verified = load(file).verify(other, **arguments)
    for name in ("delivered", "picture", "before"):
        assert both(getattr(verified, name)) == document[name], name
    assert [f.text for f in verified.findings] == [f["text"] for f in document["findings"]]
    assert verified.chart.colors.tolist() == document["colors"]


def test_verifying_on_its_own_picture_gives_its_own_figures(sample):
    made = tonewright.calibrate(sample, illuminant="D65", fit="perceptual")
    assert both(made.verify(sample).delivered) == both(made.quality.delivered)
    ten_bits = chart_picture(4, "u2")
    deep = tonewright.calibrate(ten_bits, bits=10)
    assert both(deep.verify(ten_bits).delivered) == both(deep.quality.delivered)
    with pytest.raises(tonewright.Error, match="another depth"):
        made.verify(ten_bits)
    with pytest.raises(tonewright.Error, match="no patch"):
        made.verify(sample[:9, :9])
    with pytest.raises(ValueError, match="one of them"):
        made.verify(sample, illuminant="A", reference=sample)


@pytest.mark.parametrize("bits, dtype, scale", [(8, "u1", 1), (10, "u2", 4), (16, "u2", 256)])
def test_every_depth_is_corrected_as_by_the_tool(tmp_path, bits, dtype, scale):
    picture = chart_picture(scale, dtype)
    tonewright.save_image(tmp_path / "c.zvk", picture, bits=bits)
    tool("calibrate", tmp_path / "c.zvk", "--parameters", tmp_path / "c.twkp", "--corrected", tmp_path / "t.zvk")
    made = tonewright.calibrate(picture, bits=bits)
    made.save_parameters(tmp_path / "p.twkp")
    assert (tmp_path / "p.twkp").read_bytes() == (tmp_path / "c.twkp").read_bytes()
    expected = tonewright.load_image(tmp_path / "t.zvk")
    for one in (made, tonewright.load_parameters(tmp_path / "c.twkp")):
        corrected = one.apply(picture)
        assert corrected.dtype == picture.dtype
        numpy.testing.assert_array_equal(corrected, expected)
    with pytest.raises(tonewright.Error):
        made.apply(chart_picture(1, "u2" if bits == 8 else "u1"))


def test_coefficients_serve_as_in_the_tool(tmp_path, calibration, sample):
    calibration.save_coefficients(tmp_path / "c.ccor")
    tool("apply", SAMPLE, "--coefficients", tmp_path / "c.ccor", "--gamma", "0.5", "--output", tmp_path / "t.zvk")
    loaded = tonewright.load_coefficients(tmp_path / "c.ccor", gamma=0.5)
    numpy.testing.assert_array_equal(loaded.apply(sample), tonewright.load_image(tmp_path / "t.zvk"))
    assert loaded.transform.tobytes() == calibration.transform.tobytes()
    assert (loaded.findings, loaded.illuminant) == ([], None)
    assert loaded.saturation == (255, 255, 255)
    loaded.export(tmp_path / "c.cube")
    for refused in (
        lambda: loaded.quality,
        lambda: loaded.chart,
        lambda: loaded.save_parameters(tmp_path / "c.twkp"),
        lambda: loaded.report(tmp_path / "c.html"),
        lambda: loaded.export(tmp_path / "c.ti3"),
        lambda: loaded.export(tmp_path / "c.csv"),
    ):
        with pytest.raises(tonewright.Error):
            refused()
    assert sorted(path.name for path in tmp_path.iterdir()) == ["c.ccor", "c.cube", "t.zvk"]


def test_the_result_goes_where_it_is_wanted(calibration, sample):
    expected = calibration.apply(sample).copy()
    packed, planes = numpy.empty_like(expected), numpy.empty((3, *expected.shape[:2]), "u1")
    for out in (packed, numpy.moveaxis(planes, 0, 2), packed[::-1], tonewright.load_image(SAMPLE)):
        assert calibration.apply(sample, out=out) is out
        numpy.testing.assert_array_equal(out, expected)
    for itself in (tonewright.load_image(SAMPLE), sample.copy()):
        calibration.apply(itself, out=itself)
        numpy.testing.assert_array_equal(itself, expected)
    # A row further down in the same memory.
    for memory in (tonewright.load_image(SAMPLE), numpy.ascontiguousarray(sample)):
        calibration.apply(memory[:-1], out=memory[1:])
        numpy.testing.assert_array_equal(memory[1:], expected[:-1])


def test_differences_are_those_of_the_published_pairs():
    # Sharma, Wu and Dalal, 2005: pairs 1, 7, 14, 20 and 34.
    pairs = [
        ((50, 2.6772, -79.7751), (50, 0, -82.7485), 2.0425),
        ((50, 0, 0), (50, -1, 2), 2.3669),
        ((50, -0.001, 2.49), (50, 0.0011, -2.49), 4.7461),
        ((50, 2.5, 0), (50, 3.2592, 0.335), 1.0),
        ((2.0776, 0.0795, -1.135), (0.9033, -0.0636, -0.5514), 0.9082),
    ]
    first, second, expected = (numpy.array(column) for column in zip(*pairs))
    numpy.testing.assert_allclose(tonewright.delta_e_2000(first, second), expected, atol=5e-5)
    assert tonewright.delta_e_2000(pairs[0][0], pairs[0][1]) == pytest.approx(2.0425, abs=5e-5)
    table = tonewright.delta_e_2000(first[:, None], second[None])
    assert table.shape == (5, 5)
    numpy.testing.assert_allclose(numpy.diag(table), expected, atol=5e-5)
    assert numpy.isnan(tonewright.delta_e_2000([numpy.nan, 0, 0], [1, 2, 3]))


@pytest.mark.parametrize("document", ["README.md", "docs/python.md"])
def test_the_documents_lines_run_as_they_stand(tmp_path, monkeypatch, document):
    monkeypatch.chdir(tmp_path)
    for name in ("chart.bmp", "frame.bmp"):
        (tmp_path / name).write_bytes(SAMPLE.read_bytes())
    program = re.search(r"```python\n(.*?)```", (ROOT / document).read_text(), re.DOTALL).group(1)
    assert len(program.splitlines()) <= 12
    exec(program, {})
    assert tonewright.load_coefficients("camera.ccor").terms == 4
    assert tonewright.load_image("corrected.bmp").shape == tonewright.load_image("frame.bmp").shape
