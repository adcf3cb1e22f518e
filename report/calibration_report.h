#pragma once

#include <span>
#include <string>
#include <vector>

#include "chart/FoundChart.h"
#include "chart/patch_outline.h"
#include "quality/CalibrationQuality.h"
#include "quality/findings.h"
#include "report/html_report.h"

class CTivImage;

namespace tonewright {

/// Where the straight grid measures: rectangles around the patches' places.
PatchOutlines OutlineGrid(const std::vector<std::array<double, 2>>& places, double width, double height);
/// Where a chart that was found is measured: the inner half of each patch.
PatchOutlines OutlineFound(const FoundChart& found);

/// The figures of a calibration as a report shows them. Title, picture and settings are the caller's to add.
Report ReportCalibration(const CalibrationQuality& quality, const std::vector<Finding>& findings, int terms,
                         const ChartSize& chart, const PatchOutlines& outlines);

/// The same for a calibration that was judged on another picture.
Report ReportVerification(const VerifiedQuality& quality, const std::vector<Finding>& findings, const ChartSize& chart,
                          const PatchOutlines& outlines);

/// Mode, illuminant, terms, gamma and saturation in words.
/// @param isPerceptual the transform in force is the refined one
std::vector<ReportRow> ReportSettings(const CTivTonewrightDC& engine, bool isPerceptual);

/// The picture in the 8 bits a channel that a report shows: deep ones by their highest bits.
/// @return empty for a format that has no colors
CTivImage ReportPicture(const CTivImage& picture);

}  // namespace tonewright
