/// The settings exchange: shows a plug-in's settings dialog for a clip and takes what came of it.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/importhost/Importer.h>
#include <kestrel/qelcore/logging/Log.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace importhost {

/// What the host's sequence is like; a new clip starts from it.
struct SequenceValues {
    std::int32_t width = 1920;  ///< pixels
    std::int32_t height = 1080; ///< pixels
    std::uint32_t parNumerator = 1;
    std::uint32_t parDenominator = 1;
    std::int32_t timeScale = 25; ///< units per second
    std::int32_t sampleSize = 1; ///< units per frame
};

/// How a person left the dialog.
enum class SettingsDecision {
    Accepted, ///< OK: the settings count
    UseFile,  ///< OK, and the clip is to use the file that the person saved
    Cancelled
};

struct EditedSettings {
    SettingsDecision decision = SettingsDecision::Cancelled;
    /// For OK the settings document, after a cancel the one from before; nothing where it is too long for the
    /// host's buffer.
    std::optional<std::string> text;
    std::filesystem::path newFile; ///< for `UseFile`
};

/// Hears what the plug-in logs, at once.
using MessageHandler = std::function<void(const qelcore::logging::Message&)>;

/// Shows the dialog and returns when it has closed. [ui-thread]
/// @param file       A data file.
/// @param onMessage  Called while the dialog is open, on this thread.
/// @throws HostError  the file cannot be read
/// @throws PluginFailure  the plug-in failed
[[nodiscard]] KESTRELHOST_API EditedSettings EditClipSettings(const Importer& importer,
                                                              const std::filesystem::path& file,
                                                              const MessageHandler& onMessage);

/// The same for a clip that does not exist yet.
[[nodiscard]] KESTRELHOST_API EditedSettings EditNewClipSettings(const Importer& importer,
                                                                 const SequenceValues& sequence,
                                                                 const MessageHandler& onMessage);

} // namespace importhost
