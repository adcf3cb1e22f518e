#pragma once

#include <QString>
#include <cstddef>
#include <cstdint>

#include "foundation/CTivVector.h"

struct WorkflowContext;

/// What a calibration is made from, as far as it takes to see that it has changed.
struct CalibrationInputs {
    int pictures = 0, mode = 0, illuminant = 0, terms = 0, saturationMode = 0;
    float gamma = 0;
    std::uint32_t saturation = 0;
    bool manualColors = false;
    std::size_t colors = 0, values = 0, transform = 0;  ///< checksums
};

/// What is in force now.
CalibrationInputs TakeInputs(const WorkflowContext& work);

/// @return a clause such as "gamma was changed"; empty where nothing differs
QString WhatDiffers(const CalibrationInputs& before, const CalibrationInputs& now);

/// Whether a parameter file of the one would hold something else than a file of the other.
bool HaveOtherParameters(CalibrationInputs one, CalibrationInputs other);

std::size_t Checksum(const CTivVector& vector);
