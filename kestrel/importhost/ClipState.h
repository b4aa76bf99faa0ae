/// What one open clip holds.
#pragma once

#include "Clip.h"
#include "FrameSource.h"
#include "SettingsKeys.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace importhost {

struct Clip::State {
    State(std::shared_ptr<const Importer> usedImporter, std::filesystem::path clipFile, FrameFilling filling);
    ~State();
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    std::shared_ptr<const Importer> importer;
    std::filesystem::path file;
    ksInstance instance = nullptr; ///< the plug-in's, given back at the end
    ClipDescription description;
    SettingsKeys keys;
    std::optional<std::string> settingsText;
    std::string warning;
    FrameSource frames;
};

} // namespace importhost
