#pragma once

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <string>

#include "foundation/library_texts.h"

namespace py = pybind11;

/// Lets Python's other threads run while it lives.
class Unlocked {
public:
    Unlocked() : state_(PyEval_SaveThread()) {}
    Unlocked(const Unlocked&) = delete;
    Unlocked& operator=(const Unlocked&) = delete;
    /// Waits for Python's lock; for good, where the interpreter has ended meanwhile.
    ~Unlocked();

private:
    PyThreadState* state_;
};

/// Runs the library's work beside Python's other threads. What it reports becomes a WorkFailure, the module's Error.
/// @tparam Thread LibraryThread, or NurReportingThread where threads of the library's own report to the call, too
template <class Thread = tonewright::LibraryThread, class Call>
auto Work(Call call) {
    const Unlocked unlocked;
    const Thread thread;
    try {
        return call();
    } catch (const char* text) {  // the fit throws plain text
        throw tonewright::WorkFailure(text);
    }
}

/// A file name as the system has it, of a str, bytes or os.PathLike.
/// @throw TypeError for anything else, ValueError for a name with a zero in it
std::string ToPath(const py::object& path);

/// Whether the object is such a name.
bool IsPath(const py::object& object);

// Each adds its part to the module.
void AddErrors(py::module_& module);
void AddPictures(py::module_& module);
void AddQuality(py::module_& module);
void AddCharts(py::module_& module);
void AddCalibrations(py::module_& module);
void AddDevices(py::module_& module);
