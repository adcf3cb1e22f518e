#pragma once

#include <QString>

#include "report/html_report.h"

/// The words of the pane "Calibration Quality".
namespace quality_texts {

/// One digit behind the point; a dash for what is no number.
QString Difference(double value);
/// "4.1" and what it is.
QString Headline(const tonewright::Report& report);
/// "worst 9.0 (18 Cyan)", "unseen 4.8", "before 10.8", a line each, and the corrected picture's where it is another.
QString Figures(const tonewright::Report& report);
/// What a patch measures, in lines.
QString PatchNumbers(const tonewright::ReportPatch& patch);
/// The findings as rich text, each with its severity.
/// @param without stands in their place where there are none
QString Findings(const std::vector<tonewright::Finding>& findings, const char* without);

}  // namespace quality_texts
