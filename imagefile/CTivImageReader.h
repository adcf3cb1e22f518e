#pragma once

#include <memory>
#include <string>

#include "foundation/CTivManager.h"
#include "foundation/CTivString.h"
#include "imagefile/ImageReader.h"

/// Reads an image file of any kind. Until a source is set its accessors answer with empty results.
class CTivImageReader : public CTivManager {
public:
    CTivImageReader();
    ~CTivImageReader() override;

    /// Opens a file. @return false, reported, where no kind takes it; the earlier source stays
    bool SetDataSource(const CTivString& path);
    /// Copies `size` bytes of the image data. @return false, reported, for a part outside it; false without a source
    bool ReadData(int offset, int size, void* buffer);

    int GetDataSize() const { return Reader().GetDataSize(); }
    ctiv::Result<int>& GetWidth() { return Reader().GetWidth(); }
    ctiv::Result<int>& GetHeight() { return Reader().GetHeight(); }
    ctiv::Result<int>& GetBytesPerPixel() { return Reader().GetBytesPerPixel(); }
    ctiv::Result<CTivData::Format>& GetFormat() { return Reader().GetFormat(); }
    ctiv::OptionalResult<CTivRect>& GetRoi() { return Reader().GetRoi(); }
    ctiv::OptionalResult<double>& GetScaleX() { return Reader().GetScaleX(); }
    ctiv::OptionalResult<double>& GetScaleY() { return Reader().GetScaleY(); }
    ctiv::OptionalResult<double>& GetScaleZ() { return Reader().GetScaleZ(); }
    ctiv::OptionalResult<double>& GetOffsetX() { return Reader().GetOffsetX(); }
    ctiv::OptionalResult<double>& GetOffsetY() { return Reader().GetOffsetY(); }
    ctiv::OptionalResult<double>& GetOffsetZ() { return Reader().GetOffsetZ(); }
    ctiv::OptionalResult<double>& GetInvalidZ() { return Reader().GetInvalidZ(); }
    ctiv::OptionalResult<int>& GetDistanceUnit() { return Reader().GetDistanceUnit(); }
    ctiv::OptionalResult<std::string>& GetUnitName() { return Reader().GetUnitName(); }

    /// @return the kind's name as in ctiv::ImageReader::GetKind, "" without a source
    std::string GetKind() const { return reader_ ? reader_->GetKind() : ""; }
    /// As ctiv::ConcreteImageReader::ExchangePixels.
    bool ExchangePixels(void*& pixels) { return reader_ && reader_->Get().ExchangePixels(pixels); }

private:
    ctiv::ConcreteImageReader& Reader() const;

    std::unique_ptr<ctiv::ImageReader> reader_;
};
