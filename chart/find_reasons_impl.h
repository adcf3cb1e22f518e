#pragma once

#include <array>
#include <optional>

#include "chart/FoundChart.h"

namespace tonewright {

/// What a search that found no chart has seen.
struct FindTrace {
    int flatPatches = 0;               ///< places of even color and the shape of a patch
    int seen = 0;                      ///< of those, how many lie as patches of one chart
    int needed = 0;                    ///< how many of a chart must be seen
    int patches = 0;                   ///< of the chart
    bool fitsTwice = false;            ///< colors match, but in more than one way
    std::array<bool, 4> outside = {};  ///< corners of the chart, as FoundChart::corners, that are not in the picture
    bool lacksEdges = false;           ///< colors match, but too few patches have edges where they should
    bool isByShape = false;            ///< the layout has no colors
    bool isRoi = false;                ///< only a part was looked at
};

/// Puts the reason into words.
FoundChart Refused(const FindTrace& trace);

}  // namespace tonewright
