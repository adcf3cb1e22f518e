#pragma once

#include <array>
#include <cstdint>

#include "foundation/CTivImage.h"

/// Groups of features, as bits of BlobConfig::featureGroups.
enum BlobFeatureGroup : std::uint32_t {
    kBlobBasic = 1,
    kBlobMoment = 2,
    kBlobConvexity = 4,   ///< wants the runs kept
    kBlobPerimeter = 8,   ///< wants the thresholded image kept
    kBlobGrayScale = 16,  ///< wants the runs kept
    kBlobAllGroups = 31
};

/// What extraction keeps beside the blobs, as bits of BlobConfig::intermediateResults.
enum BlobIntermediate : std::uint32_t { kBlobKeepRuns = 1, kBlobKeepImage = 2 };

/// What Execute's image holds.
enum BlobInput : std::int32_t {
    kBlobImage = 0,
    /// The words of a FormatUInt image are a gray image of run lengths: first its width (low 16 bits) and height (high
    /// 16 bits) in pixels, then row by row its runs from left to right, background included. A run has its length in
    /// bits 0 to 15 and its value in bits 16 to 23; bit 31 marks a row's last run. Bit 30 marks a run without a value,
    /// which is refused. Blobs are the regions of equal value other than the background. They have no contours and no
    /// gray values.
    kBlobRuns = 1
};

namespace tonewright {
/// The first levels of a configuration, which ascend.
template <class T>
constexpr std::array<T, 256> FirstThenFullScale(T first) {
    std::array<T, 256> values;
    values.fill(255);
    values[0] = first;
    return values;
}
}  // namespace tonewright

/// How CTivBlob looks for blobs. CTivBlob::GetConfig gives access to it; the next Execute follows it.
struct BlobConfig {
    std::int32_t connectivity = 1;  ///< 1: eight-connected; any other value: four-connected

    // Limits of the blobs to accept, all inclusive. Area in pixels (world units if calibrated), the rest in pixels.
    float minArea = 0.0f;
    float maxArea = 2147483648.0f;
    std::int32_t minWidth = 0;
    std::int32_t maxWidth = 2147483647;
    std::int32_t minHeight = 0;
    std::int32_t maxHeight = 2147483647;

    std::int32_t feretAngles = 12;             ///< steps per quadrant of the Feret diameters
    std::uint32_t featureGroups = kBlobBasic;  ///< BlobFeatureGroup bits
    std::uint32_t intermediateResults = 0;     ///< BlobIntermediate bits
    std::int32_t inputType = kBlobImage;       ///< a BlobInput
    std::int32_t thresholdStage = 2;           ///< 0 the input is binary already; 2 threshold it
    std::int32_t reserved = 0;
    std::uint16_t background = 0;  ///< 0: blobs are the pixels other than 0; any other value: the pixels of 0
    /// Not 0: runs are told apart by their values. Where Execute thresholds, it sets this, to whether the levels below
    /// are neither 0 nor full scale; where it doesn't, this is an input, and what an earlier run set goes on.
    std::int32_t multiLevel = 0;

    /// The fixed levels, as many thresholds as levelCount (1 to 255) says, ascending: a pixel below thresholds[0]
    /// becomes levels[0], one from thresholds[k] on levels[k + 1]. An automatic threshold writes its own here.
    std::int32_t levelCount = 1;
    std::array<std::int32_t, 256> thresholds = tonewright::FirstThenFullScale<std::int32_t>(128);
    std::array<std::uint8_t, 256> levels = tonewright::FirstThenFullScale<std::uint8_t>(0);

    std::int32_t thresholdScope = 0;   ///< 0 global, 1 local
    std::int32_t thresholdSource = 1;  ///< 0 the fixed levels (global) or level images (local), 1 automatic
    std::int32_t thresholdMethod = 4;  ///< method of ctiv_adaptThresh (global) or localAdaptThresh (local)
    float lowFactor = 0.0f;
    float highFactor = 0.0f;
    float windowFactor = 0.0f;
    std::int32_t windowWidth = 16;   ///< pixels
    std::int32_t windowHeight = 16;  ///< pixels
    CTivImage lowImage;              ///< per-pixel thresholds, of the input's format
    CTivImage highImage;             ///< looked at unless levelCount is 1

    /// World coordinate = pixel x scale + offset. Areas, sums, centres and lengths of axes are world values if
    /// calibrated; box, last pixel and border counts stay pixels.
    bool calibrated = false;
    double scaleX = 1.0;
    double offsetX = 0.0;
    double scaleY = 1.0;
    double offsetY = 0.0;

    /// @return whether runs are told apart by their values
    bool HasValues() const { return multiLevel != 0 || inputType == kBlobRuns; }
};
