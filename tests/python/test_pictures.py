"""Pictures as arrays: their order, their memory, and what is saved of them."""

import re

import numpy
import pytest
from conftest import ROOT, native_pixels, tool

import tonewright

FILES = ROOT / "tests/data/imagefiles"


def read_ppm(path):
    raw = path.read_bytes()
    head = re.match(rb"P6\s(\d+)\s(\d+)\s(\d+)\s", raw)
    width, height, most = map(int, head.groups())
    kind = "u1" if most < 256 else ">u2"
    return numpy.frombuffer(raw, kind, offset=head.end()).reshape(height, width, 3)


@pytest.mark.parametrize(
    "name", ["rgb24.bmp", "rgb8.png", "rgb16.png", "gray8.png", "gray16.png", "palette4.png", "lzw.tif", "gray8.tif"]
)
def test_files_have_the_pixels_that_another_reader_finds(name):
    expected = read_ppm(FILES / f"{name}.ppm")
    picture = tonewright.load_image(FILES / name)
    assert picture.dtype == expected.dtype.newbyteorder("=")
    if picture.ndim == 2:
        picture = picture[..., numpy.newaxis]
    numpy.testing.assert_array_equal(numpy.broadcast_to(picture, expected.shape), expected)


def test_an_array_looks_at_the_librarys_own_pixels(sample):
    height, width, _ = sample.shape
    assert sample.strides == (4 * width, 4, -1) and sample.flags.writeable
    words = sample.base
    assert words.shape == (height, width, 4)
    picture = tonewright.load_image(FILES / "rgb8.png")
    picture[2, 3] = 1, 2, 3
    assert picture.base[2, 3, :3].tolist() == [3, 2, 1]


def layouts(picture):
    """The same picture as arrays that lie differently in memory."""
    height, width, channels = picture.shape
    wide = numpy.zeros((2 * height, 3 * width, channels), picture.dtype)
    wide[::2, ::3] = picture
    raw = numpy.zeros(picture.nbytes + 1, "u1")
    odd = raw[1:].view(picture.dtype).reshape(picture.shape)
    odd[...] = picture
    frozen = picture.copy()
    frozen.flags.writeable = False
    bgrx = numpy.zeros((height, width, 4), picture.dtype)
    bgrx[..., 2::-1] = picture
    cut = numpy.zeros((height + 2, width + 2, 4), picture.dtype)[1:-1, 1:-1, 2::-1]
    cut[...] = picture
    return {
        "packed": picture.copy(),
        "column by column": numpy.asfortranarray(picture),
        "upside down": picture[::-1].copy()[::-1],
        "from right to left": picture[:, ::-1].copy()[:, ::-1],
        "blue first": picture[..., ::-1].copy()[..., ::-1],
        "every other row and third pixel": wide[::2, ::3],
        "at an odd address": odd,
        "read-only": frozen,
        "planes": numpy.moveaxis(numpy.moveaxis(picture, 2, 0).copy(), 0, 2),
        "another's four words": bgrx[..., 2::-1],
        "cut from a larger one": cut,
        # Whose last word would lie behind its memory.
        "four words less one": numpy.lib.stride_tricks.as_strided(
            bgrx.ravel()[: 4 * height * width - 1].copy()[2:], picture.shape, bgrx[..., 2::-1].strides
        ),
    }


@pytest.mark.parametrize("dtype", ["u1", "u2"])
def test_every_layout_is_the_same_picture(tmp_path, dtype):
    picture = numpy.arange(5 * 7 * 3).reshape(5, 7, 3).astype(dtype) * (2 if dtype == "u1" else 600)
    for name, array in layouts(picture).items():
        if name == "four words less one":
            array[...] = picture
        numpy.testing.assert_array_equal(array, picture, name)
        tonewright.save_image(tmp_path / "i.zvk", array)
        words = numpy.frombuffer(native_pixels(tmp_path / "i.zvk"), dtype).reshape(5, 7, 4)
        numpy.testing.assert_array_equal(words[..., 2::-1], picture, name)


def test_gray_keeps_its_kind(tmp_path):
    for dtype in ["u1", "u2", "i2", "i4", "f4", "f8"]:
        wide = numpy.arange(60).reshape(6, 10).astype(dtype)
        for picture in (wide, wide[:, ::2], wide[::-1], wide.T):
            tonewright.save_image(tmp_path / "g.zvk", picture)
            back = tonewright.load_image(tmp_path / "g.zvk")
            assert back.dtype == picture.dtype
            numpy.testing.assert_array_equal(back, picture)
    bits = tonewright.load_image(FILES / "gray1_group4.tif")  # in whole bytes
    assert bits.dtype == bool and bits.shape == (7, 16)
    numpy.testing.assert_array_equal(bits[:, :13], read_ppm(FILES / "gray1_group4.tif.ppm")[..., 0] > 0)


def test_ten_bits_are_told_and_held(tmp_path):
    picture = numpy.array([[[0, 1, 1023], [512, 1023, 2]]], "u2")
    tonewright.save_image(tmp_path / "t.zvk", picture, bits=10)
    assert tool("info", tmp_path / "t.zvk")[0]["format"] == "FormatRgb10"
    packed = numpy.frombuffer(native_pixels(tmp_path / "t.zvk"), "u4").tolist()
    assert packed == [0 << 20 | 1 << 10 | 1023, 512 << 20 | 1023 << 10 | 2]
    numpy.testing.assert_array_equal(tonewright.load_image(tmp_path / "t.zvk"), picture)
    with pytest.raises(ValueError, match="above 1023"):
        tonewright.save_image(tmp_path / "t.zvk", picture + numpy.uint16(1), bits=10)
    numpy.testing.assert_array_equal(tonewright.load_image(tmp_path / "t.zvk"), picture)


def test_an_array_outlives_what_gave_it(tmp_path):
    for _ in range(20):
        part = tonewright.load_image(FILES / "rgb8.png")[1:3, 2:5]
        total = int(part.sum())
        tonewright.load_image(FILES / "rgb24.bmp")
        assert int(part.sum()) == total
