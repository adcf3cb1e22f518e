#include <cstdio>
#include <cstring>
#include <ios>
#include <vector>

#include "foundation/SafeFile.h"
#include "foundation/nur_report.h"
#include "foundation/nur_types.h"
#include "imagefile/buffer_format.h"
#include "imagefile/tiff.h"
#include "imagefile/tiff_handle_impl.h"
#include "imagefile/tiff_rows_impl.h"

using namespace tonewright;

namespace {

using D = CTivData;
using brennick::korva::zelvan_pix::OutputStreamStdOstream;

constexpr std::size_t kBlockBytes = 64 << 10;  // stays in the cache on its way to the file

/// Gathers libtiff's rows, each of which seeks to where it is already, into blocks on their way to a file. A file that
/// fails ends the work at the next block.
class BlockStream : public CTivOutputStream {
public:
    explicit BlockStream(std::ostream& file) : file_(file) { block_.reserve(kBlockBytes); }
    void Write(const char* data, unsigned size) override {
        if (block_.size() + size > kBlockBytes) Flush();
        block_.insert(block_.end(), data, data + size);
        position_ += size;
    }
    void Seek(unsigned position) override {
        if (position == position_) return;
        Flush();
        file_.Seek(position);
        position_ = position;
    }
    /// @return false where what was left could not be written
    bool End() try {
        Flush();
        return true;
    } catch (const std::ios_base::failure&) {
        return false;
    }

private:
    void Flush() {
        file_.Write(block_.data(), static_cast<unsigned>(block_.size()));
        block_.clear();
    }

    OutputStreamStdOstream file_;
    std::vector<char> block_;
    std::uint64_t position_ = 0;
};

struct OutputMode {
    D::Format format;
    std::uint32_t mode;
};
constexpr OutputMode kOutputModes[] = {
    {D::FormatCoord3dC16, 8}, {D::FormatCoord3dAC16, 32}, {D::FormatCoord3dCR16, 2}, {D::FormatCoord3dACRW16, 128}};

std::uint32_t outputModeOf(D::Format format) {
    for (const OutputMode& row : kOutputModes) {
        if (row.format == format) return row.mode;
    }
    return 0;
}

void setNumber(TIFF* tif, TiffTag tag, std::int64_t value) {
    TIFFSetField(tif, tag, static_cast<std::uint32_t>(value));
}

void setMetadata(TIFF* tif, const NurImage& record, const ImageParameters& metadata) {
    setNumber(tif, TiffScan3dVersion, 3);
    setNumber(tif, TiffBufferFormat, bufferFormatOf(record.format));
    const std::pair<TiffTag, const ctiv::OptionalParameter<double>*> doubles[] = {
        {TiffScaleX, &metadata.scaleX},    {TiffScaleY, &metadata.scaleY},   {TiffScaleZ, &metadata.scaleZ},
        {TiffOffsetX, &metadata.offsetX},  {TiffOffsetY, &metadata.offsetY}, {TiffOffsetZ, &metadata.offsetZ},
        {TiffInvalidZ, &metadata.invalidZ}};
    bool isScan = metadata.distanceUnit.IsPresent() || metadata.spaceUsed.IsPresent() || metadata.unitName.IsPresent();
    for (const auto& [tag, parameter] : doubles) {
        if (!parameter->IsPresent()) continue;
        TIFFSetField(tif, tag, parameter->Value());
        isScan = true;
    }
    setNumber(tif, TiffScan3dInvalidDataFlag, metadata.invalidZ.IsPresent() ? 1 : 0);
    if (metadata.distanceUnit.IsPresent()) setNumber(tif, TiffScan3dDistanceUnit, metadata.distanceUnit.Value());
    setNumber(tif, TiffDeviceScanType, isScan ? 8 : 1);
    setNumber(tif, TiffScan3dOutputMode, outputModeOf(record.format));
    setNumber(tif, TiffSpaceUsed,
              metadata.spaceUsed.IsPresent() ? metadata.spaceUsed.Value() : record.Pitch() * record.height);
    const std::string& unit = metadata.unitName.Value();
    if (metadata.unitName.IsPresent() && !unit.empty()) TIFFSetField(tif, TiffScan3dDistanceUnitStr, unit.c_str());
}

void setHead(TIFF* tif, const NurImage& record) {
    TIFFSetField(tif, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(record.roi.width));
    TIFFSetField(tif, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(record.roi.height));
    TIFFSetField(tif, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    TIFFSetField(tif, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tif, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tif, TIFFTAG_ROWSPERSTRIP, 1u);
    char description[50];
    std::snprintf(description, sizeof description, " KORVA format %d", static_cast<int>(record.format));
    TIFFSetField(tif, TIFFTAG_IMAGEDESCRIPTION, description);
}

int writeRows(TIFF* tif, TiffHandle* handle, const NurImage& record, const TiffWriteForm& form) {
    const auto count = static_cast<std::size_t>(record.roi.width);
    const std::size_t lineBytes = (count * form.samples * form.bits + 7) / 8;
    std::vector<std::uint8_t> line(lineBytes);
    for (std::int32_t y = 0; y < record.roi.height; ++y) {
        // Always by way of the line: libtiff swaps its bytes in place for the other byte order.
        const auto* pixels = record.RoiRow<const std::uint8_t>(y);
        if (form.row) {
            form.row(pixels, line.data(), count);
        } else {
            std::memcpy(line.data(), pixels, lineBytes);
        }
        const int answer = TIFFWriteScanline(tif, line.data(), static_cast<std::uint32_t>(y), 0);
        if ((handle && handle->Failed()) || answer < 0) return 1;
    }
    return 0;
}

int write(TIFF* tif, TiffHandle* handle, const NurImage& record) {
    setHead(tif, record);
    if (record.format < D::FormatByte || record.format > D::FormatCoord3dACRW16) {
        return nur_refuse("writeTIFF: unexpected image type\n");
    }
    const TiffWriteForm* form = tiffWriteForm(record.format);
    if (!form) return nur_refuse("writeTIFF: type error\n");
    TIFFSetField(tif, TIFFTAG_PHOTOMETRIC, form->photometric);
    TIFFSetField(tif, TIFFTAG_SAMPLESPERPIXEL, form->samples);
    TIFFSetField(tif, TIFFTAG_BITSPERSAMPLE, form->bits);
    if (form->sampleFormat) TIFFSetField(tif, TIFFTAG_SAMPLEFORMAT, form->sampleFormat);
    if (handle && handle->Failed()) return 1;
    return record.data ? writeRows(tif, handle, record, *form) : 0;
}

}  // namespace

int writeTIFF(TIFF* tif, const NurImage* record) { return write(tif, nullptr, *record); }

int writeTIFFFile(const char* path, const NurImage* record) {
    SafeOutputFile file(path);
    if (!file.IsOpen()) return nur_refuse("writeTIFF: error opening TIFF file\n");
    BlockStream stream(file.Stream());
    TiffHandle handle(path, "wb", stream);
    if (!handle.Get()) {
        return handle.Failed() ? 1 : nur_refuse("writeTIFF: error opening TIFF file\n");
    }
    setNumber(handle.Get(), TiffBufferFormat, bufferFormatOf(record->format));
    if (write(handle.Get(), &handle, *record) != 0) return 1;
    handle.Close();
    if (handle.Failed()) return 1;
    return stream.End() && file.Commit() ? 0 : nur_refuse("writeTIFF: error writing TIFF file\n");
}

int WriteTiffToStream(const NurImage* record, const ImageParameters* metadata, CTivOutputStream* stream) {
    TiffHandle handle("TiffStreamWriter", "w", *stream);
    if (!handle.Get()) return nur_refuse("WriteTiffToStream: Cannot open\n");
    if (metadata) setMetadata(handle.Get(), *record, *metadata);
    const int answer = write(handle.Get(), &handle, *record);
    handle.Close();
    const bool isFailed = handle.Failed();
    if (handle.StreamFailed()) return nur_refuse("WriteTiffToStream: writing to output stream failed\n");
    return answer != 0 || isFailed ? 1 : 0;
}
