#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "chart/ChartFinder.h"
#include "chart/SamplingArea.h"
#include "chart/layout_file.h"
#include "tests/fuzz/fuzz_file.h"

using namespace tonewright;

namespace {

void demand(bool condition) {
    if (!condition) std::abort();
}

/// A picture of blocks, 4 x 4 to 19 x 19 pixels, that the bytes color, with some of their noise.
CTivImage makePicture(const std::uint8_t* data, std::size_t size) {
    constexpr CTivData::Format formats[] = {CTivData::FormatRgb, CTivData::FormatRgb10, CTivData::FormatRgb16,
                                            CTivData::FormatUByte, CTivData::FormatHsv};
    const auto byteAt = [&](std::size_t i) { return i < size ? data[i] : std::uint8_t{0}; };
    CTivImage image(byteAt(0), byteAt(1), formats[byteAt(2) % std::size(formats)], nullptr, true);
    const int side = 4 + byteAt(3) % 16, gap = byteAt(3) / 64, grain = 1 + byteAt(4) % 8;
    for (int y = 0; y < image.GetHeight(); ++y) {
        for (int x = 0; x < image.GetWidth(); ++x) {
            const bool isGap = x % side < gap || y % side < gap;
            const auto block = static_cast<std::size_t>(9 + 3 * (x / side + y / side * 8));
            const auto level = [&](std::size_t c) {
                return static_cast<std::uint64_t>(isGap ? 10 : byteAt(block + c)) +
                       static_cast<std::uint64_t>((x * 7 + y * 13) % grain);
            };
            image.SetData(x, y, {image.GetFormat(), level(0) << 32 | level(1) << 16 | level(2)});
        }
    }
    return image;
}

}  // namespace

// Odd sizes, formats, regions and layouts: what is found is whole and finite, what is not has a reason.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool started = startLibrary();
    static_cast<void>(started);
    std::string reason;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto layout = ParseChartLayout(text, reason);
    demand(layout.has_value() || !reason.empty());
    if (layout) demand(layout->names.size() == layout->Count());

    const CTivImage image = makePicture(data, size);
    const auto at = [&](std::size_t i) { return i < size ? static_cast<std::int32_t>(data[i]) : 0; };
    const ChartRoi roi = {at(5) - 5, at(6) - 5, at(7), at(8)};
    ChartLayout plain = GetClassicLayout();
    if (at(4) & 128) plain.references.clear();
    for (const bool isWhole : {true, false}) {
        const FoundChart found = ChartFinder(plain).Find(image, isWhole ? std::nullopt : std::optional(roi));
        demand(found.found || !found.text.empty());
        demand(found.patches.size() == (found.found ? 24u : 0u));
        demand(found.confidence >= 0 && found.confidence <= 1);
        for (const FoundPatch& patch : found.patches) {
            demand(std::isfinite(patch.center.x) && std::isfinite(patch.center.y));
            for (const ChartPoint& corner : patch.corners) demand(std::isfinite(corner.x) && std::isfinite(corner.y));
        }
        demand(MeasureAreas(image, FindSamplingAreas(image, found)).size() == found.patches.size());
    }
    return 0;
}
