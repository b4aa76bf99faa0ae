/// `tessel view`: a player with scopes and meters.

#include "ViewCommand.h"

#include <kestrel/importhost/PathText.h>
#include <tessel/cli/Commands.h>
#include <tessel/export/ExportError.h>
#include <tessel/view/model/FrameNames.h>
#include <tessel/view/window/WindowRequest.h>

#include <charconv>
#include <string>
#include <string_view>
#include <system_error>

namespace tessel::cli {
namespace {

/// @throws UsageError
void ReadSize(const std::string& text, view::WindowRequest& request)
{
    constexpr int kLeast = 320;
    constexpr int kMost = 16'384;
    const char* const end = text.data() + text.size();
    const auto [first, firstError] = std::from_chars(text.data(), end, request.width);
    const bool hasTwo = firstError == std::errc() && first != end && *first == 'x';
    const auto [second, secondError] = std::from_chars(hasTwo ? first + 1 : end, end, request.height);
    const auto isSize = [](int length) { return length >= kLeast && length <= kMost; };
    if (!hasTwo || secondError != std::errc() || second != end || !isSize(request.width) ||
        !isSize(request.height)) {
        throw UsageError("--size " + text +
                         ": expected a width and a height from 320 to 16384, as in 1280x720");
    }
}

/// What does not depend on the clip. @throws UsageError
void RequireFrame(const std::string& text)
{
    try {
        if (!text.empty()) {
            view::RequireFrameForm(text);
        }
    } catch (const exporting::RequestError& error) {
        throw UsageError(std::string("--frame: ") + error.what());
    }
}

} // namespace

void RunView(const ViewOptions& options, Context& context)
{
    const bool isUnattended = !options.screenshot.empty() || options.playSeconds > 0 || !options.keys.empty();
    if (options.clips.empty() && (isUnattended || !options.against.empty() || !options.frame.empty())) {
        throw UsageError("view needs a CLIP for that; alone it opens a window that clips can be dropped on");
    }
    view::WindowRequest request;
    if (!options.size.empty()) {
        ReadSize(options.size, request);
    }
    RequireFrame(options.frame);
    request.importer = context.LoadImporter();
    request.plugin = context.plugin;
    request.clips = options.clips;
    request.against = options.against;
    request.frame = options.frame;
    request.isLight = options.theme == "light";
    request.keys = options.keys;
    request.screenshot = options.screenshot;
    request.playSeconds = options.playSeconds;
    request.tell = [](std::string_view line) { WriteOut(std::string(line) + '\n'); };
    try {
        view::RunWindow(request);
    } catch (const view::UnknownKey& error) {
        throw UsageError(error.what());
    } catch (const exporting::RequestError& error) {
        throw UsageError(importhost::DisplayName(options.clips.front()) + ": --frame: " + error.what());
    }
}

} // namespace tessel::cli
