#include "imagefile/bmp.h"

#include <initializer_list>

#include "foundation/nur_image.h"
#include "tests/imagefile/file_support.h"
#include "tests/imagefile/memory_support.h"

using D = CTivData;

namespace {

constexpr std::size_t kWidthAt = 18, kHeightAt = 22, kPlanesAt = 26, kBitsAt = 28, kCompressionAt = 30;

std::string u32s(std::initializer_list<std::uint32_t> values) {
    std::string bytes;
    for (const std::uint32_t value : values) bytes.append(reinterpret_cast<const char*>(&value), 4);
    return bytes;
}

// A bitmap from its parts; `palette` also takes masks.
std::string bitmap(int width, int height, int bits, std::uint32_t compression, const std::string& palette,
                   const std::string& pixels) {
    const auto offset = static_cast<std::uint32_t>(54 + palette.size());
    std::string head = "BM" + u32s({offset + static_cast<std::uint32_t>(pixels.size()), 0, offset, 40,
                                    static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), 1,
                                    compression, 0, 0, 0, 0, 0});
    return withU16(head, kBitsAt, static_cast<std::uint16_t>(bits)) + palette + pixels;
}

std::string grays(int count) {
    std::string palette;
    for (int i = 0; i < count; ++i) palette += u32s({static_cast<std::uint32_t>(i * 0x010101)});
    return palette;
}

CTivImage loaded(const std::string& bytes) {
    writeFile(scratchFile("in.bmp"), bytes);
    CTivImage image;
    EXPECT_TRUE(image.Load(scratchFile("in.bmp"), true)) << LastError();
    return image;
}

std::string refusal(const std::string& bytes) {
    writeFile(scratchFile("bad.bmp"), bytes);
    NurImage record;
    EXPECT_EQ(readBMP(scratchFile("bad.bmp").c_str(), &record), 1);
    EXPECT_EQ(record.data, nullptr);
    return LastError();
}

// 2 x 2 pixels of 24 bits, the bottom row first, each row padded to 8 bytes.
const std::string kGood = bitmap(2, 2, 24, 0, "", std::string("\1\2\3\4\5\6\0\0\7\10\11\12\13\14\0\0", 16));

}  // namespace

TEST(Bmp, RowsRunFromTheBottomAndFourBytesHoldThree) {
    const CTivImage image = loaded(kGood);
    EXPECT_EQ(image.GetFormat(), D::FormatRgb);
    EXPECT_EQ(image.GetData(0, 1).AsRgb(), 0x030201u);
    EXPECT_EQ(image.GetData(1, 1).AsRgb(), 0x060504u);
    EXPECT_EQ(image.GetData(1, 0).AsRgb(), 0x0C0B0Au);
}

TEST(Bmp, EveryDepthAndPalette) {
    const std::string tinted = grays(255) + u32s({0x0000FE});
    const CTivImage gray = loaded(bitmap(3, 1, 8, 0, grays(256), "\1\2\3x"));
    EXPECT_EQ(gray.GetFormat(), D::FormatUByte);
    EXPECT_EQ(gray.GetData(2, 0).AsInt(), 3);
    const CTivImage color = loaded(bitmap(1, 1, 8, 0, tinted, "\xFFxxx"));
    EXPECT_EQ(color.GetFormat(), D::FormatRgb);
    EXPECT_EQ(color.GetData(0, 0).AsRgb(), 0x0000FEu);
    const CTivImage few = loaded(bitmap(1, 1, 8, 0, u32s({0, 0x123456}), std::string("\1xxx")));
    EXPECT_EQ(few.GetData(0, 0).AsRgb(), 0x123456u);

    const CTivImage nibbles =
        loaded(bitmap(3, 1, 4, 0, u32s({0, 0xFF0000}) + std::string(56, '\0'), std::string("\x10\x10\0\0", 4)));
    EXPECT_EQ(nibbles.GetData(0, 0).AsRgb(), 0xFF0000u);
    EXPECT_EQ(nibbles.GetData(1, 0).AsRgb(), 0u);
    EXPECT_EQ(nibbles.GetData(2, 0).AsRgb(), 0xFF0000u);

    const std::string bits = std::string("\xA0\0\0\0", 4);
    const CTivImage binary = loaded(bitmap(8, 1, 1, 0, u32s({0, 0xFFFFFF}), bits));
    EXPECT_EQ(binary.GetFormat(), D::FormatBinary);
    EXPECT_EQ(*static_cast<const std::uint8_t*>(binary.GetData()), 0x05);
    const CTivImage inverted = loaded(bitmap(8, 1, 1, 0, u32s({0xFFFFFF, 0}), bits));
    EXPECT_EQ(*static_cast<const std::uint8_t*>(inverted.GetData()), 0xFA);
    const CTivImage blueYellow = loaded(bitmap(8, 1, 1, 0, u32s({0x0000FF, 0xFFFF00}), bits));
    EXPECT_EQ(blueYellow.GetData(1, 0).AsRgb(), 0x0000FFu);
    EXPECT_EQ(blueYellow.GetData(2, 0).AsRgb(), 0xFFFF00u);

    const CTivImage words = loaded(bitmap(1, 1, 32, 0, "", u32s({0x44332211})));
    EXPECT_EQ(words.GetData(0, 0).GetPayload(), 0x44332211u);
    const CTivImage deep = loaded(bitmap(1, 1, 32, 3, u32s({0x3FF00000, 0xFFC00, 0x3FF}), u32s({0x2A5B3C17})));
    EXPECT_EQ(deep.GetFormat(), D::FormatRgb10);
    EXPECT_EQ(deep.GetData(0, 0).GetPayload(), 0x2A5B3C17u);
}

TEST(Bmp, RunLengthsDecodeWithTheirCodes) {
    // Bottom row: three 5s, then plain 1 2 3 (padded); end of line; a jump by one; a 9; end of bitmap.
    const std::string runs("\3\5\0\3\1\2\3\0\0\0\0\2\1\0\1\x09\0\1", 18);
    const CTivImage image = loaded(bitmap(6, 2, 8, 1, grays(256), runs));
    const std::uint8_t wanted[12] = {0, 9, 0, 0, 0, 0, 5, 5, 5, 1, 2, 3};
    EXPECT_EQ(std::memcmp(image.GetData(), wanted, 12), 0);

    const std::string palette = u32s({0, 0x0000FF, 0x00FF00}) + std::string(52, '\0');
    const CTivImage four = loaded(bitmap(5, 1, 4, 2, palette, std::string("\3\x12\0\4\x20\x10\0\1", 8)));
    const std::uint32_t colors[5] = {0x0000FF, 0x00FF00, 0x0000FF, 0x00FF00, 0};
    for (int x = 0; x < 5; ++x) EXPECT_EQ(four.GetData(x, 0).AsRgb(), colors[x]) << x;
    EXPECT_EQ(refusal(bitmap(6, 2, 8, 1, grays(256), std::string("\3\5\0\7\1", 5))), "readBMP: error reading bits\n");
}

// Rows of 3 plain and 4 equal grays: 10 bytes a row with the end of line, so that blocks end everywhere in a run.
TEST(Bmp, RunLengthsDecodeAcrossBlocks) {
    constexpr int kRows = 30000;
    std::string runs;
    std::vector<std::uint8_t> wanted(7 * kRows);
    for (int row = 0; row < kRows; ++row) {
        const auto seed = static_cast<std::uint8_t>(row * 7 % 251);
        const std::uint8_t grays[7] = {
            seed, static_cast<std::uint8_t>(seed + 1), static_cast<std::uint8_t>(seed + 2), 200, 200, 200, 200};
        std::copy(grays, grays + 7, wanted.begin() + 7 * (kRows - 1 - row));
        runs += std::string("\0\3", 2) + std::string(grays, grays + 3) + std::string("\0\4\xC8\0\0", 5);
    }
    const CTivImage image = loaded(bitmap(7, kRows, 8, 1, grays(256), runs));
    EXPECT_EQ(std::memcmp(image.GetData(), wanted.data(), wanted.size()), 0);
    EXPECT_EQ(refusal(bitmap(7, kRows + 1, 8, 1, grays(256), runs)), "readBMP: error reading bits\n");
}

TEST(Bmp, BrokenFilesAreAnsweredInWords) {
    static const std::string kHead = "readBMP: cannot read header of the bitmap file\n";
    static const std::string kBits = "readBMP: error reading bits\n";
    const struct {
        std::string bytes, text;
    } cases[] = {
        {"BX", "readBMP: cannot read from bitmap file\n"},
        {kGood.substr(0, 53), kHead},
        {withU16(kGood, kBitsAt, 16), "readBMP: does not support 16 bits/pixel"},
        {withU16(kGood, kPlanesAt, 2), "readBMP: does not support 2 bit planes\n"},
        {withU32(kGood, kHeightAt, 0xFFFFFFFE),
         "readBMP: does not support top-down DIB. The bitmap file height is: -2\n"},
        {withU32(kGood, kHeightAt, 0), kHead},
        {withU32(kGood, kWidthAt, 0), kHead},
        {withU32(kGood, kWidthAt, 0xFFFFFFFF), kHead},
        {withU32(kGood, kWidthAt, 0x7FFFFFFF), kBits},
        {withU32(withU32(kGood, kWidthAt, 0x7FFFFFFF), kHeightAt, 0x7FFFFFFF), kBits},
        {kGood.substr(0, kGood.size() - 3), kBits},
        {withU32(kGood, kCompressionAt, 1), "readBMP: cannot process RLE8 compression with 24 bpp"},
        {withU32(kGood, kCompressionAt, 2), "readBMP: cannot process RLE4 compression with 24 bpp"},
        {withU32(kGood, kCompressionAt, 3), "readBMP: unrecognized compression format code 3\n"},
        {bitmap(1, 1, 24, 3, u32s({0xFF0000, 0xFF00, 0xFF}), "123x"),
         "readBMP: cannot process BITFIELDS compression with 24 bpp"},
        {bitmap(1, 1, 8, 0, grays(256), "").substr(0, 100), "readBMP: cannot read colormap of the bitmap file\n"},
        {bitmap(2, 1, 4, 0, grays(16), "1234"), "readBMP: BMP bit count not supported\n"},
    };
    for (const auto& each : cases) EXPECT_EQ(refusal(each.bytes), each.text);
}

TEST(Bmp, APreallocatedRecordTakesTheTopLeftPartAndItsOwnFormatOnly) {
    writeFile(scratchFile("in.bmp"), kGood);
    CTivImage small(1, 1, D::FormatRgb, nullptr, true);
    void* const pixels = small.GetData();
    EXPECT_TRUE(small.Load(scratchFile("in.bmp"), false));
    EXPECT_EQ(small.GetData(), pixels);
    EXPECT_EQ(small.GetData(0, 0).AsRgb(), 0x090807u);
    CTivImage large(3, 2, D::FormatRgb, nullptr, true);
    EXPECT_FALSE(large.Load(scratchFile("in.bmp"), false));
    EXPECT_EQ(LastError(), "readBMP: output image size too small\n");
    CTivImage gray(1, 1, D::FormatUByte, nullptr, true);
    EXPECT_FALSE(gray.Load(scratchFile("in.bmp"), false));
    EXPECT_EQ(LastError(), "readBMP: invalid buffer type\n");
}

TEST(Bmp, APreallocatedRecordOfColorsTakesGraysAndBitsToo) {
    CTivImage colors(2, 1, D::FormatRgb, nullptr, true);
    const std::string path = scratchFile("in.bmp");
    writeFile(path, bitmap(2, 1, 8, 0, grays(256), std::string("\x07\xf0\0\0", 4)));
    ASSERT_TRUE(colors.Load(path, false)) << LastError();
    EXPECT_EQ(colors.GetData(0, 0).AsRgb(), 0x070707u);
    EXPECT_EQ(colors.GetData(1, 0).AsRgb(), 0xF0F0F0u);
    writeFile(path, bitmap(2, 1, 1, 0, u32s({0, 0xFFFFFF}), std::string("\x40\0\0\0", 4)));
    ASSERT_TRUE(colors.Load(path, false)) << LastError();
    EXPECT_EQ(colors.GetData(0, 0).AsRgb(), 0u);
    EXPECT_EQ(colors.GetData(1, 0).AsRgb(), 0xFFFFFFu);
    CTivImage bits(8, 1, D::FormatBinary, nullptr, true);
    writeFile(path, bitmap(3, 1, 1, 0, u32s({0, 0xFFFFFF}), std::string("\xff\0\0\0", 4)));
    ASSERT_TRUE(bits.Load(path, false)) << LastError();
    EXPECT_EQ(*static_cast<const std::uint8_t*>(bits.GetData()), 0b111);
}

TEST(Bmp, AWideHeadTakesNoMemoryWhereARecordIsThere) {
    const std::string path = scratchFile("wide.bmp");
    writeFile(path, withU32(withU32(kGood, kWidthAt, 0x70000000), kHeightAt, 0x70000000));
    const long long taken = memoryTakenBy([&] {
        CTivImage image(2, 2, D::FormatRgb, nullptr, true);
        image.Load(path, false);
    });
    EXPECT_GE(taken, 0);
    EXPECT_LT(taken, 64LL << 20);
}

TEST(Bmp, WrittenHeadsAndRowsStandAsTheFormatSays) {
    CTivImage image(3, 2, D::FormatRgb, nullptr, true);
    image.SetData(1, 0, D::Rgb(1, 2, 3));
    image.SetRoi({1, 0, 1, 2});
    ASSERT_TRUE(image.Save(scratchFile("out.bmp"), 5));
    const std::string expected = withU32(
        withU32(withU32(bitmap(1, 2, 24, 0, "", std::string("\0\0\0\0\3\2\1\0", 8)), 34, 8), 38, 2925), 42, 2925);
    EXPECT_EQ(readFile(scratchFile("out.bmp")), expected);

    CTivImage deep(1, 1, D::FormatRgb10, nullptr, true);
    ASSERT_TRUE(deep.Save(scratchFile("out.bmp"), 5));
    EXPECT_EQ(readFile(scratchFile("out.bmp")).substr(46, 20), u32s({3, 0, 0x3FF00000, 0xFFC00, 0x3FF}));
}

TEST(Bmp, FormatsSurviveOrComeBackAsGray) {
    for (const D::Format format : {D::FormatRgb, D::FormatRgb10, D::FormatUByte, D::FormatBinary}) {
        for (const int width : {8, 40, 1000}) {
            CTivImage image = countingImage(width, 3, format);
            if (format == D::FormatRgb) {
                for (int i = 0; i < 3 * width; ++i) static_cast<std::uint8_t*>(image.GetData())[4 * i + 3] = 0;
            }
            ASSERT_TRUE(image.Save(scratchFile("rt.bmp"), 5)) << LastError();
            CTivImage back;
            ASSERT_TRUE(back.Load(scratchFile("rt.bmp"), true)) << LastError();
            EXPECT_TRUE(samePixels(image, back)) << D::GetFormatName(format) << " " << width;
        }
    }
    CTivImage words(2, 1, D::FormatUShort, nullptr, true);
    words.SetData(0, 0, D::Int(1000));
    words.SetData(1, 0, D::Int(3000));
    ASSERT_TRUE(words.Save(scratchFile("rt.bmp"), 5));
    CTivImage gray;
    ASSERT_TRUE(gray.Load(scratchFile("rt.bmp"), true));
    EXPECT_EQ(gray.GetFormat(), D::FormatUByte);
    EXPECT_EQ(gray.GetData(0, 0).AsInt(), 0);
    EXPECT_EQ(gray.GetData(1, 0).AsInt(), 255);
}
