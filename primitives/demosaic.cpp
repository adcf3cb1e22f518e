#include "primitives/demosaic.h"

#include <algorithm>
#include <array>

namespace tonewright {

namespace {

constexpr std::size_t kBlock = 512;  // pixels
constexpr std::size_t kMargin = 16;  // samples before each row; two are used
constexpr int kRows = 5;

// All bits of every second word, so that choosing by column is a blend in all forms.
constexpr auto kEverySecond = [] {
    std::array<std::int16_t, kBlock + 1> words{};
    for (std::size_t i = 0; i < words.size(); i += 2) words[i] = -1;
    return words;
}();

using Int16 = std::int16_t;

TONEWRIGHT_BODY Int16 Choose(Int16 mask, Int16 yes, Int16 no) {
    return static_cast<Int16>((yes & mask) | (no & ~mask));
}

/// Sixteen times a channel, rounded to its depth. Sums of 10-bit samples by the weights below stay within 16 bits.
template <int shift, int bits>
TONEWRIGHT_BODY std::uint32_t Finish(Int16 sum) {
    const auto rounded = static_cast<Int16>(static_cast<Int16>(sum + (1 << (shift - 1))) >> shift);
    constexpr Int16 most = (1 << bits) - 1;
    return static_cast<std::uint32_t>(std::clamp<Int16>(rounded, 0, most));
}

template <int shift, int bits>
TONEWRIGHT_BODY void MakeBlock(const BayerRows& from, std::size_t start, std::uint32_t* __restrict pixels,
                               std::size_t count) {
    const std::uint16_t* __restrict up2 = from.rows[0] + start;
    const std::uint16_t* __restrict up = from.rows[1] + start;
    const std::uint16_t* __restrict at = from.rows[2] + start;
    const std::uint16_t* __restrict down = from.rows[3] + start;
    const std::uint16_t* __restrict down2 = from.rows[4] + start;
    const std::int16_t* __restrict mask = kEverySecond.data() + (from.greenFirst ? 1 : 0);  // blocks begin evenly
    const int nativeShift = from.hasRed ? 2 * bits : 0;
    const int oppositeShift = 2 * bits - nativeShift;
    for (std::size_t x = 0; x < count; ++x) {
        const auto here = static_cast<Int16>(at[x]);
        const auto beside = static_cast<Int16>(at[x - 1] + at[x + 1]);
        const auto beside2 = static_cast<Int16>(at[x - 2] + at[x + 2]);
        const auto above = static_cast<Int16>(up[x] + down[x]);
        const auto above2 = static_cast<Int16>(up2[x] + down2[x]);
        const auto corners = static_cast<Int16>(up[x - 1] + up[x + 1] + down[x - 1] + down[x + 1]);
        const auto far = static_cast<Int16>(beside2 + above2);

        const auto cross = static_cast<Int16>(8 * here + 4 * (beside + above) - 2 * far);
        const auto diagonal = static_cast<Int16>(12 * here + 4 * corners - 3 * far);
        const auto common = static_cast<Int16>(10 * here - 2 * corners);
        const auto horizontal = static_cast<Int16>(common + 8 * beside - 2 * beside2 + above2);
        const auto vertical = static_cast<Int16>(common + 8 * above - 2 * above2 + beside2);
        const auto itself = static_cast<Int16>(16 * here);

        const std::uint32_t native = Finish<shift, bits>(Choose(mask[x], itself, horizontal));
        const std::uint32_t green = Finish<shift, bits>(Choose(mask[x], cross, itself));
        const std::uint32_t opposite = Finish<shift, bits>(Choose(mask[x], diagonal, vertical));
        pixels[x] = native << nativeShift | green << bits | opposite << oppositeShift;
    }
}

template <int shift, int bits>
TONEWRIGHT_BODY void MakeBlocks(const BayerRows& rows, std::uint32_t* pixels, std::size_t count) {
    for (std::size_t x = 0; x < count; x += kBlock) {
        MakeBlock<shift, bits>(rows, x, pixels + x, std::min(kBlock, count - x));
    }
}

TONEWRIGHT_BODY void MakeAny(const BayerRows& rows, std::uint32_t* pixels, std::size_t count, const PixelDepth& depth) {
    if (depth.bits == 10) return MakeBlocks<4, 10>(rows, pixels, count);
    if (depth.dropBits == 2) return MakeBlocks<6, 8>(rows, pixels, count);
    MakeBlocks<4, 8>(rows, pixels, count);
}

void MakeRowPlain(const BayerRows& rows, std::uint32_t* pixels, std::size_t count, const PixelDepth& depth) {
    MakeAny(rows, pixels, count, depth);
}
TONEWRIGHT_WIDE void MakeRowWide(const BayerRows& rows, std::uint32_t* pixels, std::size_t count,
                                 const PixelDepth& depth) {
    MakeAny(rows, pixels, count, depth);
}
TONEWRIGHT_WIDEST void MakeRowWidest(const BayerRows& rows, std::uint32_t* pixels, std::size_t count,
                                     const PixelDepth& depth) {
    MakeAny(rows, pixels, count, depth);
}

/// The row or column inside that one outside is the mirror of; an even number of steps away from it.
int Mirrored(int at, int size) {
    if (size == 1) return 0;
    while (at < 0 || at >= size) at = at < 0 ? -at : 2 * (size - 1) - at;
    return at;
}

}  // namespace

DemosaicRow GetDemosaicRow(RowForm form) {
    return form == RowForm::Plain ? MakeRowPlain : form == RowForm::Avx2 ? MakeRowWide : MakeRowWidest;
}

Demosaicer::Demosaicer(int width, int height, const BayerPhase& phase, const PixelDepth& depth)
    : width_(width),
      height_(height),
      phase_(phase),
      depth_(depth),
      makeRow_(GetDemosaicRow(GetRowForm())),
      pitch_((static_cast<std::size_t>(width) + 2 * kMargin + 31) / 32 * 32),
      ring_(kRows * pitch_) {}

std::uint16_t* Demosaicer::RowAt(int y) { return &ring_[static_cast<std::size_t>(y % kRows) * pitch_ + kMargin]; }

std::uint16_t* Demosaicer::NextRow() { return RowAt(given_++); }

void Demosaicer::MirrorEnds(std::uint16_t* row) const {
    for (int x : {-2, -1, width_, width_ + 1}) row[x] = row[Mirrored(x, width_)];
}

void Demosaicer::MakeRow(int y, std::uint32_t* pixels) {
    while (mirrored_ < given_) MirrorEnds(RowAt(mirrored_++));
    BayerRows rows{};
    for (int i = 0; i < kRows; ++i) rows.rows[i] = RowAt(Mirrored(y + i - 2, height_));
    rows.hasRed = y % 2 == phase_.redY;
    rows.greenFirst = rows.hasRed == (phase_.redX == 1);
    makeRow_(rows, pixels, static_cast<std::size_t>(width_), depth_);
}

}  // namespace tonewright
