#include "chart/orientation.h"

namespace tonewright {

namespace {

struct Orientation {
    int brightest;
    bool rowsReversed;
    bool columnsReversed;
    const char* name;
};

// 5 is no corner of a 4 x 6 chart.
constexpr Orientation kOrientations[] = {
    {0, true, false, "rows reversed"}, {5, true, true, "turned"}, {23, false, true, "columns reversed"}};
constexpr Orientation kNormal = {-1, false, false, "normal"};

const Orientation& find(int brightest) {
    for (const Orientation& orientation : kOrientations) {
        if (orientation.brightest == brightest) return orientation;
    }
    return kNormal;
}

}  // namespace

bool HasOrientation(const ChartSize& chart) {
    return (chart.Width == 6 && chart.Height == 4) || (chart.Width == 4 && chart.Height == 6);
}

const char* GetOrientationName(const ChartSize& chart, int brightest) {
    return HasOrientation(chart) ? find(brightest).name : "none";
}

int GetPlaceInPicture(const ChartSize& chart, int brightest, int index) {
    const Orientation& orientation = find(brightest);
    const int row = index / chart.Width;
    const int column = index % chart.Width;
    return chart.Width * (orientation.rowsReversed ? chart.Height - 1 - row : row) +
           (orientation.columnsReversed ? chart.Width - 1 - column : column);
}

}  // namespace tonewright
