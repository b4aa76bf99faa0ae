/// Movies, pipes, picture sequences and sound files through FFmpeg's libraries. This is the only room of the
/// program's verification that knows them.
#pragma once

#include "MovieFacts.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace tessel::verify::read {

/// A movie that cannot be read. `what()` is one line that names the movie and what would be right.
class ReadError : public std::runtime_error {
public:
    explicit ReadError(const std::string& line) : std::runtime_error(line) {}
};

/// One component of a picture, sample by sample. Borrows the picture.
struct ComponentView {
    const std::byte* first = nullptr; ///< top left sample; null: there is no such component
    std::ptrdiff_t rowBytes = 0;
    int step = 0;  ///< bytes from one sample to the next
    int width = 0; ///< samples
    int height = 0;
    int bits = 8;
    int shift = 0;       ///< bits below the sample in its word
    int sampleBytes = 1; ///< 1, 2 or 4
    bool isBigEndian = false;
    bool isFloat = false;

    [[nodiscard]] explicit operator bool() const noexcept { return first != nullptr; }
    /// The code of a sample, or the value of a float one. Inside the component.
    [[nodiscard]] double At(int x, int y) const noexcept
    {
        const std::byte* at = first + y * rowBytes + static_cast<std::ptrdiff_t>(x) * step;
        if (sampleBytes == 1) {
            return static_cast<double>(std::to_integer<unsigned>(*at) >> shift);
        }
        if (isFloat) {
            float value = 0;
            std::memcpy(&value, at, sizeof value);
            return value;
        }
        const auto low = std::to_integer<unsigned>(at[isBigEndian ? 1 : 0]);
        const auto high = std::to_integer<unsigned>(at[isBigEndian ? 0 : 1]);
        return static_cast<double>(((high << 8U) | low) >> shift & ((1U << bits) - 1U));
    }
    /// Every second row, from `parity` on.
    [[nodiscard]] ComponentView Field(int parity) const noexcept;
};

/// A decoded picture; copies share the samples.
struct Picture {
    std::int64_t index = 0;        ///< in presentation order, from 0
    std::optional<double> seconds; ///< presentation time
    double duration = 0;           ///< seconds; 0: not said
    int width = 0;
    int height = 0;
    SampleFormat format;
    bool isInterlaced = false; ///< as this picture says
    bool isDamaged = false;    ///< the decoder found errors in it
    /// Y', Cb, Cr, alpha or R, G, B, alpha; grey has the first alone.
    ComponentView components[4];
    std::shared_ptr<const void> owner;
};

/// A stretch of decoded sound.
struct Sound {
    std::int64_t position = 0;     ///< samples since the first one of the stream
    std::optional<double> seconds; ///< of its first sample
    int sampleRate = 0;
    /// Samples per channel, full scale 1. Channels of several streams follow each other.
    std::vector<std::vector<float>> channels;
};

struct ReadOptions {
    int threads = 1;
    /// For picture sequences, which do not say their rate.
    Rational sequenceRate;
};

/// Decodes one movie from its beginning to its end. Memory stays the same however long it is.
/// Threads: one object, one thread at a time.
class Movie {
public:
    /// @param name  a file, a URL that FFmpeg knows, `-` for standard input, or a picture sequence with a
    ///              number in its name (`out/%06d.png`)
    /// @throws ReadError  where there is no such movie, or nothing in it that FFmpeg can decode
    Movie(const std::string& name, const ReadOptions& options);
    ~Movie();
    Movie(const Movie&) = delete;
    Movie& operator=(const Movie&) = delete;

    /// Facts of container and codecs. Interlacing and range are completed by the first pictures.
    [[nodiscard]] const MovieFacts& Facts() const noexcept;

    /// The next picture or stretch of sound, each kind in presentation order; nothing at the end.
    /// Damaged data is skipped and told in the facts' warnings.
    [[nodiscard]] std::variant<std::monostate, Picture, Sound> Next();

private:
    struct State;
    std::unique_ptr<State> mState;
};

} // namespace tessel::verify::read
