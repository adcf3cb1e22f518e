#include "python/verification.h"

#include "python/aim_arguments.h"

using namespace tonewright;

HeldVerification VerifyCalibration(const HeldCalibration& held, const py::object& picture, const RoiArgument& roi,
                                   const SizeArgument& chart, bool find, const py::object& layout,
                                   const std::optional<std::string>& illuminant, const py::object& values,
                                   const std::optional<std::array<double, 3>>& white, const py::object& reference,
                                   const RoiArgument& referenceRoi) {
    const PictureSource source(picture, BitsFor(held, picture));
    const SearchArguments search(chart, find, layout);
    const AimArguments aims(illuminant, values, white, reference, referenceRoi, BitsFor(held, reference));
    const bool isOfCoefficients = held.origin == HeldCalibration::Origin::Coefficients;
    const bool hasAim = isOfCoefficients || illuminant || aims.reference;
    return Work([&] {
        ChartReading reading = search.Read(source.Load(), source.GetName(), roi);
        RequireOrder(reading, source.GetName());
        const auto aim = hasAim ? std::optional(aims.Read(search)) : std::nullopt;
        Verification judged =
            Verify(reading, source.GetName(), held.Engine(), held.calibration.transform, isOfCoefficients, aim);
        return HeldVerification{std::move(judged), ChartResult(std::move(reading))};
    });
}

void AddVerification(py::module_& module) {
    py::class_<HeldVerification>(module, "Verification", "A calibration judged on another picture of the chart.")
        .def_property_readonly(
            "delivered", [](const HeldVerification& held) { return held.judged.quality.delivered; },
            "Of the picture's raw colors as a corrected picture has them: the figure that comes first.")
        .def_property_readonly(
            "picture", [](const HeldVerification& held) { return held.judged.quality.picture.delivered; },
            "Of what the corrected picture's own patches measure.")
        .def_property_readonly(
            "before", [](const HeldVerification& held) { return held.judged.quality.before; },
            "Of the raw colors, read as linear RGB.")
        .def_property_readonly(
            "findings", [](const HeldVerification& held) { return held.judged.findings; },
            "What speaks against picture and transform, a list of Finding.")
        .def_property_readonly(
            "chart", [](const HeldVerification& held) -> const ChartResult& { return held.chart; },
            "The Chart as it was found.")
        .def("__repr__", [](const HeldVerification& held) {
            const DifferenceSummary& delivered = held.judged.quality.delivered.deltaE00;
            return py::str("<tonewright.Verification delivered {:.2f}, max {:.2f}>")
                .format(delivered.mean, delivered.max);
        });
}
