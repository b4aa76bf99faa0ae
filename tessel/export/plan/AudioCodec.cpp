#include "AudioCodec.h"

#include "Names.h"

#include <array>

namespace tessel::exporting {
namespace {

constexpr std::array<AudioCodec, 7> kAudioCodecs{{
    {.name = "pcm16",
     .encoder = "pcm_s16le",
     .containers = "mkv mov mxf avi nut wav",
     .otherNames = "s16 s16le pcm_s16be",
     .bits = 16},
    {.name = "pcm24",
     .encoder = "pcm_s24le",
     .containers = "mkv mov mxf avi nut wav",
     .otherNames = "s24 s24le pcm_s24be",
     .bits = 24},
    {.name = "pcm32",
     .encoder = "pcm_s32le",
     .containers = "mkv mov avi nut wav",
     .otherNames = "s32 s32le pcm_s32be",
     .bits = 32},
    {.name = "pcmfloat",
     .encoder = "pcm_f32le",
     .containers = "mkv mov avi nut wav",
     .otherNames = "float f32 f32le pcm_f32be"},
    {.name = "flac",
     .encoder = "flac",
     .containers = "mkv mp4 nut",
     .bits = 24,
     .mostChannels = 8,
     .highestRate = 655'350,
     .keeps = Keeps::ChannelLayout},
    {.name = "aac",
     .encoder = "aac",
     .containers = "mkv mov mp4 avi nut",
     .mostChannels = 8,
     .bitsPerChannel = 160'000,
     .needsNamedLayout = true,
     .hasDelay = true,
     .keeps = Keeps::ChannelLayout},
    {.name = "opus",
     .encoder = "libopus",
     .containers = "mkv mp4 nut",
     .mostChannels = 8,
     .bitsPerChannel = 160'000,
     .needsNamedLayout = true,
     .hasDelay = true,
     .keeps = Keeps::ChannelLayout},
}};

} // namespace

bool AudioCodec::GoesInto(const Container& container) const noexcept
{
    return container.takesEveryCodec || HasWord(containers, container.name);
}

std::span<const AudioCodec> AllAudioCodecs() noexcept
{
    return kAudioCodecs;
}

const AudioCodec* AudioCodecNamed(std::string_view name) noexcept
{
    return RowNamed<AudioCodec>(kAudioCodecs, name);
}

std::string AudioCodecNames()
{
    return JoinNames(kAudioCodecs, [](const AudioCodec&) { return true; });
}

std::string AudioCodecNames(const Container& container)
{
    return JoinNames(kAudioCodecs, [&](const AudioCodec& codec) { return codec.GoesInto(container); });
}

} // namespace tessel::exporting
