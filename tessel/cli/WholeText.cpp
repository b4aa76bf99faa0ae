#include "WholeText.h"

#include <cstddef>
#include <span>

namespace tessel::cli {

void WriteAndCommit(exporting::OutputFile& file, std::string_view text)
{
    file.Write(std::as_bytes(std::span<const char>(text)));
    file.Commit();
}

} // namespace tessel::cli
