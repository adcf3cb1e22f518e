// The sweep against a labeller that goes pixel by pixel.

#include <algorithm>
#include <string>

#include "primitives/acceleration.h"
#include "tests/analysis/blob_reference.h"
#include "tests/support/library.h"
#include "tests/support/text_image.h"

namespace {

class BlobSweep : public testing::Test {
protected:
    ~BlobSweep() override {
        ctiv_SetNumThreads(1);
        ctiv_SetAccelerationLevel(1);
    }

    /// The blobs of an image that is binary already.
    static std::vector<BlobFacts> Extract(CTivImage image, bool eight, int threads = 1) {
        ctiv_SetNumThreads(threads);
        CTivBlob blob(16, 16);
        blob.GetConfig()->thresholdStage = 0;
        blob.GetConfig()->connectivity = eight ? 1 : 0;
        EXPECT_TRUE(blob.Execute(image));
        return factsOf(blob);
    }
    static std::vector<BlobFacts> Expected(const Bitmap& bitmap, bool eight, int strips, std::int64_t value = 255) {
        std::vector<BlobFacts> blobs = referenceBlobs(bitmap, eight, strips);
        for (BlobFacts& facts : blobs) facts.value = value;
        return blobs;
    }
    static void ExpectAgreement(const Bitmap& bitmap, int threads) {
        const int strips = bitmap.height / threads < 3 ? 1 : threads;
        for (const bool eight : {true, false}) {
            SCOPED_TRACE(std::to_string(bitmap.width) + "x" + std::to_string(bitmap.height) + ", " +
                         std::to_string(threads) + " threads, " + (eight ? "eight" : "four"));
            EXPECT_EQ(Extract(bitmap.ToImage(), eight, threads), Expected(bitmap, eight, strips));
        }
    }
};

TEST_F(BlobSweep, RandomImagesOfAllDensitiesMatchThePixelLabeller) {
    unsigned seed = 1;
    for (const double density : {0.02, 0.2, 0.35, 0.45, 0.5, 0.55, 0.65, 0.8, 0.97}) {
        for (const auto& [width, height] : {std::pair{1, 1}, {64, 9}, {65, 40}, {7, 50}, {200, 3}}) {
            ExpectAgreement(Bitmap::Random(width, height, density, seed++), 1);
        }
    }
}

TEST_F(BlobSweep, StripsGiveTheBlobsOfOneSweepForEveryTeamSize) {
    for (int threads = 1; threads <= 16; ++threads) {
        for (const int height : {1, 2, 3 * threads - 1, 3 * threads, 3 * threads + 1, 4 * threads + 2}) {
            const auto seed = static_cast<unsigned>(100 * threads + height);
            ExpectAgreement(Bitmap::Random(37, height, 0.5, seed), threads);
            ExpectAgreement(Bitmap::Random(24, height, 0.62, seed), threads);
        }
    }
}

TEST_F(BlobSweep, SeamsThroughHolesCombsAndTallBlobsJoin) {
    // Every shape repeats so often that each team's seams cut it in another row.
    const std::vector<std::vector<std::string_view>> shapes = {
        {"#.#.#.#.##", "#.#.#.#..#", "###.#####."},
        {"#.########", "#.#......#", "#.#.####.#", "#.#.#..#.#", "#.#....#.#", "#.######.#", "#........#",
         "##########"},
        {"#", "#", "#", "#", "#", "#", "#", "#"},
        {"###.", "#.##", "###.", ".##."},
        {"..##..##", "##..##..", "#......#", ".######."},
    };
    for (const auto& shape : shapes) {
        Bitmap bitmap{static_cast<int>(shape[0].size()), 0, {}};
        for (int copy = 0; copy < 9; ++copy) {
            for (const std::string_view row : shape) {
                for (const char c : row) bitmap.pixels.push_back(c == '#' ? 1 : 0);
                ++bitmap.height;
            }
        }
        for (const int threads : {1, 2, 3, 4, 5, 7, 8, 11, 16}) ExpectAgreement(bitmap, threads);
    }
}

TEST_F(BlobSweep, LimitsLookAtWholeBlobsWhereSeamsCutThem) {
    // A column down the whole image, dots above and below each seam, and noise.
    Bitmap bitmap = Bitmap::Random(40, 48, 0.3, 2);
    for (std::size_t y = 0; y < 48; ++y) {
        for (std::size_t x = 0; x < 9; ++x) bitmap.pixels[40 * y + x] = x == 1 || (x == 5 && y % 3 != 2);
    }
    for (int threads = 1; threads <= 16; ++threads) {
        ctiv_SetNumThreads(threads);
        for (const auto& limits : {std::pair{3, 48}, {3, 47}, {1, 2}, {2, 3}, {48, 48}, {49, 99}}) {
            const int least = limits.first;
            const int most = limits.second;
            CTivBlob blob(4, 4);
            blob.GetConfig()->thresholdStage = 0;
            blob.SetMinHeight(least);
            blob.SetMaxHeight(most);
            CTivImage image = bitmap.ToImage();
            ASSERT_TRUE(blob.Execute(image));
            std::vector<BlobFacts> expected = Expected(bitmap, true, threads);
            std::erase_if(expected, [&](const BlobFacts& facts) {
                return facts.maxY - facts.minY + 1 < least || facts.maxY - facts.minY + 1 > most;
            });
            EXPECT_EQ(factsOf(blob), expected) << threads << " threads, heights " << least << " to " << most;
        }
    }
}

TEST_F(BlobSweep, SixteenBitAndPackedImagesMatchEightBit) {
    for (const int level : {0, 1}) {
        ctiv_SetAccelerationLevel(level);
        for (const int width : {8, 24, 32, 64, 72, 96}) {
            const Bitmap bitmap = Bitmap::Random(width, 21, 0.5, static_cast<unsigned>(width));
            for (const bool eight : {true, false}) {
                EXPECT_EQ(Extract(bitmap.ToImage(CTivData::FormatUShort), eight), Expected(bitmap, eight, 1, 65535));
                EXPECT_EQ(Extract(bitmap.ToImage(CTivData::FormatBinary), eight), Expected(bitmap, eight, 1));
            }
        }
    }
}

TEST_F(BlobSweep, ABackgroundOtherThanZeroLooksForZeroPixels) {
    const Bitmap bitmap = Bitmap::Random(40, 20, 0.5, 5);
    Bitmap inverse = bitmap;
    for (std::uint8_t& pixel : inverse.pixels) pixel = pixel == 0;
    for (const auto format : {CTivData::FormatUByte, CTivData::FormatUShort, CTivData::FormatBinary}) {
        CTivBlob blob(16, 16);
        blob.GetConfig()->thresholdStage = 0;
        blob.GetConfig()->background = 7;
        CTivImage image = bitmap.ToImage(format);
        ASSERT_TRUE(blob.Execute(image));
        EXPECT_EQ(factsOf(blob), Expected(inverse, true, 1, 0));
    }
}

TEST_F(BlobSweep, TheRegionOfInterestIsSweptInImageCoordinates) {
    CTivImage image = fromText({"##########",  //
                                "#........#",  //
                                "#..##..#.#",  //
                                "#..##....#",  //
                                "##########"});
    image.SetRoi({2, 1, 5, 3});
    CTivBlob blob(4, 4);
    ASSERT_TRUE(blob.Execute(image));
    ASSERT_EQ(blob.GetNumBlobs(), 1);
    EXPECT_EQ(blob.GetCenterX(0), 3.5f);
    EXPECT_EQ(blob.GetCenterY(0), 2.5f);
    EXPECT_EQ(blob.GetFeature(BlobMinX, 0), 3);
    image.SetRoi({3, 2, 0, 2});
    EXPECT_TRUE(blob.Execute(image));
    EXPECT_EQ(blob.GetNumBlobs(), 0);
}

TEST_F(BlobSweep, TheGeneralPathFindsTheSameAndTellsValuesApart) {
    unsigned seed = 7;
    for (const double density : {0.3, 0.5, 0.8, 1.0}) {
        for (const int values : {1, 3}) {
            for (const bool eight : {true, false}) {
                const Bitmap bitmap = Bitmap::Random(33, 30, density, seed++, values);
                CTivImage image(33, 30, CTivData::FormatUByte, const_cast<std::uint8_t*>(bitmap.pixels.data()), true);
                CTivBlob blob(16, 16);
                BlobConfig& config = *blob.GetConfig();
                config.thresholdStage = 0;
                config.connectivity = eight ? 1 : 4;
                config.multiLevel = values > 1;
                config.intermediateResults = kBlobKeepRuns;
                ASSERT_TRUE(blob.Execute(image));
                EXPECT_EQ(factsOf(blob), values > 1 ? referenceBlobs(bitmap, eight) : Expected(bitmap, eight, 1));
                std::int64_t pixels = 0;
                for (int i = 0; i < blob.GetNumBlobs(); ++i) {
                    const BlobRecord& record = *blob.GetBlob(i);
                    EXPECT_EQ(record.storedRunCount, record.runs);
                    for (const BlobRun& run : record.StoredRuns()) {
                        pixels += run.lastX - run.firstX + 1;
                        EXPECT_EQ(run.blob, i);
                        EXPECT_EQ(run.value, record.value);
                    }
                }
                EXPECT_EQ(pixels, std::count_if(bitmap.pixels.begin(), bitmap.pixels.end(), [](int p) { return p; }));
            }
        }
    }
}

TEST_F(BlobSweep, BandsOfAContinuousFrameGiveTheBlobsOfTheTallImage) {
    const Bitmap tall = Bitmap::Random(30, 40, 0.5, 11);
    for (const int band : {1, 2, 7, 20}) {
        CTivBlob blob(16, 16);
        blob.GetConfig()->thresholdStage = 0;
        blob.GetConfig()->featureGroups = kBlobBasic | kBlobMoment;
        blob.GetConfig()->intermediateResults = kBlobKeepRuns;
        ASSERT_TRUE(blob.SetContinuous(true));
        std::vector<BlobFacts> all;
        for (int top = 0; top <= 40; top += band) {  // an empty band at the end closes what is open
            Bitmap rows{30, band, std::vector<std::uint8_t>(static_cast<std::size_t>(30 * band))};
            for (int i = 0; i < 30 * band; ++i)
                rows.pixels[static_cast<std::size_t>(i)] = tall.At(i % 30, top + i / 30);
            CTivImage image = rows.ToImage();
            ASSERT_TRUE(blob.Execute(image));
            const std::vector<BlobFacts> found = factsOf(blob);
            all.insert(all.end(), found.begin(), found.end());
            for (int i = 0; i < blob.GetNumBlobs(); ++i) {
                EXPECT_EQ(blob.GetBlob(i)->storedRunCount, blob.GetBlob(i)->runs);
            }
        }
        std::sort(all.begin(), all.end());
        EXPECT_EQ(all, Expected(tall, true, 1)) << "bands of " << band;
    }
}

TEST_F(BlobSweep, TheObjectStartsCleanOnEachImage) {
    CTivBlob blob(2, 2);
    blob.GetConfig()->thresholdStage = 0;
    for (unsigned round = 0; round < 6; ++round) {
        ctiv_SetNumThreads(1 + static_cast<int>(round % 3));
        const Bitmap bitmap = Bitmap::Random(round % 2 ? 90 : 30, 30, 0.1 + 0.1 * round, round);
        CTivImage image = bitmap.ToImage();
        ASSERT_TRUE(blob.Execute(image));
        EXPECT_EQ(factsOf(blob), Expected(bitmap, true, 1 + static_cast<int>(round % 3)));
    }
}

TEST_F(BlobSweep, BlobsAreNumberedByTheRowAtWhichTheyEnd) {
    CTivImage image = fromText({"#.#..#", "#.#...", "#....#"});
    CTivBlob blob(4, 4);
    ASSERT_TRUE(blob.Execute(image));
    const float expected[][2] = {{5, 0}, {2, 0.5f}, {0, 1}, {5, 2}};
    ASSERT_EQ(blob.GetNumBlobs(), 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(blob.GetCenterX(i), expected[i][0]);
        EXPECT_EQ(blob.GetCenterY(i), expected[i][1]);
        EXPECT_EQ(blob.GetBlob(i)->label, i + 1);
    }
}

}  // namespace
