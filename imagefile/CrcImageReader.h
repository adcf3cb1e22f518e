#pragma once

#include <fstream>
#include <string>

#include "imagefile/ConcreteImageReader.h"

namespace ctiv {

/// Reads the CRC image stream: a head of 156 bytes, the pixels as they stand in memory, and a footer with the metadata
/// of a 3D scan, whose version says how much of it is there. The file stays open: ReadData reads from it.
class CrcImageReader : public ImageReaderResults {
public:
    /// @throw std::runtime_error for another magic, missing pixels or a footer that breaks off
    explicit CrcImageReader(const std::string& path);

    int GetDataSize() const override { return dataSize_; }
    /// Always gives the first bytes of the image: the offset is checked but not added, deliberately (C42).
    /// @throw std::out_of_range, or std::runtime_error "Error reading image data"
    void ReadData(int offset, int size, void* buffer) override;

private:
    void ReadFooter();

    std::ifstream stream_;
    int dataSize_ = 0;
    std::int32_t version_ = 0;
};

}  // namespace ctiv
