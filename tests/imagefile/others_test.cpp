#include <algorithm>
#include <array>
#include <fstream>
#include <ostream>
#include <vector>

#include "foundation/nur_image.h"
#include "tests/imagefile/file_support.h"
#include "tests/support/places.h"

using D = CTivData;

namespace {

// A file of tests/data/imagefiles, the format it must load as, and what its gray values are multiplied with in other
// tools, which bring few bits to the full scale.
struct OthersFile {
    const char* name;
    D::Format format;
    int grayScale = 1;
};
std::ostream& operator<<(std::ostream& stream, const OthersFile& file) { return stream << file.name; }

constexpr OthersFile kFiles[] = {{"strips.tif", D::FormatRgb},
                                 {"big_endian.tif", D::FormatRgb},
                                 {"lzw.tif", D::FormatRgb},
                                 {"zip.tif", D::FormatRgb},
                                 {"packbits.tif", D::FormatRgb},
                                 {"separate_lzw.tif", D::FormatRgb},
                                 {"jpeg_ycbcr.tif", D::FormatRgb},
                                 {"rgba8.tif", D::FormatRgb},
                                 {"palette8.tif", D::FormatRgb},
                                 {"palette4.tif", D::FormatRgb},
                                 {"rgb16.tif", D::FormatRgb16},
                                 {"rgb16_separate_big_endian.tif", D::FormatRgb16},
                                 {"gray1_group4.tif", D::FormatBinary, 255},
                                 {"gray1_min_is_white.tif", D::FormatBinary, 255},
                                 {"gray2.tif", D::FormatUByte, 85},
                                 {"gray4.tif", D::FormatUByte, 17},
                                 {"gray8.tif", D::FormatUByte},
                                 {"gray16.tif", D::FormatUShort},
                                 {"gray1.png", D::FormatUByte},
                                 {"gray1_interlaced.png", D::FormatUByte},
                                 {"gray2.png", D::FormatUByte},
                                 {"gray4.png", D::FormatUByte},
                                 {"gray8.png", D::FormatUByte},
                                 {"gray16.png", D::FormatUShort},
                                 {"gray16_interlaced.png", D::FormatUShort},
                                 {"gray_alpha8.png", D::FormatRgb},
                                 {"gray_alpha16.png", D::FormatRgb16},
                                 {"palette1.png", D::FormatRgb},
                                 {"palette2.png", D::FormatRgb},
                                 {"palette4.png", D::FormatRgb},
                                 {"palette4_interlaced.png", D::FormatRgb},
                                 {"palette8.png", D::FormatRgb},
                                 {"rgb8.png", D::FormatRgb},
                                 {"rgb8_interlaced.png", D::FormatRgb},
                                 {"rgb16.png", D::FormatRgb16},
                                 {"rgb_alpha8.png", D::FormatRgb},
                                 {"rgb_alpha16.png", D::FormatRgb16},
                                 {"rgb_alpha16_interlaced.png", D::FormatRgb16},
                                 {"mono1.bmp", D::FormatBinary, 255},
                                 {"palette4.bmp", D::FormatRgb},
                                 {"rle4.bmp", D::FormatRgb},
                                 {"gray8.bmp", D::FormatUByte},
                                 {"palette8.bmp", D::FormatRgb},
                                 {"rle8.bmp", D::FormatRgb},
                                 {"rgb24.bmp", D::FormatRgb},
                                 {"rgba32_long_head.bmp", D::FormatRgb}};

// The pixels that the other tool sees: red, green, blue, in 8 or 16 bits.
struct Expected {
    int width = 0, height = 0, top = 0;
    std::vector<int> values;
};

Expected readExpected(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    std::string magic;
    Expected picture;
    stream >> magic >> picture.width >> picture.height >> picture.top;
    stream.get();
    EXPECT_EQ(magic, "P6");
    for (int i = 0; i < 3 * picture.width * picture.height; ++i) {
        int value = stream.get();
        if (picture.top > 255) value = value << 8 | stream.get();
        picture.values.push_back(value);
    }
    EXPECT_TRUE(stream) << path;
    return picture;
}

using Color = std::array<int, 3>;

Color colorAt(const CTivImage& image, int x, int y) {
    const NurImage& record = *image.GetRecord();
    const auto* row = record.Row(y);
    const auto* words = reinterpret_cast<const std::uint16_t*>(row);
    switch (record.format) {
        case D::FormatBinary:
            return {row[x / 8] >> x % 8 & 1, row[x / 8] >> x % 8 & 1, row[x / 8] >> x % 8 & 1};
        case D::FormatUByte:
            return {row[x], row[x], row[x]};
        case D::FormatUShort:
            return {words[x], words[x], words[x]};
        case D::FormatRgb:
            return {row[4 * x + 2], row[4 * x + 1], row[4 * x]};
        case D::FormatRgb16:
            return {words[4 * x + 2], words[4 * x + 1], words[4 * x]};
        default:
            return {-1, -1, -1};
    }
}

class FilesOfOthers : public testing::TestWithParam<OthersFile> {
protected:
    const std::string path_ = testData(std::string("imagefiles/") + GetParam().name);
};

// PNG always takes an image of its own.
class FilesOfOthersInPlace : public FilesOfOthers {};

std::vector<OthersFile> filesBut(const char* extension) {
    std::vector<OthersFile> files;
    std::copy_if(std::begin(kFiles), std::end(kFiles), std::back_inserter(files),
                 [&](const OthersFile& file) { return !std::string(file.name).ends_with(extension); });
    return files;
}

std::string testNameOf(const testing::TestParamInfo<OthersFile>& info) {
    std::string name = info.param.name;
    std::replace(name.begin(), name.end(), '.', '_');
    return name;
}

}  // namespace

TEST_P(FilesOfOthers, LoadWithThePixelsThatOtherToolsSee) {
    CTivImage image;
    ASSERT_TRUE(image.Load(path_, true)) << LastError();
    EXPECT_EQ(image.GetFormat(), GetParam().format);
    const Expected expected = readExpected(path_ + ".ppm");
    const int width = image.GetFormat() == D::FormatBinary ? 16 : 13;  // a binary image's width is a multiple of 8
    ASSERT_EQ(image.GetWidth(), width);
    ASSERT_EQ(image.GetHeight(), 7);
    const bool isSwapped = expected.top > 255 && path_.ends_with(".png");  // samples stay in the file's byte order
    for (int i = 0; i < 13 * 7; ++i) {
        Color color = colorAt(image, i % 13, i / 13);
        for (int k = 0; k < 3; ++k) {
            auto& value = color[static_cast<std::size_t>(k)];
            value = isSwapped ? (value << 8 | value >> 8) & 0xFFFF : value * GetParam().grayScale;
            ASSERT_EQ(value, expected.values[static_cast<std::size_t>(3 * i + k)])
                << "pixel " << i % 13 << ", " << i / 13 << ", channel " << k;
        }
    }
}

TEST_P(FilesOfOthersInPlace, TopLeftFillsAnAllocatedImageOfTheSameFormat) {
    CTivImage whole;
    ASSERT_TRUE(whole.Load(path_, true)) << LastError();
    CTivImage part(8, 5, GetParam().format, nullptr, true);
    const void* const pixels = part.GetData();
    ASSERT_TRUE(part.Load(path_, false)) << LastError();
    EXPECT_EQ(part.GetData(), pixels);
    EXPECT_EQ(part.GetWidth(), 8);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 8; ++x) ASSERT_EQ(colorAt(part, x, y), colorAt(whole, x, y)) << x << ", " << y;
    }
    CTivImage other(8, 5, D::FormatDouble, nullptr, true);
    EXPECT_FALSE(other.Load(path_, false));
    EXPECT_EQ(LastError(), path_.ends_with(".bmp") ? "readBMP: invalid buffer type\n"
                                                   : "ReadTIFF: incompatible output image type: double\n");
}

INSTANTIATE_TEST_SUITE_P(ImageFiles, FilesOfOthers, testing::ValuesIn(kFiles), testNameOf);
INSTANTIATE_TEST_SUITE_P(ImageFiles, FilesOfOthersInPlace, testing::ValuesIn(filesBut(".png")), testNameOf);

TEST(FilesOfOthersRefused, TilesCannotBeReadByLines) {
    CTivImage image;
    EXPECT_FALSE(image.Load(testData("imagefiles/tiled.tif"), true));
    EXPECT_NE(LastError().find("rdImage: "), std::string::npos) << LastError();
    EXPECT_FALSE(image.IsAllocated());
}
