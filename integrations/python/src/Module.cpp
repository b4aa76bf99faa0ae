/// The extension module: clips as numpy arrays, over the C interface. The package's Python code checks what
/// people pass; this translates.

#include "Errors.h"
#include "Planes.h"
#include "PythonClip.h"

#include <tessel/api/tessel.h>

#include <pybind11/pybind11.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessel::python {
namespace {

/// Bytes from Python, or none.
[[nodiscard]] std::optional<std::string> OptionalBytes(const py::object& given)
{
    return given.is_none() ? std::nullopt : std::optional<std::string>(given.cast<py::bytes>());
}

/// A new document's text, and the remarks on it.
[[nodiscard]] py::tuple NewDocument(const py::object& givenTemplate, const py::object& file,
                                    const py::object& text, const py::list& settings)
{
    struct Close {
        void operator()(tessel_document* document) const noexcept { tessel_document_close(document); }
    };
    const std::optional<std::string> templateName = OptionalBytes(givenTemplate);
    const std::optional<std::string> fileName = OptionalBytes(file);
    const std::optional<std::string> baseText = OptionalBytes(text);
    tessel_document_options options{};
    options.size = sizeof options;
    options.template_name = templateName ? templateName->c_str() : nullptr;
    options.file = fileName ? fileName->c_str() : nullptr;
    options.text = baseText ? baseText->data() : nullptr;
    options.text_length = baseText ? baseText->size() : 0;
    std::vector<std::string> texts;
    for (const py::handle& setting : settings) {
        texts.emplace_back(setting.cast<py::bytes>());
    }
    std::vector<const char*> pointers;
    pointers.reserve(texts.size());
    for (const std::string& setting : texts) {
        pointers.push_back(setting.c_str());
    }
    tessel_document* made = nullptr;
    tessel_result result = TESSEL_OK;
    {
        const py::gil_scoped_release released;
        result = tessel_document_new(&options, pointers.data(), pointers.size(), &made);
    }
    Check(result);
    const std::unique_ptr<tessel_document, Close> document(made);
    std::size_t length = 0;
    const char* const documentText = tessel_document_text(document.get(), &length);
    return py::make_tuple(py::bytes(documentText, length), Text(tessel_document_warning(document.get())));
}

} // namespace
} // namespace tessel::python

PYBIND11_MODULE(_tessel, module)
{
    using namespace tessel::python; // NOLINT(google-build-using-namespace): the macro stands outside of it

    module.doc() = "Clips over the C interface; use the package `tessel`.";
    module.attr("version") = tessel_version();
    module.attr("LAYOUTS") = LayoutNames();
    module.def("open_file", [](const py::bytes& path, const py::object& plugin, bool allowDefault) {
        return PythonClip::FromFile(path, OptionalBytes(plugin), allowDefault);
    });
    module.def("open_text", [](const py::bytes& text, const py::object& plugin, bool allowDefault) {
        return PythonClip::FromText(text, OptionalBytes(plugin), allowDefault);
    });
    module.def("new_document", &NewDocument);
    py::class_<PythonClip>(module, "Clip")
        .def_property_readonly("warning", &PythonClip::Warning)
        .def("describe", &PythonClip::Describe)
        .def("describe_picture", &PythonClip::DescribePicture)
        .def("frame", &PythonClip::Frame)
        .def("samples", &PythonClip::Samples);
}
