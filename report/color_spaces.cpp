#include "report/color_spaces.h"

#include <lcms2.h>

#include "calibration/CalibrationTables.h"

Xyz ToD50(const Xyz& color) {
    const cmsCIEXYZ white = {kWhiteD65[0], kWhiteD65[1], kWhiteD65[2]};
    const cmsCIEXYZ from = {color[0], color[1], color[2]};
    cmsCIEXYZ adapted = from;
    cmsAdaptToIlluminant(&adapted, &white, cmsD50_XYZ(), &from);
    return {adapted.X, adapted.Y, adapted.Z};
}

std::array<double, 3> XyzToLinearRgb(const Xyz& color) {
    const DoubleMatrix& matrix = GetCalibrationTables().XyzToRgbMatrix;
    std::array<double, 3> linear{};
    for (int row = 0; row < 3; ++row) {
        for (int k = 0; k < 3; ++k)
            linear[static_cast<std::size_t>(row)] += matrix[row][k] * color[static_cast<std::size_t>(k)];
    }
    return linear;
}
