#include "primitives/color_rows.h"

#include <gtest/gtest.h>

#include <vector>

#include "primitives/wide.h"

using namespace tonewright;

namespace {

using Row = void (*)(const std::uint8_t*, std::uint8_t*, std::size_t);

struct Forms {
    const char* name;
    Row plain, wide;
    std::size_t from, to;  // bytes a pixel
    bool isTurned;         // the file counts red first
};
constexpr Forms kForms[] = {{"SpreadBgr", SpreadBgrPlain, SpreadBgrWide, 3, 4, false},
                            {"SpreadRgb", SpreadRgbPlain, SpreadRgbWide, 3, 4, true},
                            {"PackBgr", PackBgrPlain, PackBgrWide, 4, 3, false},
                            {"PackRgb", PackRgbPlain, PackRgbWide, 4, 3, true}};

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
            for (const Row row : {forms.plain, HasAvx2() ? forms.wide : forms.plain}) {
                std::vector<std::uint8_t> to(expected.size(), 0xEE);
                row(from.data() + 1, to.data() + 1, count);
                EXPECT_EQ(to, expected) << forms.name << ' ' << count;
            }
        }
    }
}
