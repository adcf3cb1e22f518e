#pragma once

#include <cstdint>
#include <istream>
#include <string>

namespace tonewright {

// The library reads a record that breaks off as one with zeros at its end, and memory for what never came is promised
// only. Whoever hands such an image on (a copy, a picture on the screen) pays for all of it, so a program holds a file
// against the length that its own head asks for before it loads it.

/// Bytes of the whole stream, 0 where it can't be told; stands at the beginning afterwards.
std::uint64_t GetStreamLength(std::istream& stream);

/// @return nothing, or "the file breaks off: it has 64 bytes of at least 1600000064"
std::string DescribeShortage(std::uint64_t length, std::uint64_t wanted);

/// Holds a native image file (.zvk), from the stream's beginning, against its head.
/// @return nothing where it is whole or no such record, else DescribeShortage. Reading starts anew: clear and seek.
std::string CheckImageLength(std::istream& stream);

/// CheckImageLength of a file; nothing where it can't be opened.
std::string CheckImageFileLength(const std::string& path);

/// As CheckImageLength, for a native vector, whose elements may also have no size.
std::string CheckVectorLength(std::istream& stream);

}  // namespace tonewright
