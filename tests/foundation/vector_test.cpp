#include "foundation/CTivVector.h"

#include <sys/resource.h>

#include <cstring>
#include <sstream>
#include <vector>

#include "foundation/nur_vector.h"
#include "tests/support/library.h"

using D = CTivData;

namespace {

std::string record(std::int32_t version, std::int32_t size, std::int32_t format, const std::string& data,
                   const std::string& name = "CTivVector") {
    std::string bytes = name;
    bytes.resize(32);
    for (const std::int32_t field : {version, size, format}) {
        bytes.append(reinterpret_cast<const char*>(&field), sizeof field);
    }
    return bytes + data;
}

bool read(CTivVector& vector, const std::string& bytes) {
    std::istringstream stream(bytes);
    return vector.ReadFile(stream);
}

}  // namespace

TEST(Vector, StatesOfSet) {
    CTivVector vector;
    EXPECT_EQ(vector.GetFormat(), D::FormatNone);
    EXPECT_EQ(vector.GetSize(), 0);
    EXPECT_TRUE(vector.Set(0, D::FormatUByte, nullptr, false));
    EXPECT_FALSE(vector.IsAllocated());
    EXPECT_EQ(vector.GetFormat(), D::FormatUByte);
    EXPECT_FALSE(vector.Set(12, D::FormatBinary, nullptr, true));
    EXPECT_EQ(LastError(), "CTivVector::Set => Size of binary vectors must be multiple of 8");
    EXPECT_EQ(vector.GetFormat(), D::FormatUByte);
    EXPECT_TRUE(vector.Set(16, D::FormatBinary, nullptr, true));
    EXPECT_EQ(vector.GetData(15).AsInt(), 0);
    EXPECT_FALSE(vector.Set(-1, D::FormatUByte, nullptr, true));
    EXPECT_EQ(LastError(), "CTivVector::Set => Cannot allocate vector data");
    EXPECT_EQ(vector.GetFormat(), D::FormatNone);
    EXPECT_TRUE(vector.Free());
}

TEST(Vector, WrapsOrCopiesAndCopiesAlwaysOwn) {
    std::uint8_t memory[3] = {1, 2, 3};
    CTivVector wrapping(3, D::FormatUByte, memory, false);
    CTivVector copy = wrapping;
    EXPECT_EQ(wrapping.GetDataPointer(), memory);
    EXPECT_NE(copy.GetDataPointer(), memory);
    EXPECT_TRUE(wrapping.SetData(1, D::Int(9)));
    EXPECT_EQ(memory[1], 9);
    EXPECT_EQ(copy.GetData(1).AsInt(), 2);
    EXPECT_TRUE(wrapping.Free());
    EXPECT_EQ(memory[0], 1);
    copy = *&copy;
    EXPECT_EQ(copy.GetSize(), 3);
    copy = CTivVector();
    EXPECT_EQ(copy.GetFormat(), D::FormatNone);
}

TEST(Vector, ElementsConvertAndRefuse) {
    CTivVector vector;
    EXPECT_EQ(vector.GetData(0).GetFormat(), D::FormatNone);
    EXPECT_EQ(LastError(), "CTivVector::GetData => vector not allocated");
    EXPECT_FALSE(vector.SetData(0, D::Int(1)));
    EXPECT_EQ(LastError(), "CTivVector::SetData => vector not allocated");
    ASSERT_TRUE(vector.Set(2, D::FormatShort, nullptr, true));
    for (const int index : {-1, 2}) {
        EXPECT_EQ(vector.GetData(index).GetFormat(), D::FormatNone);
        EXPECT_EQ(LastError(), "CTivVector::GetData => Index out of range");
        EXPECT_FALSE(vector.SetData(index, D::Int(1)));
        EXPECT_EQ(LastError(), "CTivVector::SetData => Index out of range");
    }
    EXPECT_FALSE(vector.SetData(0, CTivData()));
    EXPECT_EQ(LastError(), "CTivVector::SetData => unknown format in <data> argument");
    EXPECT_TRUE(vector.SetData(0, D::Float(-7.9f)));
    EXPECT_EQ(vector.GetData(0).AsInt(), -7);

    ASSERT_TRUE(vector.Set(2, D::FormatInt64, nullptr, true));
    ClearLastError();
    EXPECT_EQ(vector.GetData(0).GetFormat(), D::FormatNone);
    EXPECT_TRUE(vector.SetData(0, D::Int(5)));
    EXPECT_EQ(LastError(), "");
    EXPECT_EQ(static_cast<std::int64_t*>(vector.GetDataPointer())[0], 0);

    ASSERT_TRUE(vector.Set(16, D::FormatBinary, nullptr, true));
    EXPECT_TRUE(vector.SetData(9, D::Int(4)));
    EXPECT_EQ(static_cast<std::uint8_t*>(vector.GetDataPointer())[1], 2);

    ASSERT_TRUE(vector.Set(2, D::FormatColorFloat, nullptr, true));
    const float color[4] = {1, 2, 3, 4};
    EXPECT_TRUE(vector.SetData(1, D::ColorFloat(color)));
    EXPECT_TRUE(vector.SetData(1, D::Int(5)));
    EXPECT_EQ(vector.GetData(1).AsColorFloat(), static_cast<float*>(vector.GetDataPointer()) + 4);
    EXPECT_EQ(vector.GetData(1).AsColorFloat()[3], 4.0f);

    ASSERT_TRUE(vector.Set(2, D::FormatRef, nullptr, true));
    EXPECT_TRUE(vector.SetData(1, CTivData(D::FormatRef, 0x1122334455667788)));
    EXPECT_EQ(vector.GetData(1).GetPayload(), 0x55667788u);
    EXPECT_EQ(vector.GetData(0).GetPayload(), 0u);
}

TEST(VectorRecord, RoundTripAndEmpty) {
    CTivVector vector(3, D::FormatUShort, nullptr, true);
    vector.SetData(2, D::Int(0x1234));
    std::ostringstream out;
    EXPECT_TRUE(vector.WriteFile(out));
    EXPECT_EQ(out.str(), record(100, 3, D::FormatUShort, std::string("\0\0\0\0\x34\x12", 6)));
    CTivVector back;
    EXPECT_TRUE(read(back, out.str()));
    EXPECT_EQ(back.GetData(2).AsInt(), 0x1234);

    std::ostringstream empty;
    EXPECT_TRUE(CTivVector().WriteFile(empty));
    EXPECT_EQ(empty.str(), record(100, 0, -1, ""));
    EXPECT_TRUE(read(back, empty.str()));
    EXPECT_EQ(back.GetFormat(), D::FormatNone);
}

TEST(VectorRecord, BadRecordsAreRefusedInWords) {
    CTivVector vector;
    const struct {
        std::string bytes;
        const char* text;
    } cases[] = {
        {record(101, 1, 10, "x"), "CTivVector::ReadFile => incompatible file"},
        {record(100, 1, 10, "x", "CTivImage"), "CTivVector::ReadFile => incompatible file"},
        {"", "CTivVector::ReadFile => incompatible file"},
        {record(100, 12, D::FormatBinary, "xx"), "CTivVector::ReadFile => failed to reallocate"},
        {record(100, -1, 10, "x"), "CTivVector::ReadFile => failed to reallocate"},
        {record(100, 1, -2, "x"), "CTivVector::ReadFile => failed to reallocate"},
    };
    for (const auto& each : cases) {
        EXPECT_FALSE(read(vector, each.bytes));
        EXPECT_EQ(LastError(), each.text);
    }
    // 52 bytes could otherwise stand for 2^31 elements, each of which somebody prints, copies or lists.
    for (const int sizeless : {0, 1, 4, 9, 22, 26, 44, 1000, 0x7FFFFFFF}) {
        EXPECT_FALSE(read(vector, record(100, 0x7FFFFFF8, sizeless, "12345678"))) << sizeless;
        EXPECT_EQ(LastError(), "CTivVector::ReadFile => failed to reallocate");
        EXPECT_EQ(vector.GetSize(), 0);
        EXPECT_TRUE(read(vector, record(100, 0, sizeless, ""))) << sizeless;
    }
}

TEST(VectorRecord, WhatNeverCameIsZeroAndCostsNoMemory) {
    rusage before{};
    getrusage(RUSAGE_SELF, &before);
    CTivVector vector;
    EXPECT_TRUE(read(vector, record(100, 0x7FFFFFF0, D::FormatColorFloat, std::string(16, '\x01'))));
    EXPECT_EQ(vector.GetSize(), 0x7FFFFFF0);
    EXPECT_EQ(vector.GetData(1000).AsColorFloat()[0], 0.0f);
    rusage after{};
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 64 * 1024);
}

TEST(VectorRecord, InPlaceKeepsSizeAndChecksFirst) {
    CTivVector vector(4, D::FormatUByte, nullptr, true);
    const auto readInPlace = [&](const std::string& bytes) {
        std::istringstream stream(bytes);
        return vector.ReadFileInPlace(stream);
    };
    EXPECT_FALSE(readInPlace(record(100, 2, D::FormatByte, "ab")));
    EXPECT_EQ(LastError(), "CTivVector::ReadFile => source and destination formats must be the same");
    EXPECT_FALSE(readInPlace(record(100, 5, D::FormatUByte, "abcde")));
    EXPECT_EQ(LastError(), "CTivVector::ReadFile => preallocated source size not large enough");
    EXPECT_TRUE(readInPlace(record(100, 2, D::FormatUByte, "ab")));
    EXPECT_EQ(vector.GetSize(), 4);
    EXPECT_EQ(vector.GetData(1).AsInt(), 'b');
}

TEST(OutputVector, RelabelsOnlyTheSign) {
    NurVector vector;
    EXPECT_EQ(nur_output_vector(&vector, D::FormatShort, 4, "who"), 0);
    EXPECT_EQ(nur_output_vector(&vector, D::FormatUShort, 3, "who"), 0);
    EXPECT_EQ(vector.format, D::FormatUShort);
    EXPECT_NE(nur_output_vector(&vector, D::FormatInt, 2, "who"), 0);
    EXPECT_EQ(LastError(), "who: incompatible output vector type: ushort\n");
    EXPECT_NE(nur_output_vector(&vector, D::FormatUShort, 5, "who"), 0);
    EXPECT_EQ(LastError(), "who: output vector size too small\n");
    EXPECT_NE(nur_output_vector(&vector, D::FormatShort, 5, "who"), 0);
    EXPECT_EQ(vector.format, D::FormatUShort) << "what is refused stays as it was";
    nur_vector_free(&vector);
}
