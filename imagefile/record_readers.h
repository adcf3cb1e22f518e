#pragma once

#include <string>

#include "imagefile/ConcreteImageReader.h"

namespace ctiv {

/// Reads TIFF, and BMP too: the function behind it tells the two apart.
/// @throw std::runtime_error "ctiv_readImageFromFile failed\n"
class TiffImageReader : public RecordImageReader {
public:
    explicit TiffImageReader(const std::string& path);
};

/// Reads the native record.
/// @throw std::runtime_error "error loading image from file: " and the thread's last error text
class CTivImageBasedImageReader : public RecordImageReader {
public:
    explicit CTivImageBasedImageReader(const std::string& path);
};

}  // namespace ctiv
