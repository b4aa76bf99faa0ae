#include "Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace tessel::cli {

std::optional<std::size_t> TerminalColumns() noexcept
{
    winsize size{};
    const bool isTerminal = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isTerminal ? std::optional<std::size_t>(size.ws_col) : std::nullopt;
}

} // namespace tessel::cli
