#include "Commands.h"

#include <csignal>

namespace tessel::cli {

void IgnoreBrokenPipes() noexcept
{
    (void)std::signal(SIGPIPE, SIG_IGN);
}

} // namespace tessel::cli
