/// Standard output and standard error of all commands.

#include "Commands.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <kestrel/orb/FileReplacement.h>

#include <cerrno>
#include <cstdio>

namespace tessel::cli {
namespace {

[[noreturn]] void FailToWrite()
{
    const int error = errno != 0 ? errno : EIO;
    throw importhost::HostError("standard output: cannot be written: " + ORB::WriteFailureText(error));
}

void WriteLine(const char* prefix, std::string_view line) noexcept
{
    try {
        std::fprintf(stderr, "%s%s\n", prefix, importhost::OneLine(line).c_str());
    } catch (const std::exception&) {
        std::fputs("tessel: out of memory\n", stderr);
    }
}

} // namespace

void WriteOut(std::string_view text)
{
    errno = 0;
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
        FailToWrite();
    }
}

void FlushOut()
{
    errno = 0;
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        FailToWrite();
    }
}

void WriteError(std::string_view line) noexcept
{
    WriteLine("tessel: ", line);
}

void WriteNote(std::string_view line) noexcept
{
    WriteLine("", line);
}

} // namespace tessel::cli
