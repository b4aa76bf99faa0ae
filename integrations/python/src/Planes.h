/// Layouts by name, and the arrays that pictures are written into.
#pragma once

#include <tessel/api/tessel.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <string_view>
#include <vector>

namespace tessel::python {

namespace py = pybind11;

/// All names that `LayoutNamed` takes.
[[nodiscard]] py::tuple LayoutNames();

/// Raises ValueError, which names all layouts, for another name.
[[nodiscard]] tessel_layout LayoutNamed(std::string_view name);

/// The arrays that a frame is written into: those given, or new ones.
/// @param out  None, an array, or a tuple or list of as many arrays as the picture has planes. Raises
///             ValueError where they do not fit the picture, and says what would be right.
[[nodiscard]] std::vector<py::array> Planes(const tessel_picture& picture, const py::object& out);

} // namespace tessel::python
