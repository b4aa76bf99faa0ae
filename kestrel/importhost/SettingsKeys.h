/// The few settings of a clip that no request record reports.
///
/// This is the one place where the host looks into a settings document. It prefers the text that the
/// plug-in itself gave; only where that text did not fit its buffer are the same keys read from the
/// clip's file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace importhost {

/// One band of a swatch chart, as far as its rules need it.
struct SwatchBand {
    std::size_t xCount = 0;
    std::size_t yCount = 0;
    std::size_t colorPartCount = 0; ///< three to a swatch
    std::int32_t firstY = 0;
    std::int32_t lastY = 0;
};

struct SettingsKeys {
    std::uint32_t pixelFormat = 0;           ///< "mPixelFormat"
    std::int64_t ticksPerFrame = 0;          ///< "mVideoFrameRate"
    std::int32_t channelType = 2;            ///< "mKsAudioChannelType"
    std::int32_t renderFormat = 1;           ///< "mRenderFormat"
    std::array<SwatchBand, 3> swatchBands{}; ///< color swatches, legal range, full range
};

/// Reads the keys from a settings text: up to its first NUL, unwrapped where it is wrapped. Keys that are
/// absent or of another type keep the value above; nothing where the text is no JSON object.
/// Threads: [any-thread].
[[nodiscard]] std::optional<SettingsKeys> SettingsKeysFromText(std::string_view text);

/// The same from a clip's file.
[[nodiscard]] std::optional<SettingsKeys> SettingsKeysFromFile(const std::filesystem::path& file);

/// What keeps a document from being well-formed, in one line with its place, or that it (or what it wraps) is
/// no JSON object; nothing where it is one.
[[nodiscard]] std::optional<std::string> DocumentProblem(const std::filesystem::path& file);

} // namespace importhost
