#include "Producer.h"

#include "OpenClip.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <exception>
#include <limits>
#include <memory>
#include <string>
#include <utility>

namespace tessel::mlt {
namespace {

constexpr char kClip[] = "_tessel_clip";   // a frame's own share of the clip
constexpr char kFrame[] = "_tessel_frame"; // which of the clip's frames it shows

/// A producer with its clip. It is its own `child`, so that callbacks of MLT find it.
struct Producer {
    mlt_producer_s base{};
    std::shared_ptr<OpenClip> clip;
};

OpenClip& ClipOf(mlt_producer producer)
{
    return *static_cast<Producer*>(producer->child)->clip;
}

/// The clip's frame at a position of the profile's. The project may run at another rate than the clip.
std::int64_t FrameAt(const tessel_description& facts, mlt_profile profile, std::int64_t position)
{
    if (facts.rate_numerator <= 0 || profile == nullptr || profile->frame_rate_num <= 0) {
        return position;
    }
    const std::int64_t clipFrames = std::int64_t{facts.rate_numerator} * profile->frame_rate_den;
    const std::int64_t profileFrames = std::int64_t{facts.rate_denominator} * profile->frame_rate_num;
    __extension__ using Wide = __int128; // products of three 32-bit numbers would pass 64 bits
    return static_cast<std::int64_t>(Wide{position} * clipFrames / profileFrames);
}

/// How many frames of the profile's the clip lasts, at least 1.
int LengthIn(const tessel_description& facts, mlt_profile profile)
{
    auto frames = static_cast<double>(facts.frame_count);
    if (facts.rate_numerator > 0 && profile != nullptr && profile->frame_rate_den > 0) {
        frames *= mlt_profile_fps(profile) * facts.rate_denominator / facts.rate_numerator;
    }
    // INT_MAX counts as a broken clip in some programs.
    constexpr double kMost = std::numeric_limits<int>::max() / 2.0;
    return static_cast<int>(std::min(std::max(std::round(frames), 1.0), kMost));
}

/// What the profile decides. It is set after the producer was made, where the loader makes it.
void FollowProfile(mlt_producer producer)
{
    const tessel_description& facts = ClipOf(producer).Facts();
    mlt_properties properties = MLT_PRODUCER_PROPERTIES(producer);
    const int length = LengthIn(facts, mlt_service_profile(MLT_PRODUCER_SERVICE(producer)));
    if (length == mlt_properties_get_int(properties, "length")) {
        return; // the same profile once more; in and out may be somebody's own by now
    }
    mlt_properties_set_position(properties, "length", length);
    mlt_producer_set_in_and_out(producer, 0, length - 1);
}

void OnPropertyChanged(mlt_properties /*owner*/, void* producer, mlt_event_data data)
{
    const char* name = mlt_event_data_to_string(data);
    if (name != nullptr && std::strcmp(name, "_profile") == 0) {
        FollowProfile(static_cast<mlt_producer>(producer));
    }
}

/// What the clip is: profiles are made of it, and editors show it. Streams 0 and 1 are picture and sound.
void SetMediaFacts(mlt_properties properties, const OpenClip& clip)
{
    const tessel_description& facts = clip.Facts();
    const int videoStream = clip.HasPicture() ? 0 : -1;
    const int audioStream = clip.HasSound() ? videoStream + 1 : -1;
    mlt_properties_set_int(properties, "meta.media.nb_streams", (videoStream >= 0) + (audioStream >= 0));
    mlt_properties_set_int(properties, "video_index", videoStream);
    mlt_properties_set_int(properties, "audio_index", audioStream);
    if (clip.HasPicture()) {
        const bool hasAspect = facts.pixel_aspect_numerator > 0;
        const int aspectNumerator = hasAspect ? facts.pixel_aspect_numerator : 1;
        const int aspectDenominator = hasAspect ? facts.pixel_aspect_denominator : 1;
        mlt_properties_set_int(properties, "meta.media.width", facts.width);
        mlt_properties_set_int(properties, "meta.media.height", facts.height);
        mlt_properties_set_int(properties, "meta.media.frame_rate_num", facts.rate_numerator);
        mlt_properties_set_int(properties, "meta.media.frame_rate_den", facts.rate_denominator);
        mlt_properties_set_int(properties, "meta.media.sample_aspect_num", aspectNumerator);
        mlt_properties_set_int(properties, "meta.media.sample_aspect_den", aspectDenominator);
        mlt_properties_set_int(properties, "meta.media.progressive", facts.field_order == TESSEL_PROGRESSIVE);
        mlt_properties_set_int(properties, "meta.media.top_field_first",
                               facts.field_order == TESSEL_UPPER_FIELD_FIRST);
        mlt_properties_set_int(properties, "meta.media.colorspace", clip.ColorSpace(mlt_image_yuv422));
        mlt_properties_set_double(properties, "aspect_ratio",
                                  static_cast<double>(aspectNumerator) / aspectDenominator);
        mlt_properties_set(properties, "meta.media.0.stream.type", "video");
        mlt_properties_set(properties, "meta.media.0.codec.name", "tessel");
        mlt_properties_set(properties, "meta.media.0.codec.long_name", "Tessel test signal");
    }
    if (clip.HasSound()) {
        const std::string stream = "meta.media." + std::to_string(audioStream);
        mlt_properties_set(properties, (stream + ".stream.type").c_str(), "audio");
        mlt_properties_set(properties, (stream + ".codec.name").c_str(), "tessel");
        mlt_properties_set(properties, (stream + ".codec.long_name").c_str(), "Tessel test signal");
        mlt_properties_set_int(properties, (stream + ".codec.sample_rate").c_str(), facts.sample_rate);
        mlt_properties_set_int(properties, (stream + ".codec.channels").c_str(), facts.channel_count);
    }
}

OpenClip& ClipOfFrame(mlt_frame frame)
{
    return **static_cast<std::shared_ptr<OpenClip>*>(
        mlt_properties_get_data(MLT_FRAME_PROPERTIES(frame), kClip, nullptr));
}

/// What `work` gives, or `failed` where memory has run out: no exception may reach MLT.
template <typename Work, typename Result>
Result Guarded(const Work& work, Result failed)
{
    try {
        return work();
    } catch (const std::exception& error) {
        mlt_log_error(nullptr, "[producer tessel] %s\n", error.what());
        return failed;
    }
}

/// As `mlt_get_image`. MLT's normalisers bring the picture from the clip's size to the project's.
int GetImage(mlt_frame frame, std::uint8_t** buffer, mlt_image_format* format, int* width, int* height,
             int /*writable*/)
{
    OpenClip& clip = ClipOfFrame(frame);
    switch (*format) {
    case mlt_image_rgb:
    case mlt_image_rgba:
    case mlt_image_yuv422:
    case mlt_image_yuv420p:
    case mlt_image_yuv422p16:
        break;
    default:
        *format = clip.OwnFormat();
    }
    mlt_properties properties = MLT_FRAME_PROPERTIES(frame);
    const std::int64_t number = mlt_properties_get_int64(properties, kFrame);
    MltPicture picture = Guarded([&] { return clip.Picture(number, *format); }, MltPicture());
    if (!picture.memory) {
        return 1;
    }
    *width = clip.Facts().width;
    *height = clip.Facts().height;
    *buffer = picture.memory.get();
    mlt_properties_set_int(properties, "format", *format);
    mlt_properties_set_int(properties, "width", *width);
    mlt_properties_set_int(properties, "height", *height);
    mlt_properties_set_int(properties, "colorspace", clip.ColorSpace(*format));
    return mlt_frame_set_image(frame, picture.memory.release(), picture.bytes, mlt_pool_release);
}

/// As `mlt_get_audio`. Samples come at the clip's own rate; MLT's normalisers change it where the project's is
/// another.
int GetAudio(mlt_frame frame, void** buffer, mlt_audio_format* format, int* frequency, int* channels,
             int* samples)
{
    OpenClip& clip = ClipOfFrame(frame);
    const tessel_description& facts = clip.Facts();
    mlt_properties properties = MLT_FRAME_PROPERTIES(frame);
    // MLT's own sums say where a frame's samples begin, so that frames join without gaps.
    const auto rate = static_cast<float>(mlt_properties_get_double(properties, "_tessel_fps"));
    const mlt_position position = mlt_frame_original_position(frame);
    if (*frequency != facts.sample_rate || *samples <= 0) {
        *samples = mlt_audio_calculate_frame_samples(rate, facts.sample_rate, position);
    }
    *frequency = facts.sample_rate;
    *channels = facts.channel_count;
    *format = mlt_audio_float;
    const int bytes = mlt_audio_format_size(*format, *samples, *channels);
    auto* memory = static_cast<float*>(mlt_pool_alloc(bytes));
    const std::int64_t start = mlt_audio_calculate_samples_to_position(rate, facts.sample_rate, position);
    if (memory == nullptr || !Guarded([&] { return clip.Samples(start, *samples, memory); }, false)) {
        mlt_pool_release(memory);
        return 1;
    }
    *buffer = memory;
    return mlt_frame_set_audio(frame, memory, *format, bytes, mlt_pool_release);
}

/// As `mlt_producer_s::get_frame`.
int GetFrame(mlt_producer producer, mlt_frame_ptr made, int /*index*/)
{
    const mlt_service service = MLT_PRODUCER_SERVICE(producer);
    const mlt_frame frame = mlt_frame_init(service);
    *made = frame;
    if (frame == nullptr) {
        return 1;
    }
    const auto& clip = static_cast<Producer*>(producer->child)->clip;
    const tessel_description& facts = clip->Facts();
    mlt_properties properties = MLT_FRAME_PROPERTIES(frame);
    mlt_properties_set_data(
        properties, kClip, new std::shared_ptr<OpenClip>(clip), 0,
        [](void* share) { delete static_cast<std::shared_ptr<OpenClip>*>(share); }, nullptr);
    const mlt_position position = mlt_producer_frame(producer);
    mlt_frame_set_position(frame, mlt_producer_position(producer));
    mlt_properties_set_int64(properties, kFrame, FrameAt(facts, mlt_service_profile(service), position));
    mlt_properties_set_double(properties, "_tessel_fps", mlt_producer_get_fps(producer));
    if (clip->HasPicture()) {
        const bool isProgressive = facts.field_order == TESSEL_PROGRESSIVE;
        mlt_properties_set_double(properties, "aspect_ratio",
                                  mlt_properties_get_double(MLT_PRODUCER_PROPERTIES(producer), "aspect_ratio"));
        mlt_properties_set_int(properties, "width", facts.width);
        mlt_properties_set_int(properties, "height", facts.height);
        mlt_properties_set_int(properties, "progressive", isProgressive);
        mlt_properties_set_int(properties, "top_field_first", facts.field_order == TESSEL_UPPER_FIELD_FIRST);
        mlt_properties_set_int(properties, "format", clip->OwnFormat());
        mlt_properties_set_int(properties, "full_range", 0);
        mlt_frame_push_get_image(frame, GetImage);
    } else {
        mlt_properties_set_int(properties, "test_image", 1);
    }
    if (clip->HasSound()) {
        mlt_properties_set_int(properties, "audio_frequency", facts.sample_rate);
        mlt_properties_set_int(properties, "audio_channels", facts.channel_count);
        if (facts.is_surround_51 != 0) {
            mlt_properties_set(properties, "channel_layout", mlt_audio_channel_layout_name(mlt_channel_5p1));
        }
        mlt_frame_push_audio(frame, reinterpret_cast<void*>(GetAudio));
    } else {
        mlt_properties_set_int(properties, "test_audio", 1);
    }
    mlt_producer_prepare_next(producer);
    return 0;
}

void CloseProducer(mlt_producer producer)
{
    const std::unique_ptr<Producer> owned(static_cast<Producer*>(producer->child));
    producer->close = nullptr; // else it would be called again
    mlt_producer_close(producer);
}

mlt_producer NewProducer(mlt_profile profile, const char* path)
{
    std::shared_ptr<OpenClip> clip = OpenClip::Open(path);
    if (!clip) {
        return nullptr;
    }
    auto owned = std::make_unique<Producer>();
    owned->clip = std::move(clip);
    mlt_producer producer = &owned->base;
    if (mlt_producer_init(producer, owned.get()) != 0) {
        return nullptr;
    }
    static_cast<void>(owned.release()); // `CloseProducer` deletes it
    producer->get_frame = GetFrame;
    producer->close = reinterpret_cast<mlt_destructor>(CloseProducer);
    mlt_properties properties = MLT_PRODUCER_PROPERTIES(producer);
    mlt_properties_set(properties, "resource", path);
    mlt_properties_set_data(properties, "_profile", profile, 0, nullptr, nullptr);
    SetMediaFacts(properties, ClipOf(producer));
    FollowProfile(producer);
    mlt_events_listen(properties, producer, "property-changed", OnPropertyChanged);
    return producer;
}

} // namespace

void* CreateProducer(mlt_profile profile, mlt_service_type /*type*/, const char* /*id*/, const void* resource)
{
    const auto* path = static_cast<const char*>(resource);
    return path == nullptr ? nullptr : Guarded([&] { return NewProducer(profile, path); }, mlt_producer());
}

} // namespace tessel::mlt
