/// The kinds of file that are written: one row each.
#pragma once

#include "Keeps.h"

#include <tessel/export/convert/Picture.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tessel::exporting {

/// What a container is for.
enum class ContainerKind : std::uint8_t {
    Movie,       ///< picture and sound
    PictureOnly, ///< a stream of pictures without sound
    SoundOnly,
    Sequence, ///< a file per picture
};

/// A container's default codec for each kind of clip format: names of video codecs.
struct DefaultVideoCodecs {
    std::string_view rgb8{};
    std::string_view rgbFloat{};
    std::string_view ycbcr8{}; ///< 4:4:4
    std::string_view ycbcrFloat{};
    std::string_view pairs422{}; ///< UYVY, YUYV
    std::string_view v210{};
    std::string_view planar420{};
    std::string_view dv{};
};

/// A code by which a container's readers know a raw layout, where the muxer would write another one.
struct RawTag {
    PictureLayout layout;
    std::string_view tag; ///< four characters
};

/// Who turns raw pictures into packets.
enum class RawWriter : std::uint8_t { Libav, Y4m };

/// A row of the table, and a container's identity: containers are compared by address. Which video and sound
/// codecs a container carries stands in the codecs' rows.
struct Container {
    std::string_view name;             ///< as `--format` takes it, and the usual extension
    std::string_view otherExtension{}; ///< lower case, without the dot; may be empty
    ContainerKind kind = ContainerKind::Movie;
    std::string_view muxer{};           ///< FFmpeg's name; empty for sequences
    std::string_view muxerOptions{};    ///< "key=value:key=value"
    std::string_view pipeOptions{};     ///< instead of `muxerOptions` where the output cannot seek
    bool takesEveryCodec = false;       ///< writes nothing, so nothing is too strange for it
    bool needsToSeek = false;           ///< its files cannot be written to a pipe
    bool isQuickTime = false;           ///< of QuickTime's family, with its four-character codes
    bool headersOutOfBand = false;      ///< headers of codecs go into the container's, not into their packets
    bool namesOrderOfMpeg2Only = false; ///< of other codecs it names none, or one that goes with the height
    DefaultVideoCodecs videoCodecs{};
    std::string_view commentKey = "comment";     ///< FFmpeg's name for a text about the file
    std::string_view audioCodec{};               ///< the default; empty: no sound
    std::span<const PictureLayout> rawLayouts{}; ///< that its readers know unpacked, the preferred first
    std::span<const RawTag> rawTags{};
    RawWriter rawWriter = RawWriter::Libav;
    int announcedWidthStep = 1;      ///< it announces widths in whole steps; the stream's own is exact
    std::int32_t onlySampleRate = 0; ///< of sound; 0: any
    Keeps keeps = Keeps::Nothing;    ///< whatever the codec is

    [[nodiscard]] constexpr bool TakesVideo() const noexcept { return kind != ContainerKind::SoundOnly; }
    [[nodiscard]] constexpr bool TakesAudio() const noexcept { return !audioCodec.empty(); }
};

/// All rows, in the order in which help lists them.
[[nodiscard]] std::span<const Container> AllContainers() noexcept;

/// By `--format` name or extension, without the dot, in any case; null: there is none.
[[nodiscard]] const Container* ContainerNamed(std::string_view name) noexcept;

/// All names, with commas, for messages and help.
[[nodiscard]] std::string ContainerNames();

} // namespace tessel::exporting
