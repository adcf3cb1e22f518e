#pragma once

#include <optional>
#include <string>
#include <vector>

#include "chart/SamplingArea.h"
#include "quality/CalibrationQuality.h"

namespace tonewright {

enum class Severity { Note, Warning, Error };

/// The word of a severity: "note", "warning", "error".
const char* GetSeverityName(Severity severity);

/// Something about a picture or a calibration that a person should know: what is wrong, and what to do about it.
struct Finding {
    const char* code;  ///< one word, for programs
    Severity severity;
    std::string text;          ///< one sentence or two for a person
    std::vector<int> patches;  ///< which it concerns, from 1; none: all
};

/// A chart as it was measured in a picture.
struct MeasuredChart {
    ChartSize chart;
    CTivData::Format format = CTivData::FormatRgb;
    std::vector<PatchMeasurement> patches;      ///< in the order that the calibration wants
    std::vector<SamplingArea> areas;            ///< over which pixels each was measured, the same order
    std::vector<std::array<double, 2>> places;  ///< centre of each patch in pixels, the same order
    int foundRows = 0;                          ///< rows and columns of the grid in which patches were seen
    int foundColumns = 0;
    std::vector<Xyz> targets;  ///< XYZ of the patches, same order; none where they are not known
};

// One function a finding; each answers nothing where there is nothing to tell.
std::optional<Finding> FindClipped(const MeasuredChart& chart);     ///< pixels at full scale
std::optional<Finding> FindDark(const MeasuredChart& chart);        ///< the white patch is too dark
std::optional<Finding> FindUneven(const MeasuredChart& chart);      ///< light slopes over the chart
std::optional<Finding> FindNoisy(const MeasuredChart& chart);       ///< pixels of a patch spread widely
std::optional<Finding> FindMixed(const MeasuredChart& chart);       ///< a sampling area holds two colors
std::optional<Finding> FindIncomplete(const MeasuredChart& chart);  ///< rows or columns were not found
std::optional<Finding> FindMisread(const MeasuredChart& chart);     ///< "orientation": another order fits far better
std::optional<Finding> FindCoded(const MeasuredChart& chart);       ///< the picture is not linear
/// The fit does far better on the patches that it saw than on others. @param terms of the fit in force
std::optional<Finding> FindOverfit(const CalibrationQuality& quality, int terms);
/// The transform has an entry that is no number, or a column without weight.
std::optional<Finding> FindSingular(const CTivVector& transform);

/// All that a picture tells, in the order of the list above. Nothing is held against the targets where it is not known
/// which patch is which: of an incomplete grid and of one that was misread.
std::vector<Finding> FindInPicture(const MeasuredChart& chart);
/// All that a calibration tells.
std::vector<Finding> FindInCalibration(const CalibrationQuality& quality, const CTivVector& transform);

/// The exponent p of pedestal + gain x luminance ^ p that the neutral patches follow: near 1 for a linear picture, near
/// 0.45 for one made for a screen.
/// @return nothing where fewer than four neutral patches can be used
std::optional<double> EstimateExponent(const MeasuredChart& chart);

/// The XYZ that a chart of 24 patches should have for judging a picture by itself, by an illuminant of the tables.
std::vector<Xyz> GetChartTargets(int illuminant);

}  // namespace tonewright
