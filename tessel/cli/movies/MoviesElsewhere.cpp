/// In programs without FFmpeg's libraries: the commands that need them, handed to the program that is linked
/// with them.

#include "MovieCommands.h"

#include <tessel/cli/ElsewherePosix.h>

namespace tessel::cli {
namespace {

[[noreturn]] void RunMovies(const Context& context)
{
    RunElsewhere(context, "tessel-movies", "the part of tessel that handles movies");
}

} // namespace

void RunRender(const RenderOptions& /*options*/, Context& context)
{
    RunMovies(context);
}

void RunJoin(const JoinOptions& /*options*/, Context& context)
{
    RunMovies(context);
}

void RunDamage(const DamageOptions& /*options*/, Context& context)
{
    RunMovies(context);
}

void RunVerify(const VerifyOptions& /*options*/, Context& context)
{
    RunMovies(context);
}

void RunThumbnail(const ThumbnailOptions& /*options*/, Context& context)
{
    RunMovies(context);
}

} // namespace tessel::cli
