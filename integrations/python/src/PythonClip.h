/// A clip as Python sees it.
#pragma once

#include <tessel/api/tessel.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace tessel::python {

namespace py = pybind11;

/// An open clip. The interpreter's lock is released while the C interface works. Every function raises what
/// `Check` raises.
class PythonClip {
public:
    /// @param path    bytes of a file's name
    /// @param plugin  the plug-in's file or folder; none: where the program looks for it
    [[nodiscard]] static std::unique_ptr<PythonClip>
    FromFile(const std::string& path, const std::optional<std::string>& plugin, bool allowDefault);

    /// The same with a document's text.
    [[nodiscard]] static std::unique_ptr<PythonClip>
    FromText(const std::string& text, const std::optional<std::string>& plugin, bool allowDefault);

    [[nodiscard]] py::str Warning() const;

    /// The fields of the package's class Description.
    [[nodiscard]] py::dict Describe() const;

    /// The fields of the package's class PictureDescription.
    [[nodiscard]] py::dict DescribePicture(const std::string& layout) const;

    /// An array, or a tuple of arrays where the layout has several planes.
    /// @param out  None, or what the frame is written into, which is then the result
    [[nodiscard]] py::object Frame(std::int64_t number, const std::string& layoutName,
                                   const py::object& out) const;

    /// An array of floats: `channelCount` rows of `count` samples from sample `start` on.
    [[nodiscard]] py::array Samples(std::int64_t start, py::ssize_t count, py::ssize_t channelCount) const;

private:
    struct Close {
        void operator()(tessel_clip* clip) const noexcept { tessel_close(clip); }
    };

    explicit PythonClip(tessel_clip* clip) : mClip(clip) {}

    template <typename Opener>
    [[nodiscard]] static std::unique_ptr<PythonClip> Open(const std::optional<std::string>& plugin,
                                                          bool allowDefault, const Opener& opener);

    [[nodiscard]] tessel_picture PictureIn(tessel_layout layout) const;

    std::unique_ptr<tessel_clip, Close> mClip;
};

} // namespace tessel::python
