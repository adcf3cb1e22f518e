#pragma once

#include <string>

#include "foundation/CTivData.h"
#include "foundation/CTivParameter.h"
#include "foundation/nur_image.h"

namespace ctiv {

/// A reader of one kind of image file. Its constructor reads head and metadata and throws where the file is of another
/// kind or broken; afterwards the results stand and ReadData gives the pixels.
class ConcreteImageReader {
public:
    virtual ~ConcreteImageReader() = default;
    virtual int GetDataSize() const = 0;  ///< bytes of image data
    /// Copies a part of the image data.
    /// @throw std::out_of_range where the part leaves the data
    virtual void ReadData(int offset, int size, void* buffer) = 0;
    virtual Result<int>& GetWidth() = 0;
    virtual Result<int>& GetHeight() = 0;
    virtual Result<int>& GetBytesPerPixel() = 0;
    virtual Result<CTivData::Format>& GetFormat() = 0;
    virtual OptionalResult<CTivRect>& GetRoi() = 0;
    virtual OptionalResult<double>& GetScaleX() = 0;
    virtual OptionalResult<double>& GetScaleY() = 0;
    virtual OptionalResult<double>& GetScaleZ() = 0;
    virtual OptionalResult<double>& GetOffsetX() = 0;
    virtual OptionalResult<double>& GetOffsetY() = 0;
    virtual OptionalResult<double>& GetOffsetZ() = 0;
    virtual OptionalResult<double>& GetInvalidZ() = 0;
    virtual OptionalResult<int>& GetDistanceUnit() = 0;
    virtual OptionalResult<std::string>& GetUnitName() = 0;

    /// Hands the decoded pixels over instead of copying them, once and after all else.
    /// @param pixels memory of nur_alloc of GetDataSize() bytes, exchanged for the reader's
    /// @return false where the reader has none to give: then ReadData serves
    virtual bool ExchangePixels(void*& pixels) {
        static_cast<void>(pixels);
        return false;
    }
};

/// The results as plain members, for the readers to fill.
class ImageReaderResults : public ConcreteImageReader {
public:
    Result<int>& GetWidth() override { return width_; }
    Result<int>& GetHeight() override { return height_; }
    Result<int>& GetBytesPerPixel() override { return bytesPerPixel_; }
    Result<CTivData::Format>& GetFormat() override { return format_; }
    OptionalResult<CTivRect>& GetRoi() override { return roi_; }
    OptionalResult<double>& GetScaleX() override { return scaleX_; }
    OptionalResult<double>& GetScaleY() override { return scaleY_; }
    OptionalResult<double>& GetScaleZ() override { return scaleZ_; }
    OptionalResult<double>& GetOffsetX() override { return offsetX_; }
    OptionalResult<double>& GetOffsetY() override { return offsetY_; }
    OptionalResult<double>& GetOffsetZ() override { return offsetZ_; }
    OptionalResult<double>& GetInvalidZ() override { return invalidZ_; }
    OptionalResult<int>& GetDistanceUnit() override { return distanceUnit_; }
    OptionalResult<std::string>& GetUnitName() override { return unitName_; }

protected:
    Result<int> width_, height_, bytesPerPixel_;
    Result<CTivData::Format> format_{CTivData::FormatNone};
    OptionalResult<CTivRect> roi_;
    OptionalResult<double> scaleX_, scaleY_, scaleZ_, offsetX_, offsetY_, offsetZ_, invalidZ_;
    OptionalResult<int> distanceUnit_;
    OptionalResult<std::string> unitName_;
};

/// @return a size as GetDataSize counts it: at most what an int holds. Larger images pass by ExchangePixels alone.
int countedBytes(std::int64_t bytes);

/// A reader that decodes the whole file into a record of the lower layer and serves from there.
class RecordImageReader : public ImageReaderResults {
public:
    ~RecordImageReader() override;
    int GetDataSize() const override { return countedBytes(dataSize_); }
    void ReadData(int offset, int size, void* buffer) override;
    bool ExchangePixels(void*& pixels) override;

protected:
    /// Fills the results from the record.
    void TakeResults();
    NurImage record_;
    std::int64_t dataSize_ = 0;
};

/// The range checks of ReadData that all readers but the CRC stream's share.
/// @throw std::out_of_range with the reason
void requireRange(int offset, int size, std::int64_t dataSize);

}  // namespace ctiv
