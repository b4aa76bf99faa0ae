/// How pictures are coded: one row per codec.
#pragma once

#include "Container.h"
#include "Keeps.h"

#include <tessel/export/convert/Picture.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessel::exporting {

struct VideoPlan;

/// What an encoder is told beside size, rate and tags, by FFmpeg's names.
struct EncoderOptions {
    std::vector<std::pair<std::string, std::string>> values; ///< general options ("g") and the encoder's own
    std::string flags;                                       ///< of its context: "+qscale+ildct"
};

/// How the layout of the coded pictures follows from the clip's format.
enum class LayoutRule : std::uint8_t {
    KeepSamples, ///< of the row's layouts the one that keeps most of the clip's samples
    KeepRaw,     ///< likewise of the container's raw layouts
    Playable,    ///< the first of the row's layouts that the size allows and that is deep enough
    DvProfile,   ///< as the tape format has it
};

/// What an encoder leaves wrong in its packets, to be put right afterwards.
enum class PacketRepair : std::uint8_t { None, DpxColors, DnxhrColorVolume };

/// A codec's own measure of quality, as `--quality` takes it: whole numbers, of which one end is the best.
struct QualityScale {
    std::string_view name{}; ///< what the numbers are: "CRF"; empty: the codec has no such measure
    int best = 0;
    int worst = 0;
    int usual = 0;
};

/// A row of the table, and a codec's identity: codecs are compared by address. A new codec is one row, and one
/// function where its encoder needs options.
struct VideoCodec {
    std::string_view name;       ///< as `--video-codec` takes it
    std::string_view title;      ///< as people write it
    std::string_view encoder;    ///< FFmpeg's name; empty: the picture's memory is the packet
    std::string_view containers; ///< names of those that carry it, between blanks
    /// What other programs call it, beside `encoder`: in small letters, between blanks.
    std::string_view otherNames{};
    LayoutRule rule = LayoutRule::KeepSamples;
    std::span<const PictureLayout> layouts{}; ///< that encoder and readers know, the preferred first
    Keeps keeps = Keeps::Nothing;             ///< what the codec's own stream says
    std::string_view
        opaqueEncoder{}; ///< for layouts without alpha, where that is another one; even widths only
    void (*setOptions)(const VideoPlan& plan, EncoderOptions& options) = nullptr;
    Keeps streamDecides = Keeps::Nothing;  ///< what readers take from the stream alone, also where it is silent
    Keeps notInQuickTime = Keeps::Nothing; ///< what QuickTime's family does not say beside it
    bool saysDisplayAspect = false;        ///< its stream has codes for 4:3 and 16:9, and for no other shape
    QualityScale quality{};
    std::string_view quickTimeTag{}; ///< by which QuickTime's family knows it, where the muxer has another one
    bool codesFields = true;         ///< the encoder hears that pictures are interlaced
    bool refersToOthers = false;     ///< pictures are coded from their neighbours
    bool repeats = false;            ///< the same picture gives the same packet wherever it stands
    bool isFullRange = false;        ///< Y'CbCr made from R'G'B' is BT.601 full range, as readers expect of it
    PacketRepair repair = PacketRepair::None;

    [[nodiscard]] bool GoesInto(const Container& container) const noexcept;
};

/// All rows, in the order in which help lists them.
[[nodiscard]] std::span<const VideoCodec> AllVideoCodecs() noexcept;

/// In any case of letters; null: there is none.
[[nodiscard]] const VideoCodec* VideoCodecNamed(std::string_view name) noexcept;

/// Names with commas, for messages and help: of all, or of those that a container carries. @{
[[nodiscard]] std::string VideoCodecNames();
[[nodiscard]] std::string VideoCodecNames(const Container& container);
/// @}

} // namespace tessel::exporting
