#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "imagefile/ConcreteImageReader.h"

namespace ctiv {

/// Reads a PNG file into memory: gray as FormatUByte or FormatUShort, everything else as FormatRgb or FormatRgb16 with
/// alpha, or full scale, in the fourth place. 16-bit samples stay in the file's byte order, most significant byte
/// first, deliberately (C43).
class PngImageReader : public ImageReaderResults {
public:
    /// @throw std::runtime_error for a file that is no PNG or breaks off
    explicit PngImageReader(const std::string& path);
    explicit PngImageReader(std::span<const std::uint8_t> memory);
    ~PngImageReader() override;

    int GetDataSize() const override { return countedBytes(size_); }
    void ReadData(int offset, int size, void* buffer) override;
    bool ExchangePixels(void*& pixels) override;

private:
    class Decoder;
    void Read(Decoder& decoder);

    struct PixelFree {
        void operator()(void* pixels) const;
    };
    std::unique_ptr<void, PixelFree> pixels_;
    std::int64_t size_ = 0;
};

}  // namespace ctiv
