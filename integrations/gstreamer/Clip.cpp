#include "Clip.h"

#include <exception>
#include <utility>

namespace tessel::gstreamer {
namespace {

/// What stands in front of errors of a document: its name, where the text does not begin with it.
std::string NamedError(const std::string& name)
{
    std::string text = tessel_error_text();
    return text.rfind(name, 0) == 0 ? text : name + ": " + text;
}

OpenedClip Describe(std::unique_ptr<tessel_clip, CloseClip> handle, const std::string& name)
{
    const auto clip = std::make_shared<Clip>();
    clip->facts.size = sizeof clip->facts;
    if (tessel_describe(handle.get(), &clip->facts) != TESSEL_OK) {
        return {nullptr, NamedError(name)};
    }
    if (clip->facts.rate_numerator < 1) {
        return {nullptr, name + ": mVideoFrameRate is no frame rate that can be played"};
    }
    if (clip->facts.width > 0 && clip->facts.height > 0) {
        clip->own.emplace();
        clip->own->size = sizeof *clip->own;
        if (tessel_describe_picture(handle.get(), TESSEL_LAYOUT_OWN, &*clip->own) != TESSEL_OK) {
            return {nullptr, NamedError(name)};
        }
    }
    if (const std::string warning = tessel_warning(handle.get()); !warning.empty()) {
        clip->remark = name + ": " + warning;
    }
    clip->handle = std::move(handle);
    if (!clip->own && !clip->HasSound()) {
        return {nullptr, name + ": the clip has neither picture nor sound"};
    }
    return {clip, {}};
}

template <typename Open>
OpenedClip Opened(const std::string& name, Open&& open) noexcept
{
    try {
        tessel_clip* opened = nullptr;
        if (open(&opened) != TESSEL_OK) {
            return {nullptr, NamedError(name)};
        }
        return Describe(std::unique_ptr<tessel_clip, CloseClip>(opened), name);
    } catch (const std::exception& error) {
        return {nullptr, error.what()};
    }
}

} // namespace

bool Clip::HasSound() const noexcept
{
    return facts.sample_rate > 0 && facts.channel_count > 0 && facts.channel_count <= TESSEL_MOST_CHANNELS;
}

OpenedClip OpenFile(const std::string& path) noexcept
{
    return Opened(path, [&](tessel_clip** clip) { return tessel_open_file(path.c_str(), nullptr, clip); });
}

OpenedClip OpenText(std::string_view text, const std::string& name) noexcept
{
    return Opened(
        name, [&](tessel_clip** clip) { return tessel_open_text(text.data(), text.size(), nullptr, clip); });
}

} // namespace tessel::gstreamer
