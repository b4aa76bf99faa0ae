#include "WholeText.h"

#include <cstddef>
#include <span>
#include <system_error>

namespace tessel::cli {

void WriteAndCommit(exporting::OutputFile& file, std::string_view text)
{
    file.Write(std::as_bytes(std::span<const char>(text)));
    file.Commit();
}

bool IsSameFile(const std::filesystem::path& one, const std::filesystem::path& other)
{
    std::error_code ignored;
    return one.lexically_normal() == other.lexically_normal() ||
           std::filesystem::equivalent(one, other, ignored);
}

} // namespace tessel::cli
