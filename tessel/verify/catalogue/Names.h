/// The names of everything that can be wrong with a signal on its return. Who puts faults in on purpose and who
/// finds them share these names and nothing else, so this header includes neither.
#pragma once

#include <array>
#include <string_view>

namespace tessel::verify::id {

/// A name's part before the dot says what it is about.
/// @{
inline constexpr std::string_view kContainerSize = "container.size";
inline constexpr std::string_view kContainerRate = "container.rate";
inline constexpr std::string_view kContainerConstantRate = "container.constant-rate";
inline constexpr std::string_view kContainerAspect = "container.aspect";
inline constexpr std::string_view kContainerFields = "container.fields";
inline constexpr std::string_view kContainerPrimaries = "container.primaries";
inline constexpr std::string_view kContainerTransfer = "container.transfer";
inline constexpr std::string_view kContainerMatrix = "container.matrix";
inline constexpr std::string_view kContainerRange = "container.range";
inline constexpr std::string_view kContainerSiting = "container.siting";
inline constexpr std::string_view kContainerDuration = "container.duration";
inline constexpr std::string_view kContainerStart = "container.start";
inline constexpr std::string_view kContainerChannels = "container.channels";
inline constexpr std::string_view kContainerLayout = "container.layout";
inline constexpr std::string_view kContainerSampleRate = "container.sample-rate";
inline constexpr std::string_view kContainerDepth = "container.depth";
inline constexpr std::string_view kContainerAlpha = "container.alpha";

inline constexpr std::string_view kOrderMissing = "order.missing";
inline constexpr std::string_view kOrderRepeated = "order.repeated";
inline constexpr std::string_view kOrderInserted = "order.inserted";
inline constexpr std::string_view kOrderSwapped = "order.swapped";
inline constexpr std::string_view kOrderFrozen = "order.frozen";
inline constexpr std::string_view kOrderReversed = "order.reversed";
inline constexpr std::string_view kOrderCadence = "order.cadence";
inline constexpr std::string_view kOrderHead = "order.head";
inline constexpr std::string_view kOrderTail = "order.tail";
inline constexpr std::string_view kOrderUnreadable = "order.unreadable";

inline constexpr std::string_view kGeometryScaled = "geometry.scaled";
inline constexpr std::string_view kGeometryCropped = "geometry.cropped";
inline constexpr std::string_view kGeometryPadded = "geometry.padded";
inline constexpr std::string_view kGeometryShifted = "geometry.shifted";
inline constexpr std::string_view kGeometryFlipped = "geometry.flipped";
inline constexpr std::string_view kGeometryRotated = "geometry.rotated";

inline constexpr std::string_view kFieldsSwapped = "fields.swapped";
inline constexpr std::string_view kFieldsShifted = "fields.shifted";
inline constexpr std::string_view kFieldsBlended = "fields.blended";
inline constexpr std::string_view kFieldsBobbed = "fields.bobbed";
inline constexpr std::string_view kFieldsLost = "fields.lost";
inline constexpr std::string_view kFieldsProgressive = "fields.progressive";
inline constexpr std::string_view kFieldsInterlaced = "fields.interlaced";

inline constexpr std::string_view kColorMatrix = "color.matrix";
inline constexpr std::string_view kColorRange = "color.range";
inline constexpr std::string_view kColorClipped = "color.clipped";
inline constexpr std::string_view kColorChannels = "color.channels";
inline constexpr std::string_view kColorChromaSwapped = "color.chroma-swapped";
inline constexpr std::string_view kColorTransfer = "color.transfer";
inline constexpr std::string_view kColorGain = "color.gain";
inline constexpr std::string_view kColorOffset = "color.offset";
inline constexpr std::string_view kColorSaturation = "color.saturation";
inline constexpr std::string_view kColorHue = "color.hue";
inline constexpr std::string_view kColorDepth = "color.depth";
inline constexpr std::string_view kColorSubsampling = "color.subsampling";
inline constexpr std::string_view kColorSiting = "color.siting";
inline constexpr std::string_view kColorAlpha = "color.alpha";

inline constexpr std::string_view kFidelityExact = "fidelity.exact";
inline constexpr std::string_view kFidelityPsnr = "fidelity.psnr";
inline constexpr std::string_view kFidelitySsim = "fidelity.ssim";

inline constexpr std::string_view kAudioOrder = "audio.order";
inline constexpr std::string_view kAudioPolarity = "audio.polarity";
inline constexpr std::string_view kAudioGain = "audio.gain";
inline constexpr std::string_view kAudioSilence = "audio.silence";
inline constexpr std::string_view kAudioClipping = "audio.clipping";
inline constexpr std::string_view kAudioDc = "audio.dc";
inline constexpr std::string_view kAudioNoise = "audio.noise";
inline constexpr std::string_view kAudioHarmonics = "audio.harmonics";
inline constexpr std::string_view kAudioPitch = "audio.pitch";
inline constexpr std::string_view kAudioDrift = "audio.drift";
inline constexpr std::string_view kAudioLost = "audio.lost";
inline constexpr std::string_view kAudioInserted = "audio.inserted";
inline constexpr std::string_view kAudioDropout = "audio.dropout";
inline constexpr std::string_view kAudioDepth = "audio.depth";
inline constexpr std::string_view kAudioDownmix = "audio.downmix";
inline constexpr std::string_view kAudioUpmix = "audio.upmix";
inline constexpr std::string_view kAudioSegments = "audio.segments";

inline constexpr std::string_view kSyncOffset = "sync.offset";
inline constexpr std::string_view kSyncDrift = "sync.drift";

inline constexpr std::string_view kSignalOther = "signal.other";
/// @}

/// Every name once, in the order of reports.
inline constexpr std::array kAll{
    kSignalOther,      kContainerSize,      kContainerRate,      kContainerConstantRate,
    kContainerAspect,  kContainerFields,    kContainerPrimaries, kContainerTransfer,
    kContainerMatrix,  kContainerRange,     kContainerSiting,    kContainerDuration,
    kContainerStart,   kContainerChannels,  kContainerLayout,    kContainerSampleRate,
    kContainerDepth,   kContainerAlpha,     kOrderMissing,       kOrderRepeated,
    kOrderInserted,    kOrderSwapped,       kOrderFrozen,        kOrderReversed,
    kOrderCadence,     kOrderHead,          kOrderTail,          kOrderUnreadable,
    kGeometryScaled,   kGeometryCropped,    kGeometryPadded,     kGeometryShifted,
    kGeometryFlipped,  kGeometryRotated,    kFieldsSwapped,      kFieldsShifted,
    kFieldsBlended,    kFieldsBobbed,       kFieldsLost,         kFieldsProgressive,
    kFieldsInterlaced, kColorMatrix,        kColorRange,         kColorClipped,
    kColorChannels,    kColorChromaSwapped, kColorTransfer,      kColorGain,
    kColorOffset,      kColorSaturation,    kColorHue,           kColorDepth,
    kColorSubsampling, kColorSiting,        kColorAlpha,         kFidelityExact,
    kFidelityPsnr,     kFidelitySsim,       kAudioOrder,         kAudioPolarity,
    kAudioGain,        kAudioSilence,       kAudioClipping,      kAudioDc,
    kAudioNoise,       kAudioHarmonics,     kAudioPitch,         kAudioDrift,
    kAudioLost,        kAudioInserted,      kAudioDropout,       kAudioDepth,
    kAudioDownmix,     kAudioUpmix,         kAudioSegments,      kSyncOffset,
    kSyncDrift};

} // namespace tessel::verify::id
