#include "Commands.h"

#include <csignal>

namespace tessel::cli {

void LetWritesFail() noexcept
{
    (void)std::signal(SIGPIPE, SIG_IGN);
    (void)std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace tessel::cli
