
#include <array>
#include <cmath>
#include <variant>

#include "chart/PatchMeasurement.h"
#include "python/HeldCalibration.h"
#include "python/aim_arguments.h"
#include "python/calibrate.h"

using namespace tonewright;

namespace {

int toTerms(const std::variant<int, std::string>& terms) {
    if (const int* const number = std::get_if<int>(&terms); number && (*number == 4 || *number == 7 || *number == 10)) {
        return *number;
    }
    if (const auto* const word = std::get_if<std::string>(&terms); word && *word == "auto") return kAutomaticTerms;
    throw py::value_error("terms: 4, 7, 10 or \"auto\"");
}

FitMethod toMethod(const std::string& word) {
    if (word == "least-squares") return FitMethod::LeastSquares;
    if (word == "perceptual") return FitMethod::Perceptual;
    throw py::value_error("fit: \"least-squares\" or \"perceptual\"");
}

SaturationChoice toSaturation(const std::variant<std::string, std::array<int, 3>>& saturation) {
    if (const auto* const word = std::get_if<std::string>(&saturation)) {
        if (*word == "auto") return {};
        if (*word == "none") return {SaturationChoice::None, {}};
        throw py::value_error("saturation: \"auto\", \"none\" or red, green, blue");
    }
    const auto& value = std::get<std::array<int, 3>>(saturation);
    return {SaturationChoice::Manual, {value.begin(), value.end()}};
}

void requireScale(const SaturationChoice& saturation, CTivData::Format format) {
    for (const int channel : saturation.value) {
        if (channel >= 0 && channel <= GetChannelFullScale(format)) continue;
        throw py::value_error("saturation: from 0 to " + std::to_string(GetChannelFullScale(format)));
    }
}

HeldCalibration calibrate(const py::object& picture, const RoiArgument& roi, const SizeArgument& chart, bool find,
                          const py::object& layout, std::optional<int> bits,
                          const std::optional<std::string>& illuminant, const py::object& values,
                          const std::optional<std::array<double, 3>>& white, const py::object& reference,
                          const RoiArgument& referenceRoi, const std::variant<int, std::string>& terms,
                          const std::string& fit, double gamma,
                          const std::variant<std::string, std::array<int, 3>>& saturation) {
    const PictureSource source(picture, bits);
    const SearchArguments search(chart, find, layout);
    const AimArguments aims(illuminant, values, white, reference, referenceRoi, bits);
    const CalibrationSettings settings = {toTerms(terms), toMethod(fit), ToGamma(gamma), toSaturation(saturation)};
    return Work([&] {
        HeldCalibration held;
        held.method = settings.method;
        held.name = source.GetName();
        if (aims.reference) held.reference = aims.reference->GetName();
        ChartReading reading = search.Read(source.Load(), held.name, roi);
        requireScale(settings.saturation, reading.image.GetFormat());
        RequireOrder(reading, held.name);
        held.calibration = CalibrateChart(reading, held.name, settings, aims.Read(search));
        held.picture = reading.image;  // its own pixels from here on, whoever had them
        held.chart.emplace(std::move(reading));
        return held;
    });
}

}  // namespace

float ToGamma(double gamma) {
    const auto number = static_cast<float>(gamma);
    if (!(number > 0) || !std::isfinite(number)) throw py::value_error("gamma: a number above 0");
    return number;
}

void AddCalibrate(py::module_& module) {
    using namespace py::literals;
    module.def("calibrate", calibrate, "picture"_a, py::kw_only(), "roi"_a = py::none(), "chart"_a = py::none(),
               "find"_a = false, "layout"_a = py::none(), "bits"_a = py::none(), "illuminant"_a = py::none(),
               "values"_a = py::none(), "white"_a = py::none(), "reference"_a = py::none(),
               "reference_roi"_a = py::none(), "terms"_a = 4, "fit"_a = "least-squares", "gamma"_a = 0.45,
               "saturation"_a = "auto",
               R"(Finds the chart in a picture and fits the transform that brings its colors to what they should be.

picture, roi, chart, layout, bits: as for detect. find: look for the chart wherever it lies, as find_chart does.
illuminant: the light on the chart, A (the default), D50, D55, D65, D75, E, F2, F7, F11; or "user" with values, (N, 3)
XYZ of the patches under it, and white, the XYZ of the white reference.
reference, reference_roi: another picture of the chart to fit to, instead of an illuminant.
terms: 4, 7, 10, or "auto" for what does best on patches left out.
fit: "least-squares" (by singular value decomposition, adapted to D65 by the Bradford method), or "perceptual", which
starts from it and minimises the mean CIEDE2000 of what is delivered (by the method of Levenberg and Marquardt).
gamma: exponent of the corrected picture's values, above 0.
saturation: from which raw value on a channel counts as saturated: "auto", "none" or (red, green, blue) in the
picture's words.

Returns a Calibration. Raises Error, or ChartNotFound with find.)");
}
