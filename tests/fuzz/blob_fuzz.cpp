#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "analysis/CTivBlob.h"
#include "primitives/acceleration.h"
#include "tests/fuzz/fuzz_file.h"

using namespace tonewright;

namespace {

/// Bytes handed out one by one, zeros behind the end.
class Bytes {
public:
    Bytes(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}
    int Next() { return at_ == end_ ? 0 : *at_++; }
    int Next(int count) { return Next() % count; }
    void Fill(void* target, std::size_t bytes) {
        const std::size_t count = std::min(bytes, static_cast<std::size_t>(end_ - at_));
        if (count > 0) std::memcpy(target, at_, count);
        at_ += count;
    }

private:
    const std::uint8_t* at_;
    const std::uint8_t* end_;
};

CTivImage makeImage(Bytes& bytes) {
    constexpr CTivData::Format formats[] = {CTivData::FormatUByte,  CTivData::FormatUByte, CTivData::FormatUShort,
                                            CTivData::FormatBinary, CTivData::FormatByte,  CTivData::FormatUInt};
    const CTivData::Format format = formats[bytes.Next(6)];
    const int unit = format == CTivData::FormatBinary ? 8 : 1;
    CTivImage image(bytes.Next(80) * unit, bytes.Next(80), format, nullptr, true);
    const CTivRect roi = {bytes.Next(8), bytes.Next(8), bytes.Next(80), bytes.Next(80)};
    image.SetRoi(roi);
    return image;
}

void configure(BlobConfig& config, Bytes& bytes) {
    config.connectivity = bytes.Next(2);
    config.featureGroups = static_cast<std::uint32_t>(bytes.Next(40));
    config.intermediateResults = static_cast<std::uint32_t>(bytes.Next(5));
    config.thresholdStage = bytes.Next(3);
    config.background = static_cast<std::uint16_t>(bytes.Next(2) * 255);
    config.thresholdScope = bytes.Next(2);
    config.thresholdSource = bytes.Next(2);
    config.thresholdMethod = bytes.Next(6);
    config.multiLevel = bytes.Next(2);
    config.levelCount = bytes.Next();
    for (int k = 0; k < 4; ++k) config.thresholds[static_cast<std::size_t>(k)] = 4 * bytes.Next() - 100;
    for (int k = 0; k < 5; ++k) config.levels[static_cast<std::size_t>(k)] = static_cast<std::uint8_t>(bytes.Next());
    config.lowFactor = static_cast<float>(bytes.Next() - 128) / 16;
    config.windowWidth = bytes.Next() - 20;
    config.windowHeight = bytes.Next() - 20;
    config.feretAngles = bytes.Next(20) - 2;
    config.minWidth = bytes.Next(4);
    config.maxHeight = bytes.Next();
    config.calibrated = bytes.Next(4) == 1;
    config.scaleX = bytes.Next(5) - 1;
}

// Reads all that can be read; the answer is the blobs' area in all.
double readBlobs(CTivBlob& blob, int feature) {
    blob.SortByFeature(feature, feature % 2);
    double area = 0;
    for (int i = -1; i <= blob.GetNumBlobs(); ++i) {
        area += static_cast<double>(blob.GetFeature(BlobArea, i));
        for (int f = -1; f <= BlobFeatureCount; ++f) blob.GetFeature(f, i);
    }
    return area;
}

void demand(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

// Odd images, regions and configurations; as many threads as may be give the blobs of one, and bands of a continuous
// frame leave no stale memory.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool started = startLibrary();
    static_cast<void>(started);
    Bytes bytes(data, size);
    const int capacity = bytes.Next() - 2;
    const int growth = bytes.Next(9) - 1;
    CTivBlob blob(capacity, growth);
    const int threads = 1 + bytes.Next(5);
    const int feature = bytes.Next(70);
    const bool continuous = bytes.Next(4) == 1;
    configure(*blob.GetConfig(), bytes);
    CTivImage image = makeImage(bytes);
    blob.GetConfig()->inputType = image.GetFormat() == CTivData::FormatUInt ? kBlobRuns : kBlobImage;
    if (!image.IsAllocated()) return 0;
    bytes.Fill(image.GetData(), static_cast<std::size_t>(
                                    CTivImage::GetImageBytes(image.GetWidth(), image.GetHeight(), image.GetFormat())));
    if (continuous) blob.SetContinuous(true);
    ctiv_SetNumThreads(1);
    const bool done = blob.Execute(image);
    const int count = blob.GetNumBlobs();
    const double area = readBlobs(blob, feature);
    demand(done || count == 0);
    ctiv_SetNumThreads(threads);
    const bool doneAgain = blob.Execute(image);
    const double areaAgain = readBlobs(blob, feature);
    demand(done == doneAgain || continuous);
    // A full array ends each strip's search for itself, so that other blobs may be the ones found.
    if (continuous || growth < 1) return 0;
    demand(count == blob.GetNumBlobs());
    demand(area == areaAgain || blob.GetConfig()->calibrated);
    return 0;
}
