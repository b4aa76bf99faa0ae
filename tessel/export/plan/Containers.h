/// The kinds of file that are written, and the codecs that go into them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tessel::exporting {

enum class Container : std::uint8_t { Mkv, Mov, Mp4, Mxf, Avi, Nut, Y4m, Wav, Png, Tiff, Dpx, Exr };

enum class VideoCodec : std::uint8_t { Ffv1, Raw, V210, V408, ProRes, Png, Tiff, Dpx, Exr, H264, Mpeg2, Dv };

enum class AudioCodec : std::uint8_t { Pcm16, Pcm24, Pcm32, PcmFloat, Flac, Aac, Opus };

/// What a container is for.
enum class ContainerKind : std::uint8_t {
    Movie,       ///< picture and sound
    PictureOnly, ///< a stream of pictures without sound
    SoundOnly,
    Sequence, ///< a file per picture
};

struct ContainerInfo {
    Container container;
    std::string_view name;                        ///< as `--format` takes it, and the usual extension
    std::span<const std::string_view> extensions; ///< lower case, without the dot
    const char* muxer;                            ///< FFmpeg's name; null for sequences
    ContainerKind kind;
    std::span<const VideoCodec> videoCodecs; ///< those that it can carry
    std::span<const AudioCodec> audioCodecs; ///< likewise, the default first

    [[nodiscard]] bool TakesVideo() const noexcept { return !videoCodecs.empty(); }
    [[nodiscard]] bool TakesAudio() const noexcept { return !audioCodecs.empty(); }
};

[[nodiscard]] const ContainerInfo& InfoOf(Container container) noexcept;

/// By `--format` name or extension, without the dot, in any case.
[[nodiscard]] std::optional<Container> ContainerNamed(std::string_view name);
[[nodiscard]] std::optional<VideoCodec> VideoCodecNamed(std::string_view name);
[[nodiscard]] std::optional<AudioCodec> AudioCodecNamed(std::string_view name);

/// The name as the command line takes it. @{
[[nodiscard]] std::string_view NameOf(VideoCodec codec) noexcept;
[[nodiscard]] std::string_view NameOf(AudioCodec codec) noexcept;
/// @}

/// All names, with commas, for messages and help. @{
[[nodiscard]] std::string ContainerNames();
[[nodiscard]] std::string NamesOf(std::span<const VideoCodec> codecs);
[[nodiscard]] std::string NamesOf(std::span<const AudioCodec> codecs);
[[nodiscard]] std::string VideoCodecNames();
[[nodiscard]] std::string AudioCodecNames();
/// @}

} // namespace tessel::exporting
