#include "Planes.h"

#include "Errors.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace tessel::python {
namespace {

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

} // namespace

py::tuple LayoutNames()
{
    py::tuple names(kLayouts.size());
    for (std::size_t index = 0; index < kLayouts.size(); ++index) {
        names[index] = py::str(kLayouts[index].name.data(), kLayouts[index].name.size());
    }
    return names;
}

tessel_layout LayoutNamed(std::string_view name)
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

std::vector<py::array> Planes(const tessel_picture& picture, const py::object& out)
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

} // namespace tessel::python
