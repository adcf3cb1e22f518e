#pragma once

#include <cstddef>
#include <cstdint>

namespace tonewright {

// Samples as cameras send them, and pixels made of them. Samples are handled as words of at most 16 bits, pixels as
// FormatRgb (bytes blue, green, red, 0) or FormatRgb10 (10 bits each, red on top).

/// How a stream of samples lies in bytes, by the Pixel Format Naming Convention (PFNC).
enum class SamplePacking {
    Bytes,    ///< a byte each
    Words,    ///< a little-endian word each, the value in its low bits
    Lsb10,    ///< "10p": 10 bits after 10 bits, from the lowest bit of the first byte on
    Lsb12,    ///< "12p": likewise with 12 bits
    Pairs10,  ///< "10Packed": the high bytes of two samples, and between them a byte with their low bits in 0-1 and 4-5
    Pairs12,  ///< "12Packed": likewise with low bits in 0-3 and 4-7
    Triples   ///< "10p32": three samples of 10 bits in a little-endian word of 32 bits
};

/// @return the bytes that `count` samples take from the start of a stream
std::uint64_t GetPackedBytes(SamplePacking packing, std::uint64_t count);

/// Takes samples out of a stream, and only what they need is read.
/// @param first number of the stream's sample that becomes the first word
/// @param dropBits low bits of each sample to leave out
void UnpackSamples(SamplePacking packing, const std::uint8_t* stream, std::uint64_t first, std::uint16_t* words,
                   std::size_t count, int dropBits);

/// Words with `dropBits` low bits rounded away (a half upwards), at most 255.
void RoundToBytes(const std::uint16_t* words, std::uint8_t* bytes, std::size_t count, int dropBits);

/// What becomes of a pixel's channels: `dropBits` low bits are rounded away, and `bits` (8 or 10) remain, saturated.
struct PixelDepth {
    int dropBits;
    int bits;
};

/// How channels follow each other: red, green, blue, or the reverse.
struct ChannelOrder {
    bool redFirst;
    int step;  ///< samples of a pixel: 3, or 4 where a last one is passed over
};

/// Makes pixels of interleaved channels.
void PackPixels(const std::uint16_t* words, std::uint32_t* pixels, std::size_t count, const ChannelOrder& order,
                const PixelDepth& depth);
// Its two forms give the same; the wide one needs AVX2.
void PackPixelsPlain(const std::uint16_t* words, std::uint32_t* pixels, std::size_t count, const ChannelOrder& order,
                     const PixelDepth& depth);
void PackPixelsWide(const std::uint16_t* words, std::uint32_t* pixels, std::size_t count, const ChannelOrder& order,
                    const PixelDepth& depth);

/// Makes FormatRgb pixels of luma and two chroma samples that neighbours share (ITU-R BT.601, all 256 levels in use,
/// chroma around 128). The last pixel of an odd row has its first chroma sample only, and shares the second with the
/// pixel before; there is none in a row of one pixel, which stays gray.
/// @param words two a pixel  @param lumaFirst luma comes before chroma
void PackLumaChroma(const std::uint16_t* words, std::uint32_t* pixels, std::size_t count, bool lumaFirst);

}  // namespace tonewright
