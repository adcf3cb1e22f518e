#include "chart/ChartLayout.h"

#include "calibration/CalibrationTables.h"
#include "chart/patch_names.h"

namespace tonewright {

namespace {
constexpr int kIlluminantD50 = 1;
}

const ChartLayout& GetClassicLayout() {
    static const ChartLayout layout = [] {
        ChartLayout classic{6, 4, {kPatchNames.begin(), kPatchNames.end()}, {}};
        for (const auto& quad : GetCalibrationTables().ReferenceTable.at(kIlluminantD50)) {
            classic.references.push_back({quad[0], quad[1], quad[2]});
        }
        return classic;
    }();
    return layout;
}

}  // namespace tonewright
