#include "FileReplacement.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <random>
#include <string_view>

namespace ORB {
namespace {

struct Freer {
    void operator()(char* text) const noexcept
    {
        std::free(text); // NOLINT(cppcoreguidelines-no-malloc): what realpath gives must be freed so.
    }
};

} // namespace

int ResolveTarget(const std::string& path, std::string& target)
{
    target = path;
    constexpr int kMostLinks = 40; // as the system's own limit
    for (int links = 0; links < kMostLinks; ++links) {
        if (const std::unique_ptr<char, Freer> resolved{realpath(target.c_str(), nullptr)}) {
            target = resolved.get();
            return 0;
        }
        if (errno != ENOENT) {
            return errno;
        }
        std::array<char, 4096> link{};
        const ssize_t length = readlink(target.c_str(), link.data(), link.size());
        if (length < 0) {
            return errno == ENOENT || errno == EINVAL ? 0 : errno; // No link: the file to be made.
        }
        if (static_cast<std::size_t>(length) == link.size()) {
            return ENAMETOOLONG;
        }
        const std::string_view next(link.data(), static_cast<std::size_t>(length));
        const std::size_t folderLength = next.substr(0, 1) == "/" ? 0 : target.rfind('/') + 1;
        target.replace(folderLength, std::string::npos, next);
    }
    return ELOOP;
}

std::string TemporaryName(const std::string& target)
{
    std::random_device random;
    constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";
    const std::size_t folderLength = target.rfind('/') + 1; // npos + 1 is 0
    std::string name = target.substr(0, folderLength) + ".";
    // A file name has at most 255 bytes; nothing of the target's is needed to be unique.
    for (int i = 0; i < 16; ++i) {
        name += kLetters[random() % kLetters.size()];
    }
    return name + ".tmp";
}

} // namespace ORB
