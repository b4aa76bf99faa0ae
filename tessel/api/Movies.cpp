/// The part of the C interface that reads clips as movies.

#include "Handles.h"
#include "Results.h"
#include "Structures.h"
#include "tessel.h"

#include <tessel/export/ExportError.h>
#include <tessel/export/plan/Names.h>
#include <tessel/export/virtual/VirtualMovie.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

/// What callers hold.
struct tessel_movie {
    tessel_movie(std::shared_ptr<tessel::api::Clip> opened,
                 const tessel::exporting::VirtualMovie::Request& request)
        : clip(std::move(opened)), movie(clip->Source(), request)
    {
    }

    std::shared_ptr<tessel::api::Clip> clip; ///< which the movie borrows
    tessel::exporting::VirtualMovie movie;
};

namespace {

using tessel::api::CallError;
using tessel::api::Require;
using tessel::api::ServeOn;
using tessel::exporting::Streams;

constexpr std::string_view kNone = "none";

bool IsNone(const char* codec) noexcept
{
    return codec != nullptr && codec == kNone;
}

/// The codec of a name. @throws CallError  for an unknown name
template <class Codec, class Rows>
const Codec* CodecNamed(const char* name, const Rows& rows)
{
    if (name == nullptr || IsNone(name)) {
        return nullptr;
    }
    const auto* codec = tessel::exporting::RowNamed<Codec>(rows, name);
    if (codec == nullptr) {
        throw CallError(TESSEL_BAD_ARGUMENT, "there is no codec \"" + std::string(name) + '"');
    }
    return codec;
}

tessel::exporting::VirtualMovie::Request RequestFrom(const tessel_movie_options& options)
{
    const bool hasPicture = !IsNone(options.video_codec);
    const bool hasSound = !IsNone(options.audio_codec);
    Require(hasPicture || hasSound, "a movie has a picture or sound");
    tessel::exporting::VirtualMovie::Request request;
    if (!hasPicture || !hasSound) {
        request.streams = hasPicture ? Streams::VideoOnly : Streams::AudioOnly;
    }
    request.videoCodec =
        CodecNamed<tessel::exporting::VideoCodec>(options.video_codec, tessel::exporting::AllVideoCodecs());
    request.audioCodec =
        CodecNamed<tessel::exporting::AudioCodec>(options.audio_codec, tessel::exporting::AllAudioCodecs());
    return request;
}

} // namespace

tessel_result tessel_movie_open(tessel_clip* clip, const tessel_movie_options* options, tessel_movie** movie)
{
    return ServeOn(clip, TESSEL_FAILED, [&] {
        Require(clip != nullptr && movie != nullptr, "the clip, or the place for the movie, is a null pointer");
        const auto request = RequestFrom(tessel::api::Taken(options));
        try {
            *movie = std::make_unique<tessel_movie>(clip->clip, request).release();
        } catch (const tessel::exporting::ExportError& error) {
            throw CallError(TESSEL_NOT_POSSIBLE, error.what());
        }
    });
}

int64_t tessel_movie_size(const tessel_movie* movie)
{
    return movie != nullptr ? movie->movie.Size() : 0;
}

tessel_result tessel_movie_read(tessel_movie* movie, int64_t offset, void* buffer, size_t count, size_t* got)
{
    return ServeOn(movie, TESSEL_FAILED, [&] {
        Require(movie != nullptr && got != nullptr && (buffer != nullptr || count == 0),
                "the movie, the buffer or the place for its count is a null pointer");
        Require(offset >= 0, "offsets are counted from 0");
        *got = movie->movie.Read(offset, std::span(static_cast<std::byte*>(buffer), count));
    });
}

void tessel_movie_close(tessel_movie* movie)
{
    delete movie;
}
