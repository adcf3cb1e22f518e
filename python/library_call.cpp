#include "python/library_call.h"

#include <cxxabi.h>
#include <unistd.h>

#include <cstring>

#include "quality/chart_reading.h"

using namespace tonewright;

namespace {

// Kept for good: exceptions may be on their way while the interpreter ends.
py::handle errorType, notFoundType;

/// The library's words with file names as they are, also those that are no UTF-8.
py::object toText(const char* text) {
    return py::reinterpret_steal<py::object>(
        PyUnicode_DecodeUTF8(text, static_cast<py::ssize_t>(std::strlen(text)), "surrogateescape"));
}

void raiseNotFound(const ChartNotFound& failure) {
    const FoundChart& chart = *failure.GetReading().found;
    const py::object error = notFoundType(toText(failure.what()));
    error.attr("reason") = GetRefusalCode(chart.refusal);
    error.attr("seen") = chart.seen;
    PyErr_SetObject(notFoundType.ptr(), error.ptr());
}

void translate(std::exception_ptr exception) {  // NOLINT(performance-unnecessary-value-param): as it is called
    try {
        if (exception) std::rethrow_exception(exception);
    } catch (const ChartNotFound& failure) {
        raiseNotFound(failure);
    } catch (const WorkFailure& failure) {
        PyErr_SetObject(errorType.ptr(), toText(failure.what()).ptr());
    }
}

py::handle addError(py::module_& module, const char* name, py::handle base, const char* words) {
    py::object type = py::reinterpret_steal<py::object>(
        PyErr_NewExceptionWithDoc(("tonewright." + std::string(name)).c_str(), words, base.ptr(), nullptr));
    module.attr(name) = type;
    return type.release();
}

}  // namespace

Unlocked::~Unlocked() {
    try {
        PyEval_RestoreThread(state_);
    } catch (abi::__forced_unwind&) {
        // The interpreter ends, and with it the thread: from inside a call it must not be taken apart.
        for (;;) ::pause();
    }
}

bool IsPath(const py::object& object) {
    return py::isinstance<py::str>(object) || py::isinstance<py::bytes>(object) || py::hasattr(object, "__fspath__");
}

std::string ToPath(const py::object& path) {
    if (!IsPath(path)) throw py::type_error("a file name is a str, bytes or os.PathLike");
    auto name = py::module_::import("os").attr("fsencode")(path).cast<std::string>();
    if (name.find('\0') != std::string::npos) throw py::value_error("a file name has no zero in it");
    return name;
}

void AddErrors(py::module_& module) {
    errorType = addError(module, "Error", PyExc_RuntimeError,
                         "The work failed. The text is the library's own, with the file that it is about.");
    notFoundType = addError(module, "ChartNotFound", errorType,
                            "There is no chart in the picture, or it is not certain.\n\n"
                            "reason: \"no-patches\", \"too-few\", \"no-grid\", \"no-orientation\" or \"several\".\n"
                            "seen: how many patches of a grid were seen.");
    py::register_exception_translator(translate);
}
