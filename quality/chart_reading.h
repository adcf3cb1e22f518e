#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "chart/ChartLayout.h"
#include "chart/FoundChart.h"
#include "chart/PatchDetector.h"
#include "foundation/CTivImage.h"
#include "foundation/library_texts.h"
#include "quality/findings.h"

namespace tonewright {

/// How a chart is looked for in a picture.
struct ChartSearch {
    ChartSize size;                       ///< of the straight grid
    bool isFind = false;                  ///< wherever the chart lies, instead of by the straight grid
    const ChartLayout* layout = nullptr;  ///< of the chart, whose size is then `size`; null: it is the 24-patch chart
};

/// A picture in which the chart was found.
struct ChartReading {
    CTivImage image;
    ChartRoi roi;
    PatchDetector detector;           ///< of the straight grid
    std::optional<FoundChart> found;  ///< instead of it, where the chart was looked for
    PatchColors colors;               ///< at the image's own depth
    /// What the patches measure. Its targets are those of the 24-patch chart under D65 until others are known, none for
    /// a chart of another number.
    MeasuredChart measured;
};

/// The chart was looked for and is not in the picture, or not certain. The text says why.
class ChartNotFound : public WorkFailure {
public:
    ChartNotFound(const std::string& path, ChartReading reading);

    /// Picture, ROI and chart size, and in `found` the refusal.
    const ChartReading& GetReading() const { return *reading_; }

private:
    std::shared_ptr<const ChartReading> reading_;
};

/// Finds the patches by the straight grid or wherever they lie, and measures them.
/// @param path names the picture in the messages
/// @param roi none: the image less a fiftieth of its width and height at each side; where the chart is looked for, the
///            whole image
/// @throw WorkFailure where the ROI is empty or outside the image, nothing is found, or the image has no colors;
///        ChartNotFound where the chart was looked for
ChartReading ReadChart(CTivImage image, const std::string& path, const std::optional<ChartRoi>& roi,
                       const ChartSearch& search);

/// Where the patches lie: of the straight grid upright squares of twice the sampling rectangle around each centre.
std::vector<FoundPatch> PlacesOf(const ChartReading& reading);

/// @throw WorkFailure for a chart of which it is not known which patch is the first
void RequireOrder(const ChartReading& reading, const std::string& path);

/// The picture for whoever judges a correction of it.
ChartInPicture InPicture(const ChartReading& reading);

}  // namespace tonewright
