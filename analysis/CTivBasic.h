#pragma once

#include <memory>

#include "foundation/CTivImage.h"
#include "foundation/CTivOperator.h"

class ImplBasic;

/// Basic image operations as an operator.
class CTivBasic : public CTivOperator {
public:
    CTivBasic();
    ~CTivBasic() override;

    /// Measures the ROI of a color image.
    /// @param mean, deviation, min, max three channels each, 0 red, 1 green, 2 blue; any array may be null
    /// @return false, reported, for an image that is not one of the color formats or whose ROI is empty; the arrays
    /// stay
    ///         as they were
    bool Stats(const CTivImage& image, float mean[3], float deviation[3], float min[3], float max[3]);
    bool GetStats(const CTivImage& image, float mean[3], float deviation[3], float min[3], float max[3]) {
        return Stats(image, mean, deviation, min, max);
    }

private:
    std::unique_ptr<ImplBasic> impl_;
};
