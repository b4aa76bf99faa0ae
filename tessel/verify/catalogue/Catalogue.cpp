#include "Catalogue.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace tessel::verify {
namespace {

using enum Severity;

// What makes faults visible, where several checks share it.
constexpr std::string_view kAlways = "every clip";
constexpr std::string_view kTagged = "every clip, in a container that says it";
constexpr std::string_view kNumbers = "printed numbers, or colours that change from frame to frame";
constexpr std::string_view kEdges = "printed numbers or swatches";
constexpr std::string_view kFields = "an interlaced clip whose two field colours differ, or printed numbers";
constexpr std::string_view kColours = "colours that a wrong way would move beyond the tolerance";
constexpr std::string_view kSound = "a clip with sound";
constexpr std::string_view kIdent = "a channel identification";
constexpr std::string_view kTone = "a steady tone or an identification";

constexpr std::string_view kAnyClip = "any clip";
constexpr std::string_view kOtherContainer = "a container and codec that say it";
constexpr std::string_view kUseNumbers = "a clip with printed numbers";
constexpr std::string_view kUseFields =
    "an interlaced clip with two different field colours and printed numbers";
constexpr std::string_view kUseChart = "a swatch chart";
constexpr std::string_view kUseIdent = "a 5.1 identification (EBU or BLITS)";
constexpr std::string_view kUseSound = "a clip with sound";

constexpr std::array kChecks{
    CheckInfo{id::kSignalOther, Critical, "The movie shows this clip.", kAlways, kAnyClip, {}, {}},

    CheckInfo{id::kContainerSize, Major, "The picture has the clip's size.", kAlways, kAnyClip, "pixels", {}},
    CheckInfo{id::kContainerRate, Major, "The frame rate is the clip's, exactly.", kAlways, kAnyClip, {}, {}},
    CheckInfo{id::kContainerConstantRate, Major, "Every picture lasts as long as the others.",
              "a movie of several pictures", kOtherContainer, "ms", Tolerance{0.02, 0.02, 0.02}},
    CheckInfo{
        id::kContainerAspect, Major, "The pixel aspect ratio is the clip's.", kTagged, kOtherContainer, {}, {}},
    CheckInfo{id::kContainerFields,
              Major,
              "The announced field order is the clip's.",
              kTagged,
              kOtherContainer,
              {},
              {}},
    CheckInfo{id::kContainerPrimaries,
              Major,
              "The announced primaries are the clip's.",
              kTagged,
              kOtherContainer,
              {},
              {}},
    CheckInfo{id::kContainerTransfer,
              Major,
              "The announced transfer function is the clip's.",
              kTagged,
              kOtherContainer,
              {},
              {}},
    CheckInfo{
        id::kContainerMatrix, Major, "The announced matrix is the clip's.", kTagged, kOtherContainer, {}, {}},
    CheckInfo{id::kContainerRange,
              Major,
              "The announced code range is the clip's.",
              kTagged,
              kOtherContainer,
              {},
              {}},
    CheckInfo{id::kContainerSiting,
              Minor,
              "The announced chroma location is where the chroma is.",
              kTagged,
              kOtherContainer,
              {},
              {}},
    CheckInfo{
        id::kContainerDuration, Major, "The movie lasts as long as the clip.", kAlways, kAnyClip, "s", {}},
    CheckInfo{id::kContainerStart, Minor, "Picture and sound begin at the movie's start.", kAlways, kAnyClip,
              "ms", Tolerance{1, 1, 1}},
    CheckInfo{id::kContainerChannels,
              Major,
              "The sound has the clip's number of channels.",
              kSound,
              kUseSound,
              "channels",
              {}},
    CheckInfo{id::kContainerLayout,
              Major,
              "The announced channel layout is the clip's.",
              "a clip with sound, in a container that says it",
              kOtherContainer,
              {},
              {}},
    CheckInfo{id::kContainerSampleRate, Major, "The sample rate is the clip's.", kSound, kUseSound, "Hz", {}},
    CheckInfo{id::kContainerDepth,
              Minor,
              "Samples have at least the clip's number of bits.",
              kTagged,
              kOtherContainer,
              "bits",
              {}},
    CheckInfo{id::kContainerAlpha,
              Major,
              "A clip with alpha has alpha in the movie.",
              "a clip with alpha",
              "a clip whose pixel format has alpha",
              {},
              {}},

    CheckInfo{id::kOrderMissing,
              Critical,
              "No frame is missing between the first and the last one shown.",
              kNumbers,
              kUseNumbers,
              "frames",
              {}},
    CheckInfo{
        id::kOrderRepeated, Major, "No frame is shown twice in a row.", kNumbers, kUseNumbers, "frames", {}},
    CheckInfo{id::kOrderInserted,
              Critical,
              "No picture stands between the frames that belongs elsewhere.",
              kNumbers,
              kUseNumbers,
              "pictures",
              {}},
    CheckInfo{
        id::kOrderSwapped, Critical, "No frames have changed places.", kNumbers, kUseNumbers, "frames", {}},
    CheckInfo{id::kOrderFrozen,
              Critical,
              "No frame stands in the place of those after it.",
              kNumbers,
              kUseNumbers,
              "frames",
              {}},
    CheckInfo{id::kOrderReversed, Critical, "Frames run forwards.", kNumbers, kUseNumbers, "frames", {}},
    CheckInfo{id::kOrderCadence,
              Major,
              "Frames are not repeated or left out in a regular pattern.",
              kNumbers,
              kUseNumbers,
              {},
              {}},
    CheckInfo{id::kOrderHead,
              Major,
              "The movie begins with the clip's first frame.",
              kNumbers,
              kUseNumbers,
              "frames",
              {}},
    CheckInfo{id::kOrderTail,
              Major,
              "The movie ends with the clip's last frame.",
              kNumbers,
              kUseNumbers,
              "frames",
              {}},
    CheckInfo{id::kOrderUnreadable,
              Major,
              "Every picture tells which frame it is.",
              kNumbers,
              kUseNumbers,
              "pictures",
              {}},

    CheckInfo{id::kGeometryScaled, Major, "The picture is as large as the clip's.", kEdges, kUseNumbers,
              "ratio", Tolerance{0.002, 0.002, 0.003}},
    CheckInfo{id::kGeometryCropped, Major, "Nothing is cut off the picture's edges.", kEdges, kUseNumbers,
              "pixels", Tolerance{0.25, 0.25, 0.5}},
    CheckInfo{id::kGeometryPadded, Major, "Nothing is added around the picture.", kEdges, kUseNumbers, "pixels",
              Tolerance{0.25, 0.25, 0.5}},
    CheckInfo{id::kGeometryShifted, Minor, "The picture is in its place.", kEdges, kUseNumbers, "pixels",
              Tolerance{0.15, 0.15, 0.25}},
    CheckInfo{id::kGeometryFlipped, Critical, "The picture is not mirrored.", kEdges, kUseNumbers, {}, {}},
    CheckInfo{id::kGeometryRotated, Critical, "The picture is not turned.", kEdges, kUseNumbers, "degrees", {}},

    CheckInfo{id::kFieldsSwapped, Critical, "Each field is on its own rows.", kFields, kUseFields, {}, {}},
    CheckInfo{id::kFieldsShifted,
              Critical,
              "Both fields of a picture are of one frame.",
              kFields,
              kUseFields,
              {},
              {}},
    CheckInfo{id::kFieldsBlended, Major, "Fields are not mixed into each other.", kFields, kUseFields, {}, {}},
    CheckInfo{id::kFieldsBobbed, Major, "Fields are not stretched to frames.", kFields, kUseFields, {}, {}},
    CheckInfo{id::kFieldsLost, Major, "Neither field is lost.", kFields, kUseFields, {}, {}},
    CheckInfo{
        id::kFieldsProgressive, Major, "Interlaced pictures stayed interlaced.", kFields, kUseFields, {}, {}},
    CheckInfo{id::kFieldsInterlaced,
              Major,
              "Progressive pictures stayed progressive.",
              "a progressive clip",
              "a progressive clip with printed numbers",
              {},
              {}},

    CheckInfo{id::kColorMatrix, Major, "Codes are made with the matrix that the movie announces.", kColours,
              kUseChart, "codes", Tolerance{1, 1.5, 2.5}},
    CheckInfo{id::kColorRange, Major, "Codes use the range that the movie announces.", kColours, kUseChart,
              "codes", Tolerance{1, 1.5, 2.5}},
    CheckInfo{id::kColorClipped, Minor, "Codes outside the nominal range are kept.", "colours outside 0..1",
              "a swatch chart with super-white and sub-black", "codes", Tolerance{1, 1.5, 2.5}},
    CheckInfo{id::kColorChannels, Critical, "Red, green and blue are not exchanged.", kColours, kUseChart,
              "codes", Tolerance{1, 1.5, 2.5}},
    CheckInfo{id::kColorChromaSwapped, Critical, "Cb and Cr are not exchanged.", kColours, kUseChart, "codes",
              Tolerance{1, 1.5, 2.5}},
    CheckInfo{id::kColorTransfer, Major,
              "No transfer function is applied too often, too seldom or in another's place.", kColours,
              "a swatch chart or a gradient", "codes", Tolerance{1, 1.5, 2.5}},
    CheckInfo{id::kColorGain, Major, "Levels are not multiplied.", kColours, kUseChart, "ratio",
              Tolerance{0.006, 0.01, 0.02}},
    CheckInfo{id::kColorOffset, Major, "Nothing is added to the levels.", kColours, kUseChart, "codes",
              Tolerance{1, 1.5, 2.5}},
    CheckInfo{id::kColorSaturation, Major, "Chroma is not multiplied.", kColours, kUseChart, "ratio",
              Tolerance{0.01, 0.02, 0.03}},
    CheckInfo{id::kColorHue, Major, "Hues are not turned.", kColours, kUseChart, "degrees",
              Tolerance{0.6, 1, 2}},
    CheckInfo{id::kColorDepth,
              Minor,
              "Codes are as fine as the movie's samples allow.",
              "a gradient or a chart of many levels",
              "a gradient or a swatch chart",
              "bits",
              {}},
    CheckInfo{id::kColorSubsampling,
              Minor,
              "Chroma is as fine as the movie's samples allow.",
              "edges between colours of different chroma",
              kUseChart,
              {},
              {}},
    CheckInfo{id::kColorSiting, Minor, "Chroma lies where the movie says.",
              "edges between colours of different chroma", kUseChart, "luma pixels", Tolerance{0.2, 0.2, 0.3}},
    CheckInfo{id::kColorAlpha, Major, "Alpha and the colours under it are the clip's.",
              "a clip with alpha below 1", "a clip with alpha below 1", "codes", Tolerance{1, 1.5, 2.5}},

    CheckInfo{id::kFidelityExact,
              Minor,
              "Every sample of every picture is the clip's.",
              "a codec that loses nothing",
              "a codec that loses nothing, such as ffv1",
              "frames",
              {}},
    CheckInfo{id::kFidelityPsnr, Major, "Pictures are as near to the clip's as the codec promises (PSNR).",
              kAlways, kAnyClip, "dB", Tolerance{50, 36, 26}},
    CheckInfo{id::kFidelitySsim,
              Major,
              "Pictures have the structure of the clip's (SSIM).",
              kAlways,
              kAnyClip,
              {},
              Tolerance{0.995, 0.97, 0.85}},

    CheckInfo{
        id::kAudioOrder, Critical, "Each channel carries what the clip has on it.", kIdent, kUseIdent, {}, {}},
    CheckInfo{id::kAudioPolarity, Major, "No channel is upside down.", kTone, kUseSound, {}, {}},
    CheckInfo{id::kAudioGain, Major, "Channels are as loud as the clip's.", kTone, kUseSound, "dB",
              Tolerance{0.05, 0.1, 0.3}},
    CheckInfo{id::kAudioSilence,
              Critical,
              "No channel is silent where the clip's is not.",
              kTone,
              kUseSound,
              "dBFS",
              {}},
    CheckInfo{id::kAudioClipping, Major, "Peaks are not cut off.", kTone, kUseSound, "samples", {}},
    CheckInfo{id::kAudioDc, Minor, "Channels have no constant part.", kSound, kUseSound, "dBFS",
              Tolerance{-90, -80, -70}},
    CheckInfo{id::kAudioNoise, Minor, "Nothing is added between the clip's tones.", kTone, kUseSound, "dBFS",
              Tolerance{-85, -80, -50}},
    CheckInfo{id::kAudioHarmonics, Minor, "Tones have no harmonics.", kTone, kUseSound, "dBc",
              Tolerance{-80, -70, -40}},
    CheckInfo{id::kAudioPitch, Major, "Tones have the clip's frequency.", kTone, kUseSound, "ratio",
              Tolerance{0.003, 0.003, 0.003}}, // 5 cents, which listeners begin to hear
    CheckInfo{id::kAudioDrift, Minor, "The sound runs as fast as the clip's.", kTone, "a clip of 10 s or more",
              "ppm", Tolerance{1, 1, 5}},
    CheckInfo{id::kAudioLost, Major, "No samples are missing.", kTone, kUseSound, "samples",
              Tolerance{0.5, 0.5, 2}},
    CheckInfo{id::kAudioInserted, Major, "No samples are added.", kTone, kUseSound, "samples",
              Tolerance{0.5, 0.5, 2}},
    CheckInfo{id::kAudioDropout, Major, "The sound has no gaps or clicks.", kTone, kUseSound, "samples", {}},
    CheckInfo{id::kAudioDepth,
              Minor,
              "Samples are as fine as the movie's format allows.",
              kTone,
              kUseSound,
              "bits",
              {}},
    CheckInfo{id::kAudioDownmix, Major, "No channels are mixed into others.", kIdent, kUseIdent, {}, {}},
    CheckInfo{id::kAudioUpmix, Major, "No channels are made from others.", kIdent, kUseIdent, {}, {}},
    CheckInfo{id::kAudioSegments,
              Major,
              "The identification's segments are in order.",
              "an identification of several frequencies",
              "a BLITS identification",
              {},
              {}},

    CheckInfo{id::kSyncOffset, Major, "Sound and picture belong together.",
              "beginnings and ends of tones: an identification",
              "a clip with a channel identification and printed numbers", "ms", Tolerance{1, 1, 3}},
    CheckInfo{id::kSyncDrift, Major, "Sound and picture stay together.",
              "a channel identification and printed numbers, some 10 s long",
              "a clip of 10 s or more with a channel identification and printed numbers", "ppm",
              Tolerance{20, 20, 50}},
};

static_assert(kChecks.size() == id::kAll.size());
static_assert(std::equal(kChecks.begin(), kChecks.end(), id::kAll.begin(),
                         [](const CheckInfo& check, std::string_view name) { return check.id == name; }));

std::string ToleranceText(const CheckInfo& check)
{
    if (!check.tolerance) {
        return "exact";
    }
    const Tolerance& value = *check.tolerance;
    return fmt::format("{} / {} / {}{}{}", value.lossless, value.mezzanine, value.delivery,
                       check.unit.empty() ? "" : " ", check.unit);
}

} // namespace

std::span<const CheckInfo> Catalogue() noexcept
{
    return kChecks;
}

const CheckInfo* FindCheck(std::string_view name) noexcept
{
    const auto* found =
        std::find_if(kChecks.begin(), kChecks.end(), [&](const CheckInfo& check) { return check.id == name; });
    return found == kChecks.end() ? nullptr : found;
}

std::string_view NameOf(Severity severity) noexcept
{
    return severity == Minor ? "minor" : severity == Major ? "major" : "critical";
}

std::string_view NameOf(CodecClass codec) noexcept
{
    return codec == CodecClass::Lossless    ? "lossless"
           : codec == CodecClass::Mezzanine ? "mezzanine"
                                            : "delivery";
}

std::string CatalogueAsText()
{
    std::string text;
    for (const CheckInfo& check : kChecks) {
        fmt::format_to(std::back_inserter(text), "{}  ({})\n    {}\n    seen with: {}\n    tolerance: {}\n",
                       check.id, NameOf(check.severity), check.sentence, check.visibleBy, ToleranceText(check));
    }
    return text;
}

std::string CatalogueAsMarkdown()
{
    std::string text =
        "| Id | Severity | What holds where all is well | Seen with | Tolerance: lossless / mezzanine / "
        "delivery |\n|---|---|---|---|---|\n";
    for (const CheckInfo& check : kChecks) {
        fmt::format_to(std::back_inserter(text), "| `{}` | {} | {} | {} | {} |\n", check.id,
                       NameOf(check.severity), check.sentence, check.visibleBy, ToleranceText(check));
    }
    return text;
}

} // namespace tessel::verify
