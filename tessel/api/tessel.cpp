/// The C interface: checks what is handed in, and passes the call on.

#include "tessel.h"

#include "Handles.h"
#include "Results.h"
#include "SharedImporter.h"
#include "Structures.h"
#include "TextDocument.h"

#include <kestrel/importhost/PathText.h>
#include <kestrel/qelcore/text/PathText.h>

#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace {

using qelcore::text::PathOf;
using tessel::api::CallError;
using tessel::api::Require;
using tessel::api::Serve;
using tessel::api::ServeOn;

/// @param standIn  as `tessel::api::Clip` takes it
tessel_clip* Open(const std::filesystem::path& file, const tessel_open_options* given,
                  const std::string& standIn = {})
{
    const tessel_open_options options = tessel::api::Taken(given);
    importhost::RequireUTF8Name(file);
    const auto importer = tessel::api::ShareImporter(options.plugin != nullptr ? PathOf(options.plugin)
                                                                               : std::filesystem::path{});
    auto clip = std::make_shared<tessel::api::Clip>(
        tessel::document::OpenClip(importer, file, {.allowDefault = options.allow_default != 0}), standIn);
    return std::make_unique<tessel_clip>(tessel_clip{std::move(clip)}).release();
}

} // namespace

const char* tessel_error_text(void)
{
    return tessel::api::LastError();
}

const char* tessel_version(void)
{
    return TESSEL_VERSION;
}

tessel_result tessel_open_file(const char* path, const tessel_open_options* options, tessel_clip** clip)
{
    return Serve(TESSEL_NOT_OPENED, [&] {
        Require(path != nullptr && clip != nullptr, "the path, or the place for the clip, is a null pointer");
        if (*path == '\0') {
            throw CallError(TESSEL_NOT_OPENED, "the path is empty");
        }
        *clip = Open(PathOf(path), options);
    });
}

tessel_result tessel_open_text(const char* text, size_t length, const tessel_open_options* options,
                               tessel_clip** clip)
{
    std::string standIn;
    const tessel_result result = Serve(TESSEL_NOT_OPENED, [&] {
        Require(text != nullptr && clip != nullptr, "the text, or the place for the clip, is a null pointer");
        const tessel::api::TextDocument document({text, length});
        standIn = importhost::DisplayName(document.File());
        *clip = Open(document.File(), options, standIn);
    });
    if (result != TESSEL_OK) {
        tessel::api::NameDocument(standIn);
    }
    return result;
}

void tessel_close(tessel_clip* clip)
{
    delete clip;
}

const char* tessel_warning(const tessel_clip* clip)
{
    return clip != nullptr ? clip->clip->Warning().c_str() : "";
}

tessel_result tessel_describe(const tessel_clip* clip, tessel_description* description)
{
    return ServeOn(clip, TESSEL_FAILED, [&] {
        Require(clip != nullptr, "the clip is a null pointer");
        tessel::api::Give(clip->clip->Describe(), description);
    });
}

tessel_result tessel_describe_picture(tessel_clip* clip, tessel_layout layout, tessel_picture* picture)
{
    return ServeOn(clip, TESSEL_FAILED, [&] {
        Require(clip != nullptr, "the clip is a null pointer");
        tessel::api::Give(clip->clip->DescribePicture(layout), picture);
    });
}

tessel_result tessel_frame(tessel_clip* clip, int64_t frame, tessel_layout layout, void* const* planes,
                           const ptrdiff_t* strides)
{
    return ServeOn(clip, TESSEL_FAILED, [&] {
        Require(clip != nullptr && planes != nullptr && strides != nullptr,
                "the clip, the planes or the strides are a null pointer");
        Require(frame >= 0, "frames are counted from 0");
        clip->clip->Frame(frame, layout, planes, strides);
    });
}

tessel_result tessel_samples(tessel_clip* clip, int64_t start, size_t count, float* const* channels,
                             size_t channel_count)
{
    return ServeOn(clip, TESSEL_FAILED, [&] {
        Require(clip != nullptr && channels != nullptr, "the clip or the channels are a null pointer");
        Require(start >= 0, "samples are counted from 0");
        for (float* const channel : std::span(channels, channel_count)) {
            Require(channel != nullptr, "a channel is a null pointer");
        }
        clip->clip->Samples(start, count, {channels, channel_count});
    });
}
