#include "OutputFolder.h"

#include <kestrel/orb/FileReplacement.h>
#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/ExportError.h>

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace tessel::exporting {

namespace fs = std::filesystem;
using qelcore::text::UTF8Text;

OutputFolder::OutputFolder(const fs::path& path, Missing missing)
{
    std::vector<fs::path> wanted; // innermost first
    std::error_code ignored;
    // "a/" is the folder a, not one without a name inside it.
    fs::path folder = path.has_filename() ? path : path.parent_path();
    while (!folder.empty() && !fs::is_directory(folder, ignored)) {
        wanted.push_back(folder);
        folder = missing == Missing::All ? folder.parent_path() : fs::path();
    }
    mMade.reserve(wanted.size());
    std::reverse(wanted.begin(), wanted.end());
    for (const fs::path& one : wanted) {
        std::error_code error;
        if (fs::create_directory(one, error)) {
            mMade.push_back(one);
        } else if (!fs::is_directory(one, ignored)) { // somebody else may have made it meanwhile
            Remove();
            throw ExportError(fmt::format("{}: the folder cannot be made: {}", UTF8Text(one),
                                          ORB::WriteFailureText(error ? error.value() : EEXIST)));
        }
    }
}

OutputFolder::~OutputFolder()
{
    Remove();
}

void OutputFolder::Remove() noexcept
{
    for (; !mMade.empty(); mMade.pop_back()) {
        std::error_code ignored;
        fs::remove(mMade.back(), ignored); // fails where something is in it
    }
}

} // namespace tessel::exporting
