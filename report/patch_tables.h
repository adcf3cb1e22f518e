#pragma once

#include <span>
#include <string>

#include "report/html_report.h"

namespace tonewright {

/// The patches as a CGATS file (.ti3) with the field names that color profiling tools read: device values RGB_R, RGB_G,
/// RGB_B and target XYZ_X, XYZ_Y, XYZ_Z (both 0 to 100), LAB_L, LAB_A, LAB_B under D50, as such files have it.
/// @param created date and time, one line without quotes
std::string CgatsTable(std::span<const ReportPatch> patches, const std::string& created);

/// The patches as comma-separated values (RFC 4180) with a line of headings: number and name, raw color on the
/// picture's scale, target and delivered as CIE L*a*b* under D65, differences before and after.
/// @param fullScale of the raw colors: 255, 1023 or 65535
std::string PatchCsv(std::span<const ReportPatch> patches, int fullScale);

}  // namespace tonewright
