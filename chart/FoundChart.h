#pragma once

#include <array>
#include <string>
#include <vector>

namespace tonewright {

/// A place in a picture in pixels: (0, 0) is the centre of the first pixel, y runs down.
struct ChartPoint {
    double x = 0;
    double y = 0;
};

/// A patch where it lies.
struct FoundPatch {
    ChartPoint center;
    /// In the chart's order, whatever the picture's: upper left, upper right, lower right, lower left.
    std::array<ChartPoint, 4> corners;
    bool seen = false;  ///< edges of its own were seen; otherwise its neighbours tell where it is
};

/// Why no chart is given.
enum class FindRefusal {
    None,
    NoPatches,      ///< nothing in the picture looks like a patch
    TooFew,         ///< a grid, but too little of it
    NoGrid,         ///< patches that form no grid
    NoOrientation,  ///< a grid whose colors are not the chart's, or fit in more than one way
    Several         ///< more than one chart
};

/// @return the word for documents: "no-patches", "too-few", "no-grid", "no-orientation", "several"
const char* GetRefusalCode(FindRefusal refusal);

/// What ChartFinder gives.
struct FoundChart {
    bool found = false;
    FindRefusal refusal = FindRefusal::NoPatches;
    std::string text;  ///< one sentence for a person: what was seen and why it is not enough; where found, empty or
                       ///< what is not known of it
    int seen = 0;      ///< patches of the best grid that were seen

    std::vector<FoundPatch> patches;    ///< in chart order, row by row; empty where not found
    std::array<ChartPoint, 4> corners;  ///< outer corners of the chart's upper left, upper right, lower right and
                                        ///< lower left patch
    double rotation = 0;                ///< degrees, clockwise, of the row from the first patch, -180 to 180
    bool mirrored = false;              ///< seen as in a mirror
    /// 0 to 1: by how much less of the colors' spread the chart leaves unexplained in this orientation than in the next
    /// best one (or a place beside it). Above 0.33 always. It judges the orientation, not how exactly the patches lie.
    double confidence = 0;
    bool isOriented = true;  ///< false: the layout has no colors; rows run to the right, confidence is 0
};

}  // namespace tonewright
