#include "report/html_report.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "foundation/CTivImage.h"

using namespace tonewright;

namespace {

Report sampleReport(const CTivImage* picture) {
    Report report;
    report.title = "Calibration of <b>\"x\"</b>.bmp";
    report.mean = 4.06;
    report.before = 10.82;
    report.picture = picture;
    for (int i = 0; i < 24; ++i) {
        ReportPatch patch;
        patch.number = i + 1;
        patch.name = i == 17 ? "Cyan" : "Other";
        patch.outline = {{1.0 * i, 2}, {1.0 * i + 4, 2}, {1.0 * i + 4, 6}, {1.0 * i, 6}};
        patch.color.target = {0.2, 0.2, 0.2};
        patch.color.delivered = {0.21, 0.2, 0.2};
        patch.difference = i == 17 ? 9.04 : 1;
        patch.isNeutral = i >= 18;
        report.patches.push_back(patch);
    }
    return report;
}

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
    return found;
}

/// Every element that is opened is closed, in order.
void expectNested(const std::string& page) {
    std::vector<std::string> open;
    for (std::size_t at = page.find('<'); at != std::string::npos; at = page.find('<', at + 1)) {
        const std::size_t end = page.find('>', at);
        ASSERT_NE(end, std::string::npos);
        const std::string inside = page.substr(at + 1, end - at - 1);
        if (inside[0] == '!' || inside.back() == '/') continue;
        const bool isEnd = inside[0] == '/';
        const std::string name = inside.substr(isEnd, inside.find_first_of(" \n", isEnd) - isEnd);
        if (name == "meta" || name == "br") continue;
        if (!isEnd) {
            open.push_back(name);
            continue;
        }
        ASSERT_FALSE(open.empty()) << name;
        EXPECT_EQ(open.back(), name) << "at " << at;
        open.pop_back();
    }
    EXPECT_TRUE(open.empty());
}

}  // namespace

TEST(HtmlReport, StandsAlone) {
    CTivImage picture(40, 10, CTivData::FormatRgb, nullptr, true);
    const Report report = sampleReport(&picture);
    const std::string page = HtmlReport(report);
    expectNested(page);
    for (const char* foreign : {"<script", "http:", "https:", "<link", "@import", "url(", "<b>\"x\""}) {
        EXPECT_EQ(page.find(foreign), std::string::npos) << foreign;
    }
    EXPECT_NE(page.find("&lt;b&gt;&quot;x&quot;&lt;/b&gt;.bmp"), std::string::npos);
    EXPECT_NE(page.find("<b>4.1</b>"), std::string::npos);
    EXPECT_NE(page.find("worst patch: 18 Cyan"), std::string::npos);
    EXPECT_EQ(count(page, "class=\"swatch\""), 24u);
    EXPECT_EQ(count(page, "<polygon class=\"worst\" points=\"17.0,2.0 21.0,2.0 21.0,6.0 17.0,6.0\""), 1u);
    EXPECT_EQ(count(page, "data:image/png;base64,iVBORw0KGgo"), 1u);
}

TEST(HtmlReport, BrokenNumbersAreToldAsNone) {
    Report report = sampleReport(nullptr);
    report.mean = std::nan("");
    for (ReportPatch& patch : report.patches) {
        patch.color.delivered = {std::nan(""), std::numeric_limits<double>::infinity(), 0};
        patch.color.deliveredLab = {std::nan(""), std::numeric_limits<double>::infinity(), 0};
        patch.difference = std::nan("");
        patch.noise = {{std::nan(""), 1e300}};
    }
    const std::string page = HtmlReport(report);
    expectNested(page);
    for (const char* word : {">nan", "\"nan", ">inf", "\"inf", ">-nan", "\"-nan"}) {
        EXPECT_EQ(page.find(word), std::string::npos) << word;
    }
    EXPECT_NE(page.find("<b>–</b>"), std::string::npos);
    EXPECT_EQ(page.find("<image"), std::string::npos);
}
