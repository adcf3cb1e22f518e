#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#include "chart/working_copy_impl.h"
#include "foundation/nur_image.h"

namespace tonewright {

namespace {

constexpr int kToneBits = 10;  // as many as four 8-bit values add up to

const std::array<std::uint8_t, 1 << kToneBits>& toneTable() {
    static const auto table = [] {
        std::array<std::uint8_t, 1 << kToneBits> tones = {};
        const double last = static_cast<double>(tones.size() - 4);  // four times 255
        for (std::size_t i = 0; i < tones.size(); ++i) {
            const double share = std::min(1.0, static_cast<double>(i) / last);
            tones[i] = static_cast<std::uint8_t>(std::lround(255 * std::sqrt(share)));
        }
        return tones;
    }();
    return table;
}

// How a picture's pixels are read: as numbers with a channel in every so many bits.
struct Pixel8 {
    using Word = std::uint32_t;
    static constexpr int kBits = 8;
};
struct Pixel10 {
    using Word = std::uint32_t;
    static constexpr int kBits = 10;
};
struct Pixel16 {
    using Word = std::uint64_t;
    static constexpr int kBits = 16;
};

template <class Pixel>
std::uint32_t channel(typename Pixel::Word word, int c) {
    return static_cast<std::uint32_t>(word >> Pixel::kBits * c & ((1u << Pixel::kBits) - 1));
}

TonedWord tone(std::uint32_t blue, std::uint32_t green, std::uint32_t red, int shift) {
    const auto& table = toneTable();
    const auto look = [&](std::uint32_t sum) {
        return TonedWord{table[std::min<std::uint32_t>(sum >> shift, (1 << kToneBits) - 1)]};
    };
    return look(blue) | look(green) << 8 | look(red) << 16;
}

/// Adds four pixels, blue and red in one word, which leaves room for both sums.
template <class Pixel>
void halveRow(const typename Pixel::Word* upper, const typename Pixel::Word* lower, int width, int shift,
              TonedWord* out) {
    using Word = typename Pixel::Word;
    constexpr Word one = (Word{1} << Pixel::kBits) - 1, outer = one | one << 2 * Pixel::kBits;
    for (int x = 0; x < width; ++x) {
        const Word a = upper[2 * x], b = upper[2 * x + 1], c = lower[2 * x], d = lower[2 * x + 1];
        const Word sums = (a & outer) + (b & outer) + (c & outer) + (d & outer);
        const auto green = [](Word word) { return static_cast<std::uint32_t>(word >> Pixel::kBits & one); };
        out[x] = tone(static_cast<std::uint32_t>(sums & (4 * one + 3)), green(a) + green(b) + green(c) + green(d),
                      static_cast<std::uint32_t>(sums >> 2 * Pixel::kBits), shift);
    }
}

/// Of whole pixels. Those of eight bits need no shift, and have a table that saves it.
template <class Pixel>
void toneRow(const typename Pixel::Word* in, int width, int shift, TonedWord* out) {
    std::array<std::uint8_t, 256> tones;
    for (std::size_t i = 0; i < tones.size(); ++i) tones[i] = toneTable()[4 * i];
    for (int x = 0; x < width; ++x) {
        const auto blue = channel<Pixel>(in[x], 0), green = channel<Pixel>(in[x], 1), red = channel<Pixel>(in[x], 2);
        if constexpr (Pixel::kBits == 8) {
            out[x] = TonedWord{tones[blue]} | TonedWord{tones[green]} << 8 | TonedWord{tones[red]} << 16;
        } else {
            out[x] = tone(4 * blue, 4 * green, 4 * red, shift);
        }
    }
}

template <class Pixel>
int toneShift(const CTivImage& picture, const CTivRect& part) {
    constexpr int kUsual = Pixel::kBits + 2 - kToneBits, kRowStep = 16;
    if (kUsual == 0) return 0;
    std::uint32_t most = 0;
    for (int y = 0; y < part.height; y += kRowStep) {
        const auto* row = picture.GetRecord()->Row<typename Pixel::Word>(part.y + y) + part.x;
        for (int x = 0; x < part.width; ++x) {
            for (int c = 0; c < 3; ++c) most |= channel<Pixel>(row[x], c);
        }
    }
    return std::clamp(static_cast<int>(std::bit_width(most)) + 2 - kToneBits, 0, kUsual);
}

template <class Pixel>
WorkingCopy halfCopy(const CTivImage& picture, const CTivRect& part, int shift) {
    using Word = typename Pixel::Word;
    WorkingCopy copy{2, part.width / 2, part.height / 2, {}};
    copy.words.resize(static_cast<std::size_t>(copy.width) * static_cast<std::size_t>(copy.height));
    const NurImage& record = *picture.GetRecord();
    for (int y = 0; y < copy.height; ++y) {
        halveRow<Pixel>(record.Row<Word>(part.y + 2 * y) + part.x, record.Row<Word>(part.y + 2 * y + 1) + part.x,
                        copy.width, shift, copy.words.data() + std::ptrdiff_t{y} * copy.width);
    }
    return copy;
}

/// Calls serve with the reading of the picture's format.
template <class Serve>
auto withPixel(const CTivImage& picture, Serve serve) {
    if (picture.GetFormat() == CTivData::FormatRgb16) return serve(Pixel16{});
    if (picture.GetFormat() == CTivData::FormatRgb10) return serve(Pixel10{});
    return serve(Pixel8{});
}

/// Byte by byte over four channels, the last of which is 0 everywhere.
void changeRow(const std::uint8_t* __restrict above, const std::uint8_t* __restrict here,
               const std::uint8_t* __restrict below, int count, std::uint8_t* __restrict change) {
    for (int i = 0; i < count; ++i) {
        const std::uint8_t left = here[i], right = here[i + 8], up = above[i + 4], down = below[i + 4];
        const auto across = static_cast<std::uint8_t>(std::max(left, right) - std::min(left, right));
        const auto along = static_cast<std::uint8_t>(std::max(up, down) - std::min(up, down));
        change[i] = std::max(across, along);
    }
}

void largestChannel(const TonedWord* __restrict words, int count, std::uint8_t* __restrict out) {
    for (int x = 0; x < count; ++x) {
        const TonedWord word = words[x];
        out[x] = static_cast<std::uint8_t>(std::max(std::max(word & 0xFF, word >> 8 & 0xFF), word >> 16));
    }
}

}  // namespace

bool HasToned(CTivData::Format format) {
    return format == CTivData::FormatRgb || format == CTivData::FormatRgb10 || format == CTivData::FormatRgb16;
}

int FindToneShift(const CTivImage& picture, const CTivRect& part) {
    return withPixel(picture, [&]<class Pixel>(Pixel) { return toneShift<Pixel>(picture, part); });
}

WorkingCopy MakeHalfCopy(const CTivImage& picture, const CTivRect& part, int toneShift) {
    return withPixel(picture, [&]<class Pixel>(Pixel) { return halfCopy<Pixel>(picture, part, toneShift); });
}

WorkingCopy Halved(const WorkingCopy& copy) {
    WorkingCopy half{2 * copy.factor, copy.width / 2, copy.height / 2, {}};
    half.words.resize(static_cast<std::size_t>(half.width) * static_cast<std::size_t>(half.height));
    // Two channels at a time in the halves of a word, so that their sums have room.
    const auto even = [](TonedWord word) { return word & 0x00FF00FF; };
    const auto odd = [](TonedWord word) { return word >> 8 & 0x00FF00FF; };
    for (int y = 0; y < half.height; ++y) {
        const TonedWord* upper = copy.Row(2 * y);
        const TonedWord* lower = copy.Row(2 * y + 1);
        TonedWord* out = half.words.data() + std::ptrdiff_t{y} * half.width;
        for (int x = 0; x < half.width; ++x) {
            const TonedWord a = upper[2 * x], b = upper[2 * x + 1], c = lower[2 * x], d = lower[2 * x + 1];
            const TonedWord evens = (even(a) + even(b) + even(c) + even(d) + 0x00020002) >> 2 & 0x00FF00FF;
            const TonedWord odds = (odd(a) + odd(b) + odd(c) + odd(d) + 0x00020002) >> 2 & 0x00FF00FF;
            out[x] = evens | odds << 8;
        }
    }
    return half;
}

/// @param rowOf gives row y, valid until two rows further
template <class RowOf>
static CTivImage measureChange(int width, int height, RowOf rowOf) {
    CTivImage change(width, height, CTivData::FormatUByte, nullptr, false);
    if (!change.IsAllocated()) return change;
    NurImage& record = *change.GetRecord();
    const int inner = width - 2;
    std::vector<TonedWord> differences(static_cast<std::size_t>(std::max(inner, 0)));
    const TonedWord *above = nullptr, *here = nullptr;
    const auto bytes = [](const TonedWord* row) { return reinterpret_cast<const std::uint8_t*>(row); };
    for (int y = 0; y <= height; ++y) {
        const TonedWord* below = y < height ? rowOf(y) : nullptr;
        if (y > 0) {
            std::uint8_t* out = record.Row(y - 1);
            std::fill_n(out, width, std::uint8_t{255});
            if (above && below && inner > 0) {
                changeRow(bytes(above), bytes(here), bytes(below), 4 * inner,
                          reinterpret_cast<std::uint8_t*>(differences.data()));
                largestChannel(differences.data(), inner, out + 1);
            }
        }
        above = here;
        here = below;
    }
    return change;
}

CTivImage MeasureChange(const WorkingCopy& copy) {
    return measureChange(copy.width, copy.height, [&](int y) { return copy.Row(y); });
}

CTivImage MeasureChange(const CTivImage& picture, const CTivRect& part, int toneShift) {
    return withPixel(picture, [&]<class Pixel>(Pixel) {
        std::array<std::vector<TonedWord>, 3> rows;
        return measureChange(part.width, part.height, [&](int y) -> const TonedWord* {
            std::vector<TonedWord>& row = rows[static_cast<std::size_t>(y % 3)];
            row.resize(static_cast<std::size_t>(part.width));
            toneRow<Pixel>(picture.GetRecord()->Row<typename Pixel::Word>(part.y + y) + part.x, part.width, toneShift,
                           row.data());
            return row.data();
        });
    });
}

SmoothPicture::SmoothPicture(const CTivImage& picture, int toneShift)
    : data_(picture.GetRecord()->Row(0)),
      pitch_(picture.GetRecord()->Pitch()),
      width_(picture.GetWidth()),
      height_(picture.GetHeight()),
      bits_(CTivData::GetBitsPerChannel(picture.GetFormat())),
      scale_(1.0 / ((1 << (kToneBits - 2 + toneShift)) - 1)) {}

template <class Word>
void SmoothPicture::AddWords(const ChartPoint& place, TonedColor& sums) const {
    const int x = static_cast<int>(place.x), y = static_cast<int>(place.y);
    const double right = place.x - x, below = place.y - y;
    const auto* upper = reinterpret_cast<const Word*>(data_ + y * pitch_) + x;
    const auto* lower = reinterpret_cast<const Word*>(data_ + (y + 1) * pitch_) + x;
    const Word mask = (Word{1} << bits_) - 1;
    for (int c = 0; c < 3; ++c) {
        const int shift = bits_ * (2 - c);
        const auto level = [&](Word word) { return static_cast<double>(static_cast<int>(word >> shift & mask)); };
        const double above = level(upper[0]) + right * (level(upper[1]) - level(upper[0]));
        const double under = level(lower[0]) + right * (level(lower[1]) - level(lower[0]));
        sums[static_cast<std::size_t>(c)] += (above + below * (under - above)) * scale_;
    }
}

void SmoothPicture::AddAt(const ChartPoint& place, TonedColor& sums) const {
    if (bits_ == 16) return AddWords<std::uint64_t>(place, sums);
    AddWords<std::uint32_t>(place, sums);
}

}  // namespace tonewright
