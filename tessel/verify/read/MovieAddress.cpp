#include "MovieAddress.h"

#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace tessel::verify::read {
namespace {

/// Whether there is a "%d" or "%06d".
bool HasNumber(std::string_view text) noexcept
{
    for (std::size_t percent = text.find('%'); percent != std::string_view::npos;
         percent = text.find('%', percent + 1)) {
        const std::size_t end = text.find_first_not_of("0123456789", percent + 1);
        if (end != std::string_view::npos && text[end] == 'd') {
            return true;
        }
    }
    return false;
}

std::string WithPlainPercents(std::string_view text)
{
    std::string plain;
    for (const char letter : text) {
        plain += letter == '%' ? "%%" : std::string(1, letter);
    }
    return plain;
}

/// A file's name, which is no protocol where it has a colon.
std::string FileUrl(const std::string& name)
{
    return name.find(':') == std::string::npos ? name : "file:" + name;
}

} // namespace

MovieAddress AddressOf(const std::string& name)
{
    if (name == "-") {
        return {"pipe:0"};
    }
    std::error_code ignored;
    if (std::filesystem::exists(name, ignored)) {
        return {FileUrl(name)};
    }
    const std::size_t slash = name.rfind('/');
    const std::size_t fileBegins = slash == std::string::npos ? 0 : slash + 1;
    const std::string folder = name.substr(0, fileBegins);
    const std::string file = name.substr(fileBegins);
    const bool isFileNumbered = HasNumber(file);
    if (!isFileNumbered || folder.find("://") != std::string::npos) {
        return {name, isFileNumbered || HasNumber(folder)};
    }
    return {FileUrl(WithPlainPercents(folder) + file), true};
}

} // namespace tessel::verify::read
