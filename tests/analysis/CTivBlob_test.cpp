// The operator: configuration, thresholds before the sweep, limits, capacity, answers of an object without result.

#include "analysis/CTivBlob.h"

#include <sys/resource.h>

#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "primitives/acceleration.h"
#include "tests/analysis/blob_reference.h"
#include "tests/support/library.h"
#include "tests/support/text_image.h"

namespace {

int countBlobs(CTivImage image, const std::function<void(BlobConfig&)>& set) {
    CTivBlob blob(4, 4);
    set(*blob.GetConfig());
    ClearLastError();
    return blob.Execute(image) ? blob.GetNumBlobs() : -1;
}

CTivImage gradient(CTivData::Format format, int columns) {
    CTivImage image(columns, 1, format, nullptr, true);
    for (int x = 0; x < columns; ++x) image.SetData(x, 0, CTivData::Int(x));
    return image;
}

TEST(CTivBlob, DefaultsThresholdByOtsuAndJoinEightWays) {
    CTivImage image = fromText({"21112", "1#121", "11#11", "11111", "#111#"});
    CTivBlob blob(4, 4);
    ASSERT_TRUE(blob.Execute(image));
    EXPECT_EQ(blob.GetNumBlobs(), 3);
    EXPECT_EQ(blob.GetBlobWidth(0), 2);
    EXPECT_EQ(blob.GetBlobHeight(0), 2);
    EXPECT_EQ(blob.GetCenterX(0), 1.5f);
    EXPECT_EQ(blob.GetCenterY(0), 1.5f);
    EXPECT_EQ(blob.GetConfig()->thresholds[0], 3);  // the lowest level that parts the classes
    blob.GetConfig()->connectivity = 0;
    ASSERT_TRUE(blob.Execute(image));
    EXPECT_EQ(blob.GetNumBlobs(), 4);
}

TEST(CTivBlob, OddSizesHoldNoBlobOrOne) {
    EXPECT_EQ(countBlobs(fromText({"..", ".."}), [](BlobConfig&) {}), 0);
    EXPECT_EQ(countBlobs(fromText({"9"}), [](BlobConfig&) {}), 1);
    EXPECT_EQ(countBlobs(fromText({"."}), [](BlobConfig&) {}), 0);
    EXPECT_EQ(countBlobs(fromText({"99", "99"}), [](BlobConfig&) {}), 1);
    EXPECT_EQ(countBlobs(CTivImage(), [](BlobConfig&) {}), -1);
    EXPECT_EQ(LastError(), "CTivBlob::Execute => Input image invalid - failed blobs extraction");
    EXPECT_EQ(countBlobs(CTivImage(4, 4, CTivData::FormatRgb, nullptr, true), [](BlobConfig&) {}), -1);
    EXPECT_EQ(LastError(), "CTivBlob::Execute => Input image invalid - failed blobs extraction");
    EXPECT_EQ(countBlobs(CTivImage(0, 5, CTivData::FormatUByte, nullptr, true), [](BlobConfig&) {}), -1);
}

TEST(CTivBlob, LimitsAreInclusive) {
    const CTivImage image = fromText({"###.#.##", "###.#...", "###....."});  // 3 x 3, 1 x 2, 2 x 1
    const auto count = [&](auto set) { return countBlobs(image, set); };
    EXPECT_EQ(count([](BlobConfig& c) { c.minWidth = 2; }), 2);
    EXPECT_EQ(count([](BlobConfig& c) { c.maxWidth = 2; }), 2);
    EXPECT_EQ(count([](BlobConfig& c) { c.minHeight = 2, c.maxHeight = 2; }), 1);
    EXPECT_EQ(count([](BlobConfig& c) { c.minArea = 9; }), 1);
    EXPECT_EQ(count([](BlobConfig& c) { c.minArea = 2, c.maxArea = 9; }), 3);
    EXPECT_EQ(count([](BlobConfig& c) { c.minArea = 2.5f, c.maxArea = 8.5f; }), 0);
    CTivBlob blob(4, 4);
    EXPECT_TRUE(blob.SetMinWidth(1) && blob.SetMaxWidth(1) && blob.SetMinHeight(1) && blob.SetMaxHeight(2));
    CTivImage copy = image;
    ASSERT_TRUE(blob.Execute(copy));
    EXPECT_EQ(blob.GetNumBlobs(), 1);
}

TEST(CTivBlob, ArraysGrowInStepsOrEndTheSearchQuietly) {
    CTivImage image(100, 99, CTivData::FormatUByte, nullptr, true);
    for (int i = 0; i < 50 * 50; ++i) image.SetData(i % 50 * 2, i / 50 * 2, CTivData::UByte(9));
    struct Case {
        int capacity, growth, found;
    };
    for (const bool general : {false, true}) {
        for (const int threads : {1, 3}) {
            ctiv_SetNumThreads(threads);
            for (const auto& [capacity, growth, found] : {Case{1024, 1024, 2500},
                                                          {1, 7, 2500},
                                                          {0, 1, 2500},
                                                          {-5, 3, 2500},
                                                          {2500, 0, 2500},
                                                          {100, 0, 100},
                                                          {1, 0, 1},
                                                          {0, 0, 0},
                                                          {-1, -1, 0},
                                                          {30, -1, 30},
                                                          {std::numeric_limits<int>::max(), 0, 2500}}) {
                CTivBlob blob(capacity, growth);
                if (general) blob.GetConfig()->intermediateResults = kBlobKeepRuns;
                for (int round = 0; round < 2; ++round) {
                    ASSERT_TRUE(blob.Execute(image));
                    EXPECT_EQ(blob.GetNumBlobs(), found) << capacity << " by " << growth;
                    EXPECT_EQ(blob.GetBlobWidth(found - 1), found == 0 ? 0 : 1);
                    EXPECT_EQ(blob.GetBlobWidth(found), 0);
                }
            }
        }
    }
    ctiv_SetNumThreads(1);
}

TEST(CTivBlob, AnswersOfAnInvalidObjectAndOutsideTheRange) {
    CTivBlob blob(4, 4);
    CTivImage image = fromText({"9."});
    EXPECT_EQ(blob.GetNumBlobs(), 0);
    ASSERT_TRUE(blob.Execute(image));
    for (const int i : {-1, 1}) {
        EXPECT_EQ(blob.GetBlobWidth(i), 0);
        EXPECT_EQ(blob.GetCenterY(i), 0.0f);
        EXPECT_EQ(blob.GetBlob(i), nullptr);
    }
    EXPECT_EQ(blob.GetFeature(69, 0), 0.0f);
    EXPECT_EQ(blob.GetFeature(BlobMajorAxis, 0), 0.0f);
    const CTivBlob taken = std::move(blob);  // NOLINTNEXTLINE: what is left behind is an invalid object
    EXPECT_EQ(blob.GetNumBlobs(), -1);
    EXPECT_EQ(blob.GetBlobHeight(0), -1);
    EXPECT_EQ(blob.GetCenterX(0), -1.0f);
    EXPECT_EQ(blob.GetConfig(), nullptr);
    EXPECT_FALSE(blob.SortByFeature(0, 0));
    EXPECT_FALSE(blob.SetContinuous(true));
    EXPECT_FALSE(blob.SetMinWidth(3));
    EXPECT_EQ(LastError(), "CTivBlob::SetMinWidth => Invalid Blob Object");
    EXPECT_FALSE(blob.SetMaxHeight(3));
    EXPECT_EQ(LastError(), "CTivBlob::SetMaxHeight => Invalid Blob Object");
    EXPECT_FALSE(blob.Execute(image));
    EXPECT_EQ(LastError(), "CTivBlob::Execute => Invalid object");
    EXPECT_EQ(taken.GetNumBlobs(), 1);
}

#ifndef __SANITIZE_ADDRESS__  // whose own memory has no room under the limit
TEST(CTivBlob, WithoutMemoryForTheArrayTheObjectIsInvalid) {
    rlimit before{};
    getrlimit(RLIMIT_AS, &before);
    rlimit tight = before;
    tight.rlim_cur = rlim_t{1} << 32;
    setrlimit(RLIMIT_AS, &tight);
    CTivBlob blob(std::numeric_limits<int>::max(), 0);  // some 700 GiB
    setrlimit(RLIMIT_AS, &before);
    EXPECT_EQ(LastError(), "CTivBlob::CTivBlob => Unable to create Blob object");
    EXPECT_EQ(blob.GetNumBlobs(), 0);
    EXPECT_EQ(blob.GetCenterX(0), 0.0f);
    EXPECT_TRUE(blob.SetMinWidth(3));
    CTivImage image = fromText({"9."});
    EXPECT_FALSE(blob.Execute(image));
    EXPECT_EQ(LastError(), "CTivBlob::Execute => Invalid object");
    EXPECT_FALSE(blob.SortByFeature(0, 0));
    EXPECT_EQ(LastError(), "CTivBlob::SortByFeature => Invalid object");
}
#endif

TEST(CTivBlob, SortsByCentreAndRefusesWhatWasNotComputed) {
    CTivImage image = fromText({"#....##.", ".......#", "..#....."});
    CTivBlob blob(4, 4);
    ASSERT_TRUE(blob.Execute(image));
    ASSERT_TRUE(blob.SortByFeature(BlobCenterX, kBlobDescending));
    EXPECT_EQ(blob.GetCenterX(0), 6.0f);
    EXPECT_EQ(blob.GetCenterX(2), 0.0f);
    struct Case {
        int feature, operation;
        const char* text;
    };
    const std::string head = "CTivBlob::SortByFeature => ";
    for (const auto& [feature, operation, text] :
         {Case{-1, 0, "Feature type out of range"},
          {69, 0, "Feature type out of range"},
          {0, 2, "Sorting operation out of range"},
          {27, 0, "Specified feature not calculated. Select the Moment features group to be computed"},
          {45, 1, "Specified feature not calculated. Select the Convexity features group to be computed"},
          {46, 1, "Specified feature not calculated. Select the Perimeter features group to be computed"},
          {68, 1, "Specified feature not calculated. Select the Gray-scale features group to be computed"}}) {
        EXPECT_FALSE(blob.SortByFeature(feature, operation));
        EXPECT_EQ(LastError(), head + text);
        EXPECT_EQ(blob.GetCenterX(2), 0.0f);
    }
    blob.GetConfig()->featureGroups = kBlobMoment;
    ASSERT_TRUE(blob.Execute(image));
    EXPECT_FALSE(blob.SortByFeature(0, 0));
    EXPECT_EQ(LastError(), head + "Specified feature not calculated. Select the Basic features group to be computed");
    EXPECT_TRUE(blob.SortByFeature(BlobAngle, 0));
}

TEST(CTivBlob, EqualValuesSortByTheLastPixel) {
    CTivImage image = fromText({".#....#", "##..##.", ".#....#"});  // three blobs, all centred on row 1
    CTivBlob blob(4, 4);
    blob.GetConfig()->connectivity = 0;
    blob.GetConfig()->minArea = 2;
    ASSERT_TRUE(blob.Execute(image));
    ASSERT_EQ(blob.GetNumBlobs(), 2);
    ASSERT_TRUE(blob.SortByFeature(BlobCenterY, kBlobAscending));
    EXPECT_EQ(blob.GetFeature(BlobLastY, 0), 1);
    ASSERT_TRUE(blob.SortByFeature(BlobCenterY, kBlobDescending));
    EXPECT_EQ(blob.GetFeature(BlobLastY, 0), 2);
}

// A row of the values 0 to 9 through fixed levels: which values are foreground shows in the boxes.
TEST(CTivBlob, FixedLevelsSelectByTheirPattern) {
    struct Case {
        std::vector<int> thresholds;
        std::vector<int> levels;
        std::string kept;  // the values 0 to 9 as levels: '.' 0, '#' 255, else the level
    };
    const Case cases[] = {
        {{4}, {0, 255}, "....######"},
        {{4}, {255, 0}, "####......"},
        {{3, 6}, {0, 255, 0}, "...####..."},
        {{3, 6}, {255, 0, 255}, "###....###"},
        {{3, 6}, {0, 0, 255}, "......####"},
        {{3, 6}, {0, 255, 255}, "...#######"},
        {{3, 6}, {255, 255, 0}, "######...."},
        {{3, 6}, {255, 0, 0}, "###......."},
        {{3, 6}, {0, 5, 7}, "...5557777"},
        {{4}, {1, 2}, "1111222222"},
        {{2, 4, 7}, {0, 255, 0, 255}, "..##...###"},
        {{-3, 2, 900}, {9, 0, 3, 4}, "..33333333"},
    };
    for (const auto format : {CTivData::FormatUByte, CTivData::FormatUShort}) {
        for (const Case& row : cases) {
            CTivImage image = gradient(format, 10);
            CTivBlob blob(4, 4);
            BlobConfig& config = *blob.GetConfig();
            config.thresholdSource = 0;
            config.levelCount = static_cast<int>(row.thresholds.size());
            std::copy(row.thresholds.begin(), row.thresholds.end(), config.thresholds.begin());
            std::copy(row.levels.begin(), row.levels.end(), config.levels.begin());
            config.intermediateResults = kBlobKeepImage;
            ASSERT_TRUE(blob.Execute(image)) << LastError();
            std::string kept;
            for (int x = 0; x < 10; ++x) {
                const int value = blob.GetThresholdedImage()->GetData(x, 0).AsInt();
                kept += value == 0 ? '.' : value == 255 ? '#' : static_cast<char>('0' + value);
            }
            EXPECT_EQ(kept, row.kept);
        }
    }
}

TEST(CTivBlob, MultiLevelImagesGiveABlobAValue) {
    CTivImage image = fromText({"0123", "1123", "0303"});
    CTivBlob blob(4, 4);
    BlobConfig& config = *blob.GetConfig();
    config.thresholdSource = 0;
    config.levelCount = 2;
    config.thresholds = {1, 2};
    config.levels = {0, 10, 20};
    ASSERT_TRUE(blob.Execute(image));
    ASSERT_EQ(blob.GetNumBlobs(), 2);  // 20 joins below across the corner
    ASSERT_TRUE(blob.SortByFeature(BlobValue, kBlobAscending));
    EXPECT_EQ(blob.GetFeature(BlobValue, 0), 10);
    EXPECT_EQ(blob.GetFeature(BlobArea, 0), 3);
    EXPECT_EQ(blob.GetFeature(BlobArea, 1), 6);
    // Packed bits have no values to tell apart, whatever the run before left.
    CTivImage bits(8, 2, CTivData::FormatBinary, nullptr, true);
    for (const int x : {1, 2, 6}) bits.SetData(x, 1, CTivData::Int(1));
    config.intermediateResults = kBlobKeepRuns;
    ASSERT_TRUE(blob.Execute(bits));
    ASSERT_EQ(blob.GetNumBlobs(), 2);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(blob.GetFeature(BlobValue, i), 255);
        EXPECT_EQ(blob.GetBlob(i)->StoredRuns()[0].value, 255);
    }
}

TEST(CTivBlob, OtherThresholdsReachTheSweep) {
    const CTivImage image = fromText({"2222", "2292", "2222", "2222"});
    EXPECT_EQ(countBlobs(image, [](BlobConfig& c) { c.thresholdMethod = 0, c.lowFactor = 3; }), 1);
    EXPECT_EQ(countBlobs(image, [](BlobConfig& c) { c.thresholdMethod = 0, c.lowFactor = 9; }), 0);
    const auto local = [](BlobConfig& c) { c.thresholdScope = 1, c.thresholdMethod = 0, c.lowFactor = 2; };
    EXPECT_EQ(countBlobs(image, local), 1);
    const auto levelImages = [&](BlobConfig& c) {
        c.thresholdScope = 1, c.thresholdSource = 0;
        c.lowImage = fromText({"3333", "3393", "3333", "1333"});
    };
    EXPECT_EQ(countBlobs(image, levelImages), 2);
    EXPECT_EQ(countBlobs(image, [](BlobConfig& c) { c.thresholdScope = 1, c.thresholdSource = 0; }), -1);
    EXPECT_EQ(LastError(), "CTivBlob::Execute => Image not thresholded - failed blobs extraction");
}

TEST(CTivBlob, RefusalsNameTheirReason) {
    const std::string head = "CTivBlob::Execute => ";
    const std::pair<std::function<void(BlobConfig&)>, std::string> cases[] = {
        {[](BlobConfig& c) { c.inputType = kBlobRuns; }, "Input image invalid - failed blobs extraction"},
        {[](BlobConfig& c) { c.inputType = 2; }, "Failed blobs extraction"},
        {[](BlobConfig& c) { c.thresholdMethod = 9; }, "Image not thresholded - failed blobs extraction"},
        {[](BlobConfig& c) {
             c.thresholdSource = 0, c.levelCount = 2, c.thresholds = {5, 4};
         },
         "Threshold values must be sorted in increasing order - failed blobs extraction"},
        {[](BlobConfig& c) {
             c.thresholdSource = 0, c.levelCount = 3, c.thresholds = {5, 256, 900};
         },
         "Threshold value out of range - failed blobs extraction"},
        {[](BlobConfig& c) { c.thresholdSource = 0, c.levelCount = 256; },
         "Threshold value out of range - failed blobs extraction"},
        {[](BlobConfig& c) { c.thresholdSource = 0, c.levelCount = 0; },
         "Threshold value out of range - failed blobs extraction"},
        {[](BlobConfig& c) { c.featureGroups = kBlobConvexity; },
         "Run lengths not found - failed blob features computation"},
        {[](BlobConfig& c) { c.featureGroups = kBlobGrayScale, c.intermediateResults = kBlobKeepImage; },
         "Run lengths not found - failed blob features computation"},
        {[](BlobConfig& c) { c.featureGroups = kBlobPerimeter, c.intermediateResults = kBlobKeepRuns; },
         "Input image invalid - failed blobs extraction"},
    };
    for (const auto& [set, text] : cases) {
        EXPECT_EQ(countBlobs(fromText({"19", "91"}), set), -1);
        EXPECT_EQ(LastError(), head + text);
    }
}

TEST(CTivBlob, ContinuousFramesRefuseWhatTheyCannotCarry) {
    CTivImage image = fromText({"19", "91"});
    const std::string head = "CTivBlob::Execute => ";
    CTivBlob blob(4, 4);
    ASSERT_TRUE(blob.SetContinuous(true));
    blob.GetConfig()->featureGroups = kBlobBasic | kBlobGrayScale;
    EXPECT_FALSE(blob.Execute(image));
    EXPECT_EQ(LastError(), head +
                               "Computing of convexity, perimeter and grayscale features not supported in "
                               "continuous frame mode");
    blob.GetConfig()->featureGroups = kBlobBasic;
    ASSERT_TRUE(blob.Execute(image));
    EXPECT_EQ(blob.GetNumBlobs(), 0);  // still open
    blob.GetConfig()->inputType = 1;
    EXPECT_FALSE(blob.Execute(image));
    EXPECT_EQ(LastError(), head + "Can't mix input types (runs/images) for a given continuous frame");
    blob.GetConfig()->inputType = 0;
    blob.GetConfig()->featureGroups = kBlobBasic | kBlobMoment;
    EXPECT_FALSE(blob.Execute(image));
    EXPECT_EQ(LastError(), head +
                               "Configuration (computed features, intermediate results) shouldn't be changed "
                               "within a continuous frame");
    ASSERT_TRUE(blob.SetContinuous(true));
    EXPECT_TRUE(blob.Execute(image));
}

// Run lengths with their values: 2 x "1", 1 x "0", 1 x "7" and so on.
CTivImage runLengths(int width, int height, std::initializer_list<std::pair<int, int>> runs, std::uint32_t flags = 0) {
    std::vector<std::uint32_t> words{static_cast<std::uint32_t>(width | height << 16)};
    int x = 0;
    for (const auto& [length, value] : runs) {
        x += length;
        words.push_back(static_cast<std::uint32_t>(length | value << 16) | flags | (x % width == 0 ? 1u << 31 : 0));
    }
    CTivImage image(static_cast<int>(words.size()), 1, CTivData::FormatUInt, nullptr, true);
    std::copy(words.begin(), words.end(), static_cast<std::uint32_t*>(image.GetData()));
    return image;
}

TEST(CTivBlob, RunLengthsGiveTheBlobsOfEqualValue) {
    //  1 1 . 7      the 1s touch the 7s but stay apart; a run in two pieces is one
    //  . 1 1 7
    CTivImage image = runLengths(4, 2, {{1, 1}, {1, 1}, {1, 0}, {1, 7}, {1, 0}, {2, 1}, {0, 9}, {1, 7}});
    CTivBlob blob(4, 4);
    BlobConfig& config = *blob.GetConfig();
    config.inputType = kBlobRuns;
    config.intermediateResults = kBlobKeepRuns | kBlobKeepImage;
    config.featureGroups = kBlobBasic | kBlobConvexity;
    ASSERT_TRUE(blob.Execute(image)) << LastError();
    ASSERT_EQ(blob.GetNumBlobs(), 2);
    ASSERT_TRUE(blob.SortByFeature(BlobValue, kBlobAscending));
    EXPECT_EQ(blob.GetFeature(BlobArea, 0), 4);
    EXPECT_EQ(blob.GetFeature(BlobRuns, 0), 2);
    EXPECT_EQ(blob.GetCenterX(0), 1);
    EXPECT_EQ(blob.GetFeature(BlobValue, 1), 7);
    EXPECT_EQ(blob.GetBlobHeight(1), 2);
    EXPECT_EQ(blob.GetBlob(1)->StoredRuns()[1].y, 1);
    EXPECT_EQ(blob.GetFeature(BlobHullPoints, 1), 2);
    EXPECT_EQ(blob.GetThresholdedImage(), nullptr);

    config.background = 7;
    ASSERT_TRUE(blob.Execute(image));
    EXPECT_EQ(blob.GetNumBlobs(), 3);  // the zeros now, and the two of them don't touch
}

TEST(CTivBlob, RunLengthsThatBreakOffOrLackWhatIsAskedForAreRefused) {
    const std::string head = "CTivBlob::Execute => ";
    const auto lastError = [&](CTivImage image, std::uint32_t groups) {
        CTivBlob blob(4, 4);
        blob.GetConfig()->inputType = kBlobRuns;
        blob.GetConfig()->featureGroups = groups;
        blob.GetConfig()->intermediateResults = kBlobKeepRuns | kBlobKeepImage;
        EXPECT_FALSE(blob.Execute(image));
        EXPECT_EQ(blob.GetNumBlobs(), 0);
        return LastError();
    };
    const std::string invalid = head + "Input image invalid - failed blobs extraction";
    EXPECT_EQ(lastError(runLengths(4, 2, {{4, 1}}), kBlobBasic), invalid);          // a row is missing
    EXPECT_EQ(lastError(runLengths(4, 1, {{3, 1}}), kBlobBasic), invalid);          // a row without an end
    EXPECT_EQ(lastError(runLengths(4, 1, {{3, 1}, {5, 1}}), kBlobBasic), invalid);  // a row too wide
    EXPECT_EQ(lastError(fromText({"19"}), kBlobBasic), invalid);
    EXPECT_EQ(lastError(runLengths(4, 1, {{4, 1}}, 1u << 30), kBlobBasic),
              head + "External run-length's binary version not currently supported");
    EXPECT_EQ(lastError(runLengths(4, 1, {{4, 1}}), kBlobBasic | kBlobPerimeter), invalid);
    EXPECT_EQ(lastError(runLengths(4, 1, {{4, 1}}), kBlobBasic | kBlobGrayScale),
              head + "Image format invalid - failed blob features computation");
}

TEST(CTivBlob, ABlobOfRunLengthsGoesOnInTheFramesNextBand) {
    CTivBlob blob(4, 4);
    blob.GetConfig()->inputType = kBlobRuns;
    ASSERT_TRUE(blob.SetContinuous(true));
    CTivImage band = runLengths(3, 1, {{1, 0}, {2, 5}}), end = runLengths(3, 1, {{3, 0}});
    for (CTivImage* image : {&band, &band, &end}) ASSERT_TRUE(blob.Execute(*image)) << LastError();
    ASSERT_EQ(blob.GetNumBlobs(), 1);
    EXPECT_EQ(blob.GetFeature(BlobArea, 0), 4);
    EXPECT_EQ(blob.GetBlobHeight(0), 2);
    blob.GetConfig()->inputType = kBlobImage;
    CTivImage image = fromText({"191"});
    EXPECT_FALSE(blob.Execute(image));
    EXPECT_EQ(LastError(), "CTivBlob::Execute => Can't mix input types (runs/images) for a given continuous frame");
}

TEST(CTivBlob, TheKeptImageOfABinaryInputHoldsOneTo32767) {
    CTivImage image(3, 1, CTivData::FormatUShort, nullptr, true);
    image.SetData(1, 0, CTivData::Int(32767));
    image.SetData(2, 0, CTivData::Int(32768));
    CTivBlob blob(4, 4);
    blob.GetConfig()->thresholdStage = 0;
    EXPECT_EQ(blob.GetThresholdedImage(), nullptr);
    blob.GetConfig()->intermediateResults = kBlobKeepImage;
    ASSERT_TRUE(blob.Execute(image));
    EXPECT_EQ(blob.GetBlobWidth(0), 2);
    const CTivImage& kept = *blob.GetThresholdedImage();
    EXPECT_EQ(kept.GetData(0, 0).AsInt(), 0);
    EXPECT_EQ(kept.GetData(1, 0).AsInt(), 255);
    EXPECT_EQ(kept.GetData(2, 0).AsInt(), 0);
}

}  // namespace
