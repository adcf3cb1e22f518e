// Features against closed forms and against sums over pixels.

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

#include "tests/analysis/blob_reference.h"
#include "tests/support/library.h"
#include "tests/support/text_image.h"

namespace {

constexpr double kRootTwo = std::numbers::sqrt2;

/// Extracts with every group on and everything kept.
CTivBlob measure(
    CTivImage& image, const std::function<void(BlobConfig&)>& set = [](BlobConfig&) {}) {
    CTivBlob blob(8, 8);
    BlobConfig& config = *blob.GetConfig();
    config.featureGroups = kBlobAllGroups;
    config.intermediateResults = kBlobKeepRuns | kBlobKeepImage;
    set(config);
    EXPECT_TRUE(blob.Execute(image)) << LastError();
    return blob;
}

CTivImage draw(int width, int height, const std::function<bool(double, double)>& inside) {
    CTivImage image(width, height, CTivData::FormatUByte, nullptr, true);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) image.SetData(x, y, CTivData::UByte(inside(x, y) ? 255 : 0));
    }
    return image;
}

struct Expectation {
    int feature;
    double value;
};

void expectFeatures(const CTivBlob& blob, std::initializer_list<Expectation> expected, double tolerance = 1e-5) {
    ASSERT_EQ(blob.GetNumBlobs(), 1);
    for (const auto& [feature, value] : expected) {
        EXPECT_NEAR(blob.GetFeature(feature, 0), value, tolerance * std::max(1.0, std::abs(value)))
            << "feature " << feature;
    }
}

TEST(BlobFeatures, OnePixel) {
    CTivImage image = fromText({"...", "..#", "..."});
    expectFeatures(measure(image), {{BlobArea, 1},
                                    {BlobBoxArea, 1},
                                    {BlobFillRatio, 1},
                                    {BlobRawBorder, 1},
                                    {BlobPerimeter, 4},
                                    {BlobElongation, 1},
                                    {BlobCompactness, std::numbers::pi / 4},
                                    {BlobCenterX, 2},
                                    {BlobCenterY, 1},
                                    {BlobRuns, 1},
                                    {BlobMajorAxis, 1},
                                    {BlobMinorAxis, 0},
                                    {BlobAngle, 0},
                                    {BlobHullPoints, 1},
                                    {BlobHullArea, 1},
                                    {BlobHullPerimeter, 4},
                                    {BlobMaxFeret, 1},
                                    {BlobMeanFeret, 1},
                                    {BlobMinFeret, 1},
                                    {BlobFilledArea, 1},
                                    {BlobRadiusSum, 0}});
    const CTivBlob blob = measure(image);
    EXPECT_EQ(blob.GetBlob(0)->horizontalBorder, 2);
    EXPECT_EQ(blob.GetBlob(0)->verticalBorder, 2);
}

TEST(BlobFeatures, SolidSquareUnderBothConnectivities) {
    const int n = 9;
    CTivImage image = draw(15, 15, [&](double x, double y) { return x >= 3 && x < 3 + n && y >= 4 && y < 4 + n; });
    for (const int connectivity : {1, 0}) {
        const CTivBlob blob = measure(image, [&](BlobConfig& config) { config.connectivity = connectivity; });
        const double moment = (n * n - 1) / 12.0 * n * n * 4 / std::numbers::pi;  // of x and y alike
        expectFeatures(blob, {{BlobArea, 81},
                              {BlobPerimeter, 4 * n},
                              {BlobFillRatio, 1},
                              {BlobElongation, 1},
                              {BlobEquivalentLength, n},
                              {BlobEquivalentWidth, n},
                              {BlobSumX, 81 * 7},
                              {BlobSumY, 81 * 8},
                              {BlobWidth, n},
                              {BlobHeight, n},
                              {BlobMinX, 3},
                              {BlobMaxY, 12},
                              {BlobLastX, 11},
                              {BlobLastY, 12},
                              {BlobMajorAxis, 2 * std::pow(moment, 0.25)},
                              {BlobAxisRatio, 1},
                              {BlobHullPoints, 4},
                              {BlobHullArea, 81},
                              {BlobHullPerimeter, 4 * n},
                              {BlobConvexity, 1},
                              {BlobSolidity, 1},
                              {BlobMinFeret, n},
                              {BlobMaxFeret, (n - 1) * kRootTwo + 1},
                              {BlobMaxFeretAngle, 45},
                              {BlobBoxOrientedArea, 81},
                              {BlobBoxOrientedAngle, 0},
                              {BlobContourMaxDx, 4},
                              {BlobContourMinDy, -4},
                              {BlobMaxRadiusSquared, 32},
                              {BlobMinRadiusSquared, 16},
                              {BlobFilledArea, 81}});
        EXPECT_EQ(blob.GetBlob(0)->contour->points.size(), 1u);
        EXPECT_EQ(blob.GetBlob(0)->contour->points[0].size(), 4u * (n - 1));
    }
}

TEST(BlobFeatures, LinesAreAsLongAsTheyLook) {
    const int n = 12;
    CTivImage across = draw(20, 5, [](double x, double y) { return y == 2 && x >= 4 && x < 16; });
    expectFeatures(measure(across), {{BlobPerimeter, 2 * n + 2},
                                     {BlobMajorAxis, n},
                                     {BlobMinorAxis, 0},
                                     {BlobAngle, 0},
                                     {BlobHullPoints, 2},
                                     {BlobHullArea, n},
                                     {BlobMaxFeret, n},
                                     {BlobMinFeret, 1},
                                     {BlobMinFeretAngle, -90},
                                     {BlobRadiusSum, 2 * (0.5 + 1.5 + 2.5 + 3.5 + 4.5) * 2 + 11}});  // there and back
    for (int angles = 1; angles <= 100; ++angles) {
        const CTivBlob blob = measure(across, [&](BlobConfig& config) { config.feretAngles = angles; });
        EXPECT_EQ(blob.GetFeature(BlobMinFeretAngle, 0), -90) << angles;
    }
    CTivImage down = draw(5, 20, [](double x, double y) { return x == 2 && y >= 4 && y < 16; });
    expectFeatures(measure(down), {{BlobMajorAxis, n}, {BlobAngle, -90}, {BlobAlongMax, 5.5}, {BlobAlongMin, -5.5}});
    CTivImage falling = draw(20, 20, [](double x, double y) { return x == y && x >= 4 && x < 14; });
    expectFeatures(measure(falling), {{BlobAngle, -45},
                                      {BlobMajorAxis, 10 * kRootTwo},
                                      {BlobPerimeter, 4 + 18 * kRootTwo},
                                      {BlobAlongMax, 4.5 * kRootTwo},
                                      {BlobAcrossMax, 0},
                                      {BlobHullPerimeter, 4 + 18 * kRootTwo}});
    CTivImage rising = draw(20, 20, [](double x, double y) { return x + y == 18 && x >= 4 && x < 14; });
    expectFeatures(measure(rising), {{BlobAngle, 45}, {BlobMaxFeretAngle, 45}, {BlobMinFeretAngle, -45}});
}

TEST(BlobFeatures, DiscAndEllipseHaveTheirAxes) {
    const double r = 40;
    CTivImage disc = draw(101, 101, [&](double x, double y) { return std::hypot(x - 50, y - 50) <= r; });
    expectFeatures(measure(disc),
                   {{BlobArea, std::numbers::pi * r * r},
                    {BlobMajorAxis, 2 * r},
                    {BlobMinorAxis, 2 * r},
                    {BlobEllipseRatio, 1},
                    {BlobSolidity, 1},
                    {BlobMaxFeret, 2 * r + 1},
                    {BlobMinFeret, 2 * r + 1},
                    {BlobMeanFeret, 2 * r + 1},
                    {BlobMaxRadiusSquared, r * r},
                    {BlobCompactness, 0.9}},  // the border of a raster disc is about 5 % longer
                   0.02);
    for (const double degrees : {0.0, 20.0, 60.0, -30.0}) {
        const double c = std::cos(degrees / 180 * std::numbers::pi);
        const double s = std::sin(degrees / 180 * std::numbers::pi);
        CTivImage ellipse = draw(161, 161, [&](double x, double y) {  // y runs down
            const double u = (x - 80) * c - (y - 80) * s;
            const double v = (x - 80) * s + (y - 80) * c;
            return u * u / (70 * 70) + v * v / (30 * 30) <= 1;
        });
        const CTivBlob blob = measure(ellipse, [](BlobConfig& config) { config.feretAngles = 90; });
        expectFeatures(blob,
                       {{BlobArea, std::numbers::pi * 70 * 30},
                        {BlobMajorAxis, 140},
                        {BlobMinorAxis, 60},
                        {BlobAxisRatio, 60.0 / 140},
                        {BlobMaxFeret, 141},
                        {BlobMinFeret, 61},
                        {BlobAlongMax, 70},
                        {BlobAlongMin, -70},
                        {BlobAcrossMax, 30},
                        {BlobBoxOrientedArea, 141 * 61}},
                       0.02);
        EXPECT_NEAR(blob.GetFeature(BlobAngle, 0), degrees, 0.5);
        EXPECT_NEAR(blob.GetFeature(BlobMaxFeretAngle, 0), degrees, 3);
        const float minAngle = blob.GetFeature(BlobMinFeretAngle, 0);
        EXPECT_NEAR(std::abs(minAngle - degrees), 90, 3);
        EXPECT_TRUE(degrees == 0 || blob.GetFeature(BlobBoxOrientedAngle, 0) == minAngle);
    }
}

TEST(BlobFeatures, HolesCountAndFill) {
    CTivImage image = fromText({"..........",  //
                                ".########.",  //
                                ".#..#...#.",  //
                                ".#..#.#.#.",  //
                                ".####...#.",  //
                                ".########.",  //
                                "...#......"});
    for (const int connectivity : {1, 0}) {
        const CTivBlob blob = measure(image, [&](BlobConfig& config) {
            config.connectivity = connectivity;
            config.minArea = 2;  // without the dot inside
        });
        expectFeatures(blob, {{BlobHoles, 2}, {BlobArea, 28}, {BlobFilledArea, 28 + 4 + 9}, {BlobHullArea, 5 * 8 + 1}});
        EXPECT_EQ(blob.GetBlob(0)->contour->points.size(), 3u);
    }
    CTivImage diamond = fromText({".#.", "#.#", ".#."});
    expectFeatures(measure(diamond), {{BlobHoles, 1}, {BlobFilledArea, 5}, {BlobPerimeter, (4 + 4) * kRootTwo}});
    CTivImage ring = draw(101, 101, [](double x, double y) {
        const double r = std::hypot(x - 50, y - 50);
        return r <= 40 && r > 20;
    });
    expectFeatures(measure(ring),
                   {{BlobHoles, 1},
                    {BlobArea, std::numbers::pi * 1200},
                    {BlobFilledArea, std::numbers::pi * 1600},
                    {BlobSolidity, 0.75}},
                   0.01);
}

TEST(BlobFeatures, LAndUShapes) {
    // An inner corner is cut by a diagonal.
    CTivImage l = fromText({"#....", "#....", "#....", "#####"});
    expectFeatures(measure(l), {{BlobArea, 8},
                                {BlobBoxArea, 20},
                                {BlobFillRatio, 0.4},
                                {BlobPerimeter, 16 + kRootTwo},
                                {BlobHullPoints, 3},
                                {BlobHullArea, 6 + 8 / 2 + 1},  // triangle, pixels on its outline
                                {BlobCenterX, 10 / 8.0},
                                {BlobCenterY, 18 / 8.0}});
    CTivImage u = fromText({"#...#", "#...#", "#####"});
    expectFeatures(measure(u), {{BlobArea, 9},
                                {BlobHoles, 0},
                                {BlobPerimeter, 16 + 2 * kRootTwo},
                                {BlobHullArea, 15},
                                {BlobSolidity, 0.6},
                                {BlobCenterX, 2},
                                {BlobCenterY, 12 / 9.0},
                                {BlobFilledArea, 9},
                                {BlobConvexity, 16 / (16 + 2 * kRootTwo)}});
}

constexpr int kWide = 40;
constexpr int kHigh = 30;

Bitmap pixelsOf(const BlobRecord& record) {
    Bitmap own{kWide, kHigh, std::vector<std::uint8_t>(kWide * kHigh)};
    for (const BlobRun& run : record.StoredRuns()) {
        std::fill_n(own.pixels.begin() + kWide * run.y + run.firstX, run.lastX - run.firstX + 1, std::uint8_t{1});
    }
    return own;
}

// What the outside doesn't reach belongs to the filled blob: regions of background off the image's edge.
std::int64_t filledArea(Bitmap own, bool eight) {
    for (std::uint8_t& pixel : own.pixels) pixel = pixel == 0;
    std::int64_t filled = kWide * kHigh;
    for (const BlobFacts& region : referenceBlobs(own, !eight)) {
        const bool atEdge =
            region.minX == 0 || region.minY == 0 || region.maxX == kWide - 1 || region.maxY == kHigh - 1;
        if (atEdge) filled -= region.area;
    }
    return filled;
}

void expectCoveredBorder(const Bitmap& own, const BlobRecord& record, bool eight) {
    Bitmap seen{kWide, kHigh, std::vector<std::uint8_t>(kWide * kHigh)};
    for (const auto& contour : record.contour->points) {
        for (std::size_t k = 0; k < contour.size(); ++k) {
            const BlobPoint a = contour[k];
            const BlobPoint b = contour[(k + 1) % contour.size()];
            const int dx = std::abs(a.x - b.x);
            const int dy = std::abs(a.y - b.y);
            EXPECT_LE(eight ? std::max(dx, dy) : dx + dy, 1);
            EXPECT_TRUE(own.At(a.x, a.y));
            seen.pixels[static_cast<std::size_t>(kWide * a.y + a.x)] = 1;
        }
    }
    for (int y = 0; y < kHigh; ++y) {
        for (int x = 0; x < kWide; ++x) {
            const bool isBorder =
                own.At(x, y) && !(own.At(x - 1, y) && own.At(x + 1, y) && own.At(x, y - 1) && own.At(x, y + 1));
            EXPECT_TRUE(!isBorder || seen.At(x, y)) << x << ',' << y;
        }
    }
}

TEST(BlobFeatures, ContoursOfRandomBlobsCoverTheBorderAndFillTheHoles) {
    for (const bool eight : {true, false}) {
        for (unsigned seed = 1; seed <= 8; ++seed) {
            CTivImage image = Bitmap::Random(kWide, kHigh, 0.3 + 0.05 * seed, seed)
                                  .ToImage(seed % 3 == 0 ? CTivData::FormatBinary : CTivData::FormatUByte);
            const CTivBlob blob = measure(image, [&](BlobConfig& config) {
                config.connectivity = eight ? 1 : 0;
                config.thresholdStage = static_cast<int>(seed % 2) * 2;
            });
            ASSERT_GT(blob.GetNumBlobs(), 0);
            for (int i = 0; i < blob.GetNumBlobs(); ++i) {
                const BlobRecord& record = *blob.GetBlob(i);
                const Bitmap own = pixelsOf(record);
                expectCoveredBorder(own, record, eight);
                EXPECT_EQ(record.contour->points.size(), static_cast<std::size_t>(record.holes) + 1);
                EXPECT_EQ(record.contour->points[0][0].x, record.lastX);
                EXPECT_EQ(record.contour->points[0][0].y, record.lastY);
                EXPECT_EQ(record.filledArea, static_cast<float>(filledArea(own, eight)));
            }
        }
    }
}

TEST(BlobFeatures, GrayValuesOfTheInputUnderTheBlob) {
    CTivImage image = fromText({"....", ".68.", ".88.", "...."});
    const CTivBlob blob = measure(image, [](BlobConfig& config) {
        config.thresholdSource = 0;
        config.thresholds[0] = 5;
    });
    expectFeatures(blob, {{BlobGrayMax, 8},
                          {BlobGrayMin, 6},
                          {BlobGrayMean, 7.5},
                          {BlobGrayDeviation, std::sqrt(0.75)},
                          {BlobGrayCenterX, (1 * 14 + 2 * 16) / 30.0},
                          {BlobGrayCenterY, (1 * 14 + 2 * 16) / 30.0},
                          {BlobValue, 255}});
    CTivImage zeros = fromText({"##", "#."});
    expectFeatures(measure(zeros, [](BlobConfig& config) { config.thresholdStage = 0, config.background = 1; }),
                   {{BlobGrayMax, 0}, {BlobGrayDeviation, 0}, {BlobGrayCenterX, 1}, {BlobGrayCenterY, 1}});
}

TEST(BlobFeatures, CalibrationGivesWorldValues) {
    CTivImage disc = draw(101, 91, [](double x, double y) { return std::hypot(x - 60, y - 40) <= 30; });
    const CTivBlob blob = measure(disc, [](BlobConfig& config) {
        config.calibrated = true;
        config.scaleX = 0.5, config.offsetX = 10, config.scaleY = 0.5, config.offsetY = -4;
    });
    expectFeatures(blob, {{BlobCenterX, 40}, {BlobCenterY, 16}, {BlobWidth, 61}, {BlobBoxArea, 61 * 61 / 4.0}});
    expectFeatures(blob,
                   {{BlobArea, std::numbers::pi * 225},
                    {BlobMajorAxis, 30},
                    {BlobMinorAxis, 30},
                    {BlobMaxFeret, 30.5},
                    {BlobMaxRadiusSquared, 225},
                    {BlobFilledArea, std::numbers::pi * 225},
                    {BlobSolidity, 1},
                    {BlobGrayCenterX, 40}},
                   0.02);
    // Sums over world coordinates, taken pixel by pixel.
    CTivImage image = fromText({".##.", "..#.", "...."});
    const CTivBlob uneven = measure(image, [](BlobConfig& config) {
        config.calibrated = true;
        config.scaleX = 3, config.offsetX = 1, config.scaleY = 2, config.offsetY = 5;
    });
    const double xs[] = {4, 7, 7};
    const double ys[] = {5, 5, 7};
    double x = 0, y = 0, xx = 0, yy = 0, xy = 0;
    for (int k = 0; k < 3; ++k) x += xs[k], y += ys[k], xx += xs[k] * xs[k], yy += ys[k] * ys[k], xy += xs[k] * ys[k];
    expectFeatures(uneven, {{BlobArea, 18},
                            {BlobSumX, x},
                            {BlobSumY, y},
                            {BlobSumXX, xx},
                            {BlobSumYY, yy},
                            {BlobSumXY, xy},
                            {BlobCenterX, x / 3},
                            {BlobCenterY, y / 3},
                            {BlobPerimeter, std::sqrt(13) + 3 * 2 + 3 * 3}});
}

TEST(BlobFeatures, SortingOrdersByEveryFeature) {
    const Bitmap bitmap = Bitmap::Random(60, 40, 0.35, 3);
    CTivImage image = bitmap.ToImage();
    CTivBlob blob = measure(image);
    ASSERT_GT(blob.GetNumBlobs(), 50);
    for (int feature = 0; feature < BlobFeatureCount; ++feature) {
        for (const int order : {kBlobAscending, kBlobDescending}) {
            ASSERT_TRUE(blob.SortByFeature(feature, order));
            for (int i = 1; i < blob.GetNumBlobs(); ++i) {
                const auto key = [&](int at) {
                    return std::tuple(blob.GetFeature(feature, at), blob.GetBlob(at)->lastY, blob.GetBlob(at)->lastX);
                };
                const bool ordered = order == kBlobAscending ? key(i - 1) < key(i) : key(i) < key(i - 1);
                ASSERT_TRUE(ordered) << "feature " << feature << " at " << i;
            }
        }
    }
}

}  // namespace
