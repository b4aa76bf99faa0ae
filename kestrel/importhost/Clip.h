/// One open clip, typed: everything that a program learns of a clip, it learns here, and this learns it
/// through the plug-in's selectors.
#pragma once

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/importabi/Records.h>
#include <kestrel/importhost/Frame.h>
#include <kestrel/importhost/Importer.h>
#include <kestrel/qelmediatypes/PixelAspectRatio.h>
#include <kestrel/qelmediatypes/TickTime.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace importhost {

enum class FieldOrder : std::uint8_t { Progressive = 0, UpperFirst = 1, LowerFirst = 2 };

/// What selectors 37 and 73 and the settings text say of a clip.
struct ClipDescription {
    std::int32_t width = 0;  ///< pixels
    std::int32_t height = 0; ///< pixels
    qelmediatypes::PixelAspectRatio pixelAspect;
    std::uint8_t fieldType = 0;    ///< as the record has it; see `Order`
    std::int32_t timeScale = 0;    ///< units per second
    std::int32_t sampleSize = 0;   ///< units per frame: the rate is timeScale / sampleSize, exact unless `rate`
                                   ///< is no fraction of 32-bit numbers
    qelmediatypes::FrameRate rate; ///< ticks per frame; without frames where there is no rate
    std::int64_t frameCount = 0;   ///< 0 or more
    float sampleRate = 0.0F;       ///< samples per second
    std::int32_t channelCount = 0;
    std::int32_t channelType = 0;      ///< host's layout code: 2 stereo, 3 5.1
    std::uint32_t pixelFormatCode = 0; ///< host four-character code as the settings have it
    BR::PixelFormat pixelFormat = BR::PixelFormat::Unknown; ///< `Unknown` where the code is none
    bool supportsColorManagement = false;
    ksSEIColorCodesRec colorCodes{};
    std::string colorSpaceName; ///< readable; "Unlisted" for codes that are none of the host's spaces

    /// Values above 2 count as upper field first, the order in which fields are drawn.
    [[nodiscard]] FieldOrder Order() const noexcept;
};

/// What frames are filled with before the plug-in paints them.
enum class FrameFilling { Zero, Poison };

struct OpenOptions {
    /// Render a document that the plug-in could not read as the default clip, instead of refusing it.
    bool allowDefault = false;
    FrameFilling filling = FrameFilling::Zero;
};

/// @throws HostError  for a name without one of the extensions that the plug-in owns, in any case; names the
///                    file and those. Looks at the name only. Threads: [thread-safe].
void RequireExtension(const Importer& importer, const std::filesystem::path& file);

/// Owns the plug-in's instance. Threads: [thread-safe] for `RenderFrame` and `RenderAudio`; the first
/// frame request of a process runs alone, because it fills the plug-in's suite handles.
class Clip {
public:
    /// Opens a data file.
    /// @throws HostError  missing, a directory, unreadable, an extension that the plug-in does not own, or
    ///                    malformed (unless allowed); names the file, and for a document the key and what
    ///                    was expected.
    [[nodiscard]] static Clip Open(std::shared_ptr<const Importer> importer, const std::filesystem::path& file,
                                   const OpenOptions& options = {});

    ~Clip();
    Clip(Clip&&) noexcept;
    Clip& operator=(Clip&&) noexcept;
    Clip(const Clip&) = delete;
    Clip& operator=(const Clip&) = delete;

    [[nodiscard]] const ClipDescription& Description() const noexcept;

    /// The file as it was named.
    [[nodiscard]] const std::filesystem::path& File() const noexcept;

    /// The file's warnings: what the plug-in logged while the clip opened, a line each.
    [[nodiscard]] const std::string& Warning() const noexcept;

    /// Renders the frame that starts at `frame` × ticks per frame.
    /// @throws HostError  where the plug-in answers anything but success, with the reason as far as the
    ///                    host can see it (frame too large, format that cannot be painted, swatch rules).
    [[nodiscard]] Frame RenderFrame(std::int64_t frame) const;

    /// Writes `sampleCount` samples from `position` on into each of `channels`, which must hold as many
    /// buffers as the clip has channels (the request itself is padded to six). What the plug-in leaves
    /// alone is zero.
    /// @throws HostError  where the plug-in answers anything but success, or for more than 64 channels.
    void RenderAudio(std::int64_t position, std::uint32_t sampleCount, std::span<float* const> channels) const;

    /// The settings document as selector 38 gives it without a dialog; nothing where it is too long for the
    /// host's buffer.
    [[nodiscard]] const std::optional<std::string>& SettingsText() const noexcept;

private:
    struct State;
    explicit Clip(std::unique_ptr<State> state);
    std::unique_ptr<State> mState;
};

} // namespace importhost
