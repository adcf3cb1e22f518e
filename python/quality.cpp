
#include "python/library_call.h"
#include "python/number_arrays.h"
#include "quality/CalibrationQuality.h"

using namespace tonewright;

namespace {

using DoubleArray = py::array_t<double, py::array::c_style | py::array::forcecast>;

Lab labAt(const double* colors, py::ssize_t index) {
    return {colors[3 * index], colors[3 * index + 1], colors[3 * index + 2]};
}

/// Both broadcast to one shape by numpy's own rules; a difference a color.
py::object deltaE2000(const py::object& first, const py::object& second) {
    const py::module_ numpy = py::module_::import("numpy");
    const py::tuple both = numpy.attr("broadcast_arrays")(numpy.attr("asarray")(first, "float64"),
                                                          numpy.attr("asarray")(second, "float64"));
    const DoubleArray one(both[0]), other(both[1]);
    if (one.ndim() < 1 || one.shape(one.ndim() - 1) != 3) throw py::value_error("colors have the shape (..., 3)");
    const std::vector<py::ssize_t> shape(one.shape(), one.shape() + one.ndim() - 1);
    DoubleArray differences(shape);
    double* const result = differences.mutable_data();
    const double* const a = one.data();
    const double* const b = other.data();
    const py::ssize_t count = differences.size();
    {
        const Unlocked unlocked;
        for (py::ssize_t i = 0; i < count; ++i) result[i] = DeltaE2000(labAt(a, i), labAt(b, i));
    }
    return differences.attr("__getitem__")(py::tuple());  // a number of one pair of colors
}

template <auto member>
py::array patchColors(const CalibrationQuality& quality) {
    return MakeArray<double>({std::ssize(quality.patches), 3}, [&](py::ssize_t i) {
        return (quality.patches[static_cast<std::size_t>(i / 3)].*member)[static_cast<std::size_t>(i % 3)];
    });
}

template <auto member>
py::array patchNoise(const CalibrationQuality& quality) {
    return MakeArray<double>({std::ssize(quality.noise), 3}, [&](py::ssize_t i) {
        return (quality.noise[static_cast<std::size_t>(i / 3)].*member)[static_cast<std::size_t>(i % 3)];
    });
}

void addDifferences(py::module_& module) {
    py::class_<DifferenceSummary>(module, "Summary", "One measure of color difference over the patches of a chart.")
        .def_readonly("mean", &DifferenceSummary::mean)
        .def_readonly("median", &DifferenceSummary::median)
        .def_readonly("max", &DifferenceSummary::max)
        .def_property_readonly(
            "patches", [](const DifferenceSummary& summary) { return MakeArray(summary.patches); },
            "(N,) float64: one a patch, in chart order.")
        .def("__repr__", [](const DifferenceSummary& summary) {
            return py::str("<tonewright.Summary mean {:.2f}, median {:.2f}, max {:.2f}>")
                .format(summary.mean, summary.median, summary.max);
        });
    py::class_<ChartDifferences>(module, "Differences", "How far the patches are from what they should be.")
        .def_readonly("delta_e_2000", &ChartDifferences::deltaE00, "CIEDE2000 (CIE 142-2001), weights 1.")
        .def_readonly("delta_e_76", &ChartDifferences::deltaE76, "CIE 1976: the distance in L*a*b*.")
        .def("__repr__", [](const ChartDifferences& differences) {
            return py::str("<tonewright.Differences CIEDE2000 mean {:.2f}, max {:.2f}>")
                .format(differences.deltaE00.mean, differences.deltaE00.max);
        });
    py::class_<TermsFigures>(module, "Candidate", "One term count beside the others: mean CIEDE2000 each.")
        .def_readonly("terms", &TermsFigures::terms)
        .def_readonly("fitted", &TermsFigures::fitted, "Of the bare matrix.")
        .def_readonly("delivered", &TermsFigures::delivered, "Of what a corrected picture has.")
        .def_readonly("unseen", &TermsFigures::unseen, "Likewise, of patches that the fit did not see.")
        .def("__repr__", [](const TermsFigures& candidate) {
            return py::str("<tonewright.Candidate {} terms: delivered {:.2f}, unseen {:.2f}>")
                .format(candidate.terms, candidate.delivered, candidate.unseen);
        });
}

void addQuality(py::module_& module) {
    py::class_<CalibrationQuality>(module, "Quality",
                                   "What a calibration delivers, judged by the chart that it was made from. N is the "
                                   "number of patches, L*a*b* is against D65.")
        .def_readonly("delivered", &CalibrationQuality::delivered,
                      "Of the raw colors as a corrected picture has them: the figure that comes first.")
        .def_property_readonly(
            "picture", [](const CalibrationQuality& quality) { return quality.picture.delivered; },
            "Of what the corrected picture's own patches measure; noise and steps can set it apart from `delivered`.")
        .def_readonly("unseen", &CalibrationQuality::unseen, "Each patch by a fit of all the others.")
        .def_readonly("fitted", &CalibrationQuality::fitted, "Of the bare matrix, without limits and tables.")
        .def_readonly("before", &CalibrationQuality::before, "Of the raw colors, read as linear RGB.")
        .def_readonly("candidates", &CalibrationQuality::candidates, "4, 7 and 10 terms, as far as they can be fitted.")
        .def_readonly("white", &CalibrationQuality::whiteChroma, "Mean chroma of what the neutral patches become.")
        .def_property_readonly("measured", patchColors<&JudgedPatch::measuredLab>, "(N, 3) float64 L*a*b*: raw colors.")
        .def_property_readonly("target", patchColors<&JudgedPatch::targetLab>,
                               "(N, 3) float64 L*a*b*: as they should be.")
        .def_property_readonly("corrected", patchColors<&JudgedPatch::deliveredLab>,
                               "(N, 3) float64 L*a*b*: as they become.")
        .def_property_readonly("noise_before", patchNoise<&PatchNoise::before>,
                               "(N, 3) float64: deviation of red, green, blue in 8-bit steps of the output.")
        .def_property_readonly("noise_after", patchNoise<&PatchNoise::after>, "(N, 3) float64: likewise, corrected.")
        .def("__repr__", [](const CalibrationQuality& quality) {
            return py::str("<tonewright.Quality delivered {:.2f}, unseen {:.2f}, before {:.2f}>")
                .format(quality.delivered.deltaE00.mean, quality.unseen.deltaE00.mean, quality.before.deltaE00.mean);
        });
}

}  // namespace

void AddQuality(py::module_& module) {
    using namespace py::literals;
    addDifferences(module);
    addQuality(module);
    module.def("delta_e_2000", deltaE2000, "first"_a, "second"_a,
               R"(The CIEDE2000 color difference (CIE 142-2001) with all weights 1, hue arithmetic after Sharma, Wu and
Dalal, "The CIEDE2000 Color-Difference Formula", 2005.

first, second: CIE L*a*b* of shape (..., 3), broadcast to each other.
Returns float64 of shape (...), a number for one pair. Where a color has NaN, so has the result.)");
}
