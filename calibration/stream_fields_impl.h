#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <istream>
#include <ostream>
#include <string>
#include <type_traits>

namespace tonewright {

// Fields of the calibration's two files, little-endian and without padding.
static_assert(std::endian::native == std::endian::little, "fields are read and written as they stand in memory");

inline constexpr std::size_t kNameBytes = 32;

/// Reads one field; what the stream cannot give is zero.
template <class T>
T ReadField(std::istream& stream) {
    static_assert(std::is_trivially_copyable_v<T>);
    T field{};
    stream.read(reinterpret_cast<char*>(&field), sizeof field);
    return field;
}

template <class T>
void WriteField(std::ostream& stream, const T& field) {
    static_assert(std::is_trivially_copyable_v<T>);
    stream.write(reinterpret_cast<const char*>(&field), sizeof field);
}

/// Reads a name field and tells whether it is `name`; bytes behind its first zero don't count.
inline bool ReadName(std::istream& stream, const char* name) {
    const auto field = ReadField<std::array<char, kNameBytes>>(stream);
    return std::strncmp(field.data(), name, field.size()) == 0;
}

inline void WriteName(std::ostream& stream, const char* name) {
    std::array<char, kNameBytes> field{};
    std::strncpy(field.data(), name, field.size() - 1);
    WriteField(stream, field);
}

/// Adds up what a file asks for, from the head of its first vector record, where the stream stands.
/// @param length of the file @param before bytes before that record @param records in a row @param behind bytes after
/// @return why the file is too short; empty where it is not, or where something else stands in a record's place
std::string CheckLength(std::istream& stream, std::uint64_t length, std::uint64_t before, int records,
                        std::uint64_t behind);

}  // namespace tonewright
