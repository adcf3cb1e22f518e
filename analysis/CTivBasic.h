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
    ///         stay as they were
    bool Stats(const CTivImage& image, float mean[3], float deviation[3], float min[3], float max[3]);
    bool GetStats(const CTivImage& image, float mean[3], float deviation[3], float min[3], float max[3]) {
        return Stats(image, mean, deviation, min, max);
    }

    // The thresholds of analysis/threshold.h on the ROIs of images. An empty destination takes the source's ROI size. A
    // semi-threshold whose destination has the source's pixels works in place.
    // @return false, reported, for what those functions refuse

    bool Thresh(const CTivImage& source, CTivImage& destination, float low, float high, bool invert, bool single,
                bool binary);
    /// @param low, high 0 red, 1 green, 2 blue. In place a mask is refused, being of another type.
    bool ThreshColor(const CTivImage& source, CTivImage& destination, const float low[3], const float high[3],
                     bool invert, bool single, bool binary);
    bool ThreshImages(const CTivImage& source, CTivImage& destination, const CTivImage& low, const CTivImage& high,
                      bool invert, bool single, bool binary);

private:
    std::unique_ptr<ImplBasic> impl_;
};
