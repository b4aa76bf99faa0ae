#include "Results.h"

#include <array>
#include <cstring>

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

} // namespace tessel::api
