#include "python/pixel_array.h"

#include <array>
#include <cstring>
#include <limits>
#include <memory>

#include "imagefile/picture_file.h"
#include "primitives/color_rows.h"

using namespace tonewright;

namespace {

/// Gray pixels that an array has too.
struct GrayKind {
    CTivData::Format format;
    char kind;  ///< as numpy has it
    int bytes;
};
constexpr GrayKind kGrayKinds[] = {
    {CTivData::FormatUByte, 'u', 1}, {CTivData::FormatUShort, 'u', 2}, {CTivData::FormatUInt, 'u', 4},
    {CTivData::FormatByte, 'i', 1},  {CTivData::FormatShort, 'i', 2},  {CTivData::FormatInt, 'i', 4},
    {CTivData::FormatFloat, 'f', 4}, {CTivData::FormatDouble, 'f', 8},
};

constexpr int kColors = 3;
constexpr py::ssize_t kWords = 4;  // of a pixel: blue, green, red, unused

CTivData::Format findGray(char kind, py::ssize_t bytes) {
    for (const GrayKind& gray : kGrayKinds) {
        if (gray.kind == kind && gray.bytes == bytes) return gray.format;
    }
    return CTivData::FormatNone;
}

/// The array whose memory this one looks at.
py::array findRoot(const py::array& array) {
    py::array root = array;
    while (py::isinstance<py::array>(root.base())) root = py::reinterpret_borrow<py::array>(root.base());
    return root;
}

std::pair<const char*, const char*> extentOf(const py::array& array) {
    const auto* first = static_cast<const char*>(array.data());
    const char* last = first + array.itemsize();
    for (py::ssize_t axis = 0; axis < array.ndim(); ++axis) {
        const py::ssize_t reach = (array.shape(axis) - 1) * array.strides(axis);
        (reach < 0 ? first : last) += reach;
    }
    return {first, last};
}

template <class Word>
Word readWord(const char* at) {
    Word word;
    std::memcpy(&word, at, sizeof word);
    return word;
}

/// Colors of any strides to the library's pixels; bytes without gaps by its own wide loops.
template <class Word>
void packRow(const char* source, py::ssize_t step, py::ssize_t channel, Word* __restrict pixels, int width) {
    if constexpr (sizeof(Word) == 1) {
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(source);
        const auto count = static_cast<std::size_t>(width);
        if (step == kColors && channel == 1) return SpreadRgb(bytes, pixels, count);
        if (step == kColors && channel == -1) return SpreadBgr(bytes - 2, pixels, count);
    }
    for (int x = 0; x < width; ++x, source += step, pixels += kWords) {
        pixels[2] = readWord<Word>(source);
        pixels[1] = readWord<Word>(source + channel);
        pixels[0] = readWord<Word>(source + 2 * channel);
        pixels[3] = 0;
    }
}

template <class Word>
void unpackRow(const Word* pixels, char* target, py::ssize_t step, py::ssize_t channel, int width) {
    if constexpr (sizeof(Word) == 1) {
        auto* const bytes = reinterpret_cast<std::uint8_t*>(target);
        const auto count = static_cast<std::size_t>(width);
        if (step == kColors && channel == 1) return PackRgb(pixels, bytes, count);
        if (step == kColors && channel == -1) return PackBgr(pixels, bytes - 2, count);
    }
    for (int x = 0; x < width; ++x, target += step, pixels += kWords) {
        std::memcpy(target, &pixels[2], sizeof(Word));
        std::memcpy(target + channel, &pixels[1], sizeof(Word));
        std::memcpy(target + 2 * channel, &pixels[0], sizeof(Word));
    }
}

void packRow10(const char* source, py::ssize_t step, py::ssize_t channel, std::uint32_t* pixels, int width) {
    for (int x = 0; x < width; ++x, source += step) {
        std::uint32_t pixel = 0;
        for (int c = 0; c < kColors; ++c) {
            const auto word = readWord<std::uint16_t>(source + c * channel);
            if (word > 1023) throw py::value_error("a value is above 1023, which 10 bits do not hold");
            pixel = pixel << 10 | word;
        }
        pixels[x] = pixel;
    }
}

void unpackRow10(const std::uint32_t* pixels, char* target, py::ssize_t step, py::ssize_t channel, int width) {
    for (int x = 0; x < width; ++x, target += step) {
        for (int c = 0; c < kColors; ++c) {
            const auto word = static_cast<std::uint16_t>(pixels[x] >> 10 * (2 - c) & 1023);
            std::memcpy(target + c * channel, &word, sizeof word);
        }
    }
}

void copyRow(const char* source, py::ssize_t sourceStep, char* target, py::ssize_t targetStep, int width, int bytes) {
    for (int x = 0; x < width; ++x, source += sourceStep, target += targetStep) {
        std::memcpy(target, source, static_cast<std::size_t>(bytes));
    }
}

}  // namespace

PixelArray::PixelArray(py::array array)
    : array_(std::move(array)),
      pixels_(static_cast<char*>(const_cast<void*>(array_.data()))),
      wordBytes_(static_cast<int>(array_.itemsize())),
      isWriteable_(array_.writeable()) {
    const char kind = array_.dtype().kind();
    const bool isNative = array_.dtype().attr("isnative").cast<bool>();
    const py::ssize_t dimensions = array_.ndim();
    const bool isColor = dimensions == 3 && array_.shape(2) == kColors;
    if (!isColor && dimensions != 2)
        throw py::value_error("a picture has the shape (height, width, 3) or (height, width)");
    const bool isKnown = isColor ? kind == 'u' && wordBytes_ <= 2 : findGray(kind, wordBytes_) != CTivData::FormatNone;
    if (!isNative || !isKnown) {
        throw py::type_error(isColor ? "colors are of uint8 or uint16 in the machine's byte order"
                                     : "gray pixels are of whole or floating numbers of 8 to 64 bits");
    }
    constexpr py::ssize_t most = std::numeric_limits<int>::max();
    if (array_.shape(0) > most || array_.shape(1) > most) throw py::value_error("the picture is too large");
    if (array_.size() == 0) throw py::value_error("the picture has no pixels");
    height_ = static_cast<int>(array_.shape(0));
    width_ = static_cast<int>(array_.shape(1));
    if (!isColor) gray_ = findGray(kind, wordBytes_);
    for (py::ssize_t axis = 0; axis < dimensions; ++axis)
        strides_[static_cast<std::size_t>(axis)] = array_.strides(axis);
    std::tie(extent_.first, extent_.last) = extentOf(array_);

    const py::ssize_t pixelBytes = isColor ? kWords * wordBytes_ : wordBytes_;
    const bool isPacked = strides_[0] == pixelBytes * width_ && strides_[1] == pixelBytes;
    const char* const base = isColor ? pixels_ - 2 * wordBytes_ : pixels_;
    const bool isAligned = reinterpret_cast<std::uintptr_t>(base) % static_cast<std::size_t>(pixelBytes) == 0;
    isLaidOut_ = isPacked && isAligned;
    if (isColor && isLaidOut_) {
        // The unused word of the last pixel lies behind the colors: it must be the memory's own, too.
        const auto [first, last] = extentOf(findRoot(array_));
        isLaidOut_ = strides_[2] == -wordBytes_ && first <= base && base + pixelBytes * width_ * height_ <= last;
    }
}

CTivData::Format PixelArray::FormatFor(std::optional<int> bits) const {
    if (gray_ != CTivData::FormatNone) return gray_;
    const int wordBits = wordBytes_ * 8;
    if (bits == 10 && wordBits == 16) return CTivData::FormatRgb10;
    if (bits && *bits != wordBits) throw py::value_error("bits is 8 for uint8, 10 or 16 for uint16");
    return wordBits == 8 ? CTivData::FormatRgb : CTivData::FormatRgb16;
}

bool PixelArray::IsWrapped(std::optional<int> bits) const {
    return isLaidOut_ && FormatFor(bits) != CTivData::FormatRgb10;
}

CTivImage PixelArray::ToImage(std::optional<int> bits) const {
    const CTivData::Format format = FormatFor(bits);
    const bool isColor = gray_ == CTivData::FormatNone;
    CTivImage image;
    void* const own = IsWrapped(bits) ? pixels_ - (isColor ? 2 * wordBytes_ : 0) : nullptr;
    Require([&] { return image.Set(width_, height_, format, own, false); }, "array", "not enough memory");
    if (own) return image;
    auto* target = static_cast<char*>(image.GetData());
    const std::int64_t rowBytes = CTivImage::GetRowBytes(width_, format);
    for (int y = 0; y < height_; ++y, target += rowBytes) {
        if (!isColor) {
            copyRow(Row(y), strides_[1], target, wordBytes_, width_, wordBytes_);
        } else if (format == CTivData::FormatRgb10) {
            packRow10(Row(y), strides_[1], strides_[2], reinterpret_cast<std::uint32_t*>(target), width_);
        } else if (wordBytes_ == 1) {
            packRow(Row(y), strides_[1], strides_[2], reinterpret_cast<std::uint8_t*>(target), width_);
        } else {
            packRow(Row(y), strides_[1], strides_[2], reinterpret_cast<std::uint16_t*>(target), width_);
        }
    }
    return image;
}

void PixelArray::Take(const CTivImage& image) const {
    const CTivData::Format format = image.GetFormat();
    const bool isDeep = format == CTivData::FormatRgb10 || format == CTivData::FormatRgb16;
    const bool isAlike =
        gray_ != CTivData::FormatNone ? format == gray_ : (wordBytes_ == 2 ? isDeep : format == CTivData::FormatRgb);
    if (!isAlike || image.GetWidth() != width_ || image.GetHeight() != height_) {
        throw py::value_error("the array has another shape or type than the picture");
    }
    const auto* source = static_cast<const char*>(image.GetData());
    const std::int64_t rowBytes = CTivImage::GetRowBytes(width_, format);
    for (int y = 0; y < height_; ++y, source += rowBytes) {
        if (gray_ != CTivData::FormatNone) {
            copyRow(source, wordBytes_, Row(y), strides_[1], width_, wordBytes_);
        } else if (format == CTivData::FormatRgb10) {
            unpackRow10(reinterpret_cast<const std::uint32_t*>(source), Row(y), strides_[1], strides_[2], width_);
        } else if (wordBytes_ == 1) {
            unpackRow(reinterpret_cast<const std::uint8_t*>(source), Row(y), strides_[1], strides_[2], width_);
        } else {
            unpackRow(reinterpret_cast<const std::uint16_t*>(source), Row(y), strides_[1], strides_[2], width_);
        }
    }
}

bool PixelArray::OverlapsInPart(const PixelArray& other) const {
    const bool isSame =
        pixels_ == other.pixels_ && strides_ == other.strides_ && width_ == other.width_ && height_ == other.height_;
    // A pixel's unused word counts.
    return !isSame && extent_.first < other.extent_.last + wordBytes_ &&
           other.extent_.first < extent_.last + wordBytes_;
}

namespace {

/// Memory that an array keeps.
py::capsule keep(CTivImage image) {
    auto kept = std::make_unique<CTivImage>(std::move(image));
    py::capsule capsule(kept.get(), [](void* pointer) { delete static_cast<CTivImage*>(pointer); });
    static_cast<void>(kept.release());
    return capsule;
}

/// (height, width, words) or (height, width), over the image's own pixels.
py::array wrap(CTivImage image, const py::dtype& type, py::ssize_t words) {
    std::vector<py::ssize_t> shape = {image.GetHeight(), image.GetWidth()};
    if (words > 1) shape.push_back(words);
    void* const pixels = image.GetData();
    return py::array(type, std::move(shape), {}, pixels, keep(std::move(image)));
}

py::array wrapColors(CTivImage image, const py::dtype& type) {
    const py::array words = wrap(std::move(image), type, kWords);
    const py::ssize_t bytes = type.itemsize();
    const auto* red = static_cast<const char*>(words.data()) + 2 * bytes;
    return py::array(type, {words.shape(0), words.shape(1), py::ssize_t{kColors}},
                     {words.strides(0), words.strides(1), -bytes}, red, words);
}

py::array copyBits(const CTivImage& image) {
    py::array_t<bool> array({image.GetHeight(), image.GetWidth()});
    bool* pixel = array.mutable_data();
    for (int y = 0; y < image.GetHeight(); ++y) {
        for (int x = 0; x < image.GetWidth(); ++x) *pixel++ = image.GetData(x, y).AsBool();
    }
    return array;
}

}  // namespace

py::array ToArray(CTivImage image, const std::string& subject) {
    const CTivData::Format format = image.GetFormat();
    if (format == CTivData::FormatRgb) return wrapColors(std::move(image), py::dtype::of<std::uint8_t>());
    if (format == CTivData::FormatRgb16) return wrapColors(std::move(image), py::dtype::of<std::uint16_t>());
    if (format == CTivData::FormatBinary) return copyBits(image);
    if (format == CTivData::FormatRgb10) {
        py::array_t<std::uint16_t> array({image.GetHeight(), image.GetWidth(), kColors});
        const PixelArray target(array);
        Work([&] { target.Take(image); });
        return array;
    }
    for (const GrayKind& gray : kGrayKinds) {
        if (gray.format == format) return wrap(std::move(image), py::dtype(gray.kind + std::to_string(gray.bytes)), 1);
    }
    const char* const name = CTivData::GetFormatName(format);
    throw WorkFailure(subject + ": a picture of " + (name ? name : "no format") + " has no form as an array");
}

PictureSource::PictureSource(const py::object& picture, std::optional<int> bits) : bits_(bits) {
    if (py::isinstance<py::array>(picture)) {
        name_ = "array";
        array_.emplace(py::reinterpret_borrow<py::array>(picture));
        return;
    }
    if (!IsPath(picture)) throw py::type_error("a picture is a file name or a numpy array");
    if (bits) throw py::value_error("bits is for arrays; a file knows its own");
    name_ = ToPath(picture);
}

CTivImage PictureSource::Load() const { return array_ ? array_->ToImage(bits_) : LoadImage(name_); }
