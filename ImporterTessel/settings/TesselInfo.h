/// The settings that describe a synthetic clip completely.
#pragma once

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

    std::int32_t mVersion = 1;
    std::uint32_t mPixelFormat = 0x61726762; ///< bytes "bgra" in memory order
    std::int32_t mFrameWidth = 720;          ///< pixels
    std::int32_t mFrameHeight = 480;         ///< pixels
    qelmediatypes::PixelAspectRatio mFramePAR = qelmediatypes::kPixelAspectRatio_Square;
    std::int32_t mFieldType = kFieldProgressive;
    std::int32_t mRenderFormat = kRenderHorizontalGradient;
    FloatColor mUpperFieldColor{1.0F, 1.0F, 0.5F, 0.25F};
    FloatColor mLowerFieldColor{1.0F, 0.0F, 1.0F, 0.0F};
    FloatColor mTopGradiantColorStart{1.0F, 1.0F, 0.0F, 0.0F};
    FloatColor mBottomGradiantColorStart{1.0F, 0.0F, 1.0F, 0.0F};
    FloatColor mTopGradiantColorEnd{1.0F, 0.5F, 0.5F, 0.5F};
    FloatColor mBottomGradiantColorEnd{1.0F, 1.0F, 0.5F, 0.25F};
    qelmediatypes::TickTime mVideoDuration{60 * qelmediatypes::kTicksPerSecond};
    qelmediatypes::FrameRate mVideoFrameRate{qelmediatypes::kTicksPerSecond / 30};
    std::u16string mSavePath; ///< the data file that the dialog saved; never written to a document
    std::u16string mClipName; ///< "Default Frame" until a save names it; never written to a document
    bool mDrawFrameFieldNumber = true;
    std::u16string mSwatchCoordinatesFilePath; ///< the file last loaded
    std::u16string mSwatchColorsFilePath;      ///< the file last loaded
    SwatchCoordinates mSwatchCoordinates;
    SwatchColors mSwatchColors;
    qelmediatypes::color::ColorSpace mColorSpace; ///< Rec. 709
    float mSampleRate = 48000.0F;                 ///< samples per second
    std::int32_t mKsAudioChannelType = kKsAudioChannelTypeStereo;
    std::int32_t mNumChannels = 2;
    std::int32_t mToneFormat = kToneSteady;
    float mSteadyToneFrequency = 1000.0F; ///< hertz
    float mSteadyToneAmplitude = 0.25F;   ///< linear peak factor
    std::int32_t mIdentifierFormat = kIdentifierEBUStereo1000;
};

} // namespace ImporterTessel
