#include "Errors.h"

#include <new>
#include <string>

namespace tessel::python {
namespace {

[[nodiscard]] py::object PackageError(const char* name)
{
    return py::module_::import("tessel._errors").attr(name);
}

} // namespace

py::str Text(std::string_view text)
{
    return py::reinterpret_steal<py::str>(
        PyUnicode_DecodeUTF8(text.data(), static_cast<py::ssize_t>(text.size()), "replace"));
}

void Raise(const py::handle& type, std::string_view text)
{
    PyErr_SetObject(type.ptr(), Text(text).ptr());
    throw py::error_already_set();
}

void Check(tessel_result result)
{
    if (result == TESSEL_OK) {
        return;
    }
    const std::string line = tessel_error_text();
    switch (result) {
    case TESSEL_BAD_ARGUMENT:
        Raise(PyExc_ValueError, line);
    case TESSEL_OUT_OF_MEMORY:
        throw std::bad_alloc();
    case TESSEL_NOT_OPENED:
        Raise(PackageError("OpenError"), line);
    case TESSEL_REFUSED:
        Raise(PackageError("SettingError"), line);
    default:
        Raise(PackageError("ClipError"), line);
    }
}

} // namespace tessel::python
