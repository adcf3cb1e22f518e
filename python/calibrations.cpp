
#include <filesystem>

#include "calibration/calibrate_at_depth.h"
#include "calibration/calibration_files.h"
#include "calibration/execute_transform.h"
#include "foundation/SafeFile.h"
#include "python/HeldCalibration.h"
#include "python/calibrate.h"
#include "python/number_arrays.h"
#include "python/verification.h"
#include "report/calibration_outputs.h"

using namespace tonewright;

namespace {

HeldCalibration loadParameters(const py::object& file) {
    HeldCalibration held;
    held.origin = HeldCalibration::Origin::Parameters;
    held.name = ToPath(file);
    Work([&] { LoadParameters(held.calibration.engine, held.name); });
    held.calibration.transform = *held.Engine().GetTransform();
    return held;
}

HeldCalibration loadCoefficients(const py::object& file, double gamma) {
    HeldCalibration held;
    held.origin = HeldCalibration::Origin::Coefficients;
    held.name = ToPath(file);
    held.calibration.engine.SetGamma(ToGamma(gamma));
    Work([&] { LoadCoefficients(held.calibration.engine, held.name); });
    held.calibration.transform = *held.Engine().GetTransform();
    return held;
}

void execute(const HeldCalibration& held, const CTivImage& source, CTivImage& target, const std::string& name) {
    Require([&] { return ExecuteTransform(held.Engine(), held.calibration.transform, source, target); }, name,
            "the correction failed");
}

/// Into an array of the caller's.
void executeInto(const HeldCalibration& held, const PictureSource& source, const PixelArray& out,
                 std::optional<int> bits) {
    CTivImage picture = source.Load();
    if (!out.IsWrapped(bits)) {
        CTivImage corrected;
        execute(held, picture, corrected, source.GetName());
        out.Take(corrected);
        return;
    }
    CTivImage target = out.ToImage(bits);
    if (target.GetWidth() != picture.GetWidth() || target.GetHeight() != picture.GetHeight() ||
        target.GetFormat() != picture.GetFormat()) {
        throw py::value_error("out has another shape or type than the picture");
    }
    if (source.GetArray() && source.GetArray()->OverlapsInPart(out)) picture = CTivImage(picture);
    execute(held, picture, target, source.GetName());
}

py::array apply(const HeldCalibration& held, const py::object& picture, const std::optional<py::array>& out) {
    const std::optional<int> bits = BitsFor(held, picture);
    const PictureSource source(picture, bits);
    if (out) {
        const PixelArray target(*out);
        if (!target.IsWriteable()) throw py::value_error("out is read-only");
        Work([&] { executeInto(held, source, target, bits); });
        return *out;
    }
    CTivImage corrected;
    Work([&] { execute(held, source.Load(), corrected, source.GetName()); });
    return ToArray(std::move(corrected), source.GetName());
}

void saveParameters(const HeldCalibration& held, const py::object& file) {
    if (held.origin == HeldCalibration::Origin::Coefficients) {
        throw WorkFailure(held.name + ": coefficients are not the whole of a calibration");
    }
    if (held.method == FitMethod::Perceptual) {
        throw WorkFailure("a parameter file cannot carry a perceptual fit: loading it fits by least squares");
    }
    const std::string path = ToPath(file);
    Work([&] { Require([&] { return held.Engine().Save(path); }, path, "cannot write the parameters"); });
}

void saveCoefficients(const HeldCalibration& held, const py::object& file) {
    const std::string path = ToPath(file);
    Work([&] {
        Require([&] { return SaveTransform(held.Engine(), held.calibration.transform, path, false); }, path,
                "cannot write the coefficients");
    });
}

void writeWhole(const std::string& path, const std::string& bytes) {
    SafeOutputFile file(path);
    file.Stream().write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.IsOpen() || !file.Commit()) throw WorkFailure(path + ": cannot write the file");
}

Report reportOn(const HeldCalibration& held) {
    if (!held.chart) return {};
    return ReportOn(held.calibration, held.chart->reading, held.method, held.name, held.reference);
}

void exportTo(const HeldCalibration& held, const py::object& file) {
    const std::string path = ToPath(file);
    if (!IsExportName(path)) throw py::value_error("'" + path + "' does not end in .cube, .icc, .ti3 or .csv");
    if (!held.chart && IsExportOfPatches(path)) {
        throw WorkFailure(path + ": " + held.name + " tells of no patches");
    }
    Work([&] {
        const std::string title = std::filesystem::path(held.name).filename().string();
        const std::string bytes = MakeExport(path, held.Engine(), held.calibration.transform, reportOn(held), title);
        if (bytes.empty()) throw WorkFailure(path + ": cannot be made of this calibration");
        writeWhole(path, bytes);
    });
}

void report(const HeldCalibration& held, const py::object& file) {
    const std::string path = ToPath(file);
    Work([&] {
        const Report page = reportOn(held);
        if (page.patches.empty()) throw WorkFailure(path + ": there is nothing to report");
        writeWhole(path, MakeReportPage(page, held.picture));
    });
}

py::array transformOf(const HeldCalibration& held) {
    const CTivVector& transform = held.calibration.transform;
    return MakeArray<float>({3, transform.GetSize() / 3},
                            [&](py::ssize_t i) { return transform.GetData(static_cast<int>(i)).AsFloat(); });
}

std::optional<std::string> illuminantOf(const HeldCalibration& held) {
    const bool isRelative = held.Engine().GetCalibrationMode() == 1;
    if (isRelative || held.origin == HeldCalibration::Origin::Coefficients) return std::nullopt;
    return FindIlluminant(held.Engine().GetIlluminant())->word;
}

py::object saturationOf(const HeldCalibration& held) {
    CTivVector value(1, CTivData::FormatRgb, nullptr, true);
    const CTivData inForce = held.origin == HeldCalibration::Origin::Coefficients ? held.Engine().GetSaturationRgb()
                                                                                  : GetSaturationInForce(held.Engine());
    value.Set(1, inForce.GetFormat(), nullptr, true);
    value.SetData(0, inForce);
    return py::tuple(ToColorArray(value).attr("ravel")().attr("tolist")());
}

const HeldCalibration& requireChart(const HeldCalibration& held) {
    if (!held.chart) throw WorkFailure(held.name + ": a file has no figures; calibrate a picture of the chart");
    return held;
}

std::string represent(const HeldCalibration& held) {
    return "<tonewright.Calibration of " + std::to_string(held.calibration.transform.GetSize() / 3) + " terms from " +
           held.name + ">";
}

void addCalibration(py::module_& module) {
    using namespace py::literals;
    py::class_<HeldCalibration>(
        module, "Calibration",
        "A color calibration: made by calibrate, or loaded from a file. It does not change, and "
        "several threads may use it at once.")
        .def_property_readonly(
            "transform", transformOf,
            "(3, terms) float32: the rows of red, green and blue. A row's terms are the offset, then "
            "red, green, blue, and of 7 and 10 terms their products; colors are 0 to 1.")
        .def_property_readonly(
            "terms", [](const HeldCalibration& held) { return held.calibration.transform.GetSize() / 3; },
            "4, 7 or 10.")
        .def_property_readonly(
            "gamma", [](const HeldCalibration& held) { return held.Engine().GetGamma(); },
            "The exponent of a corrected picture's values.")
        .def_property_readonly("saturation", saturationOf,
                               "Red, green, blue from which on a channel counts as saturated, in the picture's words.")
        .def_property_readonly(
            "illuminant", illuminantOf,
            "The word of the light on the chart; None against a reference, and where it is not known.")
        .def_property_readonly(
            "chart", [](const HeldCalibration& held) -> const ChartResult& { return *requireChart(held).chart; },
            "The Chart that it was made from. Raises Error for one from a file, which has none.")
        .def_property_readonly(
            "quality", [](const HeldCalibration& held) { return requireChart(held).calibration.quality; },
            "What it delivers, a Quality. Raises Error for one from a file.")
        .def_property_readonly(
            "findings", [](const HeldCalibration& held) { return held.calibration.findings; },
            "What speaks against picture and fit, a list of Finding; empty from a file.")
        .def("apply", apply, "picture"_a, "out"_a = py::none(),
             R"(Corrects a picture.

picture: a file name, or an array of shape (height, width, 3), red, green, blue: uint8, or uint16 where the
calibration was made for 10 or 16 bits.
out: an array of the same shape and type that receives the result, also the picture itself; None makes a new one, which
looks at the library's own pixels as load_image's does. An array that load_image or apply gave, or `bgrx[..., 2::-1]` of
an array of four, is read and written where it lies; others are copied row by row.

Returns the corrected picture. Raises Error where the picture is of another depth than the calibration.)")
        .def("verify", VerifyCalibration, "picture"_a, py::kw_only(), "roi"_a = py::none(), "chart"_a = py::none(),
             "find"_a = false, "layout"_a = py::none(), "illuminant"_a = py::none(), "values"_a = py::none(),
             "white"_a = py::none(), "reference"_a = py::none(), "reference_roi"_a = py::none(),
             R"(Judges the calibration on another picture of the chart: what it delivers there against what the patches
should be.

picture, roi, chart, find, layout: as for calibrate. An array of 10 bits a channel is known by the calibration.
illuminant, values, white, reference, reference_roi: what the patches should be, as for calibrate; without them what the
calibration was made for, A where it is from a coefficient file.

Returns a Verification. Raises Error, or ChartNotFound with find.)")
        .def("save_parameters", saveParameters, "path"_a,
             "Writes the whole calibration (.twkp). Raises Error for a perceptual fit, which such a file cannot carry.")
        .def("save_coefficients", saveCoefficients, "path"_a, "Writes the transform for a device (.ccor).")
        .def("export", exportTo, "path"_a,
             "Writes a 3D table (.cube), an ICC input profile (.icc), CGATS data (.ti3) or the patches (.csv), by the "
             "name's extension. The last two need a calibration of a chart.")
        .def("report", report, "path"_a, "Writes a page (HTML) that shows how good the calibration is.")
        .def("__repr__", represent);
}

}  // namespace

std::optional<int> BitsFor(const HeldCalibration& held, const py::object& picture) {
    const bool isDeep = py::isinstance<py::array>(picture) &&
                        py::reinterpret_borrow<py::array>(picture).itemsize() == 2 &&
                        held.Engine().GetCalibratedFormat() == CTivData::FormatRgb10;
    return isDeep ? std::optional(10) : std::nullopt;
}

void AddCalibrations(py::module_& module) {
    using namespace py::literals;
    AddVerification(module);
    addCalibration(module);
    AddCalibrate(module);
    module.def(
        "load_parameters", loadParameters, "path"_a,
        "Loads a parameter file (.twkp) and calibrates from what it holds. Returns a Calibration; raises Error.");
    module.def("load_coefficients", loadCoefficients, "path"_a, "gamma"_a = 0.45,
               "Loads a coefficient file (.ccor), which serves uint8 pictures. gamma: exponent of the corrected "
               "picture's values. Returns a Calibration; raises Error.");
}
