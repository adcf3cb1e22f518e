#pragma once

#include <cstdint>
#include <string>

#include "calibration/coefficient_file.h"
#include "calibration/parameter_file.h"
#include "foundation/CTivVector.h"

class CTivTonewrightDC;

namespace tonewright {

// Parameter and coefficient files for programs that work with exceptions (foundation/library_texts.h). The library
// reads a file that breaks off as one with zeros at its end; these hold it against the length that its own head asks
// for.

struct ParameterFile {
    std::int32_t version = 0;
    CalibrationParameters parameters;
};

struct CoefficientFile {
    CoefficientHead head;
    CTivVector transform;  ///< 3 x terms floats
};

/// @throw WorkFailure for a parameter file that is shorter than its heads say, that the library refuses, or that has a
///        term count other than 4, 7, 10 or an unknown illuminant
ParameterFile ReadWholeParameters(const std::string& path);

/// @throw WorkFailure for a coefficient file that is shorter than its heads say, that the library refuses, or that has
///        a term count other than 4, 7, 10 or not three rows of so many terms
CoefficientFile ReadWholeCoefficients(const std::string& path);

/// Loads a parameter file, which reruns its calibration. @throw WorkFailure
void LoadParameters(CTivTonewrightDC& engine, const std::string& path);

/// Loads the transform of a coefficient file for FormatRgb images, with the file's saturation or that of full scale.
/// Only ExecuteTransform runs a transform of 4 terms with the color twist that belongs to it. @throw WorkFailure
void LoadCoefficients(CTivTonewrightDC& engine, const std::string& path);

}  // namespace tonewright
