/// Results of the C interface as Python exceptions. [any-thread] that holds the interpreter's lock
#pragma once

#include <tessel/api/tessel.h>

#include <pybind11/pybind11.h>

#include <string_view>

namespace tessel::python {

namespace py = pybind11;

/// Texts may quote bytes of a document or of a file's name, so those that are not UTF-8 are replaced.
[[nodiscard]] py::str Text(std::string_view text);

/// Raises a Python exception.
[[noreturn]] void Raise(const py::handle& type, std::string_view text);

/// Raises the exception that the package has for a failure of the call before, with its error text.
void Check(tessel_result result);

} // namespace tessel::python
