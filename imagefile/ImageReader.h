#pragma once

#include <memory>
#include <string>

#include "imagefile/ConcreteImageReader.h"

namespace ctiv {

/// Finds the kind of a file by trying the readers in their order: CRC, PNG, Tiff (and with it BMP), CTivImage.
class ImageReader {
public:
    /// @throw std::runtime_error with a line "Error reading as ..." for each kind, where none takes the file
    explicit ImageReader(const std::string& path);
    virtual ~ImageReader() = default;

    ConcreteImageReader& Get() { return *reader_; }
    /// @return "CRC", "PNG", "Tiff" or "CTivImage"
    const std::string& GetKind() const { return kind_; }

private:
    std::unique_ptr<ConcreteImageReader> reader_;
    std::string kind_;
};

}  // namespace ctiv
