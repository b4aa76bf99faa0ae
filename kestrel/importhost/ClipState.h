/// What one open clip holds.
#pragma once

#include "Clip.h"
#include "FrameSource.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

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
    std::vector<std::string> messages;
    ClipKnowledge knowledge;
    qelmediatypes::FrameRate rate;
    FrameSource frames;
};

} // namespace importhost
