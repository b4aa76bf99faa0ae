/// What a player window is asked to show.
#pragma once

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/Importer.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::view {

struct WindowRequest {
    std::shared_ptr<const importhost::Importer> importer;
    std::filesystem::path plugin; ///< as the command line names it, for the settings dialog; empty: not named
    std::vector<std::filesystem::path> clips;
    std::string against; ///< a movie to compare the first clip with; empty: none
    std::string frame;   ///< the frame to begin with: a number or a timecode; empty: the first one
    bool isLight = false;
    int width = 0; ///< of the window, in screen units; 0: as it was last time
    int height = 0;
    std::vector<std::string> keys; ///< pressed one after the other, as in "Shift+Right"
    std::filesystem::path
        screenshot;         ///< written when all keys are pressed; then the window closes. Empty: none
    double playSeconds = 0; ///< plays so long, tells what was dropped, and closes; 0: not
    /// Takes what there is to tell at the end, a line. May throw what `RunWindow` is to throw.
    std::function<void(std::string_view)> tell;
};

/// A name in `WindowRequest::keys` that is no key's.
class UnknownKey : public importhost::HostError {
public:
    using HostError::HostError;
};

/// Opens the window and returns when it has closed. Where there is no display, a request with a screenshot or a
/// time to play runs without one. [ui-thread]
/// @throws UnknownKey  before a window opens
/// @throws exporting::RequestError  for a frame that the first clip does not have
/// @throws importhost::HostError, exporting::ExportError  where the clips cannot be shown, the
///         screenshot cannot be written, or there is no display
void RunWindow(const WindowRequest& request);

} // namespace tessel::view
