#include "ElsewherePosix.h"

#include "Commands.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

namespace tessel::cli {

void RunElsewhere(const Context& context, std::string_view program, std::string_view part,
                  std::string_view remedy)
{
    std::error_code error;
    // Where this program really is, also where it was called through a link: in bin, or with the other parts.
    const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    std::filesystem::path file = folder / program;
    if (!error && !std::filesystem::exists(file, error)) {
        file = folder.parent_path() / TESSEL_PARTS / program;
        error.clear();
    }
    if (!error) {
        FlushOut();
        execv(file.c_str(), context.arguments);
        error.assign(errno, std::generic_category());
    }
    const bool isMissing = error == std::errc::no_such_file_or_directory && !remedy.empty();
    throw importhost::HostError(
        importhost::DisplayName(file) + ": " + std::string(part) +
        (isMissing ? " is not installed: " + std::string(remedy) : " cannot be started: " + error.message()));
}

} // namespace tessel::cli
