/// In `tessel`: the commands that need FFmpeg's libraries, handed to the program that is linked with them.

#include "MovieCommands.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <tessel/cli/Commands.h>

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace tessel::cli {
namespace {

/// Puts `tessel-movies` in this process's place: same number, same files, same arguments. It stands in
/// ../lib/tessel from where this program really is, also where it was called through a link.
[[noreturn]] void RunElsewhere(const Context& context)
{
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path program = self.parent_path().parent_path() / TESSEL_MOVIES;
    if (!error) {
        FlushOut();
        execv(program.c_str(), context.arguments);
        error.assign(errno, std::generic_category());
    }
    throw importhost::HostError(
        importhost::DisplayName(program) +
        ": the part of tessel that handles movies cannot be started: " + error.message());
}

} // namespace

void RunRender(const RenderOptions& /*options*/, Context& context)
{
    RunElsewhere(context);
}

void RunDamage(const DamageOptions& /*options*/, Context& context)
{
    RunElsewhere(context);
}

void RunVerify(const VerifyOptions& /*options*/, Context& context)
{
    RunElsewhere(context);
}

void RunThumbnail(const ThumbnailOptions& /*options*/, Context& context)
{
    RunElsewhere(context);
}

} // namespace tessel::cli
