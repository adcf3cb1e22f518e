#include "report/markup_impl.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

using namespace tonewright;

using markup::Base64;
using markup::CssColor;
using markup::Escaped;

TEST(Markup, EscapesWhatMeansSomethingAndWhatIsNoText) {
    EXPECT_EQ(Escaped("<img src=\"x\" onerror='a'>&"), "&lt;img src=&quot;x&quot; onerror=&#39;a&#39;&gt;&amp;");
    EXPECT_EQ(Escaped("Größe 24 µm – 色\t\n"), "Größe 24 µm – 色\t\n");
    const std::string mark = "\xEF\xBF\xBD";
    EXPECT_EQ(Escaped(std::string("a\0b\x1b", 4)), "a" + mark + "b" + mark);
    EXPECT_EQ(Escaped("\xC3"), mark) << "cut in the middle of a character";
    EXPECT_EQ(Escaped("\xC0\xAF"), mark + mark) << "overlong";
    EXPECT_EQ(Escaped("\xED\xA0\x80"), mark + mark + mark) << "half a surrogate pair";
    EXPECT_EQ(Escaped("\xF5\x80\x80\x80x"), mark + mark + mark + mark + "x");
}

// 0.2158605 is byte 128 of sRGB: ((128 / 255 + 0.055) / 1.055) ^ 2.4.
TEST(Markup, ColorsAreCodedAndClipped) {
    EXPECT_EQ(CssColor({0, 1, 0.2158605}), "#00ff80");
    EXPECT_EQ(CssColor({-1, 7, std::nan("")}), "#00ff00");
}

// RFC 4648, section 10.
TEST(Markup, Base64FollowsItsTestVectors) {
    const char* const pairs[][2] = {{"", ""},
                                    {"f", "Zg=="},
                                    {"fo", "Zm8="},
                                    {"foo", "Zm9v"},
                                    {"foob", "Zm9vYg=="},
                                    {"fooba", "Zm9vYmE="},
                                    {"foobar", "Zm9vYmFy"}};
    for (const auto& [plain, coded] : pairs) {
        EXPECT_EQ(Base64({reinterpret_cast<const std::uint8_t*>(plain), std::strlen(plain)}), coded);
    }
    const std::uint8_t high[] = {0xFB, 0xFF, 0xBF};
    EXPECT_EQ(Base64(high), "+/+/");
}
