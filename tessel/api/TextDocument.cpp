#include "TextDocument.h"

#include <kestrel/importhost/PathText.h>
#include <kestrel/orb/FileReplacement.h>

#include <cerrno>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>

namespace tessel::api {
namespace {

std::filesystem::path NewFolder()
{
    std::error_code error;
    const std::filesystem::path parent = std::filesystem::temp_directory_path(error);
    if (error) {
        const bool isDenied = error == std::errc::permission_denied;
        throw std::runtime_error(
            std::string("the folder for temporary files, as TMPDIR names it, cannot be used: ") +
            (isDenied ? "permission denied" : "there is no such folder"));
    }
    std::random_device random;
    constexpr int kAttempts = 100;
    for (int attempt = 0; attempt < kAttempts && !error; ++attempt) {
        std::filesystem::path folder =
            parent / ("tessel-" + std::to_string(random()) + "-" + std::to_string(random()));
        // False without an error where the name is taken: another attempt.
        if (std::filesystem::create_directory(folder, error)) {
            std::error_code ignored; // without permissions of its own the folder serves as well
            std::filesystem::permissions(folder, std::filesystem::perms::owner_all, ignored);
            return folder;
        }
    }
    throw std::runtime_error(importhost::DisplayName(parent) +
                             ": no folder for the document can be made there: " +
                             ORB::WriteFailureText(error ? error.value() : EEXIST));
}

} // namespace

TextDocument::TextDocument(std::string_view text) : mFolder(NewFolder()), mFile(mFolder / "document.tessel")
{
    errno = 0; // where the stream leaves the system's error
    std::ofstream stream(mFile, std::ios::binary);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
    if (!stream) {
        const std::string why = ORB::WriteFailureText(errno);
        std::error_code ignored;
        std::filesystem::remove_all(mFolder, ignored);
        throw std::runtime_error(importhost::DisplayName(mFile) +
                                 ": the document cannot be written there: " + why);
    }
}

TextDocument::~TextDocument()
{
    std::error_code ignored;
    std::filesystem::remove_all(mFolder, ignored);
}

} // namespace tessel::api
