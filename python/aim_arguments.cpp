#include "python/aim_arguments.h"

using namespace tonewright;

namespace {

using DoubleArray = py::array_t<double, py::array::c_style | py::array::forcecast>;

std::string illuminantWords() {
    std::string words;
    for (const CalibrationIlluminant& illuminant : kCalibrationIlluminants) {
        words += (words.empty() ? "" : ", ") + std::string(illuminant.word);
    }
    return words;
}

}  // namespace

AimArguments::AimArguments(const std::optional<std::string>& word, const py::object& values,
                           const std::optional<std::array<double, 3>>& white, const py::object& picture,
                           const RoiArgument& roi, std::optional<int> bits)
    : illuminant(FindIlluminant(word.value_or("A"))), referenceRoi(roi) {
    if (!illuminant) throw py::value_error("illuminant: one of " + illuminantWords());
    const bool isUser = illuminant->index == kUserIlluminant;
    if (isUser != !values.is_none() || isUser != white.has_value()) {
        throw py::value_error("values and white are what illuminant \"user\" needs, and no other");
    }
    if (isUser) TakeUserLight(values, *white);
    if (roi && picture.is_none()) throw py::value_error("reference_roi is for a reference");
    if (picture.is_none()) return;
    if (word) throw py::value_error("illuminant and reference: one of them");
    const bool isArray = py::isinstance<py::array>(picture);
    reference.emplace(picture, isArray ? bits : std::nullopt);
}

void AimArguments::TakeUserLight(const py::object& values, const std::array<double, 3>& white) {
    const DoubleArray array(values);
    if (array.ndim() != 2 || array.shape(1) != 3) throw py::value_error("values: XYZ of each patch, (N, 3)");
    const auto count = static_cast<int>(array.shape(0));
    user.emplace();
    Require([&] { return user->values.Set(count, CTivData::FormatColorFloat, nullptr, true); }, "values",
            "not enough memory");
    for (int i = 0; i < count; ++i) {
        const std::array<float, 4> xyz = {static_cast<float>(array.at(i, 0)), static_cast<float>(array.at(i, 1)),
                                          static_cast<float>(array.at(i, 2)), 0.0f};
        user->values.SetData(i, CTivData::ColorFloat(xyz.data()));
    }
    for (std::size_t c = 0; c < white.size(); ++c) user->white[c] = static_cast<float>(white[c]);
}

CalibrationAim AimArguments::Read(const SearchArguments& search) const {
    CalibrationAim aim;
    aim.illuminant = illuminant->index;
    aim.user = user;
    aim.subject = "values";
    if (reference) {
        aim.subject = reference->GetName();
        aim.reference = search.Read(reference->Load(), aim.subject, referenceRoi);
        RequireOrder(*aim.reference, aim.subject);
    }
    return aim;
}
