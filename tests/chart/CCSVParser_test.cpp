#include "chart/CCSVParser.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <clocale>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tests/support/library.h"

namespace {

constexpr const char* kFewer = "The file contains less values than the matrix size permits.";
constexpr const char* kMore = "The file contains more values than the matrix size permits.";

class CsvParser : public testing::Test {
protected:
    ~CsvParser() override { std::filesystem::remove(path_); }

    bool Read(const std::string& content, CTivVector& values) {
        std::ofstream(path_, std::ios::binary) << content;
        ClearLastError();
        return CCSVParser().Read(path_, values);
    }

    std::string path_ = testing::TempDir() + "tonewright-csv-" + std::to_string(::getpid()) + ".csv";
};

CTivVector zeros(int size) { return {size, CTivData::FormatColorFloat, nullptr, true}; }

TEST_F(CsvParser, WantsAsManyLinesAsTheVectorHasElements) {
    const struct {
        const char* what;
        const char* content;
        const char* report;
    } cases[] = {
        {"two lines", "1,2,3\n4,5,6\n", ""},
        {"CR before LF", "1,2,3\r\n4,5,6\r\n", ""},
        {"further fields and text behind numbers", "1x, 2,3,4,a\n4,5 mm,6\n", ""},
        {"no line feed at the end", "1,2,3\n4,5,6", kFewer},
        {"one line", "1,2,3\n", kFewer},
        {"nothing", "", kFewer},
        {"three lines", "1,2,3\n4,5,6\n7,8,9\n", kMore},
        {"a blank third line", "1,2,3\n4,5,6\n\n", kMore},
        {"a third line without a line feed, which ends the file like nothing does", "1,2,3\n4,5,6\n7", ""},
    };
    for (const auto& [what, content, report] : cases) {
        CTivVector values = zeros(2);
        EXPECT_EQ(Read(content, values), *report == 0) << what;
        EXPECT_EQ(LastError(), report) << what;
        if (*report) continue;
        for (int i = 0; i < 2; ++i) {
            const float* color = values.GetData(i).AsColorFloat();
            for (int k = 0; k < 3; ++k) EXPECT_EQ(color[k], static_cast<float>(3 * i + k + 1)) << what;
            EXPECT_EQ(color[3], 0.0f) << what;
        }
    }
}

TEST_F(CsvParser, ThrowsAtWhatIsNoFloat) {
    CTivVector values = zeros(2);
    for (const char* content : {"1,2,3\nX,Y,Z\n", "1,2,3\n4,,6\n", "1,2,3\n4,5\n", "1,2,3\n\n"}) {
        EXPECT_THROW(Read(content, values), std::invalid_argument) << content;
        EXPECT_EQ(values.GetData(0).AsColorFloat()[1], 2.0f) << "what was set stays";
    }
    EXPECT_THROW(Read("1,2,1e39\n4,5,6\n", values), std::out_of_range);
    ASSERT_TRUE(Read("1,2,3\n4,5,6\n", values));
    std::filesystem::remove(path_);
    EXPECT_FALSE(CCSVParser().Read(path_, values)) << "no file";
}

TEST_F(CsvParser, WritesSixDigitsAndReadsThemWithADecimalPointInEveryLocale) {
    const std::string earlier = std::setlocale(LC_NUMERIC, nullptr);
    for (const char* comma : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8"}) {
        if (std::setlocale(LC_NUMERIC, comma)) break;
    }
    CTivVector values = zeros(1);
    const float color[4] = {0.1234567f, 1234567.0f, -0.5f, 9.0f};
    values.SetData(0, CTivData::ColorFloat(color));
    CCSVParser().Write(path_, values);
    std::stringstream content;
    content << std::ifstream(path_).rdbuf();
    EXPECT_EQ(content.str(), "0.123457,1.23457e+06,-0.5\n");
    CTivVector back = zeros(1);
    EXPECT_TRUE(CCSVParser().Read(path_, back));
    EXPECT_EQ(back.GetData(0).AsColorFloat()[0], 0.123457f);
    std::setlocale(LC_NUMERIC, earlier.c_str());
}

}  // namespace
