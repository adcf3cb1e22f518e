#include <png.h>

#include <vector>

#include "imagefile/PngImageReader.h"
#include "tests/imagefile/file_support.h"

using D = CTivData;

namespace {

// Encodes rows of packed samples, as PNG stores them.
std::string png(int width, int height, int colorType, int bitDepth, bool interlaced,
                const std::vector<std::string>& rows) {
    std::string bytes;
    png_structp writer = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(writer);
    const auto append = [](png_structp png, png_bytep data, std::size_t size) {
        static_cast<std::string*>(png_get_io_ptr(png))->append(reinterpret_cast<char*>(data), size);
    };
    png_set_write_fn(writer, &bytes, append, nullptr);
    png_set_IHDR(writer, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), bitDepth, colorType,
                 interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if (colorType == PNG_COLOR_TYPE_PALETTE) {
        const png_color palette[4] = {{1, 2, 3}, {40, 50, 60}, {70, 80, 90}, {255, 128, 0}};
        png_set_PLTE(writer, info, palette, bitDepth == 1 ? 2 : 4);
    }
    png_write_info(writer, info);
    std::vector<png_bytep> pointers;
    for (const std::string& row : rows) {
        pointers.push_back(reinterpret_cast<png_bytep>(const_cast<char*>(row.data())));
    }
    png_write_image(writer, pointers.data());
    png_write_end(writer, nullptr);
    png_destroy_write_struct(&writer, &info);
    return bytes;
}

CTivImage loaded(const std::string& bytes) {
    writeFile(scratchFile("in.png"), bytes);
    CTivImage image;
    EXPECT_TRUE(image.Load(scratchFile("in.png"), true)) << LastError();
    return image;
}

std::string failure(const std::string& bytes) {
    writeFile(scratchFile("bad.png"), bytes);
    try {
        ctiv::PngImageReader reader(scratchFile("bad.png"));
    } catch (const std::exception& thrown) {
        return thrown.what();
    }
    return "";
}

}  // namespace

TEST(Png, EveryColorTypeAndDepthInBothOrders) {
    const struct {
        int colorType, bitDepth;
        std::string row;  // two pixels
        D::Format format;
        std::uint64_t first, second;
    } cases[] = {
        {PNG_COLOR_TYPE_GRAY, 1, std::string("\x40", 1), D::FormatUByte, 0, 255},
        {PNG_COLOR_TYPE_GRAY, 2, std::string("\x60", 1), D::FormatUByte, 85, 170},
        {PNG_COLOR_TYPE_GRAY, 4, std::string("\x1F", 1), D::FormatUByte, 17, 255},
        {PNG_COLOR_TYPE_GRAY, 8, std::string("\x12\x34", 2), D::FormatUByte, 0x12, 0x34},
        {PNG_COLOR_TYPE_GRAY, 16, std::string("\x12\x34\x56\x78", 4), D::FormatUShort, 0x3412, 0x7856},
        {PNG_COLOR_TYPE_PALETTE, 1, std::string("\x40", 1), D::FormatRgb, 0xFF010203, 0xFF28323C},
        {PNG_COLOR_TYPE_PALETTE, 2, std::string("\xB0", 1), D::FormatRgb, 0xFF46505A, 0xFFFF8000},
        {PNG_COLOR_TYPE_PALETTE, 4, std::string("\x13", 1), D::FormatRgb, 0xFF28323C, 0xFFFF8000},
        {PNG_COLOR_TYPE_PALETTE, 8, std::string("\x03\x00", 2), D::FormatRgb, 0xFFFF8000, 0xFF010203},
        {PNG_COLOR_TYPE_RGB, 8, "\1\2\3\4\5\6", D::FormatRgb, 0xFF010203, 0xFF040506},
        {PNG_COLOR_TYPE_RGB_ALPHA, 8, "\1\2\3\x7F\4\5\6\x21", D::FormatRgb, 0x7F010203, 0x21040506},
        {PNG_COLOR_TYPE_GRAY_ALPHA, 8, "\x12\x34\x56\x78", D::FormatRgb, 0x34121212, 0x78565656},
        {PNG_COLOR_TYPE_RGB, 16, "\1\2\3\4\5\6\x11\x12\x13\x14\x15\x16", D::FormatRgb16, 0xFFFF020104030605,
         0xFFFF121114131615},
        {PNG_COLOR_TYPE_RGB_ALPHA, 16, "\1\2\3\4\5\6\7\x08\x11\x12\x13\x14\x15\x16\x17\x18", D::FormatRgb16,
         0x0807020104030605, 0x1817121114131615},
        {PNG_COLOR_TYPE_GRAY_ALPHA, 16, "\1\2\3\4\x11\x12\x13\x14", D::FormatRgb16, 0x0403020102010201,
         0x1413121112111211},
    };
    for (const auto& each : cases) {
        for (const bool interlaced : {false, true}) {
            const CTivImage image = loaded(png(2, 2, each.colorType, each.bitDepth, interlaced, {each.row, each.row}));
            ASSERT_EQ(image.GetFormat(), each.format) << each.colorType << " " << each.bitDepth;
            EXPECT_EQ(image.GetData(0, 1).GetPayload(), each.first) << each.colorType << " " << each.bitDepth;
            EXPECT_EQ(image.GetData(1, 1).GetPayload(), each.second) << each.colorType << " " << each.bitDepth;
            EXPECT_EQ(image.GetRoi(), (CTivRect{0, 0, 2, 2}));
        }
    }
}

TEST(Png, ReadsFromMemoryAlike) {
    const std::string bytes = png(2, 1, PNG_COLOR_TYPE_GRAY, 8, false, {"\x12\x34"});
    ctiv::PngImageReader reader(std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
    std::uint8_t second = 0;
    reader.ReadData(1, 1, &second);
    EXPECT_EQ(second, 0x34);
    EXPECT_THROW(reader.ReadData(1, 2, &second), std::out_of_range);
    EXPECT_THROW(reader.ReadData(0, -1, &second), std::out_of_range);
    EXPECT_THROW(ctiv::PngImageReader(std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), 40)),
                 std::runtime_error);
}

TEST(Png, BrokenFilesAreRefusedInWords) {
    const std::string good = png(2, 2, PNG_COLOR_TYPE_RGB, 8, false, {"\1\2\3\4\5\6", "\1\2\3\4\5\6"});
    EXPECT_EQ(failure("just a text, longer than that"), "The file is not a PNG file");
    EXPECT_EQ(failure("short"), "Error reading PNG header");
    EXPECT_EQ(failure(good.substr(0, good.size() / 2)), "Error during PNG init io");
    std::string flipped = good;
    flipped[good.size() - 20] = static_cast<char>(flipped[good.size() - 20] ^ 0x55);
    EXPECT_EQ(failure(flipped), "Error during PNG init io");
    try {
        ctiv::PngImageReader reader(std::string("/nonexistent/file.png"));
        FAIL();
    } catch (const std::exception& thrown) {
        EXPECT_STREQ(thrown.what(), "Unable to open file");
    }
}
