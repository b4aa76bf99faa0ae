#include "AudioSource.h"

#include "StreamSource.h"

#include <gst/audio/audio.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace tessel::gstreamer {
namespace {

struct TesselAudioSource {
    TesselStreamSource parent;
    GstCaps* caps;
    std::vector<float>* planes; ///< channel after channel, as the C interface gives them
};

struct TesselAudioSourceClass {
    TesselStreamSourceClass parent;
};

G_DEFINE_TYPE(TesselAudioSource, tessel_audio_source, StreamSourceType())

TesselAudioSource* AsAudioSource(gpointer object)
{
    return reinterpret_cast<TesselAudioSource*>(object);
}

void Finalize(GObject* object)
{
    gst_clear_caps(&AsAudioSource(object)->caps);
    delete AsAudioSource(object)->planes;
    G_OBJECT_CLASS(tessel_audio_source_parent_class)->finalize(object);
}

/// Where the channels stand. The C interface gives six channels of 5.1 as L R C LFE Ls Rs, which is the order
/// of these positions as well.
guint64 ChannelMaskOf(const tessel_description& facts)
{
    if (facts.is_surround_51 != 0) {
        return GST_AUDIO_CHANNEL_POSITION_MASK(FRONT_LEFT) | GST_AUDIO_CHANNEL_POSITION_MASK(FRONT_RIGHT) |
               GST_AUDIO_CHANNEL_POSITION_MASK(FRONT_CENTER) | GST_AUDIO_CHANNEL_POSITION_MASK(LFE1) |
               GST_AUDIO_CHANNEL_POSITION_MASK(SIDE_LEFT) | GST_AUDIO_CHANNEL_POSITION_MASK(SIDE_RIGHT);
    }
    if (facts.channel_count == 2) {
        return GST_AUDIO_CHANNEL_POSITION_MASK(FRONT_LEFT) | GST_AUDIO_CHANNEL_POSITION_MASK(FRONT_RIGHT);
    }
    return 0; // no positions
}

GstCaps* CapsOf(const tessel_description& facts)
{
    GstCaps* const caps = gst_caps_new_simple(
        "audio/x-raw", "format", G_TYPE_STRING, GST_AUDIO_NE(F32), "layout", G_TYPE_STRING, "interleaved",
        "rate", G_TYPE_INT, facts.sample_rate, "channels", G_TYPE_INT, facts.channel_count, nullptr);
    if (facts.channel_count > 1) {
        gst_caps_set_simple(caps, "channel-mask", GST_TYPE_BITMASK, ChannelMaskOf(facts), nullptr);
    }
    return caps;
}

GstCaps* GetCaps(GstBaseSrc* base, GstCaps* filter)
{
    GstCaps* const caps = AsAudioSource(base)->caps;
    return filter != nullptr ? gst_caps_intersect_full(caps, filter, GST_CAPS_INTERSECT_FIRST)
                             : gst_caps_ref(caps);
}

GstFlowReturn Make(TesselStreamSource* base, guint64 first, guint64 count, GstBuffer** made)
{
    TesselAudioSource* const source = AsAudioSource(base);
    const Clip& clip = ClipOf(base);
    const auto channels = static_cast<std::size_t>(clip.facts.channel_count);
    const auto samples = static_cast<std::size_t>(count);
    std::vector<float>& planes = *source->planes;
    planes.resize(channels * samples);
    std::vector<float*> starts(channels);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        starts[channel] = planes.data() + channel * samples;
    }
    if (tessel_samples(clip.handle.get(), static_cast<int64_t>(first), samples, starts.data(), channels) !=
        TESSEL_OK) {
        return FailRequest(base);
    }
    GstBuffer* buffer = gst_buffer_new_allocate(nullptr, channels * samples * sizeof(float), nullptr);
    GstMapInfo map;
    if (buffer == nullptr || gst_buffer_map(buffer, &map, GST_MAP_WRITE) == FALSE) {
        gst_clear_buffer(&buffer);
        GST_ELEMENT_ERROR(base, RESOURCE, NO_SPACE_LEFT, ("There is no memory for sound"), (nullptr));
        return GST_FLOW_ERROR;
    }
    auto* const interleaved = reinterpret_cast<float*>(map.data);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        for (std::size_t sample = 0; sample < samples; ++sample) {
            interleaved[sample * channels + channel] = starts[channel][sample];
        }
    }
    gst_buffer_unmap(buffer, &map);
    *made = buffer;
    return GST_FLOW_OK;
}

void tessel_audio_source_init(TesselAudioSource* source)
{
    source->planes = new std::vector<float>;
}

void tessel_audio_source_class_init(TesselAudioSourceClass* kind)
{
    G_OBJECT_CLASS(kind)->finalize = &Finalize;
    GstElementClass* const element = GST_ELEMENT_CLASS(kind);
    gst_element_class_set_static_metadata(element, "Tessel sound", "Source/Audio",
                                          "The sound of a clip, inside tesselsrc and tesseldemux", "Tessel");
    GstCaps* const caps = AudioTemplateCaps();
    gst_element_class_add_pad_template(element, gst_pad_template_new("src", GST_PAD_SRC, GST_PAD_ALWAYS, caps));
    gst_caps_unref(caps);
    GST_BASE_SRC_CLASS(kind)->get_caps = &GetCaps;
    kind->parent.make = &Make;
}

} // namespace

GstCaps* AudioTemplateCaps()
{
    return gst_caps_new_simple("audio/x-raw", "format", G_TYPE_STRING, GST_AUDIO_NE(F32), "layout",
                               G_TYPE_STRING, "interleaved", "rate", GST_TYPE_INT_RANGE, 1, G_MAXINT,
                               "channels", GST_TYPE_INT_RANGE, 1, 64, nullptr);
}

GstElement* NewAudioSource(const ClipPointer& clip)
{
    auto* const source = AsAudioSource(g_object_new(tessel_audio_source_get_type(), "name", "sound", nullptr));
    const tessel_description& facts = clip->facts;
    constexpr guint64 kBuffersPerSecond = 50; // as often as there are pictures, about
    const auto rate = static_cast<guint64>(facts.sample_rate);
    SetClip(&source->parent, clip,
            {.rate = {rate, 1},
             .unitCount = static_cast<guint64>(facts.sample_count),
             .unitsPerBuffer = std::max<guint64>(1, rate / kBuffersPerSecond)});
    source->caps = CapsOf(facts);
    return GST_ELEMENT(source);
}

} // namespace tessel::gstreamer
