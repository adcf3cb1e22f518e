#pragma once

#include <deque>
#include <memory>

#include "analysis/BlobConfig.h"
#include "analysis/blob_array_impl.h"
#include "analysis/blob_strip_impl.h"
#include "foundation/CTivAlgo.h"

/// Why an extraction failed.
enum BlobCode : int {
    kBlobUnknown = -1,
    kBlobDone = 0,
    kBlobNoMemory = 101,
    kBlobTooMany = 102,
    kBlobNoRuns = 106,
    kBlobBadImage = 140,
    kBlobBadFormat = 141,
    kBlobThresholdRange = 200,
    kBlobThresholdOrder = 201,
    kBlobNotThresholded = 202,
    kBlobMixedInput = 300,
    kBlobRunInput = 301,
    kBlobFrameFeatures = 302,
    kBlobFrameConfig = 303
};

/// What must not change while a continuous frame lasts.
struct FrameConfig {
    std::int32_t connectivity = 0;
    std::uint32_t featureGroups = 0, intermediateResults = 0;
    std::uint16_t background = 0;
    bool calibrated = false;
    double scaleX = 0, offsetX = 0, scaleY = 0, offsetY = 0;

    FrameConfig() = default;
    explicit FrameConfig(const BlobConfig& config)
        : connectivity(config.connectivity),
          featureGroups(config.featureGroups),
          intermediateResults(config.intermediateResults),
          background(config.background),
          calibrated(config.calibrated),
          scaleX(config.scaleX),
          offsetX(config.offsetX),
          scaleY(config.scaleY),
          offsetY(config.offsetY) {}
    bool operator==(const FrameConfig&) const = default;
};

/// What carries a continuous frame from one Execute to the next, and the memory that extraction uses again each time.
struct VirtualFrame {
    static constexpr std::int32_t kNoInput = -1;

    std::int32_t inputType = kNoInput;  ///< BlobInput of a frame that has begun
    std::int32_t lastRow = -1;          ///< of the tall virtual image
    FrameConfig start;
    std::deque<BlobStrip> strips;  ///< of the binary path, each with its pool of nodes
    BlobStrip general;             ///< of the general path, with the open blobs of a frame
    SweepRecord record;

    void Reset() {
        inputType = kNoInput;
        lastRow = -1;
    }
};

/// The binary path: foreground against background, Basic and Moment features. FormatUByte is swept in strips side by
/// side. @param view the image that holds foreground and background @return a BlobCode
int extractBinary(const NurImage& view, const BlobConfig& config, VirtualFrame& frame, BlobArray& array);

/// The general path: runs of several values, kept runs, all features, continuous frames.
/// @param view may be without data where `coded` gives the rows
/// @param input what `view` was made from, for the Gray-scale features
/// @param coded rows to take instead of the view's; may be null
int extractGeneral(const NurImage& view, const NurImage& input, const BlobConfig& config, bool continuous,
                   VirtualFrame& frame, BlobArray& array, CodedRows* coded = nullptr);

/// Computes the groups of features beyond the Basic one for the records in use, from what was kept.
/// @return a BlobCode
int computeGroups(const NurImage& view, const NurImage& input, const BlobConfig& config, BlobArray& array);

/// Thresholds the input into the output as the configuration says, and writes automatic levels and multiLevel back to
/// it. @param output FormatUByte of the input's size and ROI @return a BlobCode
int thresholdForBlobs(const NurImage& input, NurImage& output, BlobConfig& config);

/// What foreground pixels of an image become as a blob's value.
inline std::int32_t foregroundValue(const NurImage& view, const BlobConfig& config) {
    if (config.background != 0) return 0;
    return view.format == CTivData::FormatUShort ? 65535 : 255;
}

/// The operator's implementation.
class ImplBlob : public CTivAlgo {
public:
    ImplBlob() : CTivAlgo("Blob") {}

    bool Execute(CTivImage& image);
    bool IsComplete() const { return array_ && config_ && frame_; }

    CTivImage workImage_;  ///< the thresholded image
    std::unique_ptr<BlobArray> array_;
    std::unique_ptr<BlobConfig> config_;
    std::unique_ptr<VirtualFrame> frame_;
    bool continuous_ = false;

private:
    int Extract(const NurImage& input);
    int ExtractRuns(const NurImage& buffer);
    int CheckFrame(std::int32_t height) const;
    int Threshold(const NurImage& input);
    void KeepBinaryForm(CTivImage& image);
};
