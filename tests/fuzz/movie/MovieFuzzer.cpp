/// Whatever the file, reading it as a movie ends: with pictures and sound whose every sample can be read, or
/// with one line that says why not.
#include <tessel/verify/read/Movie.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <variant>

namespace {

using namespace tessel::verify::read;

void Require(bool holds, std::string_view claim)
{
    if (!holds) {
        std::cerr << "broken: " << claim << '\n';
        std::abort();
    }
}

/// The bytes as a file that has a name, but no place in any folder.
class MemoryFile {
public:
    MemoryFile(const std::uint8_t* data, std::size_t size) : mDescriptor(memfd_create("movie", MFD_CLOEXEC))
    {
        Require(mDescriptor >= 0, "there is memory for a file");
        for (std::size_t written = 0; written < size;) {
            const ssize_t count = write(mDescriptor, data + written, size - written);
            Require(count > 0, "the memory takes the bytes");
            written += static_cast<std::size_t>(count);
        }
    }
    ~MemoryFile() { close(mDescriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    [[nodiscard]] std::string Name() const { return "/proc/self/fd/" + std::to_string(mDescriptor); }

private:
    int mDescriptor;
};

/// Reads the corners of every component; a sanitizer sees one that is not there.
void Look(const Picture& picture)
{
    Require(picture.width > 0 && picture.height > 0, "a picture has a size");
    double sum = 0;
    for (const ComponentView& component : picture.components) {
        if (!component) {
            continue;
        }
        Require(component.width > 0 && component.width <= picture.width,
                "a component is no wider than the picture");
        Require(component.height > 0 && component.height <= picture.height, "nor is it higher");
        for (const int y : {0, component.height - 1}) {
            for (const int x : {0, component.width - 1}) {
                sum += component.At(x, y);
            }
        }
    }
    volatile double kept = sum;
    (void)kept;
}

void Look(const Sound& sound)
{
    Require(!sound.channels.empty(), "sound has channels");
    for (const auto& channel : sound.channels) {
        Require(channel.size() == sound.channels.front().size(), "all channels are as long");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // A few bytes can promise any number of frames.
    constexpr int kMostPieces = 200;
    const MemoryFile file(data, size);
    try {
        Movie movie(file.Name(), ReadOptions());
        Require(movie.Facts().picture || movie.Facts().sound, "a movie has pictures or sound");
        std::int64_t pictures = 0;
        for (int piece = 0; piece < kMostPieces; ++piece) {
            const auto next = movie.Next();
            if (const auto* picture = std::get_if<Picture>(&next)) {
                Require(picture->index == pictures++, "pictures are counted from 0");
                Look(*picture);
            } else if (const auto* sound = std::get_if<Sound>(&next)) {
                Look(*sound);
            } else {
                break;
            }
        }
        for (const std::string& warning : movie.Facts().warnings) {
            Require(!warning.empty() && warning.find('\n') == std::string::npos, "a warning is one line");
        }
    } catch (const ReadError& error) {
        const std::string_view line = error.what();
        Require(!line.empty() && line.find('\n') == std::string_view::npos, "the reason is one line");
    }
    return 0;
}
