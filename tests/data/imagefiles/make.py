"""Makes the image files of this folder with other tools: ImageMagick 6 (convert), libtiff's tools and this script.

Run it in an empty folder. Beside each file <name> it leaves <name>.ppm, the pixels as ImageMagick reads them back (for
files made here by hand: as they were put in).
"""
import os
import random
import struct
import subprocess

WIDTH, HEIGHT = 13, 7


def run(*command):
    subprocess.run(command, check=True)


def source(path, depth):
    top = 2 ** depth - 1
    with open(path, "wb") as file:
        file.write(b"P6 %d %d %d\n" % (WIDTH, HEIGHT, top))
        for y in range(HEIGHT):
            for x in range(WIDTH):
                for value in (x * top // 12, y * top // 6, (x * 31 + y * 57) * top // 800 % (top + 1)):
                    file.write(value.to_bytes(2 if depth > 8 else 1, "big"))


def expected(path, depth=8):
    run("convert", path, "-alpha", "off", "-colorspace", "sRGB", "-type", "TrueColor", "-depth", str(depth),
        path + ".ppm")


def tiffs():
    run("convert", "source8.ppm", "-compress", "none", "strips.tif")
    for name, options in {"big_endian": ["-B", "-c", "none"], "lzw": ["-c", "lzw:2", "-r", "3"], "zip": ["-c", "zip"],
                          "packbits": ["-c", "packbits"], "separate_lzw": ["-p", "separate", "-c", "lzw", "-r", "7"],
                          "jpeg_ycbcr": ["-c", "jpeg:95", "-r", "8"]}.items():
        run("tiffcp", *options, "strips.tif", name + ".tif")
        expected(name + ".tif")
    expected("strips.tif")
    run("convert", "source16.ppm", "-depth", "16", "-compress", "none", "rgb16.tif")
    run("convert", "source16.ppm", "-depth", "16", "-endian", "MSB", "-interlace", "plane", "-compress", "none",
        "rgb16_separate_big_endian.tif")
    for name in ("rgb16.tif", "rgb16_separate_big_endian.tif"):
        expected(name, 16)
    gray = ["source8.ppm", "-colorspace", "Gray", "-type", "Grayscale"]
    for depth in (2, 4, 8, 16):
        name = "gray%d.tif" % depth
        run("convert", *gray, "-depth", str(depth), "-compress", "none", name)
        expected(name, max(depth, 8))
    run("convert", *gray, "-monochrome", "-compress", "Group4", "gray1_group4.tif")
    run("convert", *gray, "-monochrome", "-depth", "1", "-compress", "none", "-define",
        "quantum:polarity=min-is-white", "gray1_min_is_white.tif")
    run("convert", "source8.ppm", "-alpha", "set", "-channel", "A", "-evaluate", "set", "50%", "+channel",
        "-compress", "none", "rgba8.tif")
    run("convert", "source8.ppm", "-type", "Palette", "-compress", "none", "palette8.tif")
    run("convert", "source8.ppm", "-colors", "13", "-type", "Palette", "-depth", "4", "-compress", "LZW",
        "palette4.tif")
    for name in ("gray1_group4.tif", "gray1_min_is_white.tif", "rgba8.tif", "palette8.tif", "palette4.tif"):
        expected(name)
    run("convert", "source8.ppm", "-compress", "none", "-define", "tiff:tile-geometry=16x16", "tiled.tif")


def pngs():
    kinds = {"gray": (0, (1, 2, 4, 8, 16)), "rgb": (2, (8, 16)), "palette": (3, (1, 2, 4, 8)),
             "gray_alpha": (4, (8, 16)), "rgb_alpha": (6, (8, 16))}
    for kind, (color, depths) in kinds.items():
        for depth in depths:
            change = ["-colorspace", "Gray"] if color in (0, 4) else []
            if color == 3:
                change = ["-colors", str(min(2 ** depth, 91)), "-type", "Palette"]
            elif color == 0 and depth < 8:
                change += ["-posterize", str(2 ** depth)]
            if color in (4, 6):
                change += ["-alpha", "set", "-channel", "A", "-evaluate", "set", "50%", "+channel"]
            interlaced = "%s%d" % (kind, depth) in ("gray1", "gray16", "rgb8", "palette4", "rgb_alpha16")
            for interlace in ("None", "PNG") if interlaced else ("None",):
                name = "%s%d%s.png" % (kind, depth, "_interlaced" if interlace == "PNG" else "")
                run("convert", "source16.ppm", *change, "-strip", "-interlace", interlace,
                    "-define", "png:color-type=%d" % color, "-define", "png:bit-depth=%d" % depth, name)
                expected(name, 16 if depth == 16 else 8)


def bmps():
    run("convert", "source8.ppm", "BMP3:rgb24.bmp")
    run("convert", "source8.ppm", "-alpha", "set", "-channel", "A", "-evaluate", "set", "50%", "+channel",
        "rgba32_long_head.bmp")
    run("convert", "source8.ppm", "-type", "Palette", "-compress", "none", "BMP3:palette8.bmp")
    run("convert", "source8.ppm", "-colors", "13", "-type", "Palette", "-compress", "none", "BMP3:palette4.bmp")
    run("convert", "source8.ppm", "-colors", "13", "-type", "Palette", "-compress", "RLE", "BMP3:rle8.bmp")
    run("convert", "source8.ppm", "-monochrome", "BMP3:mono1.bmp")
    for name in ("rgb24", "rgba32_long_head", "palette8", "palette4", "rle8", "mono1"):
        expected(name + ".bmp")
    gray8()
    rle4()


def write_bmp(path, bits, compression, palette, data):
    offset = 54 + len(palette)
    with open(path, "wb") as file:
        file.write(struct.pack("<2sIHHIIiiHHIIiiII", b"BM", offset + len(data), 0, 0, offset, 40, WIDTH, HEIGHT, 1,
                               bits, compression, len(data), 2835, 2835, len(palette) // 4, 0) + palette + data)
    expected(path)


def gray8():
    """ImageMagick writes gray as 24 bits."""
    data = b"".join(bytes(17 * x + 5 * y for x in range(WIDTH)) + b"\0" * 3 for y in range(HEIGHT))
    write_bmp("gray8.bmp", 8, 0, b"".join(bytes([i, i, i, 0]) for i in range(256)), data)


def rle4():
    """ImageMagick writes no RLE4, but reads it."""
    random.seed(4)
    colors = [(16 * i, 255 - 16 * i, 40 + 10 * i) for i in range(16)]
    rows = [[random.choice((x // 4, 15 - y)) for x in range(WIDTH)] for y in range(HEIGHT)]
    rows[2] = [5] * WIDTH
    data = bytearray()
    for row in reversed(rows):
        if len(set(row)) == 1:
            data += bytes([WIDTH, row[0] * 17])
        else:  # ten plain values, then pairs of two
            data += bytes([0, 10]) + bytes(row[i] << 4 | row[i + 1] for i in range(0, 10, 2)) + b"\0"
            data += bytes([2, row[10] << 4 | row[11], 1, row[12] << 4])
        data += b"\0\0"
    data[-1] = 1
    palette = b"".join(bytes([b, g, r, 0]) for r, g, b in colors)
    write_bmp("rle4.bmp", 4, 2, palette, bytes(data))


source("source8.ppm", 8)
source("source16.ppm", 16)
tiffs()
pngs()
bmps()
os.remove("source8.ppm")
os.remove("source16.ppm")
