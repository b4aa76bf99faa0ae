/// The few settings of a `.tessel` document that no request record reports.
///
/// They are read from the settings text that the plug-in gives. Only where that text is too long for the
/// plug-in's buffer are the same keys read from the document itself, by `ReadFactsFromFile`.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tessel::document {

/// One band of a swatch chart, as far as its rules need it.
struct SwatchBand {
    std::size_t xCount = 0;
    std::size_t yCount = 0;
    std::size_t colorPartCount = 0; ///< three to a swatch
    std::int32_t firstY = 0;
    std::int32_t lastY = 0;
};

inline constexpr std::int32_t kRenderFieldColors = 0;
inline constexpr std::int32_t kRenderGradient = 1;
inline constexpr std::int32_t kRenderSwatches = 2;

struct DocumentFacts {
    std::uint32_t pixelFormatCode = 0;       ///< "mPixelFormat", the host's four-character code
    std::int64_t ticksPerFrame = 0;          ///< "mVideoFrameRate"
    std::int32_t channelType = 2;            ///< "mKsAudioChannelType": 2 stereo, 3 5.1
    std::int32_t fieldType = 0;              ///< "mFieldType", all 32 bits of it
    std::int32_t renderFormat = 1;           ///< "mRenderFormat"
    bool drawsNumber = true;                 ///< "mDrawFrameFieldNumber"
    std::int32_t frameWidth = 0;             ///< "mFrameWidth"
    std::int32_t frameHeight = 0;            ///< "mFrameHeight"
    std::int32_t toneFormat = 0;             ///< "mToneFormat": 0 steady tones, 1 identification
    std::array<SwatchBand, 3> swatchBands{}; ///< color swatches, legal range, full range
};

/// The names of the bands in a document, in the order of `swatchBands`.
inline constexpr std::array<const char*, 3> kBandNames = {"colorSwatches", "legalRangeGradient",
                                                          "fullRangeGradient"};

/// Reads the facts from a settings text: up to its first NUL, unwrapped where it is wrapped. Keys that are
/// absent or of another type keep the value above; nothing where the text is no JSON object.
/// Threads: [any-thread].
[[nodiscard]] std::optional<DocumentFacts> ReadFacts(std::string_view settingsText);

/// The same from a document. Opens and parses the file.
[[nodiscard]] std::optional<DocumentFacts> ReadFactsFromFile(const std::filesystem::path& file);

/// A document's bytes. @throws importhost::HostError  naming the file and why it cannot be read
[[nodiscard]] std::string DocumentText(const std::filesystem::path& file);

/// Why a document is not well-formed, in one line with its place, or that it (or what it wraps) is no JSON
/// object; nothing where it is one. Opens and parses the file.
[[nodiscard]] std::optional<std::string> DocumentProblem(const std::filesystem::path& file);

} // namespace tessel::document
