#pragma once

#include <iosfwd>
#include <memory>

#include "foundation/CTivData.h"
#include "foundation/CTivManager.h"
#include "foundation/CTivString.h"

class CTivOutputStream;
class CTivImageReader;
class ImplImage;
struct NurImage;

/// Two-dimensional typed raster with a region of interest (ROI), on which operators work. Rows run from the top without
/// padding. Owns its pixels or wraps the caller's memory. Failures are reported through CTivManager::ReportError; none
/// throws. Reading pixels from several threads is safe, changing one image from more than one is not.
class CTivImage : public CTivManager {
public:
    CTivImage();
    CTivImage(const CTivImage& source);  ///< deep copy with ROI and significant bits; always owns its memory
    CTivImage(int width, int height, CTivData::Format format, void* data, bool copy);
    CTivImage& operator=(const CTivImage& source);
    CTivImage(CTivImage&&) noexcept;
    CTivImage& operator=(CTivImage&&) noexcept;
    ~CTivImage() override;

    /// @param width, height in pixels; both 0 empties the image. FormatBinary wants a width of a multiple of 8.
    /// @param data pixels to copy (copy true) or to wrap (copy false: they stay the caller's and must outlive this), or
    ///             null: new memory, zeroed if copy is true
    /// @return false, reported: a binary width (the image is unchanged), a negative size, no memory (it is empty)
    bool Set(int width, int height, CTivData::Format format, void* data, bool copy);
    bool Set(int width, int height, CTivData::Format format, const CTivRect& roi, void* data, bool copy);
    bool Free();   ///< empties the image; wrapped memory is left alone
    bool Clear();  ///< zeroes the ROI's pixels
    /// Copies the source's ROI to this image's ROI origin; an empty image takes the size of the source's ROI.
    bool Copy(const CTivImage& source);
    /// Converts the source's ROI into this image, from its ROI origin. This image says the format and must be
    /// allocated where a color format takes part.
    /// @param mode 0 clips or keeps low bits, 1 fits the range, 2 scales 8, 10 and 16 bits by shifts
    bool ConvertFormat(const CTivImage& source, int mode);

    CTivData GetData(int x, int y) const;
    bool SetData(int x, int y, const CTivData& value);  ///< converts to the image's format

    /// Selects the part of the image that operators work on.
    /// @param roi in pixels, from the image's corner; all zero: the whole image; FormatBinary snaps it to multiples of
    /// 8
    /// @return false, the old ROI kept and "CTivImage::SetRoi => ROI rectangle out of range" reported, where a field is
    ///         negative or the rectangle leaves the image
    bool SetRoi(const CTivRect& roi);
    CTivRect GetRoi() const;
    CTivData::Format GetFormat() const;  ///< FormatNone when empty
    int GetWidth() const;                ///< pixels
    int GetHeight() const;               ///< pixels
    int GetSignificantBits() const;      ///< bits in use in each channel
    bool IsAllocated() const;
    bool IsExternal() const;  ///< wraps the caller's memory
    void* GetData();          ///< first pixel, null when empty
    const void* GetData() const;
    void* GetRoiData();  ///< first pixel of the ROI (its byte, for FormatBinary)
    const void* GetRoiData() const;

    /// Bytes of a row and of an image, computed in 64 bits.
    static std::int64_t GetRowBytes(int width, CTivData::Format format);
    static std::int64_t GetImageBytes(int width, int height, CTivData::Format format);

    // Native records: 64 bytes of head, then the pixels.
    /// @return whether the file's first 32 bytes name a native image record
    static bool IsFile(const char* path);
    /// Reads a record. With reallocate the image becomes what the file says; without, the format must be the same and
    /// the image large enough. Data that breaks off leaves zeros and is no failure.
    bool ReadFile(std::istream& stream, bool reallocate);
    bool WriteFile(std::ostream& stream) const;

    // Image files of every kind. Defined in imagefile/, which knows the kinds: link Tonewright::imagefile.
    /// Loads a file; its kind is found by content. @param reallocate take the file's format and size
    bool Load(const CTivString& path, bool reallocate);
    /// Takes the pixels out of a reader, whose results go on telling of the file. @throw std::runtime_error
    bool LoadFrom(CTivImageReader& reader);
    /// @param fileFormat a CTivImageFileFormat of imagefile/
    bool Save(const CTivString& path, int fileFormat) const;
    bool Save(CTivOutputStream& stream, int fileFormat) const;

    /// The lower layer's view of this image, for functions on records. Null without an implementation object.
    const NurImage* GetRecord() const;
    NurImage* GetRecord();

private:
    /// Set; isPromise as nur_alloc has it: what a file declares counts as it is filled.
    bool Assign(int width, int height, CTivData::Format format, void* data, bool copy, bool isPromise);
    std::unique_ptr<ImplImage> impl_;
};
