#include "PythonClip.h"

#include "Errors.h"
#include "Planes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace tessel::python {
namespace {

constexpr std::size_t kMostPlanes = 4;

[[nodiscard]] py::str FourCharacters(std::uint32_t code)
{
    std::string text;
    for (unsigned shift = 0; code != 0 && shift < 32; shift += 8) {
        text.push_back(static_cast<char>(code >> shift & 0xFFU));
    }
    return py::reinterpret_steal<py::str>(
        PyUnicode_DecodeLatin1(text.data(), static_cast<py::ssize_t>(text.size()), nullptr));
}

} // namespace

template <typename Opener>
std::unique_ptr<PythonClip> PythonClip::Open(const std::optional<std::string>& plugin, bool allowDefault,
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
    return std::unique_ptr<PythonClip>(new PythonClip(clip));
}

std::unique_ptr<PythonClip> PythonClip::FromFile(const std::string& path,
                                                 const std::optional<std::string>& plugin, bool allowDefault)
{
    return Open(plugin, allowDefault, [&path](const tessel_open_options& options, tessel_clip** clip) {
        return tessel_open_file(path.c_str(), &options, clip);
    });
}

std::unique_ptr<PythonClip> PythonClip::FromText(const std::string& text,
                                                 const std::optional<std::string>& plugin, bool allowDefault)
{
    return Open(plugin, allowDefault, [&text](const tessel_open_options& options, tessel_clip** clip) {
        return tessel_open_text(text.data(), text.size(), &options, clip);
    });
}

py::str PythonClip::Warning() const
{
    return Text(tessel_warning(mClip.get()));
}

py::dict PythonClip::Describe() const
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

py::dict PythonClip::DescribePicture(const std::string& layout) const
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

py::object PythonClip::Frame(std::int64_t number, const std::string& layoutName, const py::object& out) const
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

py::array PythonClip::Samples(std::int64_t start, py::ssize_t count, py::ssize_t channelCount) const
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

tessel_picture PythonClip::PictureIn(tessel_layout layout) const
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

} // namespace tessel::python
