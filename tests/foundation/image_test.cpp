#include "foundation/CTivImage.h"

#include <unistd.h>

#include <cstring>
#include <fstream>
#include <sstream>

#include "foundation/CTivVector.h"
#include "foundation/nur_image.h"
#include "tests/support/library.h"

using D = CTivData;

namespace {

CTivImage counting(int width, int height) {
    CTivImage image(width, height, D::FormatUByte, nullptr, true);
    for (int i = 0; i < width * height; ++i) image.SetData(i % width, i / width, D::Int(i + 1));
    return image;
}

std::string record(std::initializer_list<std::int32_t> fields, const std::string& data) {
    std::string bytes = "CTivImage";
    bytes.resize(32);
    bytes[15] = 'x';  // behind the name's end: doesn't count
    for (const std::int32_t field : fields) bytes.append(reinterpret_cast<const char*>(&field), sizeof field);
    return bytes + data;
}

bool read(CTivImage& image, const std::string& bytes, bool reallocate) {
    std::istringstream stream(bytes);
    return image.ReadFile(stream, reallocate);
}

}  // namespace

TEST(Image, StatesOfSet) {
    CTivImage image;
    EXPECT_TRUE(image.Set(0, 0, D::FormatRgb, nullptr, false));
    EXPECT_EQ(image.GetFormat(), D::FormatNone);
    EXPECT_TRUE(image.Set(0, 5, D::FormatRgb, nullptr, false));
    EXPECT_FALSE(image.IsAllocated());
    EXPECT_EQ(image.GetHeight(), 5);
    EXPECT_TRUE(image.Set(4, 3, D::FormatRgb10, nullptr, true));
    EXPECT_EQ(image.GetSignificantBits(), 10);
    EXPECT_FALSE(image.Set(12, 3, D::FormatBinary, nullptr, true));
    EXPECT_EQ(LastError(), "CTivImage::Set => Width of binary images must be multiple of 8");
    EXPECT_EQ(image.GetWidth(), 4);
    EXPECT_FALSE(image.Set(-4, 3, D::FormatRgb, nullptr, true));
    EXPECT_EQ(LastError(), "CTivImage::Set => Cannot allocate image with negative dimension(s) or invalid format");
    EXPECT_EQ(image.GetFormat(), D::FormatNone);
    EXPECT_FALSE(image.Set(0x7FFFFFFF, 0x7FFFFFFF, D::FormatRgb16, nullptr, false));
    EXPECT_EQ(LastError(), "CTivImage::Set => Not enough memory");
    std::uint8_t pixel = 7;
    EXPECT_FALSE(image.Set(-1, 1, D::FormatUByte, &pixel, true));
    EXPECT_EQ(LastError(), "CTivImage::Set => Cannot copy image data");
}

TEST(Image, CopiesOwnTheirPixelsAndKeepRoiAndSignificantBits) {
    std::uint16_t pixels[6] = {1, 2, 3, 4, 5, 6};
    CTivImage wrapping(3, 2, D::FormatUShort, pixels, false);
    ASSERT_TRUE(wrapping.SetRoi({1, 0, 2, 2}));
    EXPECT_TRUE(wrapping.IsExternal());
    const CTivImage copy = wrapping;
    pixels[5] = 9;
    EXPECT_FALSE(copy.IsExternal());
    EXPECT_EQ(copy.GetRoi(), (CTivRect{1, 0, 2, 2}));
    EXPECT_EQ(copy.GetSignificantBits(), 16);
    EXPECT_EQ(copy.GetData(2, 1).AsInt(), 6);
    EXPECT_EQ(wrapping.GetData(2, 1).AsInt(), 9);
    // Copying pixels by Set leaves 8 significant bits, whatever the format.
    EXPECT_EQ(CTivImage(3, 2, D::FormatUShort, pixels, true).GetSignificantBits(), 8);
}

TEST(Image, RoiStaysInsideAndSnapsForBinary) {
    CTivImage image(32, 10, D::FormatBinary, nullptr, true);
    ASSERT_TRUE(image.SetRoi({3, 0, 10, 4}));
    EXPECT_EQ(image.GetRoi(), (CTivRect{0, 0, 16, 4}));
    for (const CTivRect bad : {CTivRect{-1, 0, 1, 1}, CTivRect{0, 0, 33, 1}, CTivRect{1, 1, 8, 10},
                               CTivRect{0x7FFFFFFF, 0, 0x7FFFFFFF, 1}, CTivRect{0, 0, 1, -1}}) {
        EXPECT_FALSE(image.SetRoi(bad));
        EXPECT_EQ(LastError(), "CTivImage::SetRoi => ROI rectangle out of range");
        EXPECT_EQ(image.GetRoi(), (CTivRect{0, 0, 16, 4}));
    }
    EXPECT_TRUE(image.SetRoi({}));
    EXPECT_EQ(image.GetRoi(), (CTivRect{0, 0, 32, 10}));
}

TEST(Image, ClearTouchesOnlyTheRoi) {
    CTivImage image = counting(4, 3);
    ASSERT_TRUE(image.SetRoi({1, 1, 2, 1}));
    EXPECT_TRUE(image.Clear());
    const std::uint8_t wanted[12] = {1, 2, 3, 4, 5, 0, 0, 8, 9, 10, 11, 12};
    EXPECT_EQ(std::memcmp(image.GetData(), wanted, 12), 0);
}

TEST(Image, CopyMovesTheRoiAndChecksFormatAndSize) {
    CTivImage source = counting(4, 3);
    source.SetRoi({2, 1, 2, 2});
    CTivImage empty;
    EXPECT_TRUE(empty.Copy(source));
    EXPECT_EQ(empty.GetWidth(), 2);
    EXPECT_EQ(empty.GetData(1, 1).AsInt(), 12);
    CTivImage target(5, 5, D::FormatUByte, nullptr, true);
    target.SetRoi({3, 3, 2, 2});
    EXPECT_TRUE(target.Copy(source));
    EXPECT_EQ(target.GetData(3, 3).AsInt(), 7);
    EXPECT_EQ(target.GetData(2, 2).AsInt(), 0);
    target.SetRoi({3, 3, 1, 2});
    EXPECT_FALSE(target.Copy(source));
    EXPECT_EQ(LastError(), "CTivImage::Copy => preallocated source ROI width and/or height not large enough");
    CTivImage other(4, 4, D::FormatByte, nullptr, true);
    EXPECT_FALSE(other.Copy(source));
    EXPECT_EQ(LastError(), "CTivImage::Copy => source and destination formats must be the same");
}

TEST(Image, PixelsAreFoundOutsideTheRoiAndRefusedOutsideTheImage) {
    CTivImage image = counting(4, 3);
    image.SetRoi({1, 1, 1, 1});
    EXPECT_EQ(image.GetData(3, 2).AsInt(), 12);
    EXPECT_EQ(image.GetData(4, 0).GetFormat(), D::FormatNone);
    EXPECT_EQ(LastError(), "CTivImage::GetData => Coordinates out of range");
    EXPECT_FALSE(image.SetData(0, -1, D::Int(1)));
    EXPECT_EQ(LastError(), "CTivImage::SetData => Coordinates out of range");
    EXPECT_FALSE(image.SetData(0, 0, CTivData()));
    EXPECT_EQ(LastError(), "CTivImage::SetData => unknown format in <data> argument");
    image.Free();
    EXPECT_FALSE(image.SetData(0, 0, D::Int(1)));
    EXPECT_EQ(LastError(), "CTivImage::SetData => image not allocated");
}

TEST(ImageRecord, RoundTripKeepsRoi) {
    CTivImage image = counting(4, 3);
    image.SetRoi({1, 1, 2, 2});
    std::ostringstream out;
    EXPECT_TRUE(image.WriteFile(out));
    EXPECT_EQ(out.str().size(), 64u + 12u);
    CTivImage back;
    EXPECT_TRUE(read(back, out.str(), true));
    EXPECT_EQ(back.GetRoi(), image.GetRoi());
    EXPECT_EQ(std::memcmp(back.GetData(), image.GetData(), 12), 0);
    std::ostringstream empty;
    EXPECT_TRUE(CTivImage().WriteFile(empty));
    EXPECT_EQ(empty.str().size(), 64u);
    EXPECT_TRUE(read(back, empty.str(), true));
    EXPECT_EQ(back.GetFormat(), D::FormatNone);
}

TEST(ImageRecord, HostileHeadsAreAnswered) {
    CTivImage image;
    EXPECT_FALSE(read(image, record({101, 1, 1, 10, 0, 0, 1, 1}, "a"), true));
    EXPECT_EQ(LastError(), "CTivImage::ReadFile => incompatible file");
    EXPECT_FALSE(read(image, record({100, -1, 1, 10, 0, 0, 1, 1}, "a"), true));
    EXPECT_FALSE(read(image, record({100, 0x7FFFFFFF, 0x7FFFFFFF, 39, 0, 0, 1, 1}, "a"), true));
    EXPECT_FALSE(read(image, record({100, 4, 4, 10, 3, 0, 4, 1}, "a"), true));
    EXPECT_EQ(LastError(), "CTivImage::SetRoi => ROI rectangle out of range");
    EXPECT_TRUE(read(image, record({100, 2, 2, 10, 0, 0, 2, 2}, "ab"), true));
    EXPECT_EQ(image.GetData(1, 1).AsInt(), 0);
    EXPECT_EQ(image.GetData(1, 0).AsInt(), 'b');
    EXPECT_TRUE(read(image, record({100, 2, 2, 4711, 0, 0, 2, 2}, "ab"), true));
    EXPECT_FALSE(image.IsAllocated());
}

TEST(ImageRecord, InPlaceReadsAsManyRowsAsTheFilesRoiIsHigh) {
    CTivImage image = counting(3, 3);
    EXPECT_TRUE(read(image, record({100, 2, 3, 10, 0, 0, 2, 1000}, "abcdef"), false));
    const char wanted[9] = {'a', 'b', 3, 'c', 'd', 6, 'e', 'f', 9};
    EXPECT_EQ(std::memcmp(image.GetData(), wanted, 9), 0);
    EXPECT_TRUE(read(image, record({100, 2, 3, 10, 0, 0, 2, 2}, "x"), false));
    const char broken[9] = {'x', 0, 3, 0, 0, 6, 'e', 'f', 9};
    EXPECT_EQ(std::memcmp(image.GetData(), broken, 9), 0);
    EXPECT_FALSE(read(image, record({100, 4, 1, 10, 0, 0, 4, 1}, "abcd"), false));
    EXPECT_EQ(LastError(), "CTivImage::ReadFile => preallocated source width and/or height not large enough");
    EXPECT_FALSE(read(image, record({100, 1, 1, 6, 0, 0, 1, 1}, "a"), false));
    EXPECT_EQ(LastError(), "CTivImage::ReadFile => source and destination formats must be the same");
}

TEST(ImageRecord, TheWidestBinaryRowIsCountedWhole) {
    EXPECT_EQ(nur_image_bytes(CTivData::FormatBinary, 2147483641, 1), 268435456);
    EXPECT_EQ(nur_image_bytes(CTivData::FormatBinary, 9, 2), 4);
}

TEST(Image, MoreThanTheMachineHasIsRefused) {
    const std::int64_t machine = std::int64_t{::sysconf(_SC_PHYS_PAGES)} * ::sysconf(_SC_PAGESIZE);
    std::int64_t swap = 0;
    std::ifstream memory("/proc/meminfo");
    for (std::string word; memory >> word;) {
        if (word == "SwapTotal:") memory >> swap;
    }
    const std::int64_t rows = (machine + swap * 1024) / 8 / 100000 + 100;
    ASSERT_LT(rows, 0x7FFFFFFF);
    CTivImage image(2, 2, D::FormatUByte, nullptr, true);
    EXPECT_FALSE(image.Set(100000, static_cast<int>(rows), D::FormatDouble, nullptr, false));
    EXPECT_EQ(LastError(), "CTivImage::Set => Not enough memory");
    EXPECT_FALSE(image.IsAllocated());
    CTivVector vector;
    if (rows < 50000) {  // what a vector's size can say
        EXPECT_FALSE(vector.Set(static_cast<int>(rows) * 50000, D::FormatColorFloat, nullptr, false));
        EXPECT_EQ(LastError(), "CTivVector::Set => Cannot allocate vector data");
    }
}

TEST(OutputImage, AllocatesRelabelsOrRefuses) {
    NurImage image;
    EXPECT_EQ(nur_output_image(&image, D::FormatByte, 4, 2, "who"), 0);
    EXPECT_EQ(nur_output_image(&image, D::FormatUByte, 4, 2, "who"), 0);
    EXPECT_EQ(image.format, D::FormatUByte);
    EXPECT_EQ(nur_output_image(&image, D::FormatRgb, 4, 2, "who"), 1);
    EXPECT_EQ(LastError(), "who: incompatible output image type: NurUByte\n");
    EXPECT_EQ(nur_output_image(&image, D::FormatUByte, 5, 2, "who"), 1);
    EXPECT_EQ(LastError(), "who: output image size too small\n");
    EXPECT_EQ(nur_output_image(&image, D::FormatByte, 4, 3, "who"), 1);
    EXPECT_EQ(image.format, D::FormatUByte) << "what is refused stays as it was";
    nur_image_free(&image);
    EXPECT_EQ(nur_image_alloc(&image, D::FormatBinary, 9, 1), 0);
    EXPECT_EQ(image.width, 16);
    nur_image_free(&image);
}
