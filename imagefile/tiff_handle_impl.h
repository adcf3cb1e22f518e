#pragma once

#include <tiffio.h>

#include <string>

#include "foundation/CTivOutputStream.h"

/// The private tags, merged into every TIFF that this process opens.
enum TiffTag : std::uint32_t {
    TiffScaleX = 65000,
    TiffOffsetX = 65001,
    TiffScaleY = 65003,
    TiffOffsetY = 65004,
    TiffScaleZ = 65006,
    TiffOffsetZ = 65007,
    TiffInvalidZ = 65009,
    TiffScan3dVersion = 65100,
    TiffScan3dInvalidDataFlag = 65101,
    TiffScan3dDistanceUnit = 65102,
    TiffScan3dOutputMode = 65103,
    TiffDeviceScanType = 65104,
    TiffBufferFormat = 65105,
    TiffSpaceUsed = 65106,
    TiffScan3dDistanceUnitStr = 65107
};

/// A TIFF opened with handlers of its own: no state of the process is touched and no jump leaves libtiff. The first
/// error that libtiff tells of is kept, and ends the work at the next question after it.
class TiffHandle {
public:
    /// @param mode as TIFFOpen takes it
    TiffHandle(const char* path, const char* mode);
    /// Writes through `stream`, which must outlive the handle. What it throws is caught and ends the work.
    TiffHandle(const char* name, const char* mode, CTivOutputStream& stream);
    TiffHandle(const TiffHandle&) = delete;
    TiffHandle& operator=(const TiffHandle&) = delete;
    ~TiffHandle() { Close(); }

    /// Null where opening failed, and after closing.
    TIFF* Get() const { return tif_; }
    /// Writes out what is due and closes.
    void Close();
    /// Reports libtiff's first error, once, if there was one. Not to be called from inside libtiff.
    /// @return whether there was one
    bool Failed();
    /// The most that a file of this size can hold unpacked; a head that declares more is a lie.
    std::int64_t MostBytes() const { return mostBytes_; }
    bool StreamFailed() const { return streamFailed_; }

private:
    struct Callbacks;

    TIFF* tif_ = nullptr;
    std::string error_;
    bool isReported_ = false;
    std::int64_t mostBytes_ = 0;
    CTivOutputStream* stream_ = nullptr;
    std::uint64_t position_ = 0;
    std::uint64_t size_ = 0;
    bool streamFailed_ = false;
};
