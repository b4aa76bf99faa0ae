#include "Catalogue.h"
#include "Names.h"

#include <algorithm>
#include <array>

namespace tessel::verify {
namespace {

// Everything that any change of the picture does to measures of likeness.
#define TESSEL_LIKENESS id::kFidelityExact, id::kFidelityPsnr, id::kFidelitySsim
constexpr std::array kLikeness{TESSEL_LIKENESS};
constexpr std::array kOfScaled{id::kContainerSize,   id::kContainerAspect, id::kOrderUnreadable,
                               id::kGeometryShifted, id::kColorSiting,     id::kColorSubsampling,
                               id::kFieldsBlended,   TESSEL_LIKENESS};
// Half a row mixes the fields, and with them their colours.
constexpr std::array kOfShifted{id::kFieldsBlended,   id::kColorGain,     id::kColorOffset,
                                id::kColorSaturation, id::kColorHue,      id::kColorMatrix,
                                id::kColorRange,      id::kColorTransfer, TESSEL_LIKENESS};
constexpr std::array kOfCropped{id::kContainerSize, id::kOrderUnreadable, id::kGeometryShifted,
                                id::kGeometryScaled, TESSEL_LIKENESS};
constexpr std::array kOfRotated{id::kContainerSize,   id::kContainerAspect, id::kGeometryScaled,
                                id::kGeometryShifted, id::kGeometryFlipped, TESSEL_LIKENESS};
constexpr std::array kOfMatrixTag{id::kColorMatrix, TESSEL_LIKENESS};
constexpr std::array kOfRangeTag{id::kColorRange, TESSEL_LIKENESS};
constexpr std::array kOfRange{id::kColorClipped,    id::kColorGain,  id::kColorOffset,
                              id::kColorSaturation, id::kColorDepth, TESSEL_LIKENESS};
constexpr std::array kOfGain{id::kColorClipped, id::kColorSaturation, id::kColorDepth, TESSEL_LIKENESS};
// What changes colours other than in proportion moves the middle of edges between them.
constexpr std::array kOfCrookedColor{id::kColorSiting, id::kColorSubsampling, TESSEL_LIKENESS};
constexpr std::array kOfSubsampling{id::kColorSiting, id::kColorSaturation, TESSEL_LIKENESS};
constexpr std::array kOfRate{id::kContainerDuration, id::kAudioPitch, id::kSyncDrift, id::kSyncOffset};
constexpr std::array kOfConstantRate{id::kContainerRate, id::kContainerDuration, id::kSyncOffset,
                                     id::kSyncDrift};
constexpr std::array kOfMissing{id::kContainerDuration, id::kSyncOffset, id::kSyncDrift,
                                id::kContainerConstantRate};
// Conversions of the rate may blend frames.
constexpr std::array kOfCadence{id::kContainerRate,   id::kContainerDuration, id::kContainerConstantRate,
                                id::kOrderMissing,    id::kOrderRepeated,     id::kOrderFrozen,
                                id::kOrderUnreadable, id::kFieldsShifted,     id::kSyncDrift,
                                TESSEL_LIKENESS};
constexpr std::array kOfHead{id::kContainerDuration, id::kContainerStart, id::kSyncOffset};
constexpr std::array kOfTail{id::kContainerDuration};
// Rows of the other field have its colours.
constexpr std::array kOfFields{
    id::kContainerFields,   id::kOrderUnreadable,    id::kOrderMissing,  id::kOrderRepeated,
    id::kOrderFrozen,       id::kOrderInserted,      id::kOrderTail,     id::kOrderCadence,
    id::kOrderHead,         id::kOrderReversed,      id::kOrderSwapped,  id::kGeometryShifted,
    id::kGeometryScaled,    id::kColorClipped,       id::kColorSiting,   id::kColorSubsampling,
    id::kColorAlpha,        id::kColorDepth,         id::kContainerRate, id::kContainerConstantRate,
    id::kContainerDuration, id::kColorMatrix,        id::kColorRange,    id::kColorTransfer,
    id::kColorChannels,     id::kColorChromaSwapped, id::kColorGain,     id::kColorOffset,
    id::kColorSaturation,   id::kColorHue,           TESSEL_LIKENESS};
constexpr std::array kOfChannels{id::kContainerLayout};
constexpr std::array kOfMix{id::kContainerChannels, id::kContainerLayout, id::kAudioOrder,
                            id::kAudioGain,         id::kAudioSilence,    id::kAudioClipping,
                            id::kAudioPolarity,     id::kAudioDropout};
constexpr std::array kOfPitch{id::kContainerDuration, id::kContainerSampleRate, id::kAudioDrift, id::kSyncDrift,
                              id::kSyncOffset};
constexpr std::array kOfDrift{id::kSyncDrift, id::kSyncOffset, id::kContainerDuration};
constexpr std::array kOfLostSound{id::kSyncOffset, id::kSyncDrift, id::kAudioDropout, id::kContainerDuration};
// A bent or cut tone has harmonics, and the part of them that the fit leaves over counts as noise.
constexpr std::array kOfCut{id::kAudioGain, id::kAudioHarmonics, id::kAudioNoise, id::kAudioDc};
constexpr std::array kOfNoise{id::kAudioHarmonics, id::kAudioDc};
constexpr std::array kOfHarmonics{id::kAudioNoise, id::kAudioDc};
// Cutting bits off towards minus infinity moves the mean by half a step.
constexpr std::array kOfSoundDepth{id::kAudioNoise, id::kAudioHarmonics, id::kAudioDc};
constexpr std::array kOfContainerDepth{id::kColorDepth, id::kAudioDepth, TESSEL_LIKENESS};
// Another segment sounds on other channels, which looks like a mixture.
constexpr std::array kOfSegments{id::kAudioDropout, id::kAudioSilence, id::kAudioDownmix, id::kAudioUpmix,
                                 id::kAudioOrder};
// Silence put before the sound makes it longer; the movie's times say that it starts later.
constexpr std::array kOfSyncOffset{id::kContainerDuration, id::kContainerStart, id::kSyncDrift};
constexpr std::array kOfSyncDrift{id::kContainerDuration, id::kSyncOffset};
#undef TESSEL_LIKENESS

struct Causes {
    std::string_view cause;
    std::span<const std::string_view> consequences;
};

constexpr std::array kCauses{
    Causes{id::kGeometryScaled, kOfScaled},
    Causes{id::kGeometryCropped, kOfCropped},
    Causes{id::kGeometryPadded, kOfCropped},
    Causes{id::kGeometryShifted, kOfShifted},
    Causes{id::kGeometryFlipped, kOfCropped},
    Causes{id::kGeometryRotated, kOfRotated},
    Causes{id::kContainerRate, kOfRate},
    Causes{id::kContainerMatrix, kOfMatrixTag},
    Causes{id::kContainerRange, kOfRangeTag},
    Causes{id::kContainerDepth, kOfContainerDepth},
    Causes{id::kContainerConstantRate, kOfConstantRate},
    Causes{id::kContainerChannels, kOfChannels},
    Causes{id::kOrderMissing, kOfMissing},
    Causes{id::kOrderRepeated, kOfMissing},
    Causes{id::kOrderInserted, kOfMissing},
    Causes{id::kOrderFrozen, kOfMissing},
    Causes{id::kOrderCadence, kOfCadence},
    Causes{id::kOrderHead, kOfHead},
    Causes{id::kOrderTail, kOfTail},
    Causes{id::kFieldsSwapped, kOfFields},
    Causes{id::kFieldsShifted, kOfFields},
    Causes{id::kFieldsBlended, kOfFields},
    Causes{id::kFieldsBobbed, kOfFields},
    Causes{id::kFieldsLost, kOfFields},
    Causes{id::kFieldsProgressive, kOfFields},
    Causes{id::kFieldsInterlaced, kOfFields},
    Causes{id::kColorMatrix, kLikeness},
    Causes{id::kColorRange, kOfRange},
    Causes{id::kColorClipped, kOfCrookedColor},
    Causes{id::kColorChannels, kOfCrookedColor},
    Causes{id::kColorChromaSwapped, kLikeness},
    Causes{id::kColorTransfer, kOfCrookedColor},
    Causes{id::kColorGain, kOfGain},
    Causes{id::kColorOffset, kOfGain},
    Causes{id::kColorSaturation, kLikeness},
    Causes{id::kColorHue, kLikeness},
    Causes{id::kColorDepth, kLikeness},
    Causes{id::kColorSubsampling, kOfSubsampling},
    Causes{id::kColorSiting, kLikeness},
    Causes{id::kColorAlpha, kOfCrookedColor},
    Causes{id::kAudioDownmix, kOfMix},
    Causes{id::kAudioUpmix, kOfMix},
    Causes{id::kAudioPitch, kOfPitch},
    Causes{id::kAudioLost, kOfLostSound},
    Causes{id::kAudioInserted, kOfLostSound},
    Causes{id::kAudioDrift, kOfDrift},
    Causes{id::kAudioClipping, kOfCut},
    Causes{id::kAudioNoise, kOfNoise},
    Causes{id::kAudioHarmonics, kOfHarmonics},
    Causes{id::kAudioDepth, kOfSoundDepth},
    Causes{id::kAudioSegments, kOfSegments},
    Causes{id::kSyncOffset, kOfSyncOffset},
    Causes{id::kSyncDrift, kOfSyncDrift},
};

} // namespace

std::span<const std::string_view> ConsequencesOf(std::string_view cause) noexcept
{
    const auto* found =
        std::find_if(kCauses.begin(), kCauses.end(), [&](const Causes& row) { return row.cause == cause; });
    return found == kCauses.end() ? std::span<const std::string_view>{} : found->consequences;
}

} // namespace tessel::verify
