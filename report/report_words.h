#pragma once

#include "report/html_report.h"

namespace tonewright {

/// The words of a report, whatever it is written in.
namespace report_words {

inline constexpr const char* kDelivered = "delivered, mean difference (CIEDE2000)";
inline constexpr const char* kWorst = "worst patch: ";  // and its name
inline constexpr const char* kUnseen = "mean on patches left out of the fit";
inline constexpr const char* kBefore = "mean before the correction";
inline constexpr const char* kScale =
    "A difference of 1 is just seen side by side; up to 3 is good, above 6 is easily seen.";

inline constexpr const char* kFindings = "Findings";
inline constexpr const char* kNoFinding = "Nothing speaks against this calibration.";
inline constexpr const char* kNoGain = "What is delivered is no closer to what is wanted than before.";

/// What stands in place of findings where there are none.
inline const char* WithoutFindings(const Report& report) { return report.mean < report.before ? kNoFinding : kNoGain; }

inline constexpr const char* kPicture = "Picture";
inline constexpr const char* kOutlines =
    "What was measured lies inside the outlines; red: the worst patch, ";  // and its name

inline constexpr const char* kPatches = "Patches";
inline constexpr const char* kSwatches =
    "Each patch from left to right: measured, wanted, delivered. Below: its number and name, its difference after the "
    "correction, and in brackets before it.";

inline constexpr const char* kPlots = "Plots";

inline constexpr const char* kCandidates = "4, 7 and 10 terms";
inline constexpr const char* kTermsMean =
    "Mean differences in CIEDE2000. More terms always fit the patches better; what counts for every other color is the "
    "column of patches left out.";

inline constexpr const char* kNumbers = "Numbers";
inline constexpr const char* kSettings = "Settings";

}  // namespace report_words

}  // namespace tonewright
