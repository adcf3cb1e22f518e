#include "imagefile/tiff.h"

#include <tiffio.h>

#include <memory>
#include <vector>

#include "foundation/nur_image.h"
#include "imagefile/CTivImageFileFormat.h"
#include "imagefile/CTivImageReader.h"
#include "imagefile/write_image.h"
#include "tests/imagefile/file_support.h"
#include "tests/imagefile/memory_support.h"
#include "tests/support/places.h"

using namespace tonewright;

using D = CTivData;
using brennick::korva::zelvan_pix::OutputStreamStdOstream;

namespace {

struct TiffClose {
    void operator()(TIFF* tif) const { TIFFClose(tif); }
};
using Tiff = std::unique_ptr<TIFF, TiffClose>;

Tiff openTiff(const std::string& path, const char* mode) { return Tiff(TIFFOpen(path.c_str(), mode)); }

template <class T>
T fieldOf(const Tiff& tif, std::uint32_t tag) {
    T value{};
    EXPECT_TRUE(TIFFGetField(tif.get(), tag, &value)) << tag;
    return value;
}

// A file that libtiff writes, of one row whose bytes count upward from 0.
struct Made {
    std::uint16_t samples = 1, bits = 8, sampleFormat = 1, photometric = PHOTOMETRIC_MINISBLACK;
    std::int64_t bufferFormat = 0;  // 0: no tag
    const char* description = nullptr;
    std::uint32_t width = 8;
};

std::string makeTiff(const Made& made) {
    const std::string path = scratchFile("made.tif");
    const Tiff tif = openTiff(path, "w");
    TIFFSetField(tif.get(), TIFFTAG_IMAGEWIDTH, made.width);
    TIFFSetField(tif.get(), TIFFTAG_IMAGELENGTH, 1);
    TIFFSetField(tif.get(), TIFFTAG_SAMPLESPERPIXEL, made.samples);
    TIFFSetField(tif.get(), TIFFTAG_BITSPERSAMPLE, made.bits);
    TIFFSetField(tif.get(), TIFFTAG_SAMPLEFORMAT, made.sampleFormat);
    TIFFSetField(tif.get(), TIFFTAG_PHOTOMETRIC, made.photometric);
    TIFFSetField(tif.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tif.get(), TIFFTAG_ROWSPERSTRIP, 1);
    if (made.bufferFormat != 0) TIFFSetField(tif.get(), 65105, static_cast<std::uint32_t>(made.bufferFormat));
    if (made.description) TIFFSetField(tif.get(), TIFFTAG_IMAGEDESCRIPTION, made.description);
    if (made.photometric == PHOTOMETRIC_PALETTE) {
        std::vector<std::uint16_t> ramp(std::size_t{1} << made.bits, 0x8000);
        TIFFSetField(tif.get(), TIFFTAG_COLORMAP, ramp.data(), ramp.data(), ramp.data());
    }
    std::vector<std::uint8_t> row(made.width * made.samples * ((made.bits + 7u) / 8u) + 16);
    for (std::size_t i = 0; i < row.size(); ++i) row[i] = static_cast<std::uint8_t>(i);
    TIFFWriteScanline(tif.get(), row.data(), 0, 0);
    return path;
}

// An image of 16 x 3 whose bytes count upward; what a TIFF has no place for is zero.
CTivImage tiffImage(D::Format format) {
    CTivImage image = countingImage(16, 3, format);
    const auto count = static_cast<std::size_t>(CTivImage::GetImageBytes(16, 3, format));
    auto* bytes = static_cast<std::uint8_t*>(image.GetData());
    for (std::size_t i = 0; i < count; ++i) {
        const bool isFourthByte = i % 4 == 3 && CTivData::IsColor(format) && CTivData::GetFormatBits(format) == 32;
        if (isFourthByte) bytes[i] = static_cast<std::uint8_t>(format == D::FormatRgb10 ? bytes[i] & 0x3F : 0);
        if (i % 8 >= 6 && format == D::FormatRgb16) bytes[i] = 0;
    }
    return image;
}

constexpr D::Format kFormats[] = {
    D::FormatByte,        D::FormatShort,       D::FormatInt,          D::FormatUByte,  D::FormatUShort,
    D::FormatUInt,        D::FormatFloat,       D::FormatDouble,       D::FormatRgb,    D::FormatHsv,
    D::FormatYuv,         D::FormatComplex,     D::FormatPoint,        D::FormatBinary, D::FormatFPoint,
    D::FormatLab,         D::FormatColorFloat,  D::FormatRgb10,        D::FormatRgb16,  D::FormatCoord3dC16,
    D::FormatCoord3dAC16, D::FormatCoord3dCR16, D::FormatCoord3dACRW16};

class ThrowingStream : public CTivOutputStream {
public:
    explicit ThrowingStream(int writes) : writes_(writes) {}
    void Write(const char*, unsigned) override {
        if (writes_-- <= 0) throw std::ios_base::failure("full");
    }
    void Seek(unsigned) override {}

private:
    int writes_;
};

}  // namespace

TEST(Tiff, EveryFormatSurvivesAWriteAndARead) {
    const std::string path = scratchFile("round.tif");
    for (const D::Format format : kFormats) {
        CTivImage image = tiffImage(format);
        // FormatByte is the one that comes back by another name, since 8 bits say nothing of a sign.
        const D::Format back = format == D::FormatByte ? D::FormatUByte : format;
        for (const bool isStream : {true, false}) {
            const bool saved = isStream ? image.Save(path, ImageFileTiff)
                                        : writeImage(image.GetRecord(), path.c_str(), ImageFileTiff) == 0;
            ASSERT_TRUE(saved) << D::GetFormatName(format) << LastError();
            CTivImage read;
            ASSERT_TRUE(read.Load(path, true)) << D::GetFormatName(format) << LastError();
            EXPECT_EQ(read.GetFormat(), back) << D::GetFormatName(format) << ' ' << isStream;
            image.GetRecord()->format = back;
            EXPECT_TRUE(samePixels(image, read)) << D::GetFormatName(format) << ' ' << isStream;
            image.GetRecord()->format = format;
        }
    }
}

TEST(Tiff, OnlyTheRegionOfInterestGoesOut) {
    const std::string path = scratchFile("region.tif");
    CTivImage image = tiffImage(D::FormatRgb);
    ASSERT_TRUE(image.SetRoi({3, 1, 9, 2}));
    ASSERT_TRUE(image.Save(path, ImageFileTiff));
    CTivImage read, part;
    ASSERT_TRUE(read.Load(path, true));
    part.Copy(image);
    EXPECT_TRUE(samePixels(read, part));
}

TEST(Tiff, LibtiffReadsWhatIsWritten) {
    const std::string path = scratchFile("written.tif");
    CTivImage image(2, 1, D::FormatRgb10, nullptr, true);
    image.SetData(0, 0, D::Rgb10(1023, 512, 1));
    image.SetData(1, 0, D::Rgb10(2, 3, 1000));
    const std::uint16_t samples[6] = {1023 << 6, 512 << 6, 1 << 6, 2 << 6, 3 << 6, 1000 << 6};
    ASSERT_EQ(writeTIFFFile(path.c_str(), image.GetRecord()), 0);
    EXPECT_EQ(readFile(path).substr(0, 2), "MM");
    {
        const Tiff tif = openTiff(path, "r");
        std::uint16_t row[6];
        ASSERT_EQ(TIFFScanlineSize(tif.get()), std::int64_t{sizeof row});
        ASSERT_EQ(TIFFReadScanline(tif.get(), row, 0, 0), 1);
        EXPECT_EQ(std::memcmp(row, samples, sizeof row), 0);
        EXPECT_EQ(fieldOf<std::uint16_t>(tif, TIFFTAG_PHOTOMETRIC), PHOTOMETRIC_RGB);
        EXPECT_EQ(fieldOf<std::uint32_t>(tif, TIFFTAG_ROWSPERSTRIP), 1u);
        EXPECT_STREQ(fieldOf<const char*>(tif, TIFFTAG_IMAGEDESCRIPTION), " KORVA format 36");
        EXPECT_EQ(fieldOf<std::uint32_t>(tif, 65105), 0xFFFFFFFFu);  // the format has no code
    }
    CTivImage colors(1, 1, D::FormatRgb, nullptr, true);
    colors.SetData(0, 0, D::Rgb(10, 20, 30));
    ASSERT_TRUE(colors.Save(path, ImageFileTiff));
    EXPECT_EQ(readFile(path).substr(0, 2), "II");
    const Tiff tif = openTiff(path, "r");
    std::uint8_t row[3] = {};
    TIFFReadScanline(tif.get(), row, 0, 0);
    EXPECT_EQ(row[0] * 10000 + row[1] * 100 + row[2], 102030);
}

TEST(Tiff, MetadataTravelsInPrivateTags) {
    const std::string path = scratchFile("scan.tif");
    const CTivImage image = tiffImage(D::FormatCoord3dACRW16);
    ImageParameters metadata;
    *metadata.scaleX.Set() = 0.5;
    *metadata.offsetZ.Set() = -7.25;
    *metadata.invalidZ.Set() = -1.0;
    *metadata.distanceUnit.Set() = 3;
    metadata.unitName.Set("mm");
    {
        std::ofstream file(path, std::ios::binary);
        OutputStreamStdOstream stream(file);
        ASSERT_EQ(WriteTiffToStream(image.GetRecord(), &metadata, &stream), 0);
    }
    CTivImageReader reader;
    ASSERT_TRUE(reader.SetDataSource(path)) << LastError();
    EXPECT_EQ(reader.GetScaleX().Get(), 0.5);
    EXPECT_FALSE(reader.GetScaleY().IsPresent());
    EXPECT_EQ(reader.GetOffsetZ().Get(), -7.25);
    EXPECT_EQ(reader.GetInvalidZ().Get(), -1.0);
    EXPECT_EQ(reader.GetDistanceUnit().Get(), 3);
    EXPECT_EQ(reader.GetUnitName().Get(), "mm");
    const std::pair<std::uint32_t, std::uint32_t> expected[] = {{65100, 3}, {65101, 1},          {65103, 128},
                                                                {65104, 8}, {65105, 0x042D1000}, {65106, 8 * 16 * 3}};
    const Tiff tif = openTiff(path, "r");
    for (const auto& [tag, value] : expected) EXPECT_EQ(fieldOf<std::uint32_t>(tif, tag), value) << tag;
}

TEST(Tiff, SpaceAndUnitCountOnlyFromTheirVersionsOn) {
    const std::string path = makeTiff({});
    for (const std::uint32_t version : {1u, 2u, 3u}) {
        {
            const Tiff tif = openTiff(path, "r+");
            TIFFSetField(tif.get(), 65100, version);
            TIFFSetField(tif.get(), 65106, 99u);
            TIFFSetField(tif.get(), 65107, "inch");
            TIFFRewriteDirectory(tif.get());
        }
        NurImage record;
        ImageParameters metadata;
        ASSERT_EQ(readTIFFFile(path.c_str(), &record, &metadata), 0) << LastError();
        nur_image_free(&record);
        EXPECT_EQ(metadata.spaceUsed.IsPresent(), version >= 2);
        EXPECT_EQ(metadata.unitName.IsPresent(), version >= 3);
    }
}

TEST(Tiff, FormatIsInferredFromTheSamples) {
    constexpr std::uint16_t kBlack = PHOTOMETRIC_MINISBLACK, kRgb = PHOTOMETRIC_RGB, kPalette = PHOTOMETRIC_PALETTE;
    const struct {
        Made made;
        D::Format format;
    } cases[] = {
        {{1, 1, 1, kBlack}, D::FormatBinary},
        {{1, 16, 1, kBlack}, D::FormatUShort},
        {{1, 16, 1, kBlack, 0x11021000}, D::FormatShort},
        {{1, 16, 1, kBlack, 0x01042000}, D::FormatUShort},  // a code of 32 bits does not fit
        {{1, 16, 1, kBlack, 0x7FFFFFFF}, D::FormatUShort},
        {{1, 12, 1, kBlack}, D::FormatUShort},
        {{1, 8, 1, kBlack, 0x11010800}, D::FormatUByte},
        {{1, 32, 1, kBlack}, D::FormatUInt},
        {{1, 32, 2, kBlack}, D::FormatInt},
        {{1, 32, 3, kBlack}, D::FormatFloat},
        {{1, 64, 3, kBlack}, D::FormatDouble},
        {{2, 32, 2, kBlack}, D::FormatPoint},
        {{2, 32, 3, kBlack}, D::FormatFPoint},
        {{2, 32, 6, kBlack}, D::FormatComplex},
        {{2, 16, 1, kBlack, 0x022C1000}, D::FormatCoord3dCR16},
        {{3, 8, 1, kRgb}, D::FormatRgb},
        {{3, 8, 1, kRgb, 0, "KORVA format 20"}, D::FormatHsv},
        {{3, 8, 1, kRgb, 0, " KORVA format 30"}, D::FormatLab},
        {{3, 8, 1, kRgb, 0, "KORVA format 36"}, D::FormatRgb},  // 10-bit colors take 16-bit samples
        {{3, 8, 1, kRgb, 0, "KORVA format 99999999999"}, D::FormatRgb},
        {{3, 8, 1, kRgb, 0, "KORVA format"}, D::FormatRgb},
        {{3, 16, 1, kRgb, 0, "KORVA format 36"}, D::FormatRgb10},
        {{3, 10, 1, kRgb}, D::FormatRgb10},
        {{3, 16, 1, kRgb}, D::FormatRgb16},
        {{3, 8, 1, kBlack}, D::FormatUByte},
        {{4, 8, 1, kRgb}, D::FormatRgb},
        {{4, 16, 1, kRgb}, D::FormatRgb16},
        {{4, 16, 1, kBlack, 0x042D1000}, D::FormatCoord3dACRW16},
        {{4, 32, 3, kRgb}, D::FormatColorFloat},
        {{1, 8, 1, kPalette}, D::FormatRgb},
    };
    for (const auto& each : cases) {
        CTivImage image;
        ASSERT_TRUE(image.Load(makeTiff(each.made), true)) << D::GetFormatName(each.format) << LastError();
        EXPECT_EQ(image.GetFormat(), each.format)
            << each.made.samples << " x " << each.made.bits << " bits, code " << each.made.bufferFormat;
    }
}

TEST(Tiff, PackedSamplesComeFromEachBytesTop) {
    const struct {
        Made made;
        std::vector<std::uint16_t> first;  // of the bytes 0, 1, 2, 3 ...
    } cases[] = {
        {{1, 4}, {0x0, 0x0, 0x0, 0x1, 0x0, 0x2}},
        {{1, 2}, {0, 0, 0, 0, 0, 0, 0, 1}},
        {{1, 12}, {0x000, 0x102, 0x030, 0x405}},
        {{3, 8}, {0x0, 0x3, 0x6, 0x9}},  // gray of three samples: the first counts
    };
    for (const auto& each : cases) {
        CTivImage image;
        ASSERT_TRUE(image.Load(makeTiff(each.made), true)) << LastError();
        for (std::size_t x = 0; x < each.first.size(); ++x) {
            EXPECT_EQ(image.GetData(static_cast<int>(x), 0).AsUShort(), each.first[x]) << each.made.bits << ' ' << x;
        }
    }
    // Three samples of 10 bits: 00000000 00 | 000001 0000 | 0010 000000 | 11 ...
    CTivImage image;
    ASSERT_TRUE(image.Load(makeTiff({3, 10, 1, PHOTOMETRIC_RGB}), true));
    EXPECT_EQ(image.GetData(0, 0).AsUInt(), 0u << 20 | 0x010u << 10 | 0x080u);
}

TEST(Tiff, WhatNoFormatHoldsIsRefusedByItsReason) {
    const struct {
        Made made;
        const char* text;
    } cases[] = {
        {{5, 8, 1, PHOTOMETRIC_RGB},
         "readTIFF: can only handle 1-channel gray scale, 2-channel point and complex or 1- or 3-channel color\n"},
        {{1, 32, 4}, "readTIFF: unknown 1 sample 32 bits per pixel format\n"},
        {{1, 24, 1}, "readTIFF: unknown 1 sample 32 bits per pixel format\n"},
        {{2, 8, 1}, "readTIFF: unknown 2 samples format\n"},
        {{2, 16, 3}, "readTIFF: unknown 2 samples format\n"},
        {{3, 32, 3, PHOTOMETRIC_RGB}, "readTIFF: failed to infer CTiv format\n"},
        {{4, 64, 3, PHOTOMETRIC_RGB}, "readTIFF: failed to infer CTiv format\n"},
        {{1, 8, 1, PHOTOMETRIC_RGB}, "readTIFF: failed to infer CTiv format\n"},
        {{1, 8, 1, PHOTOMETRIC_MASK}, "readTIFF: does not handle PHOTOMETRIC_MASK\n"},
        {{4, 8, 1, PHOTOMETRIC_SEPARATED}, "readTIFF: unknown photometric :5\n"},
        {{1, 16, 1, PHOTOMETRIC_PALETTE}, "readTIFF: too many colors\n"},
    };
    for (const auto& each : cases) {
        CTivImage image;
        EXPECT_FALSE(image.Load(makeTiff(each.made), true));
        EXPECT_EQ(LastError(), each.text);
        EXPECT_FALSE(image.IsAllocated());
    }
}

TEST(Tiff, FormatsThatItCannotHoldAreRefusedAndTheEarlierFileStays) {
    const std::string path = scratchFile("kept.tif");
    writeFile(path, "earlier");
    const struct {
        D::Format format;
        const char* text;
    } cases[] = {{D::FormatChar, "writeTIFF: unexpected image type\n"},
                 {D::FormatColorUByte, "writeTIFF: type error\n"},
                 {D::FormatInt64, "writeTIFF: type error\n"}};
    for (const auto& each : cases) {
        const CTivImage image(4, 4, each.format, nullptr, true);
        EXPECT_EQ(writeTIFFFile(path.c_str(), image.GetRecord()), 1);
        EXPECT_EQ(LastError(), each.text);
        EXPECT_EQ(readFile(path), "earlier");
    }
    EXPECT_EQ(writeTIFFFile("/nonexistent/a.tif", CTivImage(1, 1, D::FormatRgb, nullptr, true).GetRecord()), 1);
    EXPECT_EQ(LastError(), "writeTIFF: error opening TIFF file\n");
}

TEST(Tiff, AStreamThatThrowsEndsTheWriteWithItsText) {
    const CTivImage image = tiffImage(D::FormatRgb);
    ThrowingStream closed(0);
    EXPECT_EQ(WriteTiffToStream(image.GetRecord(), nullptr, &closed), 1);
    EXPECT_EQ(LastError(), "WriteTiffToStream: Cannot open\n");
    for (const int writes : {1, 3, 4, 5}) {
        ThrowingStream stream(writes);
        EXPECT_EQ(WriteTiffToStream(image.GetRecord(), nullptr, &stream), 1) << writes;
        EXPECT_EQ(LastError(), "WriteTiffToStream: writing to output stream failed\n");
        ThrowingStream again(writes);
        EXPECT_FALSE(image.Save(again, ImageFileTiff));
        EXPECT_EQ(LastError(), "CTivImage::Save(CTivOutputStream) => failed to write TIFF data to stream");
    }
}

TEST(Tiff, AFileThatBreaksOffIsRefusedOrHasLostNoPixel) {
    const std::string original = testData("imagefiles/lzw.tif");
    const std::string path = scratchFile("broken.tif");
    CTivImage whole;
    ASSERT_TRUE(whole.Load(original, true));
    const std::string bytes = readFile(original);
    int refusals = 0;
    for (std::size_t length = 2; length < bytes.size(); length += 3) {
        writeFile(path, bytes.substr(0, length));
        ClearLastError();
        NurImage record;
        if (readTIFFFile(path.c_str(), &record, nullptr) == 0) {
            CTivImage image(13, 7, record.format, record.data, true);
            EXPECT_TRUE(samePixels(image, whole)) << length;
            nur_image_free(&record);
            continue;
        }
        ++refusals;
        EXPECT_EQ(LastError().find("rdImage: "), 0u) << length << LastError();
        EXPECT_EQ(record.data, nullptr);
    }
    EXPECT_GT(refusals, 100);  // the pixels end before the last of the tags
}

TEST(Tiff, StripsThatShareBytesDoNotMakeAFileLarger) {
    constexpr std::uint32_t kSize = 20000;
    const std::string path = scratchFile("shared.tif");
    const auto le32 = [](std::uint32_t value) { return std::string(reinterpret_cast<const char*>(&value), 4); };
    const auto le16 = [](std::uint16_t value) { return std::string(reinterpret_cast<const char*>(&value), 2); };
    const std::uint32_t offsets = 8 + kSize, counts = offsets + 4 * kSize, directory = counts + 4 * kSize;
    std::string bytes = "II*" + std::string(1, '\0') + le32(directory) + std::string(kSize, '\x7F');
    for (std::uint32_t y = 0; y < kSize; ++y) bytes += le32(8);
    for (std::uint32_t y = 0; y < kSize; ++y) bytes += le32(kSize);
    const std::vector<std::pair<std::uint16_t, std::array<std::uint32_t, 3>>> tags = {
        {256, {4, 1, kSize}},       {257, {4, 1, kSize}}, {258, {3, 1, 8}}, {259, {3, 1, 1}},         {262, {3, 1, 1}},
        {273, {4, kSize, offsets}}, {277, {3, 1, 1}},     {278, {4, 1, 1}}, {279, {4, kSize, counts}}};
    bytes += le16(static_cast<std::uint16_t>(tags.size()));
    for (const auto& [tag, entry] : tags) {
        bytes += le16(tag) + le16(static_cast<std::uint16_t>(entry[0])) + le32(entry[1]) + le32(entry[2]);
    }
    writeFile(path, bytes + le32(0));
    const long long taken = memoryTakenBy([&] {
        CTivImage image;
        image.Load(path, true);
    });
    EXPECT_GE(taken, 0);
    EXPECT_LT(taken, 64LL << 20);
    CTivImage image;
    EXPECT_FALSE(image.Load(path, true));
    EXPECT_NE(LastError().find("readTIFF: memory allocation failed"), std::string::npos) << LastError();
}

TEST(Tiff, DeclaredSizesTakeMemoryOnlyAsDataArrives) {
    const std::string path = scratchFile("huge.tif");
    for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_PACKBITS,
                                  COMPRESSION_CCITTFAX4, COMPRESSION_JPEG}) {
        for (const std::uint32_t size : {60000u, 0x7FFFFFF0u}) {
            const bool isBits = compression == COMPRESSION_CCITTFAX4;
            writeFile(path, readFile(makeTiff({1, static_cast<std::uint16_t>(isBits ? 1 : 8)})));
            {
                const Tiff tif = openTiff(path, "r+");
                TIFFSetField(tif.get(), TIFFTAG_IMAGEWIDTH, size);
                TIFFSetField(tif.get(), TIFFTAG_IMAGELENGTH, size);
                TIFFSetField(tif.get(), TIFFTAG_ROWSPERSTRIP, size);
                TIFFSetField(tif.get(), TIFFTAG_COMPRESSION, compression);
                TIFFRewriteDirectory(tif.get());
            }
            const long long taken = memoryTakenBy([&] {
                CTivImage image;
                image.Load(path, true);
            });
            EXPECT_GE(taken, 0) << compression << ' ' << size;
            EXPECT_LT(taken, 64LL << 20) << compression << ' ' << size;
        }
    }
}
