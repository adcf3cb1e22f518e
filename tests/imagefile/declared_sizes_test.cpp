#include <vector>

#include "tests/imagefile/file_support.h"
#include "tests/imagefile/memory_support.h"
#include "tests/support/places.h"

namespace {

std::string withBigEndianU32(std::string bytes, std::size_t offset, std::uint32_t value) {
    for (unsigned k = 0; k < 4; ++k) bytes[offset + k] = static_cast<char>(value >> (24 - 8 * k));
    return bytes;
}

// The CRC-32 of PNG's chunks, bit by bit.
std::uint32_t checkSum(const std::string& bytes) {
    std::uint32_t sum = 0xFFFFFFFF;
    for (const char byte : bytes) {
        sum ^= static_cast<unsigned char>(byte);
        for (int k = 0; k < 8; ++k) sum = sum >> 1 ^ (sum & 1 ? 0xEDB88320 : 0);
    }
    return ~sum;
}

std::string sample(const char* name) { return readFile(testData(std::string("imagefiles/") + name)); }

std::string png(const char* name, std::uint32_t width, std::uint32_t height) {
    const std::string bytes = withBigEndianU32(withBigEndianU32(sample(name), 16, width), 20, height);
    return withBigEndianU32(bytes, 29, checkSum(bytes.substr(12, 17)));
}

std::string bmp(const char* name, std::uint32_t width, std::uint32_t height) {
    return withU32(withU32(sample(name), 18, width), 22, height);
}

std::string native(std::uint32_t width, std::uint32_t height) {
    const std::string path = scratchFile("declared.zvk");
    countingImage(4, 4, CTivData::FormatRgb16).Save(path, 0);
    return withU32(withU32(withU32(withU32(readFile(path), 36, width), 40, height), 56, width), 60, height);
}

std::string crc(std::uint32_t width, std::uint32_t height) {
    const std::string path = scratchFile("declared.crc");
    countingImage(4, 4, CTivData::FormatDouble).Save(path, 6);
    return withU32(withU32(readFile(path), 12, width), 16, height);
}

}  // namespace

TEST(DeclaredSizes, TakeMemoryOnlyAsDataArrives) {
    const std::string path = scratchFile("declared");
    for (const auto& [width, height] : std::vector<std::pair<std::uint32_t, std::uint32_t>>{
             {60000, 60000}, {999999, 999999}, {1, 0x7FFFFFFF}, {0x7FFFFFFF, 0x7FFFFFFF}, {0x7FFFFFFF, 1}}) {
        const struct {
            const char* kind;
            std::string bytes;
        } files[] = {{"gray PNG", png("gray1.png", width, height)},
                     {"color PNG", png("rgb_alpha16_interlaced.png", width, height)},
                     {"BMP", bmp("rgb24.bmp", width, height)},
                     {"bits", bmp("mono1.bmp", width, height)},
                     {"RLE4", bmp("rle4.bmp", width, height)},
                     {"RLE8", bmp("rle8.bmp", width, height)},
                     {"native", native(width, height)},
                     {"CRC", crc(width, height)}};
        for (const auto& file : files) {
            writeFile(path, file.bytes);
            const long long taken = memoryTakenBy([&] {
                CTivImage image;
                image.Load(path, true);
            });
            EXPECT_GE(taken, 0) << file.kind << ' ' << width << " x " << height;
            EXPECT_LT(taken, 64LL << 20) << file.kind << ' ' << width << " x " << height;
        }
    }
}

TEST(DeclaredSizes, RunsThatJumpOverNearlyAllTakeNoMemory) {
    // Rows of 60000 grays, of which every 35th gets one pixel: each touches a page of its own.
    std::string bytes = bmp("rle8.bmp", 60000, 20000);
    bytes.resize(1078);
    for (int k = 0; k < 571; ++k) bytes += std::string("\0\2\0\x23\1\7", 6);
    const std::string path = scratchFile("jumps.bmp");
    writeFile(path, bytes + std::string("\0\1", 2));
    const long long taken = memoryTakenBy([&] {
        CTivImage image;
        image.Load(path, true);
    });
    EXPECT_GE(taken, 0);
    EXPECT_LT(taken, 64LL << 20);
    CTivImage image;
    EXPECT_FALSE(image.Load(path, true));
    // The same runs in a picture that a page's worth may be.
    writeFile(path, withU32(bytes, 18, 600) + std::string("\0\1", 2));
    EXPECT_TRUE(image.Load(path, true)) << LastError();
    EXPECT_TRUE(image.IsAllocated());
}

TEST(DeclaredSizes, OfZeroAndBelowAreAnsweredInWords) {
    const std::string path = scratchFile("declared");
    for (const auto& [width, height] :
         std::vector<std::pair<std::uint32_t, std::uint32_t>>{{0, 5}, {5, 0}, {0xFFFFFFFF, 5}, {5, 0xFFFFFFFF}}) {
        for (const std::string& bytes :
             {png("rgb8.png", width, height), bmp("rgb24.bmp", width, height), bmp("rle8.bmp", width, height)}) {
            writeFile(path, bytes);
            ClearLastError();
            CTivImage image;
            EXPECT_FALSE(image.Load(path, true)) << width << " x " << height;
            EXPECT_NE(LastError(), "");
            EXPECT_FALSE(image.IsAllocated());
        }
    }
    // The CRC image stream and the native record know the empty image; what is below it is refused.
    for (const std::string& bytes : {native(0xFFFFFFFF, 5), crc(0xFFFFFFFF, 5), crc(5, 0xFFFFFFFF)}) {
        writeFile(path, bytes);
        CTivImage image;
        EXPECT_FALSE(image.Load(path, true));
        EXPECT_FALSE(image.IsAllocated());
    }
}
