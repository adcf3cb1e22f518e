#include "acquisition/zvn/simulated_frame_impl.h"

#include <algorithm>
#include <cstring>

#include "acquisition/zvn/zvn_formats.h"

namespace {

struct Color {
    int red, green, blue;

    int Gray() const { return (299 * red + 587 * green + 114 * blue + 500) / 1000; }
};

constexpr std::byte toByte(int value) { return static_cast<std::byte>(value); }
constexpr int toTenBits(int value) { return (value * 1023 + 127) / 255; }

template <class Word>
void put(std::byte* row, int x, Word word) {
    std::memcpy(row + static_cast<std::size_t>(x) * sizeof word, &word, sizeof word);
}

void putBytes(std::byte* pixel, int first, int second, int third) {
    pixel[0] = toByte(first);
    pixel[1] = toByte(second);
    pixel[2] = toByte(third);
}

struct PixelWriter {
    std::uint32_t format;
    void (*write)(std::byte* row, int x, const Color& color);
};

constexpr PixelWriter kWriters[] = {
    {kZvnMono8, [](std::byte* row, int x, const Color& c) { row[x] = toByte(c.Gray()); }},
    {kZvnMono16,
     [](std::byte* row, int x, const Color& c) { put(row, x, static_cast<std::uint16_t>(c.Gray() * 257)); }},
    {kZvnMono1,
     [](std::byte* row, int x, const Color& c) {
         const std::byte bit{static_cast<unsigned char>(1 << x % 8)};
         row[x / 8] = c.Gray() >= 128 ? row[x / 8] | bit : row[x / 8] & ~bit;
     }},
    {kZvnRgb32,
     [](std::byte* row, int x, const Color& c) {
         putBytes(row + 4 * std::ptrdiff_t{x}, c.blue, c.green, c.red);
         row[4 * std::ptrdiff_t{x} + 3] = std::byte{0};
     }},
    {kZvnRgb10,
     [](std::byte* row, int x, const Color& c) {
         put(row, x, static_cast<std::uint32_t>(toTenBits(c.red) << 20 | toTenBits(c.green) << 10 | toTenBits(c.blue)));
     }},
    {kZvnRgb24,
     [](std::byte* row, int x, const Color& c) { putBytes(row + 3 * std::ptrdiff_t{x}, c.blue, c.green, c.red); }},
    {kZvnRgbr24,
     [](std::byte* row, int x, const Color& c) { putBytes(row + 3 * std::ptrdiff_t{x}, c.red, c.green, c.blue); }},
};

Color pictureColor(const CTivImage& picture, const ZvnFrameFormat& frame, int x, int y) {
    const std::int64_t column = std::int64_t{x} * picture.GetWidth() / frame.width;
    const std::int64_t row = std::int64_t{y} * picture.GetHeight() / frame.height;
    const auto* pixel = static_cast<const std::uint8_t*>(picture.GetData()) + 4 * (row * picture.GetWidth() + column);
    return {pixel[2], pixel[1], pixel[0]};
}

}  // namespace

void DrawSimulatedFrame(const ZvnFrameFormat& frame, const CTivImage& picture, std::uint32_t number, int noise,
                        std::minstd_rand& random, std::span<std::byte> destination) {
    const auto writer = std::ranges::find(kWriters, frame.format, &PixelWriter::format);
    if (writer == std::end(kWriters)) return;
    std::uniform_int_distribution<int> deviation(-noise, noise);
    const auto noisy = [&](int value) { return noise > 0 ? std::clamp(value + deviation(random), 0, 255) : value; };
    const std::size_t rowBytes = destination.size() / static_cast<std::size_t>(frame.height);
    for (int y = 0; y < frame.height; ++y) {
        std::byte* row = destination.data() + static_cast<std::size_t>(y) * rowBytes;
        for (int x = 0; x < frame.width; ++x) {
            const Color color = picture.IsAllocated() ? pictureColor(picture, frame, x, y)
                                                      : Color{x % 256, y % 256, static_cast<int>(number % 256)};
            writer->write(row, x, {noisy(color.red), noisy(color.green), noisy(color.blue)});
        }
    }
}
