/// The settings that describe a synthetic clip completely.
#pragma once

#include <kestrel/brindle/ColorSpaces.h>
#include <kestrel/qelcore/FourCharacterCode.h>
#include <kestrel/qelmediatypes/PixelAspectRatio.h>
#include <kestrel/qelmediatypes/TickTime.h>
#include <kestrel/qelmediatypes/color/ColorSpace.h>

#include <cstdint>
#include <string>
#include <vector>

namespace ImporterTessel {

/// One colour: nominally 0..1, never clamped. Alpha comes first in memory.
struct FloatColor {
    float mAlphaPart = 0.0F;
    float mRedPart = 0.0F;
    float mGreenPart = 0.0F;
    float mBluePart = 0.0F;
    bool operator==(const FloatColor&) const = default;
};

/// Positions in the frame, in pixels; two independent lists.
struct Coordinates {
    std::vector<std::int32_t> xCoordinates;
    std::vector<std::int32_t> yCoordinates;
    bool operator==(const Coordinates&) const = default;
};

/// Where the chart's three bands have their patches: the centres of the swatches.
struct SwatchCoordinates {
    Coordinates colorSwatches;
    Coordinates legalRangeGradient;
    Coordinates fullRangeGradient;
    bool operator==(const SwatchCoordinates&) const = default;
};

/// The patches' colours: red, green, blue of one after the other, column by column.
struct SwatchColors {
    std::vector<float> colorSwatches;
    std::vector<float> legalRangeGradient;
    std::vector<float> fullRangeGradient;
    bool operator==(const SwatchColors&) const = default;
};

enum RenderFormat : std::int32_t {
    kRenderFieldColors = 0,
    kRenderHorizontalGradient = 1,
    kRenderColorSwatches = 2
};
enum FieldType : std::int32_t { kFieldProgressive = 0, kFieldUpperFirst = 1, kFieldLowerFirst = 2 };
enum ToneFormat : std::int32_t { kToneSteady = 0, kToneIdentifyChannels = 1 };
enum IdentifierFormat : std::int32_t {
    kIdentifierEBUStereo1000 = 0,
    kIdentifierEBUStereo400 = 1,
    kIdentifierEBUMultichannel = 2,
    kIdentifierBLITS = 3
};

/// Host audio channel-type codes that the identification formats depend on.
inline constexpr std::int32_t kKsAudioChannelTypeStereo = 2;
inline constexpr std::int32_t kKsAudioChannelType51 = 3;

/// Whether a document must have a field, may have it, or never has it.
enum class FieldPresence : std::uint8_t { Required, Optional, NotInDocument };

/// The fields of the settings in declared order: FIELD(type, name, default, presence, place). A field's key in
/// documents is its name; `place` says in which order documents are read, because the first key that is missing
/// or wrong is the one that the log names. From this one list come the record, its assignment, its reader and
/// its writer.
// clang-format off
#define TESSEL_INFO_FIELDS(FIELD)                                                                                      \
    FIELD(std::int32_t, mVersion, 1, Optional, 16)                                                                     \
    FIELD(std::uint32_t, mPixelFormat, qelcore::FourBytesCode("bgra"), Required, 1)                                    \
    FIELD(std::int32_t, mFrameWidth, 720, Required, 2)                                                      /* px */   \
    FIELD(std::int32_t, mFrameHeight, 480, Required, 3)                                                     /* px */   \
    FIELD(qelmediatypes::PixelAspectRatio, mFramePAR, qelmediatypes::kPixelAspectRatio_Square, Required, 4)            \
    FIELD(std::int32_t, mFieldType, kFieldProgressive, Required, 5)                                                    \
    FIELD(std::int32_t, mRenderFormat, kRenderHorizontalGradient, Required, 6)                                         \
    FIELD(FloatColor, mUpperFieldColor, (FloatColor{1.0F, 1.0F, 0.5F, 0.25F}), Required, 7)                            \
    FIELD(FloatColor, mLowerFieldColor, (FloatColor{1.0F, 0.0F, 1.0F, 0.0F}), Required, 8)                             \
    FIELD(FloatColor, mTopGradiantColorStart, (FloatColor{1.0F, 1.0F, 0.0F, 0.0F}), Required, 9)                       \
    FIELD(FloatColor, mBottomGradiantColorStart, (FloatColor{1.0F, 0.0F, 1.0F, 0.0F}), Required, 11)                   \
    FIELD(FloatColor, mTopGradiantColorEnd, (FloatColor{1.0F, 0.5F, 0.5F, 0.5F}), Required, 10)                        \
    FIELD(FloatColor, mBottomGradiantColorEnd, (FloatColor{1.0F, 1.0F, 0.5F, 0.25F}), Required, 12)                    \
    FIELD(qelmediatypes::TickTime, mVideoDuration, qelmediatypes::TickTime(60 * qelmediatypes::kTicksPerSecond),       \
          Required, 13)                                                                                                \
    FIELD(qelmediatypes::FrameRate, mVideoFrameRate, (qelmediatypes::FrameRate{qelmediatypes::kTicksPerSecond / 30}),  \
          Required, 14)                                                                                                \
    FIELD(std::u16string, mSavePath, {}, NotInDocument, 0)                         /* the file that the dialog saved */ \
    FIELD(std::u16string, mClipName, u"Default Frame", NotInDocument, 0)           /* until a save names it */         \
    FIELD(bool, mDrawFrameFieldNumber, true, Optional, 21)                                                             \
    FIELD(std::u16string, mSwatchCoordinatesFilePath, {}, Optional, 17)            /* the file last loaded */          \
    FIELD(std::u16string, mSwatchColorsFilePath, {}, Optional, 18)                 /* the file last loaded */          \
    FIELD(SwatchCoordinates, mSwatchCoordinates, {}, Optional, 19)                                                     \
    FIELD(SwatchColors, mSwatchColors, {}, Optional, 20)                                                               \
    FIELD(qelmediatypes::color::ColorSpace, mColorSpace, BR::ColorSpaces::Rec709(), Optional, 15)                      \
    FIELD(float, mSampleRate, 48000.0F, Optional, 22)                                               /* samples/s */    \
    FIELD(std::int32_t, mKsAudioChannelType, kKsAudioChannelTypeStereo, Optional, 23)                                  \
    FIELD(std::int32_t, mNumChannels, 2, Optional, 24)                                                                 \
    FIELD(std::int32_t, mToneFormat, kToneSteady, Optional, 25)                                                        \
    FIELD(float, mSteadyToneFrequency, 1000.0F, Optional, 26)                                       /* hertz */        \
    FIELD(float, mSteadyToneAmplitude, 0.25F, Optional, 27)                                         /* linear peak */  \
    FIELD(std::int32_t, mIdentifierFormat, kIdentifierEBUStereo1000, Optional, 28)
// clang-format on

/// One clip's settings; every field has its default, so a default record is a usable clip: 60 seconds of
/// 720×480 gradients at 30 frames per second with a stereo tone of 1000 Hz.
///
/// Enumerations are held as plain integers, because a document may carry any number: what is out of range is
/// kept and written back, and each consumer says what it does with it.
/// Threads: [any-thread].
struct TesselInfo {
    TesselInfo();
    ~TesselInfo();
    TesselInfo(const TesselInfo&);
    TesselInfo& operator=(const TesselInfo&);
    TesselInfo(TesselInfo&& source) noexcept;
    /// Intended: leaves `source.mVideoDuration` at 0 and all its other scalars as they were.
    TesselInfo& operator=(TesselInfo&& source) noexcept;
    bool operator==(const TesselInfo&) const = default;

#define TESSEL_MEMBER(type, name, initial, presence, place) type name = initial;
    TESSEL_INFO_FIELDS(TESSEL_MEMBER)
#undef TESSEL_MEMBER
};

} // namespace ImporterTessel
