#include "python/charts.h"

#include "chart/layout_file.h"
#include "chart/orientation.h"
#include "foundation/whole_files.h"
#include "python/number_arrays.h"

using namespace tonewright;

SearchArguments::SearchArguments(const SizeArgument& size, bool isFind, const py::object& layout) {
    search_.isFind = isFind;
    if (size) search_.size = {std::get<0>(*size), std::get<1>(*size)};
    if (search_.size.Width < 1 || search_.size.Height < 1) throw py::value_error("chart: at least 1 column and 1 row");
    if (!layout.is_none()) {
        if (size) throw py::value_error("chart and layout: one of them");
        const std::string path = ToPath(layout);
        layout_ = Work([&] {
            RequireText(path);
            std::string reason;
            auto read = ReadChartLayout(path, reason);
            if (!read) throw WorkFailure(path + ": " + reason);
            return *read;
        });
        search_.size = {layout_->columns, layout_->rows};
    } else if (isFind && (search_.size.Width != 6 || search_.size.Height != 4)) {
        throw py::value_error("finding a chart of another size than 6 x 4 needs its layout");
    }
}

ChartReading SearchArguments::Read(CTivImage image, const std::string& name, const RoiArgument& roi) const {
    std::optional<ChartRoi> inside;
    if (roi) std::apply([&](int left, int top, int right, int bottom) { inside = {left, top, right, bottom}; }, *roi);
    ChartSearch search = search_;
    search.layout = layout_ ? &*layout_ : nullptr;
    return ReadChart(std::move(image), name, inside, search);
}

ChartResult::ChartResult(ChartReading whole)
    : reading(std::move(whole)),
      findings(FindInPicture(reading.measured)),
      width(reading.image.GetWidth()),
      height(reading.image.GetHeight()),
      format(reading.image.GetFormat()) {
    reading.image = CTivImage();
}

namespace {

ChartResult readChart(const py::object& picture, const RoiArgument& roi, const SearchArguments& search,
                      std::optional<int> bits) {
    const PictureSource source(picture, bits);
    return Work([&] { return ChartResult(search.Read(source.Load(), source.GetName(), roi)); });
}

ChartResult detect(const py::object& picture, const RoiArgument& roi, const SizeArgument& chart,
                   const py::object& layout, std::optional<int> bits) {
    return readChart(picture, roi, SearchArguments(chart, false, layout), bits);
}

ChartResult findChart(const py::object& picture, const RoiArgument& roi, const py::object& layout,
                      std::optional<int> bits) {
    return readChart(picture, roi, SearchArguments(std::nullopt, true, layout), bits);
}

bool isComplete(const ChartResult& chart) {
    const MeasuredChart& measured = chart.reading.measured;
    return chart.reading.found || (chart.reading.detector.GetFoundRows() == measured.chart.Height &&
                                   chart.reading.detector.GetFoundColumns() == measured.chart.Width);
}

py::array centers(const ChartResult& chart) {
    const std::vector<FoundPatch> places = PlacesOf(chart.reading);
    return MakeArray<double>({std::ssize(places), 2}, [&](py::ssize_t i) {
        const ChartPoint& center = places[static_cast<std::size_t>(i / 2)].center;
        return i % 2 == 0 ? center.x : center.y;
    });
}

py::array corners(const ChartResult& chart) {
    const std::vector<FoundPatch> places = PlacesOf(chart.reading);
    return MakeArray<double>({std::ssize(places), 4, 2}, [&](py::ssize_t i) {
        const auto& around = places[static_cast<std::size_t>(i / 8)].corners;
        const ChartPoint& corner = around[static_cast<std::size_t>(i / 2 % 4)];
        return i % 2 == 0 ? corner.x : corner.y;
    });
}

/// A row a patch of one of a measurement's triples.
template <auto member>
py::array measured(const ChartResult& chart) {
    const auto& patches = chart.reading.measured.patches;
    return MakeArray<double>({std::ssize(patches), 3}, [&](py::ssize_t i) {
        return (patches[static_cast<std::size_t>(i / 3)].*member)[static_cast<std::size_t>(i % 3)];
    });
}

py::array clipped(const ChartResult& chart) {
    const auto& patches = chart.reading.measured.patches;
    return MakeArray<double>({std::ssize(patches)},
                             [&](py::ssize_t i) { return patches[static_cast<std::size_t>(i)].clipped; });
}

std::tuple<int, int, int, int> roiOf(const ChartResult& chart) {
    const ChartRoi& roi = chart.reading.roi;
    return {roi.left, roi.top, roi.right, roi.bottom};
}

std::tuple<int, int> sizeOf(const ChartResult& chart) {
    return {chart.reading.measured.chart.Width, chart.reading.measured.chart.Height};
}

std::string represent(const ChartResult& chart) {
    const auto [columns, rows] = sizeOf(chart);
    return "<tonewright.Chart of " + std::to_string(columns) + " x " + std::to_string(rows) + " patches in " +
           std::to_string(chart.width) + " x " + std::to_string(chart.height) + " " +
           CTivData::GetFormatName(chart.format) + ">";
}

template <class Value>
auto ofFound(Value FoundChart::*member) {
    return [member](const ChartResult& chart) {
        return chart.reading.found ? std::optional<Value>((*chart.reading.found).*member) : std::nullopt;
    };
}

void addFinding(py::module_& module) {
    py::class_<Finding>(module, "Finding",
                        "Something about a picture or a calibration that a person should know: what is wrong, and what "
                        "to do about it.")
        .def_property_readonly(
            "code", [](const Finding& finding) { return finding.code; }, "One word, for programs.")
        .def_property_readonly(
            "severity", [](const Finding& finding) { return GetSeverityName(finding.severity); },
            "\"note\", \"warning\" or \"error\".")
        .def_readonly("text", &Finding::text, "A sentence or two for a person.")
        .def_readonly("patches", &Finding::patches, "The patches that it concerns, from 1; empty: all.")
        .def("__repr__", [](const Finding& finding) {
            return std::string("<tonewright.Finding ") + GetSeverityName(finding.severity) + ": " + finding.text + ">";
        });
}

void addChart(py::module_& module) {
    py::class_<ChartResult>(module, "Chart",
                            "A chart that was found in a picture, and what its patches measure. Patches stand in the "
                            "order that a calibration wants, row by row from the first patch of the chart; N is their "
                            "number. Places are in pixels, (0, 0) is the centre of the first one.")
        .def_readonly("width", &ChartResult::width, "Of the picture, in pixels.")
        .def_readonly("height", &ChartResult::height, "Of the picture, in pixels.")
        .def_property_readonly(
            "format", [](const ChartResult& chart) { return CTivData::GetFormatName(chart.format); },
            "Of the picture: \"FormatRgb\", \"FormatRgb10\" or \"FormatRgb16\".")
        .def_property_readonly("roi", roiOf, "Where it was looked for: left, top, right, bottom in pixels.")
        .def_property_readonly("size", sizeOf, "Columns and rows of patches.")
        .def_property_readonly("centers", centers, "(N, 2) float64: x and y of each patch.")
        .def_property_readonly("corners", corners,
                               "(N, 4, 2) float64: the corners of each patch, in the chart's order: upper left, upper "
                               "right, lower right, lower left.")
        .def_property_readonly(
            "colors", [](const ChartResult& chart) { return ToColorArray(chart.reading.colors.colors); },
            "(N, 3) uint8 or uint16: the means, truncated; what a calibration is made from.")
        .def_property_readonly("mean", measured<&PatchMeasurement::mean>,
                               "(N, 3) float64: red, green, blue over the inner half of each patch, in the picture's "
                               "words.")
        .def_property_readonly("deviation", measured<&PatchMeasurement::deviation>,
                               "(N, 3) float64: the standard deviation there.")
        .def_property_readonly("clipped", clipped,
                               "(N,) float64: the share of pixels that have a channel at full scale.")
        .def_property_readonly(
            "saturated", [](const ChartResult& chart) { return chart.reading.colors.saturated; },
            "Whether a mean has reached full scale.")
        .def_property_readonly("complete", isComplete, "Whether all rows and columns of the straight grid were seen.")
        .def_property_readonly(
            "orientation",
            [](const ChartResult& chart) {
                return GetOrientationName(chart.reading.measured.chart, chart.reading.colors.brightest);
            },
            "How the straight grid lies: \"normal\", \"rows reversed\", \"turned\", \"columns reversed\" or \"none\".")
        .def_property_readonly("rotation", ofFound(&FoundChart::rotation),
                               "Degrees, clockwise, of the chart's rows; None by the straight grid.")
        .def_property_readonly("mirrored", ofFound(&FoundChart::mirrored),
                               "Whether it is seen as in a mirror; None by the straight grid.")
        .def_property_readonly("confidence", ofFound(&FoundChart::confidence),
                               "0 to 1, of the orientation; None by the straight grid.")
        .def_readonly("findings", &ChartResult::findings, "What may spoil a calibration, a list of Finding.")
        .def("__repr__", represent);
}

}  // namespace

void AddCharts(py::module_& module) {
    using namespace py::literals;
    addFinding(module);
    addChart(module);
    module.def(
        "detect", detect, "picture"_a, "roi"_a = py::none(), "chart"_a = py::none(), "layout"_a = py::none(),
        "bits"_a = py::none(),
        R"(Finds the patches of an upright chart by a straight grid, and measures them. Bright regions at Otsu's level ("A
threshold selection method from gray-level histograms", 1979) give the grid.

picture: a file name, or an array as load_image gives it, of colors.
roi: left, top, right, bottom in pixels, right and bottom exclusive; None is the picture less a fiftieth of its width
and height at each side.
chart: columns and rows of patches, None is (6, 4). layout: a file that says how the chart is laid out.
bits: 10 where an array of uint16 has 10 bits.

Returns a Chart. Raises Error where no patch is found.)");
    module.def("find_chart", findChart, "picture"_a, "roi"_a = py::none(), "layout"_a = py::none(),
               "bits"_a = py::none(),
               R"(Finds the chart wherever it lies: turned, tilted by up to 40 degrees, mirrored, small, unevenly lit.

Arguments as for detect; roi None is the whole picture. Returns a Chart. Raises ChartNotFound, with the reason, where
the answer is not certain.)");
}
