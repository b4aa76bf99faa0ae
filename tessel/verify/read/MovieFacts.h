/// The facts that a movie's container and codec state: size, rate, tags and the like.
#pragma once

#include <tessel/verify/catalogue/Catalogue.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tessel::verify::read {

struct Rational {
    std::int64_t numerator = 0; ///< 0: not known
    std::int64_t denominator = 1;

    [[nodiscard]] double Value() const noexcept
    {
        return denominator == 0 ? 0.0 : static_cast<double>(numerator) / static_cast<double>(denominator);
    }
};

enum class FieldOrder : std::uint8_t { Unknown, Progressive, UpperFirst, LowerFirst };

/// Whether readers of this container and codec can learn a thing at all.
struct Sayable {
    bool aspect = true;
    bool fields = true;
    bool primaries = true; ///< and transfer and matrix
    bool range = true;
    bool fullRange = true; ///< false: codes are limited range whatever is announced
    bool siting = true;
    bool alpha = true;    ///< the codec has samples for it
    bool layout = true;   ///< of channels
    int bits = 16;        ///< most bits that the codec, in the profile at hand, has for a sample
    int chromaShiftX = 0; ///< least chroma subsampling that it has
    int chromaShiftY = 0;
};

/// How a codec keeps samples.
struct SampleFormat {
    std::string name; ///< FFmpeg's
    bool isRgb = false;
    bool hasAlpha = false;
    bool isFloat = false;
    int bits = 8;         ///< of a sample
    int chromaShiftX = 0; ///< log2 of horizontal chroma subsampling
    int chromaShiftY = 0;
};

struct PictureFacts {
    std::string codec;   ///< FFmpeg's name
    std::string profile; ///< empty: none
    CodecClass codecClass = CodecClass::Delivery;
    SampleFormat format;
    int width = 0;
    int height = 0;
    Rational rate;        ///< frames per second as announced
    Rational averageRate; ///< pictures divided by duration, as the container gives them
    Rational pixelAspect; ///< numerator 0: not said
    FieldOrder fields = FieldOrder::Unknown;
    /// Codes of ITU-T H.273; 2 is unspecified. @{
    int primaries = 2;
    int transfer = 2;
    int matrix = 2;
    /// @}
    std::optional<bool> fullRange;
    /// Chroma position from the top left luma sample in luma pixels; nothing where not said.
    struct Siting {
        double x = 0;
        double y = 0;
    };
    std::optional<Siting> siting;
    std::optional<double> startSeconds; ///< as the container says
    double timeUnitSeconds = 0;         ///< what presentation times are multiples of
    bool isSequence = false;            ///< a file per picture
    int rotationDegrees = 0;            ///< that players are asked to turn pictures by, anticlockwise
    bool hasRotation = false;
};

struct SoundFacts {
    std::string codec;
    CodecClass codecClass = CodecClass::Delivery;
    int sampleRate = 0;
    int channels = 0;
    std::string layout;            ///< FFmpeg's name; empty: not said
    std::optional<int> lfeChannel; ///< the one for low frequencies alone, by the layout
    int bits = 0;                  ///< of a sample, 0 for codecs without
    std::optional<double> startSeconds;
};

struct MovieFacts {
    std::string name;                    ///< as the movie was named
    std::string container;               ///< FFmpeg's name
    std::string kind;                    ///< the container as people call it: "MP4"
    std::optional<PictureFacts> picture; ///< of the first picture stream
    std::optional<SoundFacts> sound;     ///< of all sound streams, one behind the other
    int soundStreams = 0;
    std::optional<double> durationSeconds;
    std::optional<double> startSeconds;
    Sayable sayable;
    bool startsAnywhere = false;       ///< transport and network streams; times of others count from 0
    bool carriesPictures = true;       ///< the kind of container does
    bool carriesSound = true;          ///< the kind of container does
    std::vector<std::string> warnings; ///< what the decoders complained about, each once
};

} // namespace tessel::verify::read
