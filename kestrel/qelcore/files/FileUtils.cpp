#include "FileUtils.h"

#include <filesystem>
#include <new>
#include <system_error>

namespace qelcore::utility {

bool FileUtils::FileOrDirExists(std::u16string_view path)
{
    // The system would look only at what stands before a NUL: another path than the one asked about.
    if (path.empty() || path.find(u'\0') != std::u16string_view::npos) {
        return false;
    }
    try {
        std::error_code error;
        return std::filesystem::exists(std::filesystem::path(path), error) && !error;
    } catch (const std::bad_alloc&) {
        throw; // no answer about the file
    } catch (const std::exception&) {
        return false; // not well-formed UTF-16
    }
}

} // namespace qelcore::utility
