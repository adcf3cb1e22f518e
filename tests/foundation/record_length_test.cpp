#include "foundation/record_length.h"

#include <gtest/gtest.h>

#include <sstream>

#include "foundation/CTivImage.h"
#include "foundation/CTivVector.h"

using namespace tonewright;

using D = CTivData;

namespace {

std::string imageBytes(int width, int height, D::Format format) {
    std::ostringstream stream;
    CTivImage(width, height, format, nullptr, true).WriteFile(stream);
    return stream.str();
}

std::string imageShortage(const std::string& bytes) {
    std::istringstream stream(bytes);
    return CheckImageLength(stream);
}

std::string vectorShortage(const std::string& bytes) {
    std::istringstream stream(bytes);
    return CheckVectorLength(stream);
}

std::string withInts(std::string bytes, std::size_t offset, std::initializer_list<std::int32_t> values) {
    for (const std::int32_t value : values) {
        bytes.replace(offset, sizeof value, reinterpret_cast<const char*>(&value), sizeof value);
        offset += sizeof value;
    }
    return bytes;
}

}  // namespace

TEST(RecordLength, HeadIsHeldAgainstTheBytesBehindIt) {
    // 9 x 3 pixels of 8 bytes and 64 of head; bits fill whole bytes.
    const std::string deep = imageBytes(9, 3, D::FormatRgb16);
    EXPECT_EQ(imageShortage(deep), "");
    EXPECT_EQ(imageShortage(deep + "more"), "");
    EXPECT_EQ(imageShortage(deep.substr(0, 279)), "the file breaks off: it has 279 bytes of at least 280");
    EXPECT_EQ(imageShortage(imageBytes(16, 5, D::FormatBinary).substr(0, 73)),
              "the file breaks off: it has 73 bytes of at least 74");
    const std::string head = deep.substr(0, 64);
    EXPECT_EQ(imageShortage(withInts(head, 36, {20000, 20000, D::FormatRgb})),
              "the file breaks off: it has 64 bytes of at least 1600000064");
    EXPECT_EQ(imageShortage(withInts(head, 36, {0x7FFFFFFF, 0x7FFFFFFF, D::FormatRect})),
              "the file breaks off: it has 64 bytes of at least 4611686018427387968");
    // What is no such record, empty or without a size is the reader's.
    EXPECT_EQ(imageShortage("BM"), "");
    EXPECT_EQ(imageShortage(withInts(head, 36, {-1, 7, D::FormatRgb})), "");
    EXPECT_EQ(imageShortage(imageBytes(0, 0, D::FormatRgb)), "");
    EXPECT_EQ(CheckImageFileLength("/no/such/file"), "");
}

TEST(RecordLength, VectorsAreHeldAgainstTheirHeadsToo) {
    std::ostringstream stream;
    CTivVector(3, D::FormatColorFloat, nullptr, true).WriteFile(stream);
    EXPECT_EQ(vectorShortage(stream.str()), "");
    EXPECT_EQ(vectorShortage(stream.str().substr(0, 91)), "the file breaks off: it has 91 bytes of at least 92");
    EXPECT_EQ(vectorShortage(withInts(stream.str(), 36, {-1})), "");
    EXPECT_EQ(vectorShortage(withInts(stream.str(), 36, {3, D::FormatVolume})), "the vector's elements have no size");
}
