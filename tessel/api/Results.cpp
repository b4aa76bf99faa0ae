#include "Results.h"

#include <array>
#include <cstring>
#include <string_view>

namespace tessel::api {
namespace {

/// Room that needs no memory when memory has run out. Longer lines are cut at a whole character.
thread_local std::array<char, 2048> lastError{};

} // namespace

const char* LastError() noexcept
{
    return lastError.data();
}

tessel_result Fail(tessel_result result, const char* line) noexcept
{
    std::size_t length = std::strlen(line);
    if (length >= lastError.size()) {
        length = lastError.size() - 1;
        // UTF-8: the bytes inside a character are 10xxxxxx.
        while (length > 0 && (static_cast<unsigned char>(line[length]) & 0xC0U) == 0x80U) {
            --length;
        }
    }
    std::memmove(lastError.data(), line, length); // a caller may hand its own last error on
    lastError[length] = '\0';
    return result;
}

void NameDocument(std::string_view standIn) noexcept
{
    constexpr std::string_view kName =
        "the document"; // shorter than any stand-in, which has a folder of its own
    const std::string_view line = lastError.data();
    const std::size_t place = standIn.size() < kName.size() ? std::string_view::npos : line.find(standIn);
    if (place == std::string_view::npos) {
        return;
    }
    char* const begin = lastError.data() + place;
    const std::size_t rest = line.size() - place - standIn.size();
    std::memcpy(begin, kName.data(), kName.size());
    std::memmove(begin + kName.size(), begin + standIn.size(), rest + 1); // with the NUL
}

} // namespace tessel::api
