#pragma once

#include <array>
#include <optional>
#include <string>

#include "python/charts.h"
#include "quality/chart_calibration.h"

/// The arguments that tell what the patches should be.
struct AimArguments {
    const tonewright::CalibrationIlluminant* illuminant;
    std::optional<tonewright::CalibrationAim::UserLight> user;
    std::optional<PictureSource> reference;
    RoiArgument referenceRoi;

    /// @param word of the illuminant; nothing: A @param picture the reference, or None
    /// @param bits of the reference, where it is an array @throw ValueError for arguments that do not go together
    AimArguments(const std::optional<std::string>& word, const py::object& values,
                 const std::optional<std::array<double, 3>>& white, const py::object& picture, const RoiArgument& roi,
                 std::optional<int> bits);

    /// Reads the reference; without the GIL. @throw as ReadChart and RequireOrder
    tonewright::CalibrationAim Read(const SearchArguments& search) const;

private:
    void TakeUserLight(const py::object& values, const std::array<double, 3>& white);
};
