/// Sample clips as the player opens them.
#pragma once

#include <kestrel/importhost/Importer.h>
#include <tessel/view/model/ViewedClip.h>

#include <filesystem>
#include <memory>

namespace tessel::view {

/// @param name  of a file in the folder of samples. All clips share one importer.
inline std::shared_ptr<const ViewedClip> Sample(const char* name)
{
    static const std::shared_ptr<const importhost::Importer> importer =
        importhost::Importer::Load(TEST_PLUGIN, importhost::TestingPlugins::Allowed);
    return std::make_shared<const ViewedClip>(importer, std::filesystem::path(TEST_SAMPLES) / name);
}

} // namespace tessel::view
