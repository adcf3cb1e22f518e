#include "imagefile/color_rows_impl.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Row = void (*)(const std::uint8_t*, std::uint8_t*, std::size_t);

struct Forms {
    const char* name;
    Row plain, wide;
    std::size_t from, to;  // bytes a pixel
    bool isTurned;         // the file counts red first
};
constexpr Forms kForms[] = {{"spreadBgr", spreadBgrPlain, spreadBgrWide, 3, 4, false},
                            {"spreadRgb", spreadRgbPlain, spreadRgbWide, 3, 4, true},
                            {"packBgr", packBgrPlain, packBgrWide, 4, 3, false},
                            {"packRgb", packRgbPlain, packRgbWide, 4, 3, true}};

}  // namespace

TEST(ColorRows, BothFormsMoveEachByteToItsPlaceAndNoneBeyondTheEnd) {
    constexpr std::size_t kGuard = 32;
    for (const Forms& forms : kForms) {
        for (const std::size_t count : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 31, 33, 1000}) {
            // Exactly as long as the row, at an odd address, so that the sanitizer sees a read beyond it.
            std::vector<std::uint8_t> from(1 + count * forms.from);
            for (std::size_t i = 0; i < from.size(); ++i) from[i] = static_cast<std::uint8_t>(7 * i + 1);
            std::vector<std::uint8_t> expected(1 + count * forms.to + kGuard, 0xEE);
            for (std::size_t i = 0; i < count; ++i) {
                for (std::size_t k = 0; k < forms.to; ++k) {
                    const std::size_t source = forms.isTurned ? 2 - k : k;
                    expected[1 + i * forms.to + k] = k == 3 ? 0 : from[1 + i * forms.from + source];
                }
            }
            const bool hasWide = __builtin_cpu_supports("avx2");
            for (const Row row : {forms.plain, hasWide ? forms.wide : forms.plain}) {
                std::vector<std::uint8_t> to(expected.size(), 0xEE);
                row(from.data() + 1, to.data() + 1, count);
                EXPECT_EQ(to, expected) << forms.name << ' ' << count;
            }
        }
    }
}
