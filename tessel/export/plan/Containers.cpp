#include "Containers.h"

#include <algorithm>
#include <array>

namespace tessel::exporting {
namespace {

constexpr std::array<std::string_view, 1> kMkvExtensions{"mkv"};
constexpr std::array<std::string_view, 2> kMovExtensions{"mov", "qt"};
constexpr std::array<std::string_view, 2> kMp4Extensions{"mp4", "m4v"};
constexpr std::array<std::string_view, 1> kMxfExtensions{"mxf"};
constexpr std::array<std::string_view, 1> kAviExtensions{"avi"};
constexpr std::array<std::string_view, 1> kNutExtensions{"nut"};
constexpr std::array<std::string_view, 1> kY4mExtensions{"y4m"};
constexpr std::array<std::string_view, 2> kWavExtensions{"wav", "wave"};
constexpr std::array<std::string_view, 1> kPngExtensions{"png"};
constexpr std::array<std::string_view, 2> kTiffExtensions{"tiff", "tif"};
constexpr std::array<std::string_view, 1> kDpxExtensions{"dpx"};
constexpr std::array<std::string_view, 1> kExrExtensions{"exr"};

using enum VideoCodec;
constexpr std::array kAnyMovieVideo{Ffv1, Raw,   V210,          V408, ProRes, VideoCodec::Png,
                                    H264, Mpeg2, VideoCodec::Dv};
constexpr std::array kMp4Video{H264, Mpeg2};
constexpr std::array kMxfVideo{Mpeg2, H264, VideoCodec::Dv};
constexpr std::array kAviVideo{Ffv1, Raw, V210, V408, ProRes, VideoCodec::Png, H264, Mpeg2, VideoCodec::Dv};
constexpr std::array kRawVideo{Raw};
constexpr std::array kPngVideo{VideoCodec::Png};
constexpr std::array kTiffVideo{VideoCodec::Tiff};
constexpr std::array kDpxVideo{VideoCodec::Dpx};
constexpr std::array kExrVideo{VideoCodec::Exr};

using enum AudioCodec;
constexpr std::array kMkvAudio{Flac, Pcm24, Pcm16, Pcm32, PcmFloat, Aac, Opus};
constexpr std::array kMovAudio{Pcm24, Pcm16, Pcm32, PcmFloat, Aac};
constexpr std::array kMp4Audio{Aac, Flac, Opus};
constexpr std::array kMxfAudio{Pcm24, Pcm16};
constexpr std::array kAviAudio{Pcm24, Pcm16, Pcm32, PcmFloat, Aac};
constexpr std::array kNutAudio{Pcm24, Pcm16, Pcm32, PcmFloat, Flac, Aac, Opus};
constexpr std::array kWavAudio{Pcm24, Pcm16, Pcm32, PcmFloat};

const std::array<ContainerInfo, 12> kContainers{{
    {Container::Mkv, "mkv", kMkvExtensions, "matroska", ContainerKind::Movie, kAnyMovieVideo, kMkvAudio},
    {Container::Mov, "mov", kMovExtensions, "mov", ContainerKind::Movie, kAnyMovieVideo, kMovAudio},
    {Container::Mp4, "mp4", kMp4Extensions, "mp4", ContainerKind::Movie, kMp4Video, kMp4Audio},
    {Container::Mxf, "mxf", kMxfExtensions, "mxf", ContainerKind::Movie, kMxfVideo, kMxfAudio},
    {Container::Avi, "avi", kAviExtensions, "avi", ContainerKind::Movie, kAviVideo, kAviAudio},
    {Container::Nut, "nut", kNutExtensions, "nut", ContainerKind::Movie, kAnyMovieVideo, kNutAudio},
    // The Y4M writer makes whole files; the muxer only passes them on.
    {Container::Y4m, "y4m", kY4mExtensions, "rawvideo", ContainerKind::PictureOnly, kRawVideo, {}},
    {Container::Wav, "wav", kWavExtensions, "wav", ContainerKind::SoundOnly, {}, kWavAudio},
    {Container::Png, "png", kPngExtensions, nullptr, ContainerKind::Sequence, kPngVideo, {}},
    {Container::Tiff, "tiff", kTiffExtensions, nullptr, ContainerKind::Sequence, kTiffVideo, {}},
    {Container::Dpx, "dpx", kDpxExtensions, nullptr, ContainerKind::Sequence, kDpxVideo, {}},
    {Container::Exr, "exr", kExrExtensions, nullptr, ContainerKind::Sequence, kExrVideo, {}},
}};

constexpr std::array<std::string_view, 12> kVideoCodecNames{"ffv1", "raw", "v210", "v408", "prores", "png",
                                                            "tiff", "dpx", "exr",  "h264", "mpeg2",  "dv"};
constexpr std::array<std::string_view, 7> kAudioCodecNames{"pcm16", "pcm24", "pcm32", "pcmfloat",
                                                           "flac",  "aac",   "opus"};

std::string LowerCase(std::string_view text)
{
    std::string lower(text);
    for (char& letter : lower) {
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return lower;
}

template <class Code, std::size_t Count>
std::optional<Code> Find(const std::array<std::string_view, Count>& names, std::string_view name)
{
    const auto found = std::find(names.begin(), names.end(), LowerCase(name));
    if (found == names.end()) {
        return std::nullopt;
    }
    return static_cast<Code>(found - names.begin());
}

template <class Range, class Name>
std::string Join(const Range& range, const Name& name)
{
    std::string text;
    for (const auto& element : range) {
        text += text.empty() ? "" : ", ";
        text += name(element);
    }
    return text;
}

} // namespace

const ContainerInfo& InfoOf(Container container) noexcept
{
    return kContainers[static_cast<std::size_t>(container)];
}

std::optional<Container> ContainerNamed(std::string_view name)
{
    const std::string lower = LowerCase(name);
    for (const ContainerInfo& info : kContainers) {
        if (std::find(info.extensions.begin(), info.extensions.end(), lower) != info.extensions.end()) {
            return info.container;
        }
    }
    return std::nullopt;
}

std::optional<VideoCodec> VideoCodecNamed(std::string_view name)
{
    return Find<VideoCodec>(kVideoCodecNames, name);
}

std::optional<AudioCodec> AudioCodecNamed(std::string_view name)
{
    return Find<AudioCodec>(kAudioCodecNames, name);
}

std::string_view NameOf(VideoCodec codec) noexcept
{
    return kVideoCodecNames[static_cast<std::size_t>(codec)];
}

std::string_view NameOf(AudioCodec codec) noexcept
{
    return kAudioCodecNames[static_cast<std::size_t>(codec)];
}

std::string ContainerNames()
{
    return Join(kContainers, [](const ContainerInfo& info) { return info.name; });
}

std::string NamesOf(std::span<const VideoCodec> codecs)
{
    return Join(codecs, [](VideoCodec codec) { return NameOf(codec); });
}

std::string NamesOf(std::span<const AudioCodec> codecs)
{
    return Join(codecs, [](AudioCodec codec) { return NameOf(codec); });
}

std::string VideoCodecNames()
{
    return Join(kVideoCodecNames, [](std::string_view name) { return name; });
}

std::string AudioCodecNames()
{
    return Join(kAudioCodecNames, [](std::string_view name) { return name; });
}

} // namespace tessel::exporting
