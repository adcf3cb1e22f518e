#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <istream>
#include <ostream>

// Native records are little-endian throughout: a zero-filled class name of 32 bytes, a version, fields, elements.
static_assert(std::endian::native == std::endian::little, "records are written as they stand in memory");

inline constexpr std::int32_t kRecordVersion = 100;
using RecordName = std::array<char, 32>;

inline void writeRecordHead(std::ostream& stream, const char* name) {
    RecordName field{};
    std::strncpy(field.data(), name, field.size() - 1);
    stream.write(field.data(), field.size());
    stream.write(reinterpret_cast<const char*>(&kRecordVersion), sizeof kRecordVersion);
}

/// Reads `bytes` bytes; what the stream cannot give becomes zeros.
inline void readOrZero(std::istream& stream, void* target, std::uint64_t bytes) {
    stream.read(static_cast<char*>(target), static_cast<std::streamsize>(bytes));
    const auto got = static_cast<std::uint64_t>(stream.gcount());
    if (got < bytes) std::memset(static_cast<char*>(target) + got, 0, bytes - got);
}

/// As readOrZero, for memory that is zero already, so that pages of data that never came stay untouched.
inline void readIntoZeros(std::istream& stream, void* target, std::uint64_t bytes) {
    stream.read(static_cast<char*>(target), static_cast<std::streamsize>(bytes));
}

/// @return whether name and version are those of a record of this class; bytes behind the name's end don't count
inline bool readRecordHead(std::istream& stream, const char* name) {
    RecordName field{};
    std::int32_t version = 0;
    readOrZero(stream, field.data(), field.size());
    readOrZero(stream, &version, sizeof version);
    return std::strncmp(field.data(), name, field.size()) == 0 && version == kRecordVersion;
}
