/// The command that opens the player.
///
/// `tessel` knows its command line, but not Qt: the program `tessel-view`, which stands apart, is linked with
/// that.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tessel::cli {

struct Context;

/// The command line as typed.
struct ViewOptions {
    std::vector<std::filesystem::path> clips;
    std::string against;
    std::string frame;
    std::string theme = "dark";
    std::string size;
    std::vector<std::string> keys;
    std::filesystem::path screenshot;
    double playSeconds = 0;
};

/// In programs other than `tessel-view` this starts that program in the program's place.
/// @throws UsageError, importhost::HostError, exporting::ExportError
void RunView(const ViewOptions& options, Context& context);

} // namespace tessel::cli
