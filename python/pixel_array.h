#pragma once

#include <pybind11/numpy.h>

#include <optional>
#include <string>

#include "foundation/CTivImage.h"
#include "python/library_call.h"

/// A numpy array as a picture: (height, width, 3) of uint8 or uint16 in the order red, green, blue, or (height, width)
/// of a gray format. Of any strides, written to or not. Holds the array.
///
/// The library's own pixels are blue, green, red and one word unused. An array over such pixels (what ToArray gives, or
/// `bgrx[..., 2::-1]` of somebody's array of four) is taken as it lies, and so is gray in whole rows; all others are
/// copied.
class PixelArray {
public:
    /// @throw TypeError for a type of elements that no picture has, ValueError for a shape that is none
    explicit PixelArray(py::array array);

    /// A picture over the array's own pixels, or a copy of them. Without the GIL.
    /// @param bits in use of each word: 8, 10 or 16; nothing means all
    /// @throw ValueError where the words do not have so many bits
    CTivImage ToImage(std::optional<int> bits) const;

    /// Whether ToImage takes the array's own pixels.
    bool IsWrapped(std::optional<int> bits) const;
    /// Puts a picture of the array's size and kind into it, without the GIL. @throw ValueError for another one
    void Take(const CTivImage& image) const;

    bool IsWriteable() const { return isWriteable_; }
    /// Whether some memory is this array's and the other's, but not all.
    bool OverlapsInPart(const PixelArray& other) const;

private:
    struct Extent {
        const char* first;
        const char* last;  ///< behind the last byte
    };

    CTivData::Format FormatFor(std::optional<int> bits) const;
    char* Row(int y) const { return pixels_ + y * strides_[0]; }

    py::array array_;
    char* pixels_;
    int width_ = 0;
    int height_ = 0;
    std::array<py::ssize_t, 3> strides_{};          ///< bytes from row to row, pixel to pixel, channel to channel
    CTivData::Format gray_ = CTivData::FormatNone;  ///< none: color
    int wordBytes_;
    bool isWriteable_;
    bool isLaidOut_ = false;  ///< as the library's own pixels
    Extent extent_{};
};

/// A picture's pixels as an array that owns them; copied only for FormatRgb10 and FormatBinary.
/// @param subject names the picture in the message @throw WorkFailure for a format that no array has
py::array ToArray(CTivImage image, const std::string& subject);

/// A picture given by its file or as an array.
class PictureSource {
public:
    /// @param bits of an array's words; a file knows
    /// @throw TypeError, ValueError
    PictureSource(const py::object& picture, std::optional<int> bits);

    /// Loads the file as the batch tool does, or takes the array, whose pixels it may share. Without the GIL.
    CTivImage Load() const;
    /// For messages.
    const std::string& GetName() const { return name_; }
    const std::optional<PixelArray>& GetArray() const { return array_; }

private:
    std::string name_;
    std::optional<PixelArray> array_;
    std::optional<int> bits_;
};
