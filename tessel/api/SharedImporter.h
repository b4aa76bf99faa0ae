/// The plug-in, loaded once however many clips it serves.
#pragma once

#include <kestrel/importhost/Importer.h>

#include <filesystem>
#include <memory>

namespace tessel::api {

/// Loads the plug-in, or shares the one that is loaded already. It is unloaded with its last clip.
/// @param plugin  its file or folder; empty: not said
/// @throws importhost::HostError  where it cannot be found or loaded
/// Threads: [thread-safe].
[[nodiscard]] std::shared_ptr<const importhost::Importer> ShareImporter(const std::filesystem::path& plugin);

} // namespace tessel::api
