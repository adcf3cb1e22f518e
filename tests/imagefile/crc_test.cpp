#include "imagefile/crc.h"

#include <sstream>

#include "imagefile/CrcImageReader.h"
#include "tests/imagefile/file_support.h"

using namespace tonewright;

using D = CTivData;
using brennick::korva::zelvan_pix::OutputStreamStdOstream;

namespace {

constexpr std::size_t kHeadBytes = 156;

std::string written(const CTivImage& image, const ImageParameters* metadata = nullptr) {
    std::ostringstream bytes;
    OutputStreamStdOstream stream(bytes);
    ImageParameters parameters = metadata ? *metadata : ImageParameters();
    *parameters.width.Set() = image.GetWidth();
    *parameters.height.Set() = image.GetHeight();
    *parameters.format.Set() = image.GetFormat();
    writeCrc(parameters, image.GetData(),
             static_cast<int>(CTivImage::GetImageBytes(image.GetWidth(), image.GetHeight(), image.GetFormat())),
             &stream);
    return bytes.str();
}

std::string failure(const std::string& bytes) {
    writeFile(scratchFile("bad.crc"), bytes);
    try {
        ctiv::CrcImageReader reader(scratchFile("bad.crc"));
    } catch (const std::exception& thrown) {
        return thrown.what();
    }
    return "";
}

}  // namespace

TEST(Crc, ImageAndRoiComeBack) {
    CTivImage image = countingImage(6, 4, D::FormatUShort);
    image.SetRoi({1, 2, 3, 2});
    ASSERT_TRUE(image.Save(scratchFile("rt"), 6)) << LastError();
    CTivImage back;
    ASSERT_TRUE(back.Load(scratchFile("rt.crc"), true)) << LastError();
    EXPECT_TRUE(samePixels(image, back));
    EXPECT_EQ(back.GetRoi(), image.GetRoi());
}

TEST(Crc, SizesThatDisagreeWithTheFormatStayInsideTheImage) {
    const std::string good = written(countingImage(2, 2, D::FormatUByte));
    const std::string fat = withU32(good.substr(0, kHeadBytes) + std::string(400, 'x'), 64, 100);
    writeFile(scratchFile("fat.crc"), fat);
    CTivImage image;
    ASSERT_TRUE(image.Load(scratchFile("fat.crc"), true)) << LastError();
    EXPECT_EQ(image.GetData(1, 1).AsInt(), 'x');
    std::string endless = written(countingImage(2, 2, D::FormatPoint));
    for (const std::size_t offset : {12, 16}) endless = withU32(endless, offset, 0x7FFFFFFF);
    writeFile(scratchFile("endless.crc"), withU32(endless, 64, 0));  // pixels of no bytes: all of them are there
    EXPECT_FALSE(image.Load(scratchFile("endless.crc"), true));
    EXPECT_EQ(ctiv::CrcImageReader(scratchFile("endless.crc")).GetFormat().Get(), D::FormatNone);
    CTivImage bits = countingImage(16, 2, D::FormatBinary);
    ASSERT_TRUE(bits.Save(scratchFile("bits.crc"), 6));
    EXPECT_EQ(readFile(scratchFile("bits.crc")).size(), kHeadBytes + 32 + 180);
    ASSERT_TRUE(image.Load(scratchFile("bits.crc"), true)) << LastError();
    EXPECT_TRUE(samePixels(bits, image));
}

TEST(Crc, AFormatWithoutADeviceCodeIsWrittenAndNotLoaded) {
    const CTivImage image = countingImage(2, 2, D::FormatRgb);
    ASSERT_TRUE(image.Save(scratchFile("rgb.crc"), 6));
    CTivImage back;
    EXPECT_FALSE(back.Load(scratchFile("rgb.crc"), true));
    EXPECT_EQ(LastError(), "CTivImage::Load => unrecognized image data format");
}

TEST(Crc, EveryFooterVersionIsReadAsFarAsItGoes) {
    ImageParameters metadata;
    *metadata.scaleX.Set() = 0.5;
    *metadata.offsetZ.Set() = -3.25;
    *metadata.invalidZ.Set() = 7.0;
    metadata.unitName.Set("mm");
    const CTivImage image = countingImage(2, 2, D::FormatUByte);
    const std::string whole = written(image, &metadata);
    ASSERT_EQ(whole.size(), kHeadBytes + 4 + 180);
    const std::size_t lengths[] = {0, 36, 36 + 64, 36 + 68, 36 + 72, 36 + 72, 36 + 80, 180};
    for (std::uint32_t version = 0; version <= 7; ++version) {
        std::string bytes = whole.substr(0, kHeadBytes + 4 + lengths[version]);
        if (version > 0) bytes = withU32(bytes, kHeadBytes + 4, version);
        writeFile(scratchFile("v.crc"), bytes);
        ctiv::CrcImageReader reader(scratchFile("v.crc"));
        EXPECT_EQ(reader.GetScaleX().IsPresent(), version >= 2) << version;
        EXPECT_EQ(reader.GetDistanceUnit().IsPresent(), version >= 2);
        EXPECT_EQ(reader.GetUnitName().IsPresent(), version >= 7);
        if (version >= 2) {
            EXPECT_EQ(reader.GetScaleX().Get(), 0.5);
            EXPECT_EQ(reader.GetScaleY().Get(), 1.0);
            EXPECT_EQ(reader.GetOffsetZ().Get(), -3.25);
            EXPECT_EQ(reader.GetInvalidZ().Get(), 7.0);
        }
        if (version >= 7) {
            EXPECT_EQ(reader.GetUnitName().Get(), "mm" + std::string(62, '\0'));
        }
        if (version > 0) {
            const std::string number = version == 5 ? "4" : std::to_string(version);
            EXPECT_EQ(failure(bytes.substr(0, bytes.size() - 1)),
                      "Error reading the CRC footer #" + number + " from input stream");
        }
    }
    EXPECT_EQ(failure(whole.substr(0, kHeadBytes + 6)), "Error reading CRC footer version from input stream");
}

TEST(Crc, InvalidZIsAbsentWhereItsFlagIsClear) {
    writeFile(scratchFile("v.crc"), written(countingImage(2, 2, D::FormatUByte)));
    ctiv::CrcImageReader reader(scratchFile("v.crc"));
    EXPECT_FALSE(reader.GetInvalidZ().IsPresent());
    EXPECT_EQ(reader.GetScaleZ().Get(), 1.0);
}

TEST(Crc, BrokenFilesAreRefusedInWords) {
    const std::string good = written(countingImage(2, 2, D::FormatUByte));
    static const std::string kPixels = "The input stream does not contain all the image data";
    EXPECT_EQ(failure(good.substr(0, 155)), "Error reading CRC header from input stream");
    EXPECT_EQ(failure(withU32(good, 0, 1)), "The input stream is not in CRC format");
    EXPECT_EQ(failure(good.substr(0, kHeadBytes + 3)), kPixels);
    for (const std::uint32_t size : {0xFFFFFFFFu, 0x7FFFFFFFu}) {
        EXPECT_EQ(failure(withU32(good, 12, size)), kPixels);
        EXPECT_EQ(failure(withU32(withU32(good, 12, size), 16, size)), kPixels);
    }
    // Fewer bytes a pixel than the format has: nothing may be read past the data.
    writeFile(scratchFile("thin.crc"), withU32(withU32(good, 36, 0x01042000), 64, 1));
    CTivImage image;
    EXPECT_FALSE(image.Load(scratchFile("thin.crc"), true));
}

TEST(Crc, ReadDataChecksTheOffsetAndReadsFromTheStart) {
    writeFile(scratchFile("r.crc"), written(countingImage(10, 20, D::FormatUByte)));
    ctiv::CrcImageReader reader(scratchFile("r.crc"));
    std::uint8_t two[2] = {};
    reader.ReadData(100, 2, two);
    EXPECT_EQ(two[0], 1);
    EXPECT_EQ(two[1], 8);
    EXPECT_THROW(reader.ReadData(-1, 1, two), std::out_of_range);
    EXPECT_THROW(reader.ReadData(199, 2, two), std::out_of_range);
}
