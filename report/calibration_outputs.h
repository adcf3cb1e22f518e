#pragma once

#include <string>
#include <string_view>

#include "quality/chart_calibration.h"
#include "quality/verification.h"
#include "report/calibration_report.h"

namespace tonewright {

// What a calibration writes for others, as the bytes of a file.

/// Where the patches were measured, for the report's picture.
PatchOutlines OutlinesOf(const ChartReading& reading);

/// The figures and settings of a calibration as a report shows them, the reference as it was called in `reference`.
/// @param picture, reference as they were called; an empty reference is none
Report ReportOn(const ChartCalibration& calibration, const ChartReading& reading, FitMethod method,
                const std::string& picture, const std::string& reference);

/// The same of a verification, without anything of the calibration.
Report ReportOn(const Verification& verification, const ChartReading& reading, const std::string& picture);

/// The page, with the picture, date and version added.
std::string MakeReportPage(Report report, const CTivImage& picture);

/// Whether a file is exported by this name's extension, in any case: .cube, .icc, .ti3, .csv.
bool IsExportName(const std::string& path);

/// Whether what is exported by this name tells of patches alone: .ti3, .csv.
bool IsExportOfPatches(const std::string& path);

/// @param path by whose extension it is done @param name of the picture, for the file's own title
/// @param report for the patches' colors
/// @return empty where it cannot be made of this calibration
std::string MakeExport(const std::string& path, const CTivTonewrightDC& engine, const CTivVector& transform,
                       const Report& report, const std::string& name);

}  // namespace tonewright
