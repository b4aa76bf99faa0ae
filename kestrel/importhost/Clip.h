/// One open clip: all that a program gets of a clip, as the plug-in's answers to requests report it.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/importabi/Records.h>
#include <kestrel/importhost/ClipFailure.h>
#include <kestrel/importhost/Frame.h>
#include <kestrel/importhost/Importer.h>
#include <kestrel/qelmediatypes/PixelAspectRatio.h>
#include <kestrel/qelmediatypes/TickTime.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace importhost {

enum class FieldOrder : std::uint8_t { Progressive = 0, UpperFirst = 1, LowerFirst = 2 };

/// What selectors 37 and 73 report of a clip, and nothing else.
struct KESTRELHOST_API ClipDescription {
    std::int32_t width = 0;  ///< pixels
    std::int32_t height = 0; ///< pixels
    qelmediatypes::PixelAspectRatio pixelAspect;
    std::uint8_t fieldType = 0;    ///< as the record has it; see `Order`
    std::int32_t timeScale = 0;    ///< units per second
    std::int32_t sampleSize = 0;   ///< units per frame: the rate is timeScale / sampleSize
    qelmediatypes::FrameRate rate; ///< the same in ticks per frame; without frames where there is no rate
    std::int64_t frameCount = 0;   ///< 0 or more
    float sampleRate = 0.0F;       ///< samples per second
    std::int32_t channelCount = 0;
    bool supportsColorManagement = false;
    ksSEIColorCodesRec colorCodes{2, 2, 2, 0}; ///< unspecified where the plug-in reports none
    std::string colorSpaceName; ///< readable; "Unlisted" for codes that are none of the host's spaces

    /// Values above 2 count as upper field first, the order in which fields are drawn.
    [[nodiscard]] FieldOrder Order() const noexcept;
};

/// What frames are filled with before the plug-in paints them.
enum class FrameFilling { Zero, Poison };

/// What a program knows about a clip beyond what the plug-in reports, for instance from the clip's document.
/// The host does not check it.
struct ClipKnowledge {
    /// The plug-in paints every byte of every picture, so new frames need not be zeroed.
    bool paintsWholeFrames = false;
    /// Ticks per frame, for rates that are no fraction of 32-bit numbers; 0: not known. Taken where the
    /// described time scale and sample size are its rounding.
    std::int64_t ticksPerFrame = 0;
    /// The failure in one line without the file's name, in the words of the clip's document; nothing leaves
    /// it to the host's own words. Called from many threads.
    std::function<std::optional<std::string>(const ClipFailure&)> explain{};
};

/// The plug-in's file type that owns the file's extension, in any case of letters. Looks at the name only.
/// @throws HostError  where none does; names the file and the extensions that would be right.
/// Threads: [thread-safe].
[[nodiscard]] KESTRELHOST_API const FileType& FileTypeOf(const Importer& importer,
                                                         const std::filesystem::path& file);

/// Owns the plug-in's instance. Threads: [thread-safe] for `RenderFrame` and `RenderAudio`; the first
/// frame request of a process runs alone, because it fills the plug-in's suite handles.
class KESTRELHOST_API Clip {
public:
    /// Opens a file with selectors 39, 37 and 73. Only the plug-in opens the file.
    /// @throws HostError  missing, a directory, unreadable, an extension that the plug-in does not own, or an
    ///                    answer other than success; names the file.
    [[nodiscard]] static Clip Open(std::shared_ptr<const Importer> importer, const std::filesystem::path& file,
                                   FrameFilling filling = FrameFilling::Zero);

    ~Clip();
    Clip(Clip&&) noexcept;
    Clip& operator=(Clip&&) noexcept;
    Clip(const Clip&) = delete;
    Clip& operator=(const Clip&) = delete;

    [[nodiscard]] const ClipDescription& Description() const noexcept;

    /// The file as it was named.
    [[nodiscard]] const std::filesystem::path& File() const noexcept;

    /// What the plug-in logged while the clip opened, each message made fit for one line.
    [[nodiscard]] const std::vector<std::string>& Messages() const noexcept;

    /// The clip's settings as selector 38 gives them for an existing file, without a dialog: a text for the
    /// plug-in, which the host does not look into. Nothing where the plug-in has no settings, or where they
    /// do not fit the buffer that it asked for. The plug-in opens the file again at each call.
    /// @throws HostError  where the plug-in fails.
    [[nodiscard]] std::optional<std::string> AskSettingsText() const;

    /// Takes what the program knows. Before the first frame is asked for, on one thread.
    void Learn(ClipKnowledge knowledge);

    /// Ticks per frame: exact where the program knows them, else the description's.
    [[nodiscard]] qelmediatypes::FrameRate Rate() const noexcept;

    /// Renders the frame that starts at `frame` × ticks per frame. Its pixel format is the plug-in's choice;
    /// its size is the described one.
    /// @throws HostError  where the plug-in answers anything but success or gives a frame that contradicts
    ///                    the description, with the reason as far as host and program can see it.
    /// @param destination  where the pixels should be painted, or null. The frame lies there if it has that
    ///                     format and size and its format is stored top row first; else it has memory of its
    ///                     own, and `Frame::Row(0)` tells. The memory must outlive the frame and its copies.
    ///                     What a failed request leaves there is undefined.
    [[nodiscard]] Frame RenderFrame(std::int64_t frame, const FrameDestination* destination = nullptr) const;

    /// Writes `sampleCount` samples from `position` on into each of `channels`, which must hold as many
    /// buffers as the clip has channels (the request itself is padded to six). What the plug-in leaves
    /// alone is zero.
    /// @throws HostError  where the plug-in answers anything but success, or for more than 64 channels.
    void RenderAudio(std::int64_t position, std::uint32_t sampleCount, std::span<float* const> channels) const;

private:
    struct State;
    explicit Clip(std::unique_ptr<State> state);
    [[noreturn]] void Fail(const std::string& request, const ClipFailure& failure) const;
    std::unique_ptr<State> mState;
};

} // namespace importhost
