#pragma once

#include <string>

#include "calibration/coefficient_file.h"
#include "calibration/parameter_file.h"
#include "foundation/CTivVector.h"

// The library reads a file that breaks off as one with zeros at its end. The tool holds it against the length that its
// own head asks for.

struct ParameterFile {
    std::int32_t version = 0;
    CalibrationParameters parameters;
};

struct CoefficientFile {
    CoefficientHead head;
    CTivVector transform;  ///< 3 x terms floats
};

/// @throw WorkFailure with the system's reason for a file that does not open
void RequireOpens(const std::string& path);

/// @throw WorkFailure for a native image record that is shorter than its head says
void RequireWholeImage(const std::string& path);

/// @throw WorkFailure for a native vector that is shorter than its head says, or that the library refuses
CTivVector ReadWholeVector(const std::string& path);

/// @throw WorkFailure for a parameter file that is shorter than its heads say, that the library refuses, or that has a
///        term count other than 4, 7, 10 or an unknown illuminant
ParameterFile ReadWholeParameters(const std::string& path);

/// @throw WorkFailure for a coefficient file that is shorter than its heads say, that the library refuses, or that has
///        a term count other than 4, 7, 10 or not three rows of so many terms
CoefficientFile ReadWholeCoefficients(const std::string& path);
