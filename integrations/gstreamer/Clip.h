/// An open clip of the C interface.
#pragma once

#include <tessel/api/tessel.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tessel::gstreamer {

struct CloseClip {
    void operator()(tessel_clip* clip) const noexcept { tessel_close(clip); }
};

/// A clip and its description. Shared by the sources of its picture and its sound, which only call
/// thread-safe functions on it.
struct Clip {
    std::unique_ptr<tessel_clip, CloseClip> handle;
    tessel_description facts{};
    std::optional<tessel_picture> own; ///< the plug-in's own frames; nothing where the clip has no picture

    std::string remark; ///< what people should know of it, with the document's name; mostly empty

    [[nodiscard]] bool HasSound() const noexcept;
};

using ClipPointer = std::shared_ptr<const Clip>;

/// The opened clip, or one line that says why it could not be opened.
struct OpenedClip {
    ClipPointer clip;
    std::string error;
};

/// Opens a document and asks for its first picture, so that what cannot be painted is known before anything
/// plays. Never throws.
[[nodiscard]] OpenedClip OpenFile(const std::string& path) noexcept;
/// @param name  what messages call the document
[[nodiscard]] OpenedClip OpenText(std::string_view text, const std::string& name) noexcept;

} // namespace tessel::gstreamer
