#pragma once

#include "app/CommandIds.h"
#include "calibration/illuminants.h"

/// @return the number of the command that chooses an illuminant: the published ones count on from the user's, later
///         ones from ID_BTN_ILLUMINANT_MORE
constexpr int IlluminantCommand(const tonewright::CalibrationIlluminant& illuminant) {
    constexpr int published = ID_BTN_ILLUMINANT_F11 - ID_BTN_ILLUMINANT_A + 1;
    return illuminant.index < published ? ID_BTN_ILLUMINANT_A + illuminant.index
                                        : ID_BTN_ILLUMINANT_MORE + illuminant.index - published;
}

/// @return the illuminant that a command chooses, null for another command
constexpr const tonewright::CalibrationIlluminant* FindIlluminantOfCommand(int id) {
    for (const tonewright::CalibrationIlluminant& illuminant : tonewright::kCalibrationIlluminants) {
        if (IlluminantCommand(illuminant) == id) return &illuminant;
    }
    return nullptr;
}
