#include "primitives/demosaic.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

using namespace tonewright;

namespace {

constexpr BayerPhase kPhases[] = {{0, 0}, {1, 0}, {0, 1}, {1, 1}};
constexpr PixelDepth kDepths[] = {{0, 8}, {2, 8}, {0, 10}};

int sampleBits(const PixelDepth& depth) { return depth.bits + depth.dropBits; }

/// 0 red, 1 green, 2 blue.
int channelAt(int x, int y, const BayerPhase& phase) {
    const bool redColumn = x % 2 == phase.redX, redRow = y % 2 == phase.redY;
    return redColumn != redRow ? 1 : redRow ? 0 : 2;
}

struct Mosaic {
    int width;
    int height;
    std::vector<std::uint16_t> samples;

    int At(int x, int y) const {
        const auto inside = [](int at, int size) {
            if (size == 1) return 0;
            while (at < 0 || at >= size) at = at < 0 ? -at : 2 * size - 2 - at;
            return at;
        };
        return samples[static_cast<std::size_t>(inside(y, height) * width + inside(x, width))];
    }
};

std::vector<std::uint32_t> demosaic(const Mosaic& mosaic, const BayerPhase& phase, const PixelDepth& depth) {
    std::vector<std::uint32_t> pixels(mosaic.samples.size());
    Demosaicer demosaicer(mosaic.width, mosaic.height, phase, depth);
    const auto width = static_cast<std::size_t>(mosaic.width);
    for (int y = 0, given = 0; y < mosaic.height; ++y) {
        for (; given < mosaic.height && given <= y + 2; ++given) {
            std::copy_n(&mosaic.samples[static_cast<std::size_t>(given) * width], width, demosaicer.NextRow());
        }
        demosaicer.MakeRow(y, &pixels[static_cast<std::size_t>(y) * width]);
    }
    return pixels;
}

// The kernels as the method's authors print them, in sixteenths.
using Kernel = int[5][5];
constexpr Kernel kGreen = {{0, 0, -2, 0, 0}, {0, 0, 4, 0, 0}, {-2, 4, 8, 4, -2}, {0, 0, 4, 0, 0}, {0, 0, -2, 0, 0}};
constexpr Kernel kInItsRow = {
    {0, 0, 1, 0, 0}, {0, -2, 0, -2, 0}, {-2, 8, 10, 8, -2}, {0, -2, 0, -2, 0}, {0, 0, 1, 0, 0}};
constexpr Kernel kInItsColumn = {
    {0, 0, -2, 0, 0}, {0, -2, 8, -2, 0}, {1, 0, 10, 0, 1}, {0, -2, 8, -2, 0}, {0, 0, -2, 0, 0}};
constexpr Kernel kOpposite = {{0, 0, -3, 0, 0}, {0, 4, 0, 4, 0}, {-3, 0, 12, 0, -3}, {0, 4, 0, 4, 0}, {0, 0, -3, 0, 0}};

int channelByHand(const Mosaic& mosaic, int x, int y, int channel, const BayerPhase& phase, const PixelDepth& depth) {
    const int here = channelAt(x, y, phase);
    int sum = 16 * mosaic.At(x, y);
    if (here != channel) {
        const bool isInRow = channelAt(x + 1, y, phase) == channel;
        const Kernel& kernel = channel == 1 ? kGreen : here != 1 ? kOpposite : isInRow ? kInItsRow : kInItsColumn;
        sum = 0;
        for (int dy = -2; dy <= 2; ++dy) {
            for (int dx = -2; dx <= 2; ++dx) sum += kernel[dy + 2][dx + 2] * mosaic.At(x + dx, y + dy);
        }
    }
    const int unit = 16 << depth.dropBits;
    return sum < 0 ? 0 : std::min((sum + unit / 2) / unit, (1 << depth.bits) - 1);
}

std::uint32_t pixelByHand(const Mosaic& mosaic, int x, int y, const BayerPhase& phase, const PixelDepth& depth) {
    std::uint32_t pixel = 0;
    for (int channel = 0; channel < 3; ++channel) {
        pixel = pixel << depth.bits | static_cast<std::uint32_t>(channelByHand(mosaic, x, y, channel, phase, depth));
    }
    return pixel;
}

TEST(Demosaic, EqualsTheKernelsOfTheMethodAtEverySizePhaseAndDepth) {
    std::mt19937 random(3);
    constexpr std::pair<int, int> sizes[] = {{1, 1}, {2, 2}, {3, 2}, {2, 5}, {5, 5}, {8, 3}, {37, 6}, {1031, 4}};
    for (const auto& [width, height] : sizes) {
        for (const auto& phase : kPhases) {
            for (const auto& depth : kDepths) {
                Mosaic mosaic{width, height, std::vector<std::uint16_t>(static_cast<std::size_t>(width * height))};
                const unsigned full = (1u << sampleBits(depth)) - 1;
                // A third of all samples lie at an end, so that sums reach theirs.
                for (auto& sample : mosaic.samples) {
                    const auto kind = random() % 6;
                    sample = static_cast<std::uint16_t>(kind == 0 ? 0 : kind == 1 ? full : random() & full);
                }
                const auto pixels = demosaic(mosaic, phase, depth);
                for (int y = 0; y < height; ++y) {
                    for (int x = 0; x < width; ++x) {
                        ASSERT_EQ(pixels[static_cast<std::size_t>(y * width + x)],
                                  pixelByHand(mosaic, x, y, phase, depth))
                            << x << ", " << y << " of " << width << " x " << height;
                    }
                }
            }
        }
    }
}

TEST(Demosaic, FlatColorComesBackExactlyUpToTheEdges) {
    constexpr int colors[][3] = {{255, 0, 128}, {0, 255, 1}, {17, 99, 201}};
    for (const auto& color : colors) {
        for (const auto& phase : kPhases) {
            Mosaic mosaic{9, 7, std::vector<std::uint16_t>(63)};
            for (int i = 0; i < 63; ++i) {
                mosaic.samples[static_cast<std::size_t>(i)] =
                    static_cast<std::uint16_t>(color[channelAt(i % 9, i / 9, phase)]);
            }
            const auto expected = static_cast<std::uint32_t>(color[0] << 16 | color[1] << 8 | color[2]);
            EXPECT_EQ(demosaic(mosaic, phase, {0, 8}), std::vector<std::uint32_t>(63, expected));
        }
    }
}

TEST(Demosaic, AllFormsGiveTheSameAtAnyLengthAndEndWhereTheyShould) {
    std::mt19937 random(4);
    std::vector<std::uint16_t> samples(5 * 1100);
    for (auto& sample : samples) sample = static_cast<std::uint16_t>(random() & 0x3ff);
    for (const auto& depth : kDepths) {
        for (std::size_t count : {0, 1, 7, 8, 9, 31, 33, 512, 513, 1000}) {
            for (int kind = 0; kind < 4; ++kind) {
                BayerRows rows{{}, kind % 2 == 1, kind / 2 == 1};
                for (std::size_t i = 0; i < 5; ++i) rows.rows[i] = &samples[i * 1100 + 3];
                std::vector<std::uint32_t> expected(count + 16, 0xdeadbeef);
                GetDemosaicRow(RowForm::Plain)(rows, expected.data(), count, depth);
                EXPECT_EQ(std::count(expected.begin(), expected.end(), 0xdeadbeef), 16);
                for (RowForm form : kRowForms) {
                    if (!HasForm(form)) continue;
                    std::vector<std::uint32_t> pixels(count + 16, 0xdeadbeef);
                    GetDemosaicRow(form)(rows, pixels.data(), count, depth);
                    EXPECT_EQ(pixels, expected) << count;
                }
            }
        }
    }
}

}  // namespace
