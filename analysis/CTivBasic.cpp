#include "analysis/CTivBasic.h"

#include "analysis/stats.h"
#include "analysis/threshold.h"
#include "foundation/CTivAlgo.h"

using namespace tonewright;

class ImplBasic : public CTivAlgo {
public:
    ImplBasic() : CTivAlgo("Bleu d'Auvergne") {}
};

CTivBasic::CTivBasic() : impl_(std::make_unique<ImplBasic>()) {}
CTivBasic::~CTivBasic() = default;

bool CTivBasic::Stats(const CTivImage& image, float mean[3], float deviation[3], float min[3], float max[3]) {
    if (!impl_ || !image.GetRecord()) return false;
    // Memory holds blue first; index 0 is red.
    ColorStatsPointers channels;
    for (std::size_t c = 0; c < 3; ++c) {
        const auto at = [c](float* array) { return array ? array + 2 - c : nullptr; };
        channels[c] = {at(mean), at(deviation), at(min), at(max)};
    }
    return stats(image.GetRecord(), {}, channels) == 0;
}

namespace {

bool sharesPixels(const CTivImage& source, const CTivImage& destination) {
    return source.IsAllocated() && source.GetData() == destination.GetData();
}

/// Runs a threshold of the lower layer into the destination, which stays as it was where that refuses.
template <class Threshold>
bool runThreshold(const CTivImage& source, CTivImage& destination, bool binary, Threshold threshold) {
    if (!source.GetRecord() || !destination.GetRecord()) return false;
    if (destination.IsAllocated()) return threshold(source.GetRecord(), destination.GetRecord()) == 0;
    const CTivRect roi = source.GetRoi();
    CTivImage made;
    const CTivData::Format format = binary ? CTivData::FormatUByte : source.GetFormat();
    if (threshold(source.GetRecord(), nullptr) != 0 || !made.Set(roi.width, roi.height, format, nullptr, false)) {
        return false;
    }
    if (threshold(source.GetRecord(), made.GetRecord()) != 0) return false;
    destination = std::move(made);
    return true;
}

}  // namespace

bool CTivBasic::Thresh(const CTivImage& source, CTivImage& destination, float low, float high, bool invert, bool single,
                       bool binary) {
    if (!impl_) return false;
    if (!binary && sharesPixels(source, destination)) {
        return thresh_consume(destination.GetRecord(), low, high, invert, single) == 0;
    }
    return runThreshold(source, destination, binary, [&](const NurImage* from, NurImage* to) {
        return thresh(from, to, low, high, invert, single, binary);
    });
}

bool CTivBasic::ThreshColor(const CTivImage& source, CTivImage& destination, const float low[3], const float high[3],
                            bool invert, bool single, bool binary) {
    if (!impl_) return false;
    const float lowInMemory[] = {low[2], low[1], low[0]};
    const float highInMemory[] = {single ? 0 : high[2], single ? 0 : high[1], single ? 0 : high[0]};
    if (sharesPixels(source, destination)) {
        return thresh_color_consume(destination.GetRecord(), lowInMemory, highInMemory, invert, single, binary) == 0;
    }
    return runThreshold(source, destination, binary, [&](const NurImage* from, NurImage* to) {
        return thresh_color(from, to, lowInMemory, highInMemory, invert, single, binary);
    });
}

bool CTivBasic::ThreshImages(const CTivImage& source, CTivImage& destination, const CTivImage& low,
                             const CTivImage& high, bool invert, bool single, bool binary) {
    if (!impl_) return false;
    if (!binary && sharesPixels(source, destination)) {
        return threshImages_consume(destination.GetRecord(), low.GetRecord(), high.GetRecord(), invert, single) == 0;
    }
    return runThreshold(source, destination, binary, [&](const NurImage* from, NurImage* to) {
        return threshImages(from, to, low.GetRecord(), high.GetRecord(), invert, single, binary);
    });
}
