#pragma once

#include "python/library_call.h"

void AddCalibrate(py::module_& module);

/// @throw ValueError for what is no gamma
float ToGamma(double gamma);
