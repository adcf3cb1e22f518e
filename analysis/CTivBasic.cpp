#include "analysis/CTivBasic.h"

#include "analysis/stats.h"
#include "foundation/CTivAlgo.h"

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
