#pragma once

#include <pybind11/numpy.h>

#include <vector>

#include "foundation/CTivVector.h"

namespace py = pybind11;

/// An array of this shape from a function of the place in it, counted along the last axis first.
template <class Number, class At>
py::array_t<Number> MakeArray(std::vector<py::ssize_t> shape, At at) {
    py::array_t<Number> array(std::move(shape));
    Number* number = array.mutable_data();
    for (py::ssize_t i = 0; i < array.size(); ++i) number[i] = static_cast<Number>(at(i));
    return array;
}

template <class Number>
py::array_t<Number> MakeArray(const std::vector<Number>& numbers) {
    return MakeArray<Number>({std::ssize(numbers)},
                             [&](py::ssize_t i) { return numbers[static_cast<std::size_t>(i)]; });
}

/// (N, 3): red, green, blue of a vector of colors, uint8 for FormatRgb, else uint16.
py::array ToColorArray(const CTivVector& colors);
