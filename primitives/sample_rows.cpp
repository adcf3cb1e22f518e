#include "primitives/sample_rows.h"

#include <algorithm>
#include <cstring>

#include "primitives/wide.h"

namespace tonewright {

namespace {

// Samples of a group, which begins and ends with a whole byte.
struct Group {
    std::size_t samples;
    std::size_t bytes;
};

constexpr Group GroupOf(SamplePacking packing) {
    switch (packing) {
        case SamplePacking::Words:
            return {1, 2};
        case SamplePacking::Lsb10:
            return {4, 5};
        case SamplePacking::Lsb12:
        case SamplePacking::Pairs10:
        case SamplePacking::Pairs12:
            return {2, 3};
        case SamplePacking::Triples:
            return {3, 4};
        case SamplePacking::Bytes:
            break;
    }
    return {1, 1};
}

/// One whole group. Byte by byte: the compiler makes wide loads of it, and none reads past the group.
template <SamplePacking packing>
TONEWRIGHT_BODY void UnpackGroup(const std::uint8_t* from, std::uint16_t* words, int dropBits) {
    const auto store = [&](std::size_t i, int sample) { words[i] = static_cast<std::uint16_t>(sample >> dropBits); };
    if constexpr (packing == SamplePacking::Lsb10) {
        store(0, from[0] | (from[1] & 3) << 8);
        store(1, from[1] >> 2 | (from[2] & 15) << 6);
        store(2, from[2] >> 4 | (from[3] & 63) << 4);
        store(3, from[3] >> 6 | from[4] << 2);
    } else if constexpr (packing == SamplePacking::Lsb12) {
        store(0, from[0] | (from[1] & 15) << 8);
        store(1, from[1] >> 4 | from[2] << 4);
    } else if constexpr (packing == SamplePacking::Pairs10) {
        store(0, from[0] << 2 | (from[1] & 3));
        store(1, from[2] << 2 | (from[1] >> 4 & 3));
    } else if constexpr (packing == SamplePacking::Pairs12) {
        store(0, from[0] << 4 | (from[1] & 15));
        store(1, from[2] << 4 | from[1] >> 4);
    } else if constexpr (packing == SamplePacking::Triples) {
        store(0, from[0] | (from[1] & 3) << 8);
        store(1, from[1] >> 2 | (from[2] & 15) << 6);
        store(2, from[2] >> 4 | (from[3] & 63) << 4);
    } else if constexpr (packing == SamplePacking::Words) {
        store(0, from[0] | from[1] << 8);
    } else {
        store(0, from[0]);
    }
}

/// Samples of one group that is not wanted whole, or not there whole.
template <SamplePacking packing>
void UnpackPart(const std::uint8_t* from, std::size_t first, std::uint16_t* words, std::size_t count, int dropBits) {
    constexpr Group group = GroupOf(packing);
    std::uint8_t bytes[8] = {};
    std::uint16_t samples[group.samples];
    std::memcpy(bytes, from, static_cast<std::size_t>(GetPackedBytes(packing, first + count)));
    UnpackGroup<packing>(bytes, samples, dropBits);
    std::copy_n(samples + first, count, words);
}

template <SamplePacking packing>
void Unpack(const std::uint8_t* stream, std::uint64_t first, std::uint16_t* words, std::size_t count, int dropBits) {
    constexpr Group group = GroupOf(packing);
    const std::uint8_t* from = stream + first / group.samples * group.bytes;
    const std::size_t begun = static_cast<std::size_t>(first % group.samples);
    if (begun > 0) {
        const std::size_t head = std::min(count, group.samples - begun);
        UnpackPart<packing>(from, begun, words, head, dropBits);
        from += group.bytes;
        words += head;
        count -= head;
    }
    const std::size_t groups = count / group.samples;
    for (std::size_t i = 0; i < groups; ++i) {
        UnpackGroup<packing>(from + i * group.bytes, words + i * group.samples, dropBits);
    }
    const std::size_t done = groups * group.samples;
    if (done < count) UnpackPart<packing>(from + groups * group.bytes, 0, words + done, count - done, dropBits);
}

TONEWRIGHT_BODY std::uint32_t Rounded(std::uint32_t value, const PixelDepth& depth) {
    return std::min((value + ((1u << depth.dropBits) >> 1)) >> depth.dropBits, (1u << depth.bits) - 1);
}

// The order is the compiler's to know, which then loads whole vectors.
template <std::size_t step, bool redFirst>
TONEWRIGHT_BODY void Pack(const std::uint16_t* __restrict words, std::uint32_t* __restrict pixels, std::size_t count,
                          const PixelDepth& depth) {
    const PixelDepth itsDepth = depth;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t red = Rounded(words[step * i + (redFirst ? 0 : 2)], itsDepth);
        const std::uint32_t green = Rounded(words[step * i + 1], itsDepth);
        const std::uint32_t blue = Rounded(words[step * i + (redFirst ? 2 : 0)], itsDepth);
        pixels[i] = red << 2 * itsDepth.bits | green << itsDepth.bits | blue;
    }
}

TONEWRIGHT_BODY void PackAny(const std::uint16_t* words, std::uint32_t* pixels, std::size_t count,
                             const ChannelOrder& order, const PixelDepth& depth) {
    if (order.step == 3) {
        order.redFirst ? Pack<3, true>(words, pixels, count, depth) : Pack<3, false>(words, pixels, count, depth);
    } else {
        order.redFirst ? Pack<4, true>(words, pixels, count, depth) : Pack<4, false>(words, pixels, count, depth);
    }
}

TONEWRIGHT_BODY std::uint32_t ToByte(float value) {
    return static_cast<std::uint32_t>(std::clamp(value, 0.0f, 255.0f) + 0.5f);
}

}  // namespace

std::uint64_t GetPackedBytes(SamplePacking packing, std::uint64_t count) {
    const Group group = GroupOf(packing);
    const std::uint64_t rest = count % group.samples;
    // Of a broken group the bytes that its samples reach: all packings but these fill them from the first bit on.
    const std::uint64_t restBytes = rest == 0 ? 0
                                    : packing == SamplePacking::Triples
                                        ? 4
                                        : (rest * group.bytes * 8 / group.samples + 7) / 8;
    return count / group.samples * group.bytes + restBytes;
}

void UnpackSamples(SamplePacking packing, const std::uint8_t* stream, std::uint64_t first, std::uint16_t* words,
                   std::size_t count, int dropBits) {
    using enum SamplePacking;
    switch (packing) {
        case Bytes:
            return Unpack<Bytes>(stream, first, words, count, dropBits);
        case Words:
            return Unpack<Words>(stream, first, words, count, dropBits);
        case Lsb10:
            return Unpack<Lsb10>(stream, first, words, count, dropBits);
        case Lsb12:
            return Unpack<Lsb12>(stream, first, words, count, dropBits);
        case Pairs10:
            return Unpack<Pairs10>(stream, first, words, count, dropBits);
        case Pairs12:
            return Unpack<Pairs12>(stream, first, words, count, dropBits);
        case Triples:
            return Unpack<Triples>(stream, first, words, count, dropBits);
    }
}

void RoundToBytes(const std::uint16_t* words, std::uint8_t* bytes, std::size_t count, int dropBits) {
    const PixelDepth depth{dropBits, 8};
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(Rounded(words[i], depth));
}

void PackPixelsPlain(const std::uint16_t* words, std::uint32_t* pixels, std::size_t count, const ChannelOrder& order,
                     const PixelDepth& depth) {
    PackAny(words, pixels, count, order, depth);
}
TONEWRIGHT_WIDE void PackPixelsWide(const std::uint16_t* words, std::uint32_t* pixels, std::size_t count,
                                    const ChannelOrder& order, const PixelDepth& depth) {
    PackAny(words, pixels, count, order, depth);
}

void PackPixels(const std::uint16_t* words, std::uint32_t* pixels, std::size_t count, const ChannelOrder& order,
                const PixelDepth& depth) {
    (RunsWide() ? PackPixelsWide : PackPixelsPlain)(words, pixels, count, order, depth);
}

void PackLumaChroma(const std::uint16_t* words, std::uint32_t* pixels, std::size_t count, bool lumaFirst) {
    const std::size_t luma = lumaFirst ? 0 : 1;
    const std::size_t chroma = 1 - luma;
    float blueness = 0, redness = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (i % 2 == 0) {
            blueness = static_cast<float>(words[2 * i + chroma]) - 128;
            if (i + 1 < count) redness = static_cast<float>(words[2 * i + 2 + chroma]) - 128;
            if (count == 1) blueness = 0;
        }
        const auto gray = static_cast<float>(words[2 * i + luma]);
        const std::uint32_t red = ToByte(gray + 1.402f * redness);
        const std::uint32_t green = ToByte(gray - 0.344136f * blueness - 0.714136f * redness);
        const std::uint32_t blue = ToByte(gray + 1.772f * blueness);
        pixels[i] = red << 16 | green << 8 | blue;
    }
}

}  // namespace tonewright
