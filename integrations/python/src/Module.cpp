/// The extension module: clips as numpy arrays, over the C interface. The package's Python code checks what
/// people pass; this translates.

#include <tessel/api/tessel.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace py = pybind11;

namespace {

constexpr std::size_t kMostPlanes = 4;

/// Texts may quote bytes of a document or of a file's name, so those that are not UTF-8 are replaced.
[[nodiscard]] py::str Text(std::string_view text)
{
    return py::reinterpret_steal<py::str>(
        PyUnicode_DecodeUTF8(text.data(), static_cast<py::ssize_t>(text.size()), "replace"));
}

/// Raises a Python exception.
[[noreturn]] void Raise(const py::handle& type, std::string_view text)
{
    PyErr_SetObject(type.ptr(), Text(text).ptr());
    throw py::error_already_set();
}

[[nodiscard]] py::object PackageError(const char* name)
{
    return py::module_::import("tessel._errors").attr(name);
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

struct NamedLayout {
    std::string_view name;
    tessel_layout layout;
};

constexpr std::array<NamedLayout, 21> kLayouts{{
    {"own", TESSEL_LAYOUT_OWN},
    {"bgra", TESSEL_LAYOUT_BGRA},
    {"argb", TESSEL_LAYOUT_ARGB},
    {"bgrx", TESSEL_LAYOUT_BGRX},
    {"xrgb", TESSEL_LAYOUT_XRGB},
    {"rgba", TESSEL_LAYOUT_RGBA},
    {"rgb", TESSEL_LAYOUT_RGB},
    {"rgba64", TESSEL_LAYOUT_RGBA64},
    {"rgb48", TESSEL_LAYOUT_RGB48},
    {"gbrp_f32", TESSEL_LAYOUT_GBRP_F32},
    {"gbrap_f32", TESSEL_LAYOUT_GBRAP_F32},
    {"uyvy", TESSEL_LAYOUT_UYVY},
    {"yuyv", TESSEL_LAYOUT_YUYV},
    {"v210", TESSEL_LAYOUT_V210},
    {"yuv420p", TESSEL_LAYOUT_YUV420P},
    {"yuv422p", TESSEL_LAYOUT_YUV422P},
    {"yuv444p", TESSEL_LAYOUT_YUV444P},
    {"yuv420p10", TESSEL_LAYOUT_YUV420P10},
    {"yuv422p10", TESSEL_LAYOUT_YUV422P10},
    {"yuv444p10", TESSEL_LAYOUT_YUV444P10},
    {"yuva444p10", TESSEL_LAYOUT_YUVA444P10},
}};

[[nodiscard]] py::tuple LayoutNames()
{
    py::tuple names(kLayouts.size());
    for (std::size_t index = 0; index < kLayouts.size(); ++index) {
        names[index] = py::str(kLayouts[index].name.data(), kLayouts[index].name.size());
    }
    return names;
}

[[nodiscard]] tessel_layout LayoutNamed(std::string_view name)
{
    std::string names;
    for (const NamedLayout& known : kLayouts) {
        if (known.name == name) {
            return known.layout;
        }
        names += (names.empty() ? "" : ", ") + std::string(known.name);
    }
    Raise(PyExc_ValueError, "there is no layout \"" + std::string(name) + "\"; it is one of " + names);
}

[[nodiscard]] py::dtype SampleType(const tessel_picture& picture)
{
    switch (picture.sample_type) {
    case TESSEL_SAMPLES_V210:
        return py::dtype::of<std::uint32_t>();
    case TESSEL_SAMPLES_F32:
        return py::dtype::of<float>();
    case TESSEL_SAMPLES_U16:
        return py::dtype::of<std::uint16_t>();
    default:
        return py::dtype::of<std::uint8_t>();
    }
}

/// The shape of a plane's array: rows, columns, and the samples of a column where it has several. A column is a
/// pixel, or the pair of a 4:2:2 layout; of v210 it is a word.
[[nodiscard]] std::vector<py::ssize_t> PlaneShape(const tessel_picture& picture, std::size_t plane,
                                                  py::ssize_t sampleBytes)
{
    const py::ssize_t rows = picture.plane_rows[plane];
    const auto bytes = static_cast<py::ssize_t>(picture.row_bytes[plane]);
    if (picture.sample_type == TESSEL_SAMPLES_V210) {
        return {rows, bytes / sampleBytes};
    }
    const py::ssize_t columns = bytes / picture.group_bytes;
    const py::ssize_t samples = picture.group_bytes / sampleBytes;
    return samples > 1 ? std::vector<py::ssize_t>{rows, columns, samples}
                       : std::vector<py::ssize_t>{rows, columns};
}

/// Whether frames can be written into it: the type and the shape of the plane, and no gaps within a row.
[[nodiscard]] bool Fits(const py::array& array, const py::dtype& type, const std::vector<py::ssize_t>& shape)
{
    if (!array.dtype().equal(type) || !array.writeable() ||
        !std::equal(shape.begin(), shape.end(), array.shape(), array.shape() + array.ndim())) {
        return false;
    }
    py::ssize_t step = array.itemsize();
    for (py::ssize_t axis = array.ndim() - 1; axis > 0; --axis) {
        if (array.strides(axis) != step) {
            return false;
        }
        step *= array.shape(axis);
    }
    return true;
}

[[nodiscard]] std::string ShapeText(const std::vector<py::ssize_t>& shape)
{
    std::string text;
    for (const py::ssize_t length : shape) {
        text += (text.empty() ? "" : ", ") + std::to_string(length);
    }
    return "(" + text + ")";
}

[[nodiscard]] py::array PlaneOf(const py::handle& given, const py::dtype& type,
                                const std::vector<py::ssize_t>& shape)
{
    if (py::isinstance<py::array>(given)) {
        auto array = py::reinterpret_borrow<py::array>(given);
        if (Fits(array, type, shape)) {
            return array;
        }
    }
    Raise(PyExc_ValueError, "out must be a writable " + std::string(py::str(static_cast<py::object>(type))) +
                                " array of shape " + ShapeText(shape) + " without gaps within its rows");
}

/// The arrays that a frame is written into: those given, or new ones.
[[nodiscard]] std::vector<py::array> Planes(const tessel_picture& picture, const py::object& out)
{
    const auto count = static_cast<std::size_t>(picture.plane_count);
    const bool isSequence = py::isinstance<py::tuple>(out) || py::isinstance<py::list>(out);
    if (!out.is_none() && count > 1 && (!isSequence || py::len(out) != count)) {
        Raise(PyExc_ValueError, "out must be a tuple of " + std::to_string(count) + " arrays");
    }
    const py::dtype type = SampleType(picture);
    std::vector<py::array> planes;
    for (std::size_t plane = 0; plane < count; ++plane) {
        const std::vector<py::ssize_t> shape = PlaneShape(picture, plane, type.itemsize());
        if (out.is_none()) {
            planes.emplace_back(type, shape);
        } else {
            planes.push_back(PlaneOf(count > 1 ? py::object(out[py::int_(plane)]) : out, type, shape));
        }
    }
    return planes;
}

[[nodiscard]] py::str FourCharacters(std::uint32_t code)
{
    std::string text;
    for (unsigned shift = 0; code != 0 && shift < 32; shift += 8) {
        text.push_back(static_cast<char>(code >> shift & 0xFFU));
    }
    return py::reinterpret_steal<py::str>(
        PyUnicode_DecodeLatin1(text.data(), static_cast<py::ssize_t>(text.size()), nullptr));
}

class Clip {
public:
    [[nodiscard]] static std::unique_ptr<Clip>
    FromFile(const std::string& path, const std::optional<std::string>& plugin, bool allowDefault)
    {
        return Open(plugin, allowDefault, [&path](const tessel_open_options& options, tessel_clip** clip) {
            return tessel_open_file(path.c_str(), &options, clip);
        });
    }

    [[nodiscard]] static std::unique_ptr<Clip>
    FromText(const std::string& text, const std::optional<std::string>& plugin, bool allowDefault)
    {
        return Open(plugin, allowDefault, [&text](const tessel_open_options& options, tessel_clip** clip) {
            return tessel_open_text(text.data(), text.size(), &options, clip);
        });
    }

    [[nodiscard]] py::str Warning() const { return Text(tessel_warning(mClip.get())); }

    /// The fields of the package's class Description.
    [[nodiscard]] py::dict Describe() const
    {
        tessel_description facts{};
        facts.size = sizeof facts;
        Check(tessel_describe(mClip.get(), &facts));
        py::dict made;
        made["width"] = facts.width;
        made["height"] = facts.height;
        made["pixel_aspect"] = py::make_tuple(facts.pixel_aspect_numerator, facts.pixel_aspect_denominator);
        made["field_order"] = facts.field_order;
        made["rate"] = py::make_tuple(facts.rate_numerator, facts.rate_denominator);
        made["frame_count"] = facts.frame_count;
        made["sample_rate"] = facts.sample_rate;
        made["channel_count"] = facts.channel_count;
        made["is_surround_51"] = facts.is_surround_51 != 0;
        made["sample_count"] = facts.sample_count;
        made["primaries"] = facts.primaries;
        made["transfer"] = facts.transfer;
        made["matrix"] = facts.matrix;
        made["full_range"] = facts.full_range != 0;
        made["color_space"] = facts.color_space;
        made["pixel_format"] = FourCharacters(facts.pixel_format);
        made["is_still"] = facts.is_still != 0;
        return made;
    }

    /// The fields of the package's class PictureDescription.
    [[nodiscard]] py::dict DescribePicture(const std::string& layout) const
    {
        const tessel_picture picture = PictureIn(LayoutNamed(layout));
        py::dict made;
        made["format"] = FourCharacters(picture.format);
        made["sample_bits"] = picture.sample_bits;
        made["matrix"] = picture.matrix;
        made["full_range"] = picture.full_range != 0;
        made["is_linear"] = picture.is_linear != 0;
        made["chroma_shift"] = py::make_tuple(picture.chroma_shift_x, picture.chroma_shift_y);
        return made;
    }

    /// An array, or a tuple of arrays where the layout has several planes.
    [[nodiscard]] py::object Frame(std::int64_t number, const std::string& layoutName,
                                   const py::object& out) const
    {
        const tessel_layout layout = LayoutNamed(layoutName);
        const tessel_picture picture = PictureIn(layout);
        std::vector<py::array> planes = Planes(picture, out);
        std::array<void*, kMostPlanes> pointers{};
        std::array<std::ptrdiff_t, kMostPlanes> strides{};
        for (std::size_t plane = 0; plane < planes.size(); ++plane) {
            pointers[plane] = planes[plane].mutable_data();
            strides[plane] = planes[plane].strides(0);
        }
        tessel_result result = TESSEL_OK;
        {
            const py::gil_scoped_release released;
            result = tessel_frame(mClip.get(), number, layout, pointers.data(), strides.data());
        }
        Check(result);
        if (!out.is_none()) {
            return out;
        }
        if (planes.size() == 1) {
            return planes.front();
        }
        py::tuple all(planes.size());
        for (std::size_t plane = 0; plane < planes.size(); ++plane) {
            all[plane] = planes[plane];
        }
        return all;
    }

    [[nodiscard]] py::array Samples(std::int64_t start, py::ssize_t count, py::ssize_t channelCount) const
    {
        py::array_t<float> samples(std::vector<py::ssize_t>{channelCount, count});
        const auto channelsToFill = static_cast<std::size_t>(channelCount);
        // Never empty: a null pointer would be refused before the clip can say that it has no sound.
        std::vector<float*> channels(std::max<std::size_t>(channelsToFill, 1));
        for (py::ssize_t channel = 0; channel < channelCount; ++channel) {
            channels[static_cast<std::size_t>(channel)] = samples.mutable_data() + channel * count;
        }
        tessel_result result = TESSEL_OK;
        {
            const py::gil_scoped_release released;
            result = tessel_samples(mClip.get(), start, static_cast<std::size_t>(count), channels.data(),
                                    channelsToFill);
        }
        Check(result);
        return samples;
    }

private:
    struct Close {
        void operator()(tessel_clip* clip) const noexcept { tessel_close(clip); }
    };

    explicit Clip(tessel_clip* clip) : mClip(clip) {}

    template <typename Opener>
    [[nodiscard]] static std::unique_ptr<Clip> Open(const std::optional<std::string>& plugin, bool allowDefault,
                                                    const Opener& opener)
    {
        tessel_open_options options{};
        options.size = sizeof options;
        options.plugin = plugin ? plugin->c_str() : nullptr;
        options.allow_default = allowDefault ? 1 : 0;
        tessel_clip* clip = nullptr;
        tessel_result result = TESSEL_OK;
        {
            const py::gil_scoped_release released;
            result = opener(options, &clip);
        }
        Check(result);
        return std::unique_ptr<Clip>(new Clip(clip));
    }

    [[nodiscard]] tessel_picture PictureIn(tessel_layout layout) const
    {
        tessel_picture picture{};
        picture.size = sizeof picture;
        tessel_result result = TESSEL_OK;
        {
            const py::gil_scoped_release released; // a frame is painted, the first time
            result = tessel_describe_picture(mClip.get(), layout, &picture);
        }
        Check(result);
        return picture;
    }

    std::unique_ptr<tessel_clip, Close> mClip;
};

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

PYBIND11_MODULE(_tessel, module)
{
    module.doc() = "Clips over the C interface; use the package `tessel`.";
    module.attr("version") = tessel_version();
    module.attr("LAYOUTS") = LayoutNames();
    module.def("open_file", [](const py::bytes& path, const py::object& plugin, bool allowDefault) {
        return Clip::FromFile(path, OptionalBytes(plugin), allowDefault);
    });
    module.def("open_text", [](const py::bytes& text, const py::object& plugin, bool allowDefault) {
        return Clip::FromText(text, OptionalBytes(plugin), allowDefault);
    });
    module.def("new_document", &NewDocument);
    py::class_<Clip>(module, "Clip")
        .def_property_readonly("warning", &Clip::Warning)
        .def("describe", &Clip::Describe)
        .def("describe_picture", &Clip::DescribePicture)
        .def("frame", &Clip::Frame)
        .def("samples", &Clip::Samples);
}
